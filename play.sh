#!/usr/bin/env bash
# Sets everything up, builds the game and starts it in a window.
# Further arguments go to the game, e.g. ./play.sh --classic
set -euo pipefail
cd "$(dirname "$0")"
bash tools/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)" --target torvane
exec build/torvane --windowed "$@"
