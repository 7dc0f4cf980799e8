#!/usr/bin/env bash
# The window is titled "Torvane", and the window manager's close message ends the run with
# status 0; so do SIGTERM (kill, a logout) and SIGINT (Ctrl+C in a terminal). The game plays
# sound throughout, through SDL's silent driver: opening audio must not take the signals.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb
export SDL_AUDIODRIVER=dummy
# Job control, so that the game is started as from a terminal: a background job of a
# script would have SIGINT ignored from the start.
set -m

GAME=""
cleanup() { [ -z "$GAME" ] || kill -9 "$GAME" 2>/dev/null || true; stop_xvfb; }
trap cleanup EXIT

# Starts the game and sets $win to its window.
start_game() {
    "$BUILD/torvane" --windowed --skip-intro &
    GAME=$!
    win=""
    for i in $(seq 1 200); do
        win=$(xdotool search --name '^Torvane$' 2>/dev/null | head -n1 || true)
        [ -n "$win" ] && break
        kill -0 "$GAME" 2>/dev/null || fail "the game ended by itself"
        sleep 0.05
    done
    [ -n "$win" ] || fail "no window titled Torvane"
}

# The game must be gone within five seconds, with status 0.
expect_end() {
    for i in $(seq 1 100); do
        kill -0 "$GAME" 2>/dev/null || break
        sleep 0.05
    done
    kill -0 "$GAME" 2>/dev/null && fail "still running after $1"
    status wait "$GAME"
    GAME=""
    [ "$rc" -eq 0 ] || fail "exit status $rc after $1"
}

start_game
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
expect_end "the close message"

for signal in TERM INT; do
    start_game
    # Long enough for the audio device to be open, as it opens in the background.
    sleep 1.5
    kill -s "$signal" "$GAME"
    expect_end "SIG$signal"
done
echo OK
