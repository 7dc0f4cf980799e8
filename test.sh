#!/usr/bin/env bash
# Sets everything up, builds everything and runs every test. With clang present, the whole
# suite runs once more in a clang build with AddressSanitizer and UndefinedBehaviorSanitizer
# (build-clang-asan/, no benchmarks), and each fuzz target of fuzz/ runs for FUZZ_SECONDS.
set -euo pipefail
cd "$(dirname "$0")"
bash tools/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)"
(cd build && ctest --output-on-failure -j"$(nproc)" "$@")

clangxx=$(command -v clang++-14 || command -v clang++ || true)
[ -n "$clangxx" ] || exit 0
export LSAN_OPTIONS="suppressions=$(pwd)/tests/lsan.supp"
# One build serves both: the fuzzer's coverage hooks cost the tests little.
CC=${clangxx/clang++/clang} CXX=$clangxx cmake -S . -B build-clang-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DTORVANE_SANITIZE=ON -DTORVANE_FUZZ=ON -DTORVANE_BENCH=OFF >/dev/null
cmake --build build-clang-asan -j"$(nproc)"
(cd build-clang-asan && ctest --output-on-failure -j"$(nproc)" "$@")

# New inputs go to build-clang-asan/fuzz/corpus/<name>; the committed seeds stay as they are.
# One input taking a minute is a hang; a loaded machine can stall one for seconds.
for target in build-clang-asan/fuzz/fuzz_*; do
    name=$(basename "$target")
    name=${name#fuzz_}
    mkdir -p "build-clang-asan/fuzz/corpus/$name"
    echo "[fuzz] $name, ${FUZZ_SECONDS:-15} s"
    (cd build-clang-asan/fuzz && "./fuzz_$name" -max_total_time="${FUZZ_SECONDS:-15}" -timeout=60 \
        -rss_limit_mb=2048 -print_final_stats=1 "corpus/$name" "../../fuzz/corpus/$name" 2>"$name.log") ||
        { tail -60 "build-clang-asan/fuzz/$name.log"; exit 1; }
    grep -E "^stat::number_of_executed_units" "build-clang-asan/fuzz/$name.log" || true
done
