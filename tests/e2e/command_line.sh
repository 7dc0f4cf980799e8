#!/usr/bin/env bash
# Runs that end before any window: a malformed number and a missing display.
source "$(dirname "$0")/lib/xvfb.bash"
start_workdir

status env -u DISPLAY "$BUILD/torvane" --windowed --seed= 2>err.seed >/dev/null
[ "$rc" -ne 0 ] || fail "--seed= alone ended normally"
grep -q 'stoul' err.seed || fail "no stoul in: $(cat err.seed)"

status env -u DISPLAY "$BUILD/torvane" --windowed --exit-after=1 2>err.nodisplay >/dev/null
[ "$rc" -ne 0 ] && [ "$rc" -lt 128 ] || fail "without a display: status $rc"
[ "$(wc -l < err.nodisplay)" -eq 1 ] || fail "expected one line: $(cat err.nodisplay)"
grep -q 'X-Server' err.nodisplay || fail "unclear message: $(cat err.nodisplay)"
cat err.nodisplay
echo OK
