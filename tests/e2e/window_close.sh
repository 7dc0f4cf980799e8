#!/usr/bin/env bash
# The window is titled "Torvane", and the window manager's close message ends the run with status 0.
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/lib/xvfb.bash"
start_xvfb

"$BUILD/torvane" --windowed --skip-intro &
GAME=$!
cleanup() { kill "$GAME" 2>/dev/null || true; stop_xvfb; }
trap cleanup EXIT

win=""
for i in $(seq 1 200); do
    win=$(xdotool search --name '^Torvane$' 2>/dev/null | head -n1 || true)
    [ -n "$win" ] && break
    kill -0 "$GAME" 2>/dev/null || fail "the game ended by itself"
    sleep 0.05
done
[ -n "$win" ] || fail "no window titled Torvane"
title=$(xprop -id "$win" WM_NAME)
[ "$title" = 'WM_NAME(STRING) = "Torvane"' ] || fail "title is $title"
geometry=$(xdotool getwindowgeometry "$win")
echo "$geometry"
echo "$geometry" | grep -q 'Geometry: 1280x800' || fail "window is not 1280x800"
# The title stays over the frame rate status, which would come once a second.
sleep 1.5
title=$(xprop -id "$win" WM_NAME)
[ "$title" = 'WM_NAME(STRING) = "Torvane"' ] || fail "title changed to $title"

python3 "$HERE/lib/wm_close.py" "$win"
for i in $(seq 1 100); do
    kill -0 "$GAME" 2>/dev/null || break
    sleep 0.05
done
kill -0 "$GAME" 2>/dev/null && fail "still running after the close message"
set +e
wait "$GAME"
rc=$?
set -e
[ "$rc" -eq 0 ] || fail "exit status $rc"
echo OK
