#!/usr/bin/env bash
# Sets everything up, builds everything and runs every test.
set -euo pipefail
cd "$(dirname "$0")"
bash tools/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)"
cd build
ctest --output-on-failure -j"$(nproc)" "$@"
