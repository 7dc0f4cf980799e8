#!/usr/bin/env bash
# Mutation testing: how many small faults in the code do the tests catch?
#
#   tools/mutate.sh [--count=N] [--seed=S] [--list=FILE] [-jN] [--minutes=M] [--no-e2e]
#                   [--dry-run] [--show=ID] [--out=DIR] [--scratch=DIR]
#
# Makes N mutants (200) from seed S (1): at a line of logic of a .cpp file under game/,
# engine/, pge/ or vorabend/ one change (a comparison flipped, && and || swapped, one added
# to or taken from a constant, a statement dropped, a condition inverted, two arguments of
# one kind swapped). Each mutant is built in a copy of the tree (the worktree is never
# touched) and the test program of its library runs on it, then the end-to-end scripts
# that run a program it is linked into (--no-e2e leaves them out). A mutant is killed when
# a test fails or runs over its time (three times the unmutated run and ten seconds),
# survives when all pass, and is left out of the rate when it does not build.
#
# The mutants go to OUT/mutants-seedS.jsonl, one a line: the file, the line's text and
# which occurrence of that text it is, the change. --list=FILE runs such a list again, on
# today's code: each line is found by its text, and a mutant whose line is gone says so.
# --dry-run prints the mutants; --show=ID prints the diff of one of them on today's code.
# Results: OUT/results.tsv (id, status, line, seconds), OUT/report.txt (the kill rate per
# folder and the survivors), OUT/logs/ID.log. OUT is SCRATCH/out unless given.
#
# Each of the -j workers (default: the number of cores) has its own copy and build folder
# under SCRATCH (default /tmp/torvane-mutate-<tree>), configured once and kept between
# runs: a mutant costs one compile and the links after it. No new mutant starts after
# --minutes (180).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
HELPER="$ROOT/tools/mutate.py"
count=200 seed=1 list="" jobs=$(nproc) minutes=180 e2e=1 dry=0 show="" out=""
scratch="${TMPDIR:-/tmp}/torvane-mutate-$(basename "$ROOT")"
for arg in "$@"; do
    case $arg in
        --count=*) count=${arg#*=} ;;
        --seed=*) seed=${arg#*=} ;;
        --list=*) list=$(realpath "${arg#*=}") ;;
        -j*) jobs=${arg#-j} ;;
        --jobs=*) jobs=${arg#*=} ;;
        --minutes=*) minutes=${arg#*=} ;;
        --no-e2e) e2e=0 ;;
        --dry-run) dry=1 ;;
        --show=*) show=${arg#*=} ;;
        --out=*) out=$(realpath -m "${arg#*=}") ;;
        --scratch=*) scratch=$(realpath -m "${arg#*=}") ;;
        *) sed -n '2,/^set -e/p' "$0" | sed '$d; s/^# \{0,1\}//' >&2; exit 2 ;;
    esac
done
out=${out:-$scratch/out}
mkdir -p "$out/logs"

if [ -z "$list" ]; then
    list="$out/mutants-seed$seed.jsonl"
    python3 "$HELPER" make "$ROOT" "$seed" "$count" "$list"
fi
if [ "$dry" = 1 ] || [ -n "$show" ]; then
    exec python3 "$HELPER" show "$ROOT" "$list" ${show:+"$show"}
fi

# The test program of the library a file belongs to (none for the programs' main files),
# and the programs it is linked into.
unit_tests() {
    case $1 in
        */main.cpp) ;;
        game/rules/*) echo torvane_rules_tests ;;
        game/stage/*) echo torvane_stage_tests ;;
        game/content/*) echo torvane_content_tests ;;
        game/*) echo torvane_app_tests ;;
        engine/adventure/*) echo adventure_tests ;;
        engine/*) echo adv_tests ;;
        pge/*) echo pge_tests ;;
        vorabend/*) echo vorabend_tests ;;
    esac
}
programs() {
    case $1 in
        game/rules/* | game/content/*) echo torvane torvane-sim ;;
        game/*) echo torvane ;;
        engine/adventure/* | vorabend/*) echo vorabend ;;
        engine/* | pge/*) echo torvane vorabend ;;
    esac
}
# The end-to-end scripts that run one of these programs, from the build or installed.
e2e_scripts() {
    local pattern
    pattern="(BUILD|games)/($(echo "$@" | tr ' ' '|'))\""
    grep -lE "$pattern" "$ROOT"/tests/e2e/*.sh | xargs -n1 basename
}
# Processor seconds of the finished children of this shell (the workers and all below them);
# times must run in this shell itself, not in a subshell of its own.
cpu_seconds() {
    times >"$run/times"
    tail -1 "$run/times" | awk '{ s = 0; for (i = 1; i <= 2; i++) { split($i, a, /[ms]/); s += a[1] * 60 + a[2] }
                                  printf "%.0f", s }'
}
# Seconds allowed to a test step that took $1 seconds unmutated.
limit() { echo $(( 3 * $1 + 10 )); }

run_step() { # log dir seconds command...: returns 0, 1 (failed) or 2 (timed out)
    local log=$1 dir=$2 seconds=$3 rc=0
    shift 3
    (cd "$dir" && timeout --kill-after=5 "$seconds" "$@") >>"$log" 2>&1 || rc=$?
    case $rc in 0) return 0 ;; 124 | 137) return 2 ;; *) return 1 ;; esac
}

all_tests="pge_tests adv_tests adventure_tests vorabend_tests torvane_rules_tests
torvane_stage_tests torvane_content_tests torvane_app_tests"
all_programs="torvane torvane-sim vorabend"

setup_worker() {
    local dir="$scratch/w$1"
    mkdir -p "$dir"
    python3 "$HELPER" restore "$dir/save"   # a run stopped halfway through a mutant
    python3 "$HELPER" sync "$ROOT" "$dir/src"
    {
        [ -f "$dir/build/CMakeCache.txt" ] ||
            cmake -S "$dir/src" -B "$dir/build" -G "Unix Makefiles" -DCMAKE_BUILD_TYPE=Release \
                -DTORVANE_BENCH=OFF
        # shellcheck disable=SC2086
        cmake --build "$dir/build" -j1 --target $all_tests $all_programs
    } >"$dir/setup.log" 2>&1 || { echo "worker $1: the unmutated build fails, see $dir/setup.log" >&2; return 1; }
}

# The unmutated run: every step must pass, and its time sets the mutants' limit.
baseline() {
    local dir="$scratch/w0" t s start
    mkdir -p "$run/base"
    for t in $all_tests; do
        start=$SECONDS
        run_step "$run/base/$t.log" "$dir/build/tests" 3600 "./$t" ||
            { echo "the unmutated $t fails, see $run/base/$t.log" >&2; return 1; }
        echo $(( SECONDS - start + 1 )) >"$run/base/$t"
    done
    [ "$e2e" = 1 ] || return 0
    # shellcheck disable=SC2086
    for s in $(e2e_scripts $all_programs); do
        start=$SECONDS
        run_step "$run/base/$s.log" "$dir/build" 3600 bash "$dir/src/tests/e2e/$s" "$dir/build" ||
            { echo "the unmutated $s fails, see $run/base/$s.log" >&2; return 1; }
        echo $(( SECONDS - start + 1 )) >"$run/base/$s"
    done
}

# Tests the mutant the worker's copy holds: prints killed, timeout or survived.
test_mutant() {
    local dir=$1 file=$2 log=$3 t s rc
    t=$(unit_tests "$file")
    if [ -n "$t" ]; then
        rc=0
        run_step "$log" "$dir/build/tests" "$(limit "$(cat "$run/base/$t")")" "./$t" --gtest_fail_fast || rc=$?
        case $rc in 1) echo killed; return ;; 2) echo timeout; return ;; esac
    fi
    if [ "$e2e" = 1 ]; then
        # shellcheck disable=SC2046
        for s in $(e2e_scripts $(programs "$file")); do
            rc=0
            run_step "$log" "$dir/build" "$(limit "$(cat "$run/base/$s")")" bash "$dir/src/tests/e2e/$s" "$dir/build" || rc=$?
            case $rc in 1) echo killed; return ;; 2) echo timeout; return ;; esac
        done
    fi
    echo survived
}

worker() {
    local w=$1 dir="$scratch/w$1" id line file change status start targets log
    for id in $(python3 "$HELPER" ids "$list"); do
        [ "$SECONDS" -lt "$deadline" ] || break
        mkdir "$run/claim.$id" 2>/dev/null || continue
        start=$(date +%s%N)
        log="$out/logs/$id.log"
        IFS=$'\t' read -r line file change < <(python3 "$HELPER" apply "$dir/src" "$dir/build" "$list" "$id" "$dir/save")
        if [ "$line" = gone ]; then
            status=gone line=-
        else
            # The programs too when they are tested, or when nothing else tells if it builds.
            targets=$(unit_tests "$file")
            [ -n "$targets" ] || targets=$(programs "$file")
            [ "$e2e" = 0 ] || targets="$targets $all_programs"
            # shellcheck disable=SC2086
            if cmake --build "$dir/build" -j1 --target $targets >"$log" 2>&1; then
                status=$(test_mutant "$dir" "$file" "$log")
            else
                status=nobuild
            fi
        fi
        python3 "$HELPER" restore "$dir/save"
        local seconds
        seconds=$(awk -v ns=$(( $(date +%s%N) - start )) 'BEGIN { printf "%.1f", ns / 1e9 }')
        printf '%s\t%s\t%s\t%s\n' "$id" "$status" "$line" "$seconds" >>"$out/results.tsv"
        printf '%4s %-9s %s:%s  %s  (%s s)\n' "$id" "$status" "$file" "$line" "$change" "$seconds"
    done
}

run="$scratch/run"
rm -rf "$run" "$out/results.tsv" "$out/logs"
mkdir -p "$run" "$out/logs"
echo "mutants: $list; workers: $jobs; end-to-end: $([ "$e2e" = 1 ] && echo yes || echo no); scratch: $scratch"
echo "setting up the copies (a first run builds everything once per worker)"
pids=()
for w in $(seq 0 $(( jobs - 1 ))); do setup_worker "$w" & pids+=($!); done
for p in "${pids[@]}"; do wait "$p"; done
baseline
echo "unmutated: $(for f in "$run"/base/*; do [ "${f%.log}" = "$f" ] && printf '%s %s s; ' "$(basename "$f")" "$(cat "$f")"; done)"
started=$SECONDS
cpu_seconds >"$run/cpu.start"
deadline=$(( SECONDS + 60 * minutes ))
pids=()
for w in $(seq 0 $(( jobs - 1 ))); do worker "$w" & pids+=($!); done
for p in "${pids[@]}"; do wait "$p"; done
cpu_seconds >"$run/cpu.end"
{
    python3 "$HELPER" report "$list" "$out/results.tsv"
    echo "Setting up took $started s; the mutants $(( SECONDS - started )) s of wall time and" \
        "$(( $(cat "$run/cpu.end") - $(cat "$run/cpu.start") )) s of processor time, with $jobs worker(s)."
} | tee "$out/report.txt"
