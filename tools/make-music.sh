#!/usr/bin/env bash
# Remakes the game's music (assets/torvane/music/*.mp3), the adventure's (assets/vorabend/music/)
# and the studio logo (assets/logo/logo.jpg) from tools/compose-music.cpp. Needs a configured build directory (default: build) and lame
# (Debian package "lame"; only needed to remake the files, not to build or run the game).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
cmake --build "$build" --target compose-music
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
"$build/compose-music" "$tmp"
mkdir -p "$root/assets/torvane/music" "$root/assets/vorabend/music" "$root/assets/logo"
for track in torvane/title torvane/build torvane/defend torvane/levelwon torvane/defeated vorabend/vorabend; do
  # Mono at 80 kbit/s keeps a 35-second loop under 400 KB.
  lame --quiet -m m -b 80 --resample 44.1 "$tmp/${track#*/}.wav" "$root/assets/${track%%/*}/music/${track#*/}.mp3"
done
cp "$tmp/logo.jpg" "$root/assets/logo/logo.jpg"
