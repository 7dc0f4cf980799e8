#!/usr/bin/env bash
# L switches the language and D, R, A, T on the settings card change the rules' settings,
# with real key presses; settings.txt keeps them, and the next run starts in German.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir
mkdir -p assets/torvane
png make assets/torvane/title.png 320 200
shot() { "$BUILD/torvane" --windowed --no-sound --skip-intro --exit-after=1.5 --screenshot="$1" 2>/dev/null; }

shot english.png || fail "first run"
[ ! -e "$XDG_DATA_HOME/Torvane/settings.txt" ] || fail "a run without changes wrote settings.txt"

start_game --no-sound --skip-intro
sleep 0.5
tap l s d r a t Escape Escape
wait "$GAME" || fail "the run with keys ended with $?"

file="$XDG_DATA_HOME/Torvane/settings.txt"
echo "--- $file"; cat "$file"
expected=$'settings_version=2\nauto_rotate=0\npiece_choice=1\ndifficulty=medium\nrepair_mode=free\nmusic=1\nsprites=auto\nlanguage=de\nlevel_pack='
[ "$(cat "$file")" = "$expected" ] || fail "settings.txt is not as set"

shot german.png || fail "third run"
# The key hints of the foot, rows 355 to 385, are in another language now.
changed=$(png diff english.png german.png 0 355 640 385)
[ "$changed" -gt 500 ] || fail "the next run did not start in German ($changed pixels differ)"
echo OK
