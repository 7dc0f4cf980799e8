#!/usr/bin/env bash
# `cmake --install` into a fresh prefix: the layout, and the installed game, started through its
# link from the root folder, far from any asset tree, shows the logo from its own assets.
source "$(dirname "$0")/lib/xvfb.bash"
source "$HERE/lib/install_layout.bash"
start_xvfb_in_workdir

cmake --install "$BUILD" --prefix "$WORK/prefix" >/dev/null || fail "cmake --install"
check_layout "$WORK/prefix" "$HERE/../.."

# Started from the root folder, as from a menu.
status env -C / "$WORK/prefix/games/torvane" --windowed --exit-after=1 --screenshot="$WORK/OUT.png" 2>"$WORK/err.txt"
cat err.txt >&2
[ "$rc" -eq 0 ] || fail "exit status $rc"
! grep -q '^\[assets\]' err.txt || fail "assets not found"
expect_logo_picture OUT.png

"$WORK/prefix/games/torvane-sim" --seed=5 --levels=1 | grep -q '^{"level":1,' || fail "the installed simulator"
echo OK
