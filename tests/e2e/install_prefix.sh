#!/usr/bin/env bash
# `cmake --install` into a fresh prefix: the layout, and the installed game, started through its
# link from the root folder, far from any asset tree, shows the logo from its own assets.
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/lib/xvfb.bash"
source "$HERE/lib/install_layout.bash"
start_xvfb_in_workdir

cmake --install "$BUILD" --prefix "$WORK/prefix" >/dev/null || fail "cmake --install"
check_layout "$WORK/prefix" "$HERE/../.."

# Started from the root folder, as from a menu.
set +e
(cd / && "$WORK/prefix/games/torvane" --windowed --exit-after=1 --screenshot="$WORK/OUT.png" 2>"$WORK/err.txt")
rc=$?
set -e
cat err.txt >&2
[ "$rc" -eq 0 ] || fail "exit status $rc"
! grep -q '^\[assets\]' err.txt || fail "assets not found"
summary=$(python3 "$HERE/lib/png_pixels.py" OUT.png) || fail "PNG does not decode"
echo "$summary"
# At one second the logo stands in the middle of the black screen.
case "$summary" in
  "640 400 distinct=1 "*) fail "no logo on the black screen: $summary" ;;
  "640 400 distinct="*" first=000000ff") ;;
  *) fail "unexpected picture: $summary" ;;
esac

"$WORK/prefix/games/torvane-sim" --seed=5 --levels=1 | grep -q '^{"level":1,' || fail "the installed simulator"
echo OK
