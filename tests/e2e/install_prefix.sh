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
expect_logo_picture OUT.png

"$WORK/prefix/games/torvane-sim" --seed=5 --levels=1 | grep -q '^{"level":1,' || fail "the installed simulator"
echo OK
