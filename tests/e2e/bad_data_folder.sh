#!/usr/bin/env bash
# Damaged, missing or unreachable data: the game starts on its defaults, shows its
# first frames, ends normally and leaves the damaged files as they were.
source "$(dirname "$0")/lib/xvfb.bash"
start_xvfb_in_workdir
run() { "$BUILD/torvane" --windowed --no-sound --skip-intro --level=1 --exit-after=1 --screenshot="$1" 2>/dev/null; }

env -u HOME -u XDG_DATA_HOME "$BUILD/torvane" --windowed --no-sound --skip-intro --exit-after=1 \
    --screenshot=nohome.png 2>/dev/null || fail "no HOME and no XDG_DATA_HOME"
XDG_DATA_HOME=/proc/no-such-folder run unreachable.png || fail "a data folder that can't be made"

mkdir -p data/Torvane
head -c 65536 /dev/urandom > data/Torvane/settings.txt
{ printf '100\t1\t0\tok\r\n'; head -c 10485760 /dev/zero | tr '\0' 'x'; printf '\n'; head -c 4096 /dev/urandom; } \
    > data/Torvane/highscores.txt
sums=$(md5sum data/Torvane/*.txt)
run damaged.png || fail "damaged files"
[ "$(md5sum data/Torvane/*.txt)" = "$sums" ] || fail "a damaged file was changed by only reading it"

rm -f data/Torvane/*.txt
mkdir data/Torvane/settings.txt data/Torvane/highscores.txt
run folders.png || fail "folders in the files' places"
for f in nohome unreachable damaged folders; do expect_picture "$f.png" 640 400; done
echo OK
