#!/usr/bin/env bash
# The bot plays level 2 up to the attack; the last frame shows the ring wall under fire.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir

status "$BUILD/torvane" --windowed --no-sound --seed=5 --autoplay --level=2 --exit-on=attack --screenshot=OUT.png 2>err.txt
cat err.txt >&2
[ "$rc" -eq 0 ] || fail "exit status $rc"
grep -qx '\[torvane\] Bildschirmfoto: OUT.png' err.txt || fail "no screenshot message"
summary=$(png stage OUT.png) || fail "PNG does not decode"
echo "$summary"
colours=$(echo "$summary" | sed 's/.*stage_colours=\([0-9]*\).*/\1/')
red=$(echo "$summary" | sed 's/.*red=\([0-9]*\).*/\1/')
# A drawn scene, not a cleared screen: sky, hills, wood, each shaded.
[ "$colours" -gt 500 ] || fail "stage nearly uniform: $summary"
# The Defence Line crosses the ring: a band at least a few hundred pixels long.
[ "$red" -gt 200 ] || fail "no Defence Line red: $summary"
echo OK
