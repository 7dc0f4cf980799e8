#!/usr/bin/env bash
# Real key presses through the X server move and drop a piece in the build phase: two
# runs of the same game, one left alone and one with keys, end on different walls.
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/lib/xvfb.bash"
start_xvfb_in_workdir

run() { # $1 screenshot, $2 seconds
    "$BUILD/torvane" --windowed --no-sound --seed=3 --level=1 --skip-intro --exit-after="$2" --screenshot="$1" 2>/dev/null
}

# The same game twice without keys: what differs is only what moves by itself.
run A.png 6 &
A=$!
run B.png 6
wait "$A" || fail "first run"
quiet=$(python3 "$HERE/lib/png_stage.py" A.png B.png | sed 's/stage_diff=//')

run K.png 6 &
K=$!
window=$(timeout 20 xdotool search --sync --name '^Torvane$' | head -1) || fail "no window"
xdotool windowfocus --sync "$window" || true
sleep 0.5
# Each key is held over several frames and released before it would repeat.
for key in Left Left Left Down Right Right Down; do
    xdotool keydown --window "$window" "$key"
    sleep 0.12
    xdotool keyup --window "$window" "$key"
    sleep 0.15
done
wait "$K" || fail "run with keys"
moved=$(python3 "$HERE/lib/png_stage.py" A.png K.png | sed 's/stage_diff=//')
echo "without keys: $quiet pixels differ; with keys: $moved"
# Two dropped pieces and a moved cursor change far more than the drifting sky does.
[ "$moved" -gt $((quiet + 400)) ] || fail "keys left no trace ($moved vs $quiet)"
echo OK
