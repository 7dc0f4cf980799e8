#!/usr/bin/env bash
# Level packs and the editor in a fresh data folder: the first start copies the packs
# that come with the game (again after a start on a full disk), a deleted pack stays
# deleted, an empty one is copied again, an editor script writes exactly the expected
# file, names typed into the editor keep their capitals and umlauts, a test run from the
# editor returns to it with Esc, and P on the title picks a pack.
source "$(dirname "$0")/lib/xvfb.bash"
SHIPPED="$HERE/../../assets/torvane/levelpacks"
start_xvfb_in_workdir
setxkbmap de # Ü and Ö have keys of their own, and Ö is a shifted one
export XDG_DATA_HOME="$WORK/data"
PACKS="$XDG_DATA_HOME/Torvane/levelpacks"

game() { "$BUILD/torvane" --windowed --no-sound --seed=5 "$@" 2>>err.log; }

# A first start on a full disk (a file-size limit of 1 kB, below every shipped pack) runs
# on and keeps no folder of packs, so that the next start copies them all.
(ulimit -f 1; game --skip-intro --exit-after=0.5) || fail "first start on a full disk"
[ ! -e "$PACKS" ] || fail "a folder of packs was left: $(ls -l "$PACKS")"

# The first start copies every shipped pack, text unchanged.
game --skip-intro --exit-after=0.5 || fail "first start"
for file in "$SHIPPED"/*.tpack; do
    cmp "$file" "$PACKS/$(basename "$file")" || fail "not copied: $(basename "$file")"
done

# A pack the player deletes is not offered again; one left empty is copied again.
rm "$PACKS/Die_Feuerprobe.tpack"
: > "$PACKS/Erste_Schritte.tpack"
game --skip-intro --exit-after=0.5 || fail "second start"
[ ! -e "$PACKS/Die_Feuerprobe.tpack" ] || fail "the deleted pack came back"
cmp "$SHIPPED/Erste_Schritte.tpack" "$PACKS/Erste_Schritte.tpack" || fail "the empty pack was not copied again"

# A new pack of two levels: the name, then on level 1 the name, landscape, line,
# shots, directions and order, and the order of level 2 too; Esc twice saves it.
script="enter,type:Burg am See,down,left,left,left,enter"
script+=",enter,type:Tor,down,right,down,down,down,right,down,down,left,down,down,right,down,right"
script+=",enter,right,esc,esc"
game --editor="$script" --exit-after=3 || fail "editor script"
# The built-in ring levels 1 and 2 are where new levels start: 70 s, 16 pieces,
# line 5, 50 %, 6 shots 5.0 s apart; 66 s, 14 pieces, line 6, 55 %, 8 shots 4.7 s apart.
cat > expected.tpack <<'TEXT'
torvane-levelpack 1
name=Burg am See

[level]
name=Tor
background=2
build=70
pieces=16
line=6
need=50
shots=5
interval=5.0
directions=S
order=mixed
prep=yes
new_tower=no

[level]
name=
background=2
build=66
pieces=14
line=6
need=55
shots=8
interval=4.7
directions=N
order=mixed
prep=yes
new_tower=no
TEXT
diff expected.tpack "$PACKS/Burg_am_See.tpack" || fail "the saved pack differs"

# Names typed with real key presses, as a typing tool types them: a new pack, Enter, and
# Enter on its first level, whose name row is then chosen; Esc twice saves the pack.
start_game --no-sound --seed=5 --editor=enter --exit-after=6
sleep 1.5
xdotool type --delay 120 "Jürgen Ö"
xdotool key --delay 300 Return Return
xdotool type --delay 120 "Tür 7"
xdotool key --delay 300 Escape Escape
wait "$GAME" || fail "typing run"
grep -qx "name=Jürgen Ö" "$PACKS/Jrgen.tpack" || fail "the pack's name: $(grep name= "$PACKS/Jrgen.tpack")"
grep -qx "name=Tür 7" "$PACKS/Jrgen.tpack" || fail "the level's name: $(grep name= "$PACKS/Jrgen.tpack")"

# T on the page of a pack's third level plays it; Esc returns to the editor on that
# page. The picture after the return equals that of the page reached directly.
to_level3="down,down,enter,down,down,enter,down"
game --editor="$to_level3" --exit-after=2.5 --screenshot=direct.png || fail "editor page"
game --editor="$to_level3,t" --exit-after=2.5 --screenshot=playing.png || fail "test run"
playing=$(png stage direct.png playing.png | sed 's/stage_diff=//')
[ "$playing" -gt 100000 ] || fail "T did not leave the editor ($playing pixels differ)"
game --editor="$to_level3,t" --exit-after=5 --screenshot=back.png &
run=$!
find_window
sleep 2.5 # the script has run and the test level is being built
tap Escape
wait "$run" || fail "test run"
grep -q "Bildschirmfoto: back.png" err.log || fail "no picture after the test"
[ "$(png stage direct.png back.png)" = "stage_diff=0" ] || fail "not back on the level page"

# P on the title picks the first pack in the list, and the choice is kept.
start_game --no-sound --seed=5 --skip-intro --exit-after=3
sleep 1
tap p
wait "$GAME" || fail "title run"
grep -qx "level_pack=Burg_am_See.tpack" "$XDG_DATA_HOME/Torvane/settings.txt" || fail "P chose no pack"
echo OK
