#!/usr/bin/env bash
# A game played by keys in the real window is recorded (--record) and proved by the
# simulator (--replay): the same score and state, exit status 0. A replay whose end was
# changed is proved wrong (3), a damaged one is refused (2) by the simulator and gets its
# card in the window. The replay stays in <build>/e2e-replays, where the test run of
# another build of the same sources (test.sh's clang build) proves it in turn.
source "$(dirname "$0")/lib/xvfb.bash"
SOURCE=$(cd "$HERE/../.." && pwd)
start_xvfb_in_workdir

start_game --no-sound --seed=3 --level=1 --exit-after=9 --record=keys.trep
sleep 0.5
# Moves, turns and drops in the build, a pause and its end, the build ended with Enter.
tap Left Left space Down Right Right Down Tab Down Escape Escape Down Return
wait "$GAME" || fail "the game"
[ -s keys.trep ] || fail "no replay written"

prove() { # $1 replay; sets rc and out
    rc=0
    out=$("$BUILD/torvane-sim" --replay="$1" 2>err) || rc=$?
}
prove keys.trep
echo "$out"
[ "$rc" -eq 0 ] || fail "the window's game is not proved: status $rc, $out $(cat err)"
python3 - "$out" <<'PY'
import json, sys
r = json.loads(sys.argv[1])
assert r["match"] and r["hash"] == r["recordedHash"] and r["score"] == r["recordedScore"], r
# The dropped pieces scored: the keys are in the replay.
assert r["score"] > 0 and r["frames"] > 100, r
PY

# The recorded end changed, checksum and all: the replay runs, and its end differs.
frames=$(python3 -c 'import json, sys; print(json.loads(sys.argv[1])["frames"])' "$out")
python3 - keys.trep changed.trep "$frames" <<'PY'
import struct, sys, zlib
data = open(sys.argv[1], "rb").read()
stream = bytearray(zlib.decompress(data[13:]))
# The end: ... the hash (8 bytes), the frames (a varint), the last step (4 bytes).
frames, length = int(sys.argv[3]), 1
while frames >= 0x80:
    frames >>= 7
    length += 1
stream[len(stream) - 4 - length - 8] ^= 0x01
h = 2166136261
for b in stream:
    h = ((h ^ b) * 16777619) & 0xFFFFFFFF
open(sys.argv[2], "wb").write(data[:5] + struct.pack("<II", len(stream), h) + zlib.compress(bytes(stream)))
PY
prove changed.trep
[ "$rc" -eq 3 ] || fail "a changed end is not found: status $rc, $(cat err)"
grep -q '"match":false' <<<"$out" || fail "no verdict: $out"

# Cut off: refused with what and where, in the simulator and in the window.
head -c 200 keys.trep > cut.trep
prove cut.trep
[ "$rc" -eq 2 ] || fail "a cut replay: status $rc"
grep -q "Aufzeichnung beschädigt: .*Byte" err || fail "unclear message: $(cat err)"
"$BUILD/torvane" --windowed --no-sound --replay=cut.trep --exit-after=1.5 --screenshot=cut.png 2>err
grep -q "\[torvane\] Aufzeichnung beschädigt" err || fail "the window took a cut replay: $(cat err)"

# Leave it for the other build, with a stamp of the sources that decide how a replay plays.
stamp=$(cd "$SOURCE" && cat game/rules/*.h game/rules/*.cpp game/content/*.h game/content/*.cpp \
    game/stage/RingCamera.* pge/PixelEngine.* tools/torvane-sim.cpp | sha256sum | cut -c1-16)
mkdir -p "$BUILD/e2e-replays"
cp keys.trep "$BUILD/e2e-replays/keys.trep"
echo "$stamp" > "$BUILD/e2e-replays/stamp"
proved=0
for other in "$SOURCE"/build*/e2e-replays; do
    [ -d "$other" ] || continue
    [ "$(cd "$other/.." && pwd)" != "$BUILD" ] || continue
    if [ "$(cat "$other/stamp" 2>/dev/null)" != "$stamp" ]; then
        echo "skipped: $other was made from other sources"
        continue
    fi
    prove "$other/keys.trep"
    [ "$rc" -eq 0 ] || fail "the replay of $other is not proved by this build: status $rc, $out"
    echo "proved the replay of $other: $out"
    proved=$((proved + 1))
done
echo "replays of other builds proved: $proved"
echo OK
