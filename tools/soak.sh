#!/usr/bin/env bash
# Soak test: the game built with AddressSanitizer and UndefinedBehaviorSanitizer plays by
# itself (--autoplay) under a private Xvfb for MINUTES minutes, with the dummy audio
# driver, while its resident memory is sampled once a minute. Any sanitizer report, a
# crash or an early end fails the run. The sanitized build lives in BUILD_DIR (made with
# clang when it is missing).
# Usage: tools/soak.sh [MINUTES=30] [BUILD_DIR=build-clang-asan]
set -euo pipefail
minutes=${1:-30}
cd "$(dirname "$0")/.."
source=$(pwd)
build=$(realpath -m "${2:-build-clang-asan}")

if [ ! -x "$build/torvane" ]; then
    CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVANE_SANITIZE=ON \
        -DTORVANE_BENCH=OFF >/dev/null
fi
cmake --build "$build" -j"$(nproc)" --target torvane >/dev/null

source tests/e2e/lib/xvfb.bash
start_xvfb
log="$build/soak.log"
export SDL_AUDIODRIVER=dummy
export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS="suppressions=$source/tests/lsan.supp"
# The game's own clock ends the run half a minute after the last sample; user data goes
# to a fresh folder.
data=$(mktemp -d)
XDG_DATA_HOME="$data" "$build/torvane" --windowed --autoplay --exit-after=$((minutes * 60 + 30)) 2>"$log" &
game=$!
trap 'kill "$game" 2>/dev/null || true; stop_xvfb; rm -rf "$data"' EXIT

rss() { awk '/^VmRSS/ {print $2}' "/proc/$game/status" 2>/dev/null || echo 0; }
# Minutes by the shell's own clock: a loaded machine stretches any count of sleeps.
start=$SECONDS
sleep 5
echo "[soak] minute 0: $(rss) kB resident"
for minute in $(seq 1 "$minutes"); do
    while [ $((SECONDS - start)) -lt $((minute * 60)) ]; do
        kill -0 "$game" 2>/dev/null || break 2
        sleep 1
    done
    kill -0 "$game" 2>/dev/null && echo "[soak] minute $minute: $(rss) kB resident"
done
status=0
wait "$game" || status=$?
trap 'stop_xvfb; rm -rf "$data"' EXIT
if grep -qE "ERROR: (AddressSanitizer|LeakSanitizer)|runtime error:" "$log"; then
    echo "[soak] sanitizer report, see $log" >&2
    grep -E -A 12 "ERROR: (AddressSanitizer|LeakSanitizer)|runtime error:" "$log" | head -40 >&2
    exit 1
fi
if [ "$status" -ne 0 ] || [ "${minute:-0}" -lt "$minutes" ]; then
    echo "[soak] the game ended with status $status after $minute of $minutes minutes, see $log" >&2
    exit 1
fi
echo "[soak] $minutes minutes without a report"
