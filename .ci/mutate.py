#!/usr/bin/env python3
"""Breaks the product one line at a time and sees whether the tests notice.

  mutate.py list LIST [--count 120] [--seed 1]   chooses mutants of the product's files and writes them
  mutate.py run LIST [--count 120] [--labels rules,gl] [--jobs 2]
                                                 tries them; goes on where an earlier run stopped
  mutate.py report LIST                          what was caught and what survived, by folder

The list depends on the files and the seed alone. A line keeps its mutant when it moves to another
file, so one list can be tried on two states of the tree. `run` works on a checkout of HEAD in
build/mutants/tree and leaves its verdicts beside the list, in LIST.verdicts. For each mutant it
builds the suites that contain the file, or start what contains it, and runs them: those of the
file's own folder first, until a test fails twice. A mutant that does not compile does not count;
the list has spare ones. Suites without any of `--labels` are left out when that is given.
"""
import argparse
import collections
import difflib
import json
import random
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
TREE = ROOT / "build/mutants/tree"
BUILD = TREE / "build/dev"
NO_PRODUCT = {"tests", "bench", "resources", "docs", "packaging"}
SWAPS = {" < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", " == ": " != ", " != ": " == ",
         " && ": " || ", " || ": " && ", " + ": " - ", " - ": " + ", " += ": " -= ", " -= ": " += ",
         "++": "--", "return true;": "return false;", "return false;": "return true;"}
SWAP = re.compile("|".join(sorted(map(re.escape, SWAPS), key=len, reverse=True)))
NUMBER = re.compile(r"(?<![\w.\"'])(\d+)(?=(\.\d+F?)?[^\w.\"'])")
CONDITION = re.compile(r"^(\s*(?:\} else )?(?:if|while) \()(?!const |auto |\w+ \*?\w+ = )(.*)(\)(?: \{| return.*;| continue;| break;)?)$")
STATEMENT = re.compile(r"^\s+(?!return|throw|using|delete|break|continue|case|static_assert|const |goto )[\w:.>\[\]()*-]+(\(.*\)| [-+*/|&]?= .*);$")


def mutants_of(line):
    """Every mutant of a line: (kind, new line)."""
    code = line.split(" // ")[0]
    if re.match(r"\s*(//|#|\*|namespace|template|static_assert|using |case |extern|\[\[)", line) or not code.strip():
        return
    quoted = [m.span() for m in re.finditer(r'"(?:[^"\\]|\\.)*"', code)]

    def plain(position):
        return not any(a <= position < b for a, b in quoted)

    for m in SWAP.finditer(code):
        if plain(m.start()):
            yield "swap " + m[0].strip().rstrip(";"), code[:m.start()] + SWAPS[m[0]] + code[m.end():]
    for m in NUMBER.finditer(code):
        if plain(m.start()):
            yield "constant", code[:m.start()] + str(int(m[1]) + 1) + code[m.end(1):]
    if m := CONDITION.match(code):
        if m[2].count("(") == m[2].count(")"):
            yield "condition", f"{m[1]}!({m[2]}){m[3]}"
    if STATEMENT.match(code) and code.count("(") == code.count(")"):
        yield "statement", re.match(r"\s*", code)[0] + ";"


def product_files(tree):
    names = subprocess.run(["git", "ls-files", "*.cpp"], cwd=tree, check=True, capture_output=True,
                           text=True).stdout.split()
    return [n for n in sorted(names) if n.split("/")[0] not in NO_PRODUCT]


def choose(count, seed):
    """Mutants in an order that takes folders in turn, each in proportion to the root of its lines."""
    chance = random.Random(seed)
    folders = collections.defaultdict(list)
    for name in product_files(ROOT):
        lines = (ROOT / name).read_text().splitlines()
        for i, line in enumerate(lines):
            if found := list(mutants_of(line)):
                kind, new = chance.choice(found)
                folders[str(Path(name).parent)].append(
                    {"file": name, "line": i + 1, "kind": kind, "old": line, "new": new,
                     "context": lines[max(0, i - 3):i + 4]})
    order = []
    for _, found in sorted(folders.items()):
        chance.shuffle(found)
        seen = collections.Counter() # kinds in turn
        turns = []
        for m in found:
            kind = m["kind"].split()[0]
            turns.append((seen[kind], m))
            seen[kind] += 1
        turns.sort(key=lambda pair: pair[0])
        order += [((k + chance.random()) / len(found) ** 0.5, m) for k, (_, m) in enumerate(turns)]
    order.sort(key=lambda pair: pair[0])
    return [{"id": i, **m} for i, (_, m) in enumerate(order[:count + count // 3])]


def locate(mutant):
    """(file, index) of the mutant's line in TREE, or None when it is gone."""
    best = (0.5, None)
    for name in product_files(TREE):
        text = (TREE / name).read_text()
        if mutant["old"] not in text:
            continue
        lines = text.splitlines()
        for i, line in enumerate(lines):
            if line == mutant["old"]:
                likeness = difflib.SequenceMatcher(
                    None, lines[max(0, i - 3):i + 4], mutant["context"]).ratio()
                likeness += 0.5 * (Path(name).name == Path(mutant["file"]).name) + (name == mutant["file"])
                likeness -= abs(i + 1 - mutant["line"]) * 1e-6
                best = max(best, (likeness, (name, i)), key=lambda pair: pair[0])
    return best[1]


def command(*words, timeout=3600):
    return subprocess.run(words, cwd=TREE, capture_output=True, text=True, timeout=timeout)


def suites_with(name):
    """The suites that contain the object of a file, those of its own folder first."""
    targets = command("ninja", "-C", str(BUILD), "-t", "targets", "all").stdout
    suites = re.findall(r"^(tests/(?:\w+/)*\w+): CXX_EXECUTABLE", targets, re.M)
    folder = str(Path(name).parent)
    found = []
    for suite in suites:
        inputs = command("ninja", "-C", str(BUILD), "-t", "inputs", suite).stdout
        if re.search(rf"/{re.escape(Path(name).name)}\.o$", inputs, re.M):
            near = f"tests/{folder}/CMakeFiles/{Path(suite).name}.dir/" in inputs
            found.append((not near, inputs.count("\n"), suite))
    return [suite for _, _, suite in sorted(found)]


def has_label(suite, labels):
    texts = [f.read_text() for f in BUILD.glob(f"tests/**/{Path(suite).name}_labels.cmake")]
    found = re.findall(r'LABELS "([^"]*)"', "".join(texts))
    return not labels or not texts or set(labels.split(",")) & set(";".join(found).split(";"))


def failing_tests(suite, arguments):
    """The tests of a suite that fail, run up to the first that does."""
    pattern = rf"^{Path(suite).name}(\.|$)"
    output = command("ctest", "--test-dir", str(BUILD), f"-j{arguments.jobs}", "--stop-on-failure",
                     "-R", pattern).stdout
    return re.findall(r"^\s+\d+ - (\S+) \((?!Disabled|Not Run)", output, re.M)


def verdict_of(mutant, arguments):
    place = locate(mutant)
    if place is None:
        return {"verdict": "gone"}
    name, index = place
    file = TREE / name
    before = file.read_text()
    lines = before.split("\n")
    lines[index] = mutant["new"]
    file.write_text("\n".join(lines))
    try:
        ran = []
        for suite in suites_with(name):
            if not has_label(suite, arguments.labels):
                continue
            built = command("cmake", "--build", str(BUILD), f"-j{arguments.jobs}", "--target", suite)
            if built.returncode != 0:
                return {"verdict": "invalid", "why": re.findall(r"error: .*", built.stdout)[:1]}
            ran.append(Path(suite).name)
            for _ in range(2): # a test that fails once only does not count
                if not (failed := failing_tests(suite, arguments)):
                    break
            else:
                return {"verdict": "caught", "by": failed[0]}
        return {"verdict": "survived" if ran else "untested", "ran": ran}
    finally:
        file.write_text(before)


def run(arguments):
    if not TREE.exists():
        subprocess.run(["git", "worktree", "add", "--detach", str(TREE)], cwd=ROOT, check=True)
    subprocess.run(["git", "checkout", "-q", "--detach", subprocess.run(
        ["git", "rev-parse", "HEAD"], cwd=ROOT, capture_output=True, text=True).stdout.strip()],
        cwd=TREE, check=True)
    subprocess.run(["git", "checkout", "-q", "."], cwd=TREE, check=True)
    command("cmake", "--preset", "dev")
    verdicts = read_verdicts(arguments.list)
    for mutant in json.loads(Path(arguments.list).read_text()):
        if sum(v["verdict"] not in ("invalid", "gone") for v in verdicts.values()) >= arguments.count:
            break
        if mutant["id"] in verdicts:
            continue
        verdict = verdicts[mutant["id"]] = {"id": mutant["id"], **verdict_of(mutant, arguments)}
        with open(arguments.list + ".verdicts", "a") as out:
            out.write(json.dumps(verdict) + "\n")
        print(f"{mutant['id']:3} {verdict['verdict']:8} {mutant['file']}:{mutant['line']} {mutant['kind']}"
              f" {verdict.get('by') or verdict.get('why') or ''}", flush=True)
    report(arguments)


def read_verdicts(name):
    file = Path(name + ".verdicts")
    found = map(json.loads, file.read_text().splitlines()) if file.exists() else []
    return {v["id"]: v for v in found}


def report(arguments):
    verdicts = read_verdicts(arguments.list)
    mutants = {m["id"]: m for m in json.loads(Path(arguments.list).read_text())}
    counts = collections.Counter((str(Path(mutants[i]["file"]).parent), v["verdict"]) for i, v in verdicts.items())
    for folder in sorted({f for f, _ in counts}):
        print(f"{folder:24}", ", ".join(f"{n} {v}" for (f, v), n in sorted(counts.items()) if f == folder))
    for i, v in sorted(verdicts.items()):
        if v["verdict"] in ("survived", "untested"):
            m = mutants[i]
            print(f"\n{v['verdict']}: {m['file']}:{m['line']}\n- {m['old'].strip()}\n+ {m['new'].strip()}")
    print("\nAll:", dict(collections.Counter(v["verdict"] for v in verdicts.values())))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("action", choices=["list", "run", "report"])
    parser.add_argument("list")
    parser.add_argument("--count", type=int, default=120)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--labels", default="")
    parser.add_argument("--jobs", type=int, default=2)
    arguments = parser.parse_args()
    if arguments.action == "list":
        chosen = choose(arguments.count, arguments.seed)
        Path(arguments.list).write_text(json.dumps(chosen, indent=1) + "\n")
        print(f"{len(chosen)} mutants, {dict(collections.Counter(m['kind'] for m in chosen))}")
    else:
        {"run": run, "report": report}[arguments.action](arguments)


if __name__ == "__main__":
    sys.exit(main())
