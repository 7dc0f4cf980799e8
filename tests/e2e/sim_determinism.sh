#!/usr/bin/env bash
# The headless simulator: same arguments, same bytes; other seeds, other games;
# the keys of each line; a lazy player loses; bad options are refused.
source "$(dirname "$0")/lib/xvfb.bash"
SIM="$BUILD/torvane-sim"
start_workdir

"$SIM" --seed=5 --levels=3 > "$WORK/a"
"$SIM" --seed=5 --levels=3 > "$WORK/b"
"$SIM" --seed=6 --levels=3 > "$WORK/c"
cmp -s "$WORK/a" "$WORK/b" || fail "two runs with seed 5 differ"
! cmp -s "$WORK/a" "$WORK/c" || fail "seeds 5 and 6 play the same"
"$SIM" --seed=9 --levels=2 --classic --difficulty=1 --repair=free --fps=30 > "$WORK/d"
"$SIM" --seed=9 --levels=2 --classic --difficulty=1 --repair=free --fps=30 > "$WORK/e"
cmp -s "$WORK/d" "$WORK/e" || fail "classic free-repair runs differ"

python3 - "$WORK/a" <<'PY'
import json, sys
keys = ["level", "passed", "score", "overallPct", "need", "buildScore", "repairScore", "timeBonus",
        "levelBonus", "held", "lost", "gapCells", "dropped", "shotsFired", "events", "frames", "hash"]
lines = open(sys.argv[1]).read().splitlines()
assert lines, "no output"
for n, line in enumerate(lines, 1):
    rec = json.loads(line)
    assert list(rec) == keys, f"keys of line {n}: {list(rec)}"
    assert rec["level"] == n, f"line {n} is level {rec['level']}"
    # The verdict follows the share and the level's requirement.
    assert rec["passed"] == (rec["overallPct"] >= rec["need"]), line
    assert rec["levelBonus"] == (100 * n if rec["passed"] else 0), line
PY

"$SIM" --seed=4 --lazy > "$WORK/lazy"
[ "$(wc -l < "$WORK/lazy")" -lt 10 ] || fail "a lazy player lasted ten levels"
tail -n 1 "$WORK/lazy" | grep -q '"passed":false' || fail "the lazy game did not end lost: $(cat "$WORK/lazy")"

"$SIM" --help | grep -q -- '--seed=N' || fail "no usage text"
for bad in --bogus --seed=x --seed= --levels=0 --difficulty=4 --repair=maybe --fps=-1 --lazy=1; do
    status "$SIM" "$bad" > "$WORK/out" 2> "$WORK/err"
    [ "$rc" -eq 2 ] || fail "$bad: status $rc"
    [ ! -s "$WORK/out" ] || fail "$bad: printed a result"
    grep -q -- "$bad" "$WORK/err" || fail "$bad: unclear message: $(cat "$WORK/err")"
done
echo OK
