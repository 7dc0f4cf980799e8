#!/usr/bin/env bash
# L switches the language and D, R, A, T on the settings card change the rules' settings,
# with real key presses; settings.txt keeps them, and the next run starts in German.
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/lib/xvfb.bash"
start_xvfb_in_workdir
mkdir -p assets/torvane
python3 "$HERE/lib/png_rect.py" make assets/torvane/title.png 320 200
shot() { "$BUILD/torvane" --windowed --no-sound --skip-intro --exit-after=1.5 --screenshot="$1" 2>/dev/null; }
tap() {
    xdotool keydown --window "$window" "$1"
    sleep 0.1
    key_up "$window" "$1"
    sleep 0.15
}

shot english.png || fail "first run"
[ ! -e "$XDG_DATA_HOME/Torvane/settings.txt" ] || fail "a run without changes wrote settings.txt"

"$BUILD/torvane" --windowed --no-sound --skip-intro 2>/dev/null &
GAME=$!
window=$(timeout 20 xdotool search --sync --name '^Torvane$' | head -1) || fail "no window"
xdotool windowfocus --sync "$window" || true
sleep 0.5
for key in l s d r a t Escape Escape; do tap "$key"; done
wait "$GAME" || fail "the run with keys ended with $?"

file="$XDG_DATA_HOME/Torvane/settings.txt"
echo "--- $file"; cat "$file"
expected=$'settings_version=2\nauto_rotate=0\npiece_choice=1\ndifficulty=medium\nrepair_mode=free\nmusic=1\nsprites=auto\nlanguage=de\nlevel_pack='
[ "$(cat "$file")" = "$expected" ] || fail "settings.txt is not as set"

shot german.png || fail "third run"
# The key hints of the foot, rows 355 to 385, are in another language now.
changed=$(python3 "$HERE/lib/png_rect.py" diff english.png german.png 0 355 640 385)
[ "$changed" -gt 500 ] || fail "the next run did not start in German ($changed pixels differ)"
echo OK
