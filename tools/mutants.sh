#!/usr/bin/env bash
# Mutation testing of our own: which faults do the tests miss?
#
#   tools/mutants.sh [--seed N] [--count N] [--list] [FILE...]
#
# Makes mutants of product files by the classic operators (a comparison flipped or loosened,
# && and || swapped, + and - swapped, a constant 0 and 1 swapped, a condition negated, a
# statement or an early return removed), builds each in a scratch copy of the tree
# (build-mutants/), runs the test executable of the file's folder (and of a folder whose tests
# check it too, listed below), and prints how many were killed (a test failed, or ran past the
# time limit), how many survived (the tests passed) and the surviving mutants' lines. A mutant
# that does not compile counts neither way.
#
# Without FILE arguments it mutates the fixed list below; the same seed and list give the same
# mutants, so scores can be compared before and after a change to the tests. --list prints the
# chosen mutants and builds nothing. Run it when nothing else is building: it is long.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
exec python3 - "$root" "$@" <<'PYTHON'
import os, random, re, shutil, signal, subprocess, sys, time

root = sys.argv[1]
args = sys.argv[2:]
seed, count, files, dry = 20261125, 80, [], False
i = 0
while i < len(args):
    if args[i] == "--seed":
        seed = int(args[i + 1]); i += 2
    elif args[i] == "--count":
        count = int(args[i + 1]); i += 2
    elif args[i] == "--list":
        dry = True; i += 1
    elif args[i] in ("-h", "--help"):
        print(open(os.path.join(root, "tools/mutants.sh")).read().split("set -euo")[0])
        sys.exit(0)
    else:
        files.append(args[i]); i += 1

DEFAULT = ["store/", "find/", "exchange/", "viewer/imageedit", "core/"]
# Files that only talk to the windowing system or the kernel's timing are left out: their
# tests check them by sight or by speed, not by result.
SKIP = re.compile(r"(dialog|window|widget|commands|progress|\.h$)")

def listed():
    out = subprocess.run(["git", "ls-files"], cwd=root, capture_output=True, text=True).stdout.split()
    chosen = files or [f for f in out if f.endswith(".cpp") and any(f.startswith(d) for d in DEFAULT)
                       and not SKIP.search(os.path.basename(f))]
    return sorted(chosen)

# One mutation: (file, line number, description, new line).
OPERATORS = [
    ("comparison flipped", r"(?<![<>=!])==(?!=)", "!="),
    ("comparison flipped", r"!=", "=="),
    ("comparison loosened", r"(?<=\s)<(?=\s)", "<="),
    ("comparison loosened", r"(?<=\s)>(?=\s)", ">="),
    ("comparison tightened", r"<=", "<"),
    ("comparison tightened", r">=", ">"),
    ("&& to ||", r"&&", "||"),
    ("|| to &&", r"\|\|", "&&"),
    ("+ to -", r"(?<=\s)\+(?=\s)", "-"),
    ("- to +", r"(?<=\s)-(?=\s)", "+"),
    ("0 to 1", r"(?<![\w.])0(?![\w.])", "1"),
    ("1 to 0", r"(?<![\w.])1(?![\w.])", "0"),
]

def candidates(path):
    text = open(os.path.join(root, path), encoding="utf-8").read().split("\n")
    found = []
    in_comment = False
    for n, line in enumerate(text):
        s = line.strip()
        if in_comment:
            in_comment = "*/" not in s
            continue
        if s.startswith("/*"):
            in_comment = "*/" not in s
            continue
        if not s or s.startswith("//") or s.startswith("#") or "QStringLiteral(\"" in s and s.count('"') > 2 and "SELECT" in s:
            continue
        code = line.split("//")[0]
        # Text in quotes is left alone: a mutant there changes a message, not the logic.
        masked = re.sub(r'"([^"\\]|\\.)*"', lambda m: '"' + "_" * (len(m.group(0)) - 2) + '"', code)
        masked = re.sub(r"'([^'\\]|\\.)*'", lambda m: "'" + "_" * (len(m.group(0)) - 2) + "'", masked)
        for name, pattern, repl in OPERATORS:
            for m in re.finditer(pattern, masked):
                if name.startswith("comparison") and ("template" in code or "#include" in code or "->" in code[m.start() - 1:m.end() + 1]):
                    continue
                new = code[:m.start()] + repl + code[m.end():] + line[len(code):]
                found.append((path, n, name, new))
        cond = re.match(r"^(\s*(?:\}\s*else\s+)?if\s*\()(.*)(\)\s*\{?\s*)$", code)
        if cond and cond.group(2).count("(") == cond.group(2).count(")"):
            found.append((path, n, "condition negated", cond.group(1) + "!(" + cond.group(2) + ")" + cond.group(3)))
        # A statement that starts and ends on this line.
        whole = n > 0 and re.search(r"[;{}:]\s*$", text[n - 1].split("//")[0]) is not None
        if re.match(r"^\s*return\b.*;\s*$", code) and n > 0 and re.match(r"^\s*(if|else)\b.*\)\s*$|^\s*else\s*$", text[n - 1].split("//")[0]):
            found.append((path, n, "early return removed", re.match(r"^(\s*)", line).group(1) + ";"))
        elif whole and re.match(r"^\s*[\w:.>\-\[\]()*&]+\s*(\(|=[^=]|\+=|-=|\+\+|--).*;\s*$", code) and not re.match(r"^\s*(return|const|auto|int|qint|bool|QString|for|while|case|break|continue)\b", code) and not re.match(r"^\s*\w[\w:<>,\s*&]*\s+\w+\s*(=|\(|\{)", code):
            found.append((path, n, "statement removed", re.match(r"^(\s*)", line).group(1) + ";"))
    return found

# Files whose behaviour is checked from another folder's tests as well: what the document
# search finds, and the page conditions of a found set, are tested by the find tests.
ALSO_TESTED_BY = {
    "store/documentsearch.cpp": ["find"],
    "store/pageconditions.cpp": ["find"],
}

def targets_of(path):
    return ["test_" + f for f in [path.split("/")[0]] + ALSO_TESTED_BY.get(path, [])]

all_candidates = []
for f in listed():
    all_candidates.extend(candidates(f))
rng = random.Random(seed)
rng.shuffle(all_candidates)
chosen = all_candidates[:count]
print(f"Seed {seed}: {len(chosen)} mutants of {len(all_candidates)} possible, over {len(listed())} files.", flush=True)
if dry:
    for path, n, name, new in chosen:
        print(f"{path}:{n + 1} {name}\n    + {new.strip()}")
    sys.exit(0)

scratch = os.path.join(root, "build-mutants")
src = os.path.join(scratch, "src")
build = os.path.join(scratch, "build")
os.makedirs(scratch, exist_ok=True)
# A copy of the tree, so that the working tree is never touched and a stopped run leaves
# nothing mutated behind.
tracked = {f for f in subprocess.run(["git", "ls-files"], cwd=root, capture_output=True,
                                     text=True).stdout.split("\n") if f}
for f in sorted(tracked):
    a, b = os.path.join(root, f), os.path.join(src, f)
    if os.path.isfile(a) and not (os.path.exists(b) and open(a, "rb").read() == open(b, "rb").read()):
        os.makedirs(os.path.dirname(b), exist_ok=True)
        shutil.copy2(a, b)
# A file gone from the tree goes from the copy too: a test class moved into another file
# would otherwise be built twice.
for folder, _, names in os.walk(src):
    for name in names:
        if os.path.relpath(os.path.join(folder, name), src) not in tracked:
            os.remove(os.path.join(folder, name))
# Configured every run, so that the folders' file lists follow files added and removed.
launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
subprocess.run(["cmake", "-S", src, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=RelWithDebInfo"] + launcher,
               check=True, stdout=subprocess.DEVNULL)
targets = sorted({t for p, *_ in chosen for t in targets_of(p)})
print("Building the unmutated tree...", flush=True)
if subprocess.run(["cmake", "--build", build, "--target"] + targets, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode != 0:
    sys.exit("The unmutated tree does not build.")

# Warnings stay on: tests expect some of them. A crashing mutant must not start the test
# library's debugger for a stack dump: the test would linger in it until its time ran out.
env = dict(os.environ, QT_QPA_PLATFORM="offscreen", QTEST_DISABLE_STACK_DUMP="1")


def run_test(t, limit):
    """The test's exit status (negative for a signal), or None when it ran past `limit`
    seconds. The test runs in a process group of its own, and the group is killed on a timeout
    and after every run: a child process that outlives the test (the home-lock and command-line
    tests start some) must not keep running into the next mutant. Its output is not kept, so no
    pipe can keep the run waiting."""
    p = subprocess.Popen([os.path.join(build, "tests", t), "--skip=Shots"], env=env,
                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return p.wait(timeout=limit)
    except subprocess.TimeoutExpired:
        os.killpg(p.pid, signal.SIGKILL)
        p.wait()
        return None
    finally:
        try:
            os.killpg(p.pid, signal.SIGKILL)  # whatever the test left running
        except ProcessLookupError:
            pass


baseline = {}
for t in targets:
    start = time.time()
    if run_test(t, None) != 0:
        sys.exit(f"{t} fails without any mutant; fix that first.")
    baseline[t] = time.time() - start

killed, survived, stillborn = 0, [], 0
for k, (path, n, name, new) in enumerate(chosen, 1):
    target = os.path.join(src, path)
    original = open(target, encoding="utf-8").read()
    lines = original.split("\n")
    old = lines[n]
    lines[n] = new
    open(target, "w", encoding="utf-8").write("\n".join(lines))
    try:
        ts = targets_of(path)
        built = subprocess.run(["cmake", "--build", build, "--target"] + ts, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
        if not built:
            stillborn += 1
            verdict = "does not compile"
        else:
            ok = True
            for t in ts:
                ok = run_test(t, max(30, 5 * baseline[t])) == 0
                if not ok:
                    break  # killed: the other executables need not run
            if ok:
                survived.append((path, n, name, old.strip(), new.strip()))
                verdict = "SURVIVED"
            else:
                killed += 1
                verdict = "killed"
        print(f"[{k}/{len(chosen)}] {path}:{n + 1} {name}: {verdict}", flush=True)
    finally:
        open(target, "w", encoding="utf-8").write(original)
# Leave the scratch build matching the tree.
subprocess.run(["cmake", "--build", build, "--target"] + targets, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

scored = killed + len(survived)
print()
print(f"killed {killed}, survived {len(survived)}, not compiled {stillborn}")
if scored:
    print(f"mutation score: {100.0 * killed / scored:.1f} % ({killed} of {scored})")
for path, n, name, old, new in survived:
    print(f"survived: {path}:{n + 1} {name}\n    - {old}\n    + {new}")
PYTHON
