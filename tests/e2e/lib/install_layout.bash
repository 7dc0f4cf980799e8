# Shared by the install and package scripts: checks an installed tree below PREFIX, the layout
# that a `cmake --install` gives and that the .deb holds below /usr.
# Usage: check_layout PREFIX SOURCE, SOURCE the source tree (after sourcing xvfb.bash, for fail).

# $1: a path that must be a relative symbolic link to $2 (a path below the same prefix).
check_link() {
    local target
    target=$(readlink "$1") || fail "$1 is no symbolic link"
    [ "${target#/}" = "$target" ] || fail "$1 points to the absolute path $target"
    [ "$(readlink -f "$1")" = "$(readlink -f "$2")" ] || fail "$1 points to $target, not to $2"
}

check_layout() {
    local prefix=$1 link program
    [ -e "$prefix/games/torvane" ] && [ -e "$prefix/games/torvane-sim" ] || fail "no torvane or torvane-sim in games/"
    # Every program is a real file in lib/games/torvane with its link in games/.
    for link in "$prefix/games/"*; do
        program="$prefix/lib/games/torvane/$(basename "$link")"
        [ -x "$program" ] && [ ! -L "$program" ] || fail "no program $(basename "$link") in lib/games/torvane"
        check_link "$link" "$program"
    done
    # The programs look for "assets" beside their real path.
    check_link "$prefix/lib/games/torvane/assets" "$prefix/share/games/torvane"
    [ -f "$prefix/share/games/torvane/logo/logo.jpg" ] || fail "no logo in the asset tree"
    [ -d "$prefix/share/games/torvane/torvane/music" ] || fail "no music in the asset tree"

    # A menu entry for the game and one for the adventure, each starting its own program.
    local app meta="$prefix/share/metainfo/org.torvane.torvane.metainfo.xml"
    for program in torvane vorabend; do
        app="$prefix/share/applications/org.torvane.$program.desktop"
        desktop-file-validate "$app" || fail "desktop entry of $program"
        grep -qx "Exec=$program" "$app" || fail "the desktop entry of $program starts something else"
        grep -qx "Icon=$program" "$app" || fail "the desktop entry of $program shows another icon"
        grep -q "<launchable type=\"desktop-id\">org.torvane.$program.desktop</launchable>" "$meta" ||
            fail "the software-centre entry does not name $program"
    done
    appstreamcli validate --no-net "$meta" >/dev/null || fail "$(appstreamcli validate --no-net "$meta")"
    grep -q '<project_license>GPL-3.0-or-later</project_license>' "$meta" || fail "no licence in the software-centre entry"
    # The licence in Debian's machine-readable form, and the changelog.
    head -1 "$prefix/share/doc/torvane/copyright" | grep -q '^Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/' ||
        fail "no machine-readable copyright file"
    zcat "$prefix/share/doc/torvane/changelog.gz" | head -1 | grep -q '^torvane (' || fail "no changelog"
    local page warnings
    for page in torvane torvane-sim vorabend; do
        [ -f "$prefix/share/man/man6/$page.6.gz" ] || fail "no manual page $page.6.gz"
        warnings=$(man --warnings -l "$prefix/share/man/man6/$page.6.gz" 2>&1 >/dev/null)
        [ -z "$warnings" ] || fail "manual page $page: $warnings"
    done
    # Each icon that the asset tree holds is in the theme under the program's name.
    local source=$2 size
    for program in torvane vorabend; do
        for size in 256 128 64 48 32; do
            if [ -f "$source/assets/$program/icon/$program-$size.png" ]; then
                cmp -s "$source/assets/$program/icon/$program-$size.png" \
                    "$prefix/share/icons/hicolor/${size}x$size/apps/$program.png" || fail "icon $program $size"
            fi
        done
    done
}
