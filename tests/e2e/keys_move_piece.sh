#!/usr/bin/env bash
# Real key presses through the X server move and drop a piece in the build phase: two
# runs of the same game, one left alone and one with keys, end on different walls.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir

run() { # $1 screenshot, $2 seconds
    "$BUILD/torvane" --windowed --no-sound --seed=3 --level=1 --skip-intro --exit-after="$2" --screenshot="$1" 2>/dev/null
}

# The same game twice without keys: what differs is only what moves by itself.
run A.png 6 &
A=$!
run B.png 6
wait "$A" || fail "first run"
quiet=$(png stage A.png B.png | sed 's/stage_diff=//')

run K.png 6 &
K=$!
find_window
sleep 0.5
tap Left Left Left Down Right Right Down
wait "$K" || fail "run with keys"
moved=$(png stage A.png K.png | sed 's/stage_diff=//')
echo "without keys: $quiet pixels differ; with keys: $moved"
# Two dropped pieces and a moved cursor change far more than the drifting sky does.
[ "$moved" -gt $((quiet + 400)) ] || fail "keys left no trace ($moved vs $quiet)"
echo OK
