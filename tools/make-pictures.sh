#!/usr/bin/env bash
# Remakes the game's pictures from tools/paint-world.cpp and tools/paint/: the ten landscapes and
# assets/torvane/color-cycles.json, the runner's sheets, assets/torvane/title.png and the icon in
# assets/torvane/icon/, and the adventure's icon in assets/vorabend/icon/. Needs a configured build directory (default: build). Two runs give the
# same bytes.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
cmake --build "$build" --target paint-world
"$build/paint-world" "$root/assets"
