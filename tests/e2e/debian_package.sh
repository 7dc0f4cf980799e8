#!/usr/bin/env bash
# `cpack -G DEB` makes a package whose dependencies dpkg-shlibdeps found, which holds the
# installed layout below /usr, and in which lintian finds no error and no warning; the unpacked
# simulator runs from there.
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/lib/xvfb.bash"
source "$HERE/lib/install_layout.bash"
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

cpack -G DEB --config "$BUILD/CPackConfig.cmake" -B "$WORK" >cpack.log 2>&1 || fail "cpack: $(cat cpack.log)"
shopt -s nullglob
debs=(torvane_*_"$(dpkg --print-architecture)".deb)
[ ${#debs[@]} -eq 1 ] || fail "not one torvane_*.deb: $(ls)"
deb=${debs[0]}

[ "$(dpkg-deb -f "$deb" Package)" = torvane ] || fail "package name"
[ "$(dpkg-deb -f "$deb" Section)" = games ] || fail "section"
depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
# Only the libraries that the programs link give these, with the versions they need.
for lib in 'libc6 (>= ' libx11-6 'libsdl2-2.0-0 (>= ' 'libmpg123-0 (>= ' 'libstdc++6 (>= '; do
    case "$depends" in *"$lib"*) ;; *) fail "no $lib in the dependencies" ;; esac
done

# Lintian knows Debian's rules; a tag that is only information or pedantic is shown, not failed.
lintian --fail-on error,warning --tag-display-limit 0 "$deb" >lintian.log 2>&1 || fail "lintian: $(cat lintian.log)"

dpkg-deb -x "$deb" root
check_layout "$WORK/root/usr" "$HERE/../.."
[ -z "$(find root -mindepth 1 -maxdepth 1 ! -name usr)" ] || fail "files outside /usr: $(ls root)"
"$WORK/root/usr/games/torvane-sim" --seed=5 --levels=1 | grep -q '^{"level":1,' || fail "the unpacked simulator"
echo OK
