#!/usr/bin/env bash
# "Der Vorabend" played through its whole solution by scripted mouse and keys: half of it,
# saved to a slot and quit; then a new start that loads the slot and plays to the end.
# Broken save files and an unwritable data folder are reported in the menu, never fatal.
# The adventure speaks the tower game's language, and its menu's L switches it for both.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir
export XDG_DATA_HOME="$WORK/data"
SAVES="$XDG_DATA_HOME/Vorabend/saves"
SETTINGS="$XDG_DATA_HOME/Torvane/settings.txt"
mkdir -p "$XDG_DATA_HOME/Torvane"
printf 'settings_version=2\ndifficulty=hard\nlanguage=de\n' > "$SETTINGS"

# Every picture decodes and has the adventure's size.
check_png() { expect_picture "$1" 384 240; }

play() {
    local name=$1
    shift
    local rc=0
    "$BUILD/vorabend" "$@" --play="$name.txt" 2>"$name.err" || rc=$?
    cat "$name.err" >&2
    [ "$rc" -eq 0 ] || fail "$name: exit status $rc"
}


# The first half: the bread, the dialogue, the key for the bread, the smithy, the oily rag.
cat > first.txt <<EOF
wait 0.2
shot title.png
key SPACE
idle
expect scene hof
shot hof.png
# The text speed on the main keyboard's keys.
key EQUALS
expect toast Texttempo 5 / 8
key MINUS
expect toast Texttempo 4 / 8
verb Nimm
hotspot brot
idle
expect item brot
point 380 165
idle
verb Oeffne
hotspot tuer
idle
expect flag tuer_probiert 1
expect scene hof
actor hella right
idle
wait 0.2
# The question about the door shows only once the door has been tried.
expect option Warum ist die Turmtür verschlossen?
shot dialogue.png
option Wer bist du?
idle
expect nooption Wer bist du?
option Warum
idle
expect nooption Warum
option Gib mir
idle
expect option Gib mir
option Bis
idle
verb Gib
item brot
hover actor hella
wait 0.2
expect sentence Gib Brot an Hella
actor hella
idle
expect item schluessel
expect noitem brot
expect flag schluessel_erhalten 1
point 300 165
idle
point 130 165
idle
hotspot tor right
idle
expect scene werkstatt
shot smithy.png
verb Nimm
hotspot lappen
idle
verb Nimm
hotspot feuerstahl
idle
verb Benutze
item lappen
hover hotspot oelfass
wait 0.2
expect sentence Benutze Lappen mit Ölfass
shot sentence.png
hotspot oelfass
idle
expect item oellappen
expect noitem lappen
key F5
menu Spiel speichern
wait 0.2
shot savepage.png
slot 3
wait 0.2
expect message In Feld 3 gespeichert
menu Zurueck
menu Spiel beenden
menu Ja
EOF
play first
for f in title hof dialogue smithy sentence savepage; do check_png "$f.png"; done
[ -f "$SAVES/slot2.sav" ] || fail "no save in slot 3"
grep -qx "scene werkstatt" "$SAVES/slot2.sav" || fail "the save is not of the smithy"
grep -qx "label Schmiede" "$SAVES/slot2.sav" || fail "the save has no label"

# Broken files in slots 1 and 2: random bytes, another magic. Both read as empty, and
# loading them changes nothing.
head -c 3000 /dev/urandom > "$SAVES/slot0.sav"
printf "other-save 1\nscene zinne\n" > "$SAVES/slot1.sav"

# The second half, after a new start: the load, the door, the beacon, the end.
cat > second.txt <<EOF
expect scene hof
key F5
menu Spiel laden
wait 0.2
slot 1
wait 0.2
expect toast Laden fehlgeschlagen
expect scene hof
key F5
menu Spiel laden
slot 2
wait 0.2
expect toast Laden fehlgeschlagen
expect scene hof
expect noitem schluessel
key F5
menu Spiel laden
slot 3
wait 0.2
expect toast Spielstand geladen
expect scene werkstatt
expect item oellappen
expect item schluessel
expect flag schluessel_erhalten 1
idle
hotspot tuer right
idle
expect scene hof
point 300 165
idle
point 440 165
idle
verb Benutze
item schluessel
hotspot tuer
idle
expect flag tuer_offen 1
hotspot tuer_offen right
idle
expect scene zinne
shot battlement.png
verb Benutze
item feuerstahl
hotspot leuchtfeuer
idle
expect state 1
verb Benutze
item oellappen
hotspot leuchtfeuer
idle
expect flag lappen_drin 1
verb Benutze
item feuerstahl
hotspot leuchtfeuer
idle
expect state 2
shot end.png
key ESCAPE
EOF
play second --skip-intro
for f in battlement end; do check_png "$f.png"; done
head -c 20 "$SAVES/slot1.sav" | grep -q "^other-save" || fail "a broken slot was overwritten"

# L in the menu switches to English, at once and in the game's settings, which keep the rest.
cat > language.txt <<EOF
idle
hover point 10 20
key F5
key L
wait 0.2
shot menu_en.png
key ESCAPE
wait 0.2
expect sentence Walk to
key F5
menu Quit game
menu Yes
EOF
play language --skip-intro
check_png menu_en.png
grep -qx 'language=en' "$SETTINGS" || fail "the switch was not kept: $(cat "$SETTINGS")"
grep -qx 'difficulty=hard' "$SETTINGS" || fail "the game's other settings were lost: $(cat "$SETTINGS")"

# A data folder that cannot be made: saving fails with a message and the game goes on, in
# English, as there are no settings of the game either.
: > "$WORK/afile"
cat > nosave.txt <<EOF
key F5
menu Save game
slot 1
wait 0.2
expect message Saving failed
menu Back
menu Resume game
wait 0.2
expect scene hof
key CTRL+C
wait 0.2
menu Yes
EOF
XDG_DATA_HOME="$WORK/afile" play nosave --skip-intro

# A timed quit ends the run by itself, with a regular exit status.
timeout 20 "$BUILD/vorabend" --skip-intro --exit-after=0.5 2>timed.err || fail "the timed quit did not end the run cleanly"

# A play script that cannot be read ends the run with a message; an unknown option is named.
status "$BUILD/vorabend" --bogus --play=no/such/file 2>bad.err
[ "$rc" -eq 1 ] || fail "exit status $rc for a missing play script"
grep -qx '\[vorabend\] Unbekannte Option: --bogus' bad.err || fail "the unknown option was not named"
grep -qx '\[vorabend\] Ablauf no/such/file nicht lesbar' bad.err || fail "the missing script was not named"
echo OK
