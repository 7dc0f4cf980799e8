#!/usr/bin/env bash
# A virtual pad plays a whole game in the real window: the title's pages and settings, the
# build with every action, a pause, the pad pulled out and plugged in again, the announce
# card, the attack with repairs, and the over card's name field, arcade style. Then, with a
# pad plugged in, SIGTERM and SIGINT still end the game.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir

repairs=""
for i in $(seq 1 40); do repairs="$repairs,y,x,rb"; done
# The name: up twice is B, right goes on with an A, twelve times down turns it back past the
# blank and the digits to ß; right and left add a letter and take it back.
name="up,up,right$(printf ',down%.0s' $(seq 1 12)),right,left"
script="rb,lb,back,rb,b,a,until:build,wait:0.5,left,right:0.6,a,x,rb,y,rt,unplug,wait:0.5,plug,wait:0.3"
script="$script,b,wait:0.5,b,start,until:announce,wait:0.8,a,until:attack$repairs,until:over,wait:0.8,$name"
script="$script,start,wait:1,a"

timeout 200 "$BUILD/torvane" --windowed --no-sound --seed=3 --skip-intro --exit-on=title --exit-after=150 \
    --pad-script="$script" --screenshot=end.png 2>err.txt || fail "the run failed: $(cat err.txt)"
cat err.txt
grep -q "Bildschirmfoto" err.txt || fail "the run did not end on the title"
grep -q "Gamepad" err.txt && fail "the script has a token the game does not know"

settings="$XDG_DATA_HOME/Torvane/settings.txt"
grep -qx "piece_choice=1" "$settings" || fail "RB on the settings card did not turn the piece choice on"
scores="$XDG_DATA_HOME/Torvane/highscores.txt"
[ -f "$scores" ] || fail "no high-score entry"
cat "$scores"
entry=$(cut -f4 "$scores" | head -1)
[ "$entry" = "$(printf 'B\xc3\x9f')" ] || fail "the name is '$entry', not Bß"
[ "$(cut -f2 "$scores" | head -1)" = "1" ] || fail "the game did not end on level 1"

# With a pad plugged in (SDL's joystick subsystem up), both signals end the game as the
# window's close does. A job started by a script ignores SIGINT unless told otherwise.
for signal in TERM INT; do
    env --default-signal=INT "$BUILD/torvane" --windowed --no-sound --skip-intro --pad-script=wait:60 2>/dev/null &
    GAME=$!
    find_window
    sleep 0.5
    kill -s "$signal" "$GAME"
    expect_end "SIG$signal with a pad plugged in"
done
echo OK
