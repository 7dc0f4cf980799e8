#!/usr/bin/env bash
# Makes the small MP3 files that the music tests play: steady sine tones, synthesised here and
# encoded with lame (Debian package "lame"; only needed to remake them, not to run the tests).
set -euo pipefail
out="$(cd "$(dirname "$0")/.." && pwd)/tests/engine/audio"
mkdir -p "$out"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT

# name, frequency in Hz, seconds, sample rate, channels
tone() {
  python3 - "$tmp/$1.wav" "$2" "$3" "$4" "$5" <<'PY'
import math, struct, sys, wave
path, hz, seconds, rate, channels = sys.argv[1], float(sys.argv[2]), float(sys.argv[3]), int(sys.argv[4]), int(sys.argv[5])
with wave.open(path, "wb") as w:
    w.setnchannels(channels)
    w.setsampwidth(2)
    w.setframerate(rate)
    frames = bytearray()
    for i in range(int(seconds * rate)):
        v = int(round(0.5 * 32767 * math.sin(2 * math.pi * hz * i / rate)))
        frames += struct.pack("<h", v) * channels
    w.writeframes(bytes(frames))
PY
  lame --quiet -b 96 "$tmp/$1.wav" "$out/$1.mp3"
}

tone tone440 440 1.0 44100 1
tone tone1000 1000 1.0 48000 2
printf 'not an mp3 file\n' > "$out/broken.mp3"
