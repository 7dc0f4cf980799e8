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

start_game --skip-intro
title=$(xprop -id "$WINDOW" WM_NAME)
[ "$title" = 'WM_NAME(STRING) = "Torvane"' ] || fail "title is $title"
geometry=$(xdotool getwindowgeometry "$WINDOW")
echo "$geometry"
echo "$geometry" | grep -q 'Geometry: 1280x800' || fail "window is not 1280x800"
# The title stays over the frame rate status, which would come once a second.
sleep 1.5
title=$(xprop -id "$WINDOW" WM_NAME)
[ "$title" = 'WM_NAME(STRING) = "Torvane"' ] || fail "title changed to $title"
px close "$WINDOW"
expect_end "the close message"

for signal in TERM INT; do
    start_game --skip-intro
    # Long enough for the audio device to be open, as it opens in the background.
    sleep 1.5
    kill -s "$signal" "$GAME"
    expect_end "SIG$signal"
done
echo OK
