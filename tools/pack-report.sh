#!/bin/bash
# How far the auto player gets through level packs: seeds 1 to 20 on each difficulty.
# Usage: tools/pack-report.sh BUILD_DIR PACK.tpack...
# One line per pack and difficulty: runs that finished the pack, and the levels held
# (fewest, median, most).
set -u
build=$1
shift
for pack in "$@"; do
  total=$(grep -c '^\[level\]' "$pack")
  for difficulty in 0 1 2 3; do
    held=()
    finished=0
    for seed in $(seq 1 20); do
      n=$("$build/torvane-sim" --seed="$seed" --difficulty="$difficulty" --pack="$pack" | grep -c '"passed":true')
      held+=("$n")
      [ "$n" -ge "$total" ] && finished=$((finished + 1))
    done
    sorted=($(printf '%s\n' "${held[@]}" | sort -n))
    printf '%-28s difficulty %d: %2d/20 finished, levels held %s / %s / %s of %d\n' "$(basename "$pack")" \
      "$difficulty" "$finished" "${sorted[0]}" "${sorted[10]}" "${sorted[19]}" "$total"
  done
done
