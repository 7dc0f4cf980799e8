#!/usr/bin/env bash
# A windowed run that ends itself after one second and leaves a screenshot.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir

status "$BUILD/torvane" --windowed --exit-after=1 --screenshot=OUT.png 2>err.txt
cat err.txt >&2
[ "$rc" -eq 0 ] || fail "exit status $rc"
grep -qx '\[torvane\] Bildschirmfoto: OUT.png' err.txt || fail "no screenshot message"
expect_logo_picture OUT.png

# Past the logo the frame is the screen background.
"$BUILD/torvane" --windowed --skip-intro --exit-after=0.5 --screenshot=BG.png 2>/dev/null || fail "second run"
expect_picture BG.png 640 400

# A screenshot that cannot be written is reported, and the run still ends normally.
status "$BUILD/torvane" --windowed --exit-after=0.2 --screenshot=no/such/dir.png 2>err2.txt
[ "$rc" -eq 0 ] || fail "exit status $rc after a failed screenshot"
grep -qx '\[torvane\] Konnte no/such/dir.png nicht schreiben' err2.txt || fail "no failure message"
echo OK
