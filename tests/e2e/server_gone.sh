#!/usr/bin/env bash
# When the X server goes away under a running game, or under the adventure, each says so and
# ends with status 1, without a crash, and the saved settings stay as they were.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir
mkdir -p "$XDG_DATA_HOME/Torvane"
settings=$'settings_version=2\nauto_rotate=0\npiece_choice=1\ndifficulty=hard\nrepair_mode=free\nmusic=1\nsprites=auto\nlanguage=en\nlevel_pack='
printf '%s' "$settings" > "$XDG_DATA_HOME/Torvane/settings.txt"

for program in torvane vorabend; do
    [ -n "$XVFB_PID" ] || start_xvfb
    if [ "$program" = torvane ]; then options=(--windowed --no-sound --skip-intro); else options=(); fi
    "$BUILD/$program" "${options[@]}" 2>"$program.err" &
    running=$!
    timeout 20 xdotool search --sync --name '.' >/dev/null || { cat "$program.err"; fail "$program: no window"; }
    sleep 1
    stop_xvfb
    status wait "$running"
    cat "$program.err"
    [ "$rc" -eq 1 ] || fail "$program ended with status $rc"
    grep -q "Verbindung zum X-Server ist abgebrochen" "$program.err" || fail "$program did not say why it ended"
done
[ "$(cat "$XDG_DATA_HOME/Torvane/settings.txt")" = "$settings" ] || fail "settings.txt changed"
echo OK
