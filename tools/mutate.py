#!/usr/bin/env python3
"""The helper of tools/mutate.sh: makes, applies, restores and reports the mutants.

A mutant is one line of a .cpp file under game/, engine/, pge/ or vorabend/, found again by
its text (and, for a text that stands more than once in the file, its occurrence) rather
than its number, so that a list made today can be run again on changed code.

  mutate.py make ROOT SEED N LIST        write N mutants of the sources in ROOT to LIST
  mutate.py ids LIST                     the mutants' numbers
  mutate.py show ROOT LIST [ID]          print the mutants, or the diff of mutant ID
  mutate.py apply ROOT BUILD LIST ID SAVE   mutate the file in ROOT, keep in SAVE what undoes it
  mutate.py restore SAVE                 undo apply
  mutate.py sync FROM TO                 make the copy TO hold FROM's files
  mutate.py report LIST RESULTS          kill rate per folder and the survivors
"""
import decimal
import difflib
import json
import os
import random
import re
import shutil
import subprocess
import sys

FOLDERS = ("game", "engine", "pge", "vorabend")
# Where a mutant is counted: the deepest of these that holds its file.
REPORT_FOLDERS = ("game/rules", "game/stage", "game/screens", "game/content", "game",
                  "engine/adventure", "engine", "pge", "vorabend")
NOT_NAMES = {"if", "while", "for", "switch", "return", "sizeof", "catch", "int", "float",
             "double", "bool", "char", "unsigned", "auto", "const", "void", "true", "false",
             "nullptr", "this", "static_cast", "int32_t", "uint32_t", "uint8_t", "size_t"}
# Swapping the arguments of these changes nothing.
SYMMETRIC = {"min", "max", "swap", "hypot"}
FLIP = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}


def sources(root):
    found = []
    for top in FOLDERS:
        for folder, _, files in os.walk(os.path.join(root, top)):
            found += [os.path.relpath(os.path.join(folder, f), root)
                      for f in files if f.endswith(".cpp")]
    return sorted(found)


def masked(text):
    """The text with comments blanked and the insides of literals replaced by '_', column
    for column, so that the patterns below see only code."""
    out, i, n = [], 0, len(text)
    while i < n:
        c, two = text[i], text[i:i + 2]
        if two == "//":
            end = text.find("\n", i)
            end = n if end < 0 else end
            out.append(" " * (end - i))
            i = end
        elif two == "/*":
            end = text.find("*/", i + 2)
            end = n if end < 0 else end + 2
            out.append(re.sub(r"[^\n]", " ", text[i:end]))
            i = end
        elif c in "\"'" and not (c == "'" and i > 0 and text[i - 1].isalnum()):
            j = i + 1
            while j < n and text[j] != c and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            out.append(c + "_" * (min(j, n) - i - 1) + (c if j < n else ""))
            i = j + 1
        else:
            out.append(c)
            i += 1
    return "".join(out)


def closing(code, start):
    """Index of the bracket that closes the one at start, on the same line, or -1."""
    depth = 0
    for k in range(start, len(code)):
        if code[k] in "([{":
            depth += 1
        elif code[k] in ")]}":
            depth -= 1
            if depth == 0:
                return k
    return -1


def arguments(code, open_at, close_at):
    """(start, end) of each top-level argument between the brackets."""
    spans, depth, begin = [], 0, open_at + 1
    for k in range(open_at + 1, close_at):
        if code[k] in "([{":
            depth += 1
        elif code[k] in ")]}":
            depth -= 1
        elif code[k] == "," and depth == 0:
            spans.append((begin, k))
            begin = k + 1
    spans.append((begin, close_at))
    trimmed = []
    for a, b in spans:
        text = code[a:b]
        trimmed.append((a + len(text) - len(text.lstrip()), b - len(text) + len(text.rstrip())))
    return trimmed


def kind(arg):
    """Two arguments of one kind by sight: literals of one sort, or plain names."""
    if re.fullmatch(r"-?\d+", arg):
        return "int"
    if re.fullmatch(r"-?(\d+\.\d*|\.\d+)f?", arg):
        return "float"
    if re.fullmatch(r'"[^"]*"', arg):
        return "string"
    if re.fullmatch(r"[A-Za-z_]\w*((\.|->)[A-Za-z_]\w*)*", arg) and arg not in NOT_NAMES:
        return "name"
    return None


def plus_one(literal, step):
    number = re.match(r"[\d.]+", literal).group(0)
    suffix = literal[len(number):]
    if "." not in number:
        return str(int(number) + step) + suffix
    decimals = len(number.split(".")[1])
    value = decimal.Decimal(number if not number.endswith(".") else number + "0") + step
    text = f"{value:.{decimals}f}" + ("." if number.endswith(".") else "")
    return text + suffix


def changes(line, code, previous):
    """The possible changes of one line: {kind: [(description, new line), ...]}."""
    found = {}

    def add(what, description, start, end, new):
        found.setdefault(what, []).append((description, line[:start] + new + line[end:]))

    for m in re.finditer(r"(?<=\s)(<=|>=|==|!=|<|>)(?=\s)", code):
        add("comparison", f"{m.group(1)} -> {FLIP[m.group(1)]}", m.start(), m.end(), FLIP[m.group(1)])
    for m in re.finditer(r"(?<=\s)(&&|\|\|)(?=\s)", code):
        other = "||" if m.group(1) == "&&" else "&&"
        add("logic", f"{m.group(1)} -> {other}", m.start(), m.end(), other)
    for m in re.finditer(r"(?<![\w.])(\d+\.\d*|\.\d+|\d+)[fFuUlL]*(?![\w.])", code):
        for step in (1, -1):
            new = plus_one(m.group(0), step)
            if not new.startswith("-"):
                add("constant", f"{m.group(0)} -> {new}", m.start(), m.end(), new)
    stripped = code.strip()
    # A whole statement: a jump, an assignment, a step or a call, which begins on this line.
    statement = re.fullmatch(r"(break|continue|return);|(\+\+|--)[\w.>\[\]-]+;|"
                             r"[\w.:>\[\]*-]+\s*(=|[-+*/%|&^]=|<<=|>>=)[^=].*;|"
                             r"[\w.>\[\]-]+(\+\+|--);|[\w.:>\[\]-]+\(.*\);", stripped)
    if statement and stripped.count("(") == stripped.count(")") \
            and re.search(r"([;{}:)]|else)$", previous.rstrip()) is not None:
        indent = len(line) - len(line.lstrip())
        add("statement", "drop the statement", indent, len(line.rstrip()), ";")
    for m in re.finditer(r"\b(if|while)\s*\(", code):
        end = closing(code, m.end() - 1)
        if end > 0:
            add("condition", f"invert the {m.group(1)}", m.end(), end,
                "!(" + line[m.end():end] + ")")
    for m in re.finditer(r"\b([A-Za-z_]\w*)\s*\(", code):
        end = closing(code, m.end() - 1)
        if m.group(1) in NOT_NAMES | SYMMETRIC or end < 0:
            continue
        args = arguments(code, m.end() - 1, end)
        for (a, b), (c, d) in zip(args, args[1:]):
            if kind(code[a:b]) and kind(code[a:b]) == kind(code[c:d]) and line[a:b] != line[c:d]:
                add("arguments", f"swap {line[a:b]}, {line[c:d]} of {m.group(1)}", a, d,
                    line[c:d] + line[b:c] + line[a:b])
    return found


def logic_lines(root, path):
    """(line number, line, changes) of each line that can be mutated."""
    with open(os.path.join(root, path), encoding="utf-8") as f:
        text = f.read()
    lines, codes = text.split("\n"), masked(text).split("\n")
    previous = "{"
    for number, (line, code) in enumerate(zip(lines, codes), 1):
        if code.strip() and not code.lstrip().startswith("#") \
                and not re.fullmatch(r"[\s{},\d.fx+-]*", code):  # a row of a data table
            found = changes(line, code, previous)
            if found:
                yield number, line, found
        if code.strip():
            previous = code


def occurrence(lines, number):
    text = lines[number - 1].strip()
    return sum(1 for line in lines[:number] if line.strip() == text)


def make(root, seed, count, out):
    seed, count = int(seed), int(count)
    rng = random.Random(seed)
    candidates = [(path, number, line, found)
                  for path in sources(root) for number, line, found in logic_lines(root, path)]
    mutants = []
    for path, number, line, found in rng.sample(candidates, count):
        description, new = rng.choice(found[rng.choice(sorted(found))])
        with open(os.path.join(root, path), encoding="utf-8") as f:
            lines = f.read().split("\n")
        mutants.append({"file": path, "line": number, "occurrence": occurrence(lines, number),
                        "change": description, "before": line.strip(), "after": new.strip()})
    mutants.sort(key=lambda m: (m["file"], m["line"]))
    with open(out, "w", encoding="utf-8") as f:
        for number, mutant in enumerate(mutants, 1):
            f.write(json.dumps({"id": number, **mutant}, ensure_ascii=False) + "\n")
    print(f"{len(mutants)} mutants of {len(candidates)} lines of logic, seed {seed}: {out}")


def ids(list_file):
    for mutant in load(list_file):
        print(mutant["id"])


def load(list_file):
    with open(list_file, encoding="utf-8") as f:
        return [json.loads(line) for line in f if line.strip()]


def locate(root, mutant):
    """The file's lines and the index of the mutant's line in them, or None if it is gone."""
    try:
        with open(os.path.join(root, mutant["file"]), encoding="utf-8") as f:
            lines = f.read().split("\n")
    except OSError:
        return [], None
    seen = 0
    for index, line in enumerate(lines):
        if line.strip() == mutant["before"]:
            seen += 1
            if seen == mutant["occurrence"]:
                return lines, index
    return lines, None


def mutated(lines, index, mutant):
    line = lines[index]
    return lines[:index] + [line[:len(line) - len(line.lstrip())] + mutant["after"]] + lines[index + 1:]


def show(root, list_file, wanted=None):
    for mutant in load(list_file):
        if wanted is None:
            print(f"{mutant['id']:4} {mutant['file']}:{mutant['line']}  {mutant['change']}\n"
                  f"       - {mutant['before']}\n       + {mutant['after']}")
        elif mutant["id"] == int(wanted):
            lines, index = locate(root, mutant)
            if index is None:
                sys.exit(f"mutant {wanted}: the line is gone from {mutant['file']}")
            sys.stdout.writelines(difflib.unified_diff(
                [l + "\n" for l in lines], [l + "\n" for l in mutated(lines, index, mutant)],
                "a/" + mutant["file"], "b/" + mutant["file"]))
            return
    if wanted is not None:
        sys.exit(f"no mutant {wanted} in {list_file}")


def objects(build, source):
    """The object files compiled from source: the first prerequisite of their depfiles."""
    found = []
    for folder, _, files in os.walk(build):
        for name in files:
            if name.endswith(".o.d"):
                with open(os.path.join(folder, name), encoding="utf-8") as f:
                    head = f.read(4096).split(":", 1)[-1].replace("\\\n", " ").split()
                if head and head[0] == source:
                    found.append(os.path.join(folder, name[:-2]))
    return found


def apply(root, build, list_file, wanted, save):
    """Writes the mutant into the copy; prints the line it took (or 'gone'), file and change. The
    objects of the pristine file are kept, so that restoring costs no second compile."""
    mutant = next(m for m in load(list_file) if m["id"] == int(wanted))
    lines, index = locate(root, mutant)
    if index is None:
        print(f"gone\t{mutant['file']}\t{mutant['change']}")
        return
    path = os.path.abspath(os.path.join(root, mutant["file"]))
    shutil.rmtree(save, ignore_errors=True)
    os.makedirs(save)
    kept = []
    for number, obj in enumerate(objects(build, path)):
        if os.path.exists(obj):
            shutil.copyfile(obj, os.path.join(save, str(number)))
            kept.append(obj)
    stat = os.stat(path)
    shutil.copyfile(path, os.path.join(save, "source"))
    with open(os.path.join(save, "state.json"), "w") as f:
        json.dump({"path": path, "times": [stat.st_atime_ns, stat.st_mtime_ns], "objects": kept}, f)
    with open(path, "w", encoding="utf-8") as f:
        f.write("\n".join(mutated(lines, index, mutant)))
    print(f"{index + 1}\t{mutant['file']}\t{mutant['change']}")


def restore(save):
    """The pristine file with its old time stamp and its objects with a new one: make sees
    nothing to compile, only the libraries and programs to link again."""
    state_file = os.path.join(save, "state.json")
    if not os.path.exists(state_file):
        return
    with open(state_file) as f:
        state = json.load(f)
    shutil.copyfile(os.path.join(save, "source"), state["path"])
    os.utime(state["path"], ns=tuple(state["times"]))
    for number, obj in enumerate(state["objects"]):
        shutil.copyfile(os.path.join(save, str(number)), obj)
    os.remove(state_file)


def sync(source, copy):
    """Copies the tracked and untracked files that differ; a copied file gets a new time
    stamp, so the next build compiles it. Files gone from the source go from the copy."""
    listed = subprocess.run(["git", "-C", source, "ls-files", "-z", "-co", "--exclude-standard"],
                            check=True, capture_output=True).stdout.decode().split("\0")
    wanted = {p for p in listed if p and os.path.isfile(os.path.join(source, p))}

    def content(path):
        with open(path, "rb") as f:
            return f.read()

    for path in sorted(wanted):
        a, b = os.path.join(source, path), os.path.join(copy, path)
        if not os.path.exists(b) or content(a) != content(b):
            os.makedirs(os.path.dirname(b), exist_ok=True)
            shutil.copyfile(a, b)
            shutil.copymode(a, b)
    for folder, _, files in os.walk(copy):
        for name in files:
            if os.path.relpath(os.path.join(folder, name), copy) not in wanted:
                os.remove(os.path.join(folder, name))


def folder_of(path):
    return next(f for f in REPORT_FOLDERS if path.startswith(f + "/"))


def report(list_file, results_file):
    mutants = load(list_file)
    results = {}
    if os.path.exists(results_file):
        with open(results_file) as f:
            for row in f:
                number, status, line, seconds = row.split()
                results[int(number)] = (status, line, float(seconds))
    table = {f: {"killed": 0, "survived": 0, "nobuild": 0, "gone": 0, "notrun": 0}
             for f in REPORT_FOLDERS}
    for mutant in mutants:
        status = results.get(mutant["id"], ("notrun",))[0]
        table[folder_of(mutant["file"])]["killed" if status == "timeout" else status] += 1
    total = {k: sum(row[k] for row in table.values()) for k in table["game"]}
    print(f"{'folder':18} {'mutants':>7} {'killed':>6} {'survived':>8} {'no build':>8} "
          f"{'gone':>4} {'not run':>7} {'kill rate':>9}")
    for name, row in list(table.items()) + [("all", total)]:
        name = {"game": "game (the shell)", "engine": "engine (the rest)"}.get(name, name)
        tested = row["killed"] + row["survived"]
        rate = f"{100 * row['killed'] / tested:.0f} %" if tested else "-"
        print(f"{name:18} {sum(row.values()):7} {row['killed']:6} {row['survived']:8} "
              f"{row['nobuild']:8} {row['gone']:4} {row['notrun']:7} {rate:>9}")
    timeouts = sum(1 for r in results.values() if r[0] == "timeout")
    seconds = [r[2] for r in results.values() if r[0] != "gone"]
    print(f"(timeouts, counted as killed: {timeouts}; "
          f"{sum(seconds) / max(len(seconds), 1):.1f} s per mutant run)")
    print("\nSurvivors:")
    for mutant in mutants:
        status, line, _ = results.get(mutant["id"], ("notrun", "", 0))
        if status == "survived":
            print(f"{mutant['id']:4} {mutant['file']}:{line}  {mutant['change']}\n"
                  f"       - {mutant['before']}\n       + {mutant['after']}")


if __name__ == "__main__":
    commands = {"make": make, "ids": ids, "show": show, "apply": apply, "restore": restore,
                "sync": sync, "report": report}
    if len(sys.argv) < 2 or sys.argv[1] not in commands:
        sys.exit(__doc__)
    commands[sys.argv[1]](*sys.argv[2:])
