#!/usr/bin/env python3
"""Breaks the library's code on purpose, one small change at a time, and counts how many of the
changes the tests notice.

    python3 scripts/mutation_check.py [--mutants=300] [--seed=1] [--only=FOLDER] [--list]

Mutants are drawn by a fixed seed among all places of tessel/ where a change is possible, so every
line counts alike. A mutant is killed by a compiler error of its own (reported apart, not counted),
by a failing test, a crash or a time-out (ten times what the tests take when nothing is changed, which
is tried first). The tests of the changed folder run first, then the others. Works on a copy of the
tree in build/mutation; leaves the list of survivors in build/mutation/survivors.txt. Exit status 1
when fewer than 90 % are killed. With ccache, changes of headers go much faster
(CMAKE_CXX_COMPILER_LAUNCHER=ccache in the environment).
"""

import argparse
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORK = os.path.join(ROOT, "build", "mutation")
LEAST_KILLED = 90.0  # percent

# What a place in a line may become. Texts in quotes and comments are left alone.
REPLACEMENTS = [
    (r" < ", [" <= ", " > "]), (r" > ", [" >= ", " < "]),
    (r" <= ", [" < ", " > "]), (r" >= ", [" > ", " < "]),
    (r" == ", [" != "]), (r" != ", [" == "]),
    (r" && ", [" || "]), (r" \|\| ", [" && "]),
    (r" \+ ", [" - "]), (r" - ", [" + "]),
    (r" \+= ", [" -= "]), (r"\+\+", ["--"]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]),
    (r"(?<=[( ])!(?=[a-zA-Z(])", [""]),
    (r"\breturn (?=[a-z])", ["return !"]),
    (r"(?<![\w.\"'])\d+(?![\w.\"'])", ["off by one"]),
    (r"\bcontinue;", [";"]), (r"\bbreak;", [";"]),
]
STATEMENT = re.compile(r"^\s+[a-zA-Z_:.>\[\]()*&, -]*\)?[\w\])]+(\(.*\)| [-+|]?= .*|\+\+);$|^\s+\+\+\w+;$")
# Without its declaration a name is unknown: no compiler takes that.
DECLARATION = re.compile(r"^\s+([\w:]+(<.*>)?[*&]* )+[*&]?\w+(\(.*\)|\{.*\})?( const| override)*( = .*)?;$")


def code_part(line):
    """The line with texts, characters and comments blanked out, as long as it was."""
    line = re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'', lambda m: "\x00" * len(m[0]), line)
    return re.sub(r"//.*", lambda m: "\x00" * len(m[0]), line)


def mutants_of(path, lines):
    for number, line in enumerate(lines):
        code = code_part(line)
        stripped = code.strip()
        if not stripped or stripped.startswith(("#", "using", "template", "static_assert")):
            continue
        for pattern, changes in REPLACEMENTS:
            if pattern.startswith(r"\breturn") and "bool" not in "".join(lines[max(0, number - 12):number]):
                continue
            for match in re.finditer(pattern, code):
                for change in changes:
                    new = str(int(match[0]) + 1) if change == "off by one" else change
                    yield path, number, line[:match.start()] + new + line[match.end():]
        if (STATEMENT.match(code) and not DECLARATION.match(code)
                and not re.match(r"\s*(return|const|auto|using|throw|case)\b", code)):
            yield path, number, re.match(r"\s*", line)[0] + ";"


def all_mutants(only):
    found = []
    for folder in sorted(os.listdir(os.path.join(ROOT, "tessel"))):
        path = os.path.join("tessel", folder)
        if only not in (None, folder) or not os.path.isdir(os.path.join(ROOT, path)):
            continue
        for name in sorted(os.listdir(os.path.join(ROOT, path))):
            if not name.endswith((".cpp", ".h")) or "windows" in name:
                continue
            file = os.path.join(path, name)
            with open(os.path.join(ROOT, file), encoding="utf-8") as source:
                found += mutants_of(file, source.read().split("\n"))
    return found


def drawn(mutants, number, seed):
    """Lines first, then one of the changes of each: files count by their lines."""
    by_line = {}
    for mutant in mutants:
        by_line.setdefault(mutant[:2], []).append(mutant)
    chooser = random.Random(seed)
    lines = sorted(by_line)
    return [chooser.choice(by_line[line]) for line in sorted(chooser.sample(lines, min(number, len(lines))))]


def limit_resources():
    """What is broken must not take the machine with it: it is the first to go when memory ends (the
    tests measure limits of memory, so there is none), and writes no file of more than 1 GiB."""
    with open("/proc/self/oom_score_adj", "w", encoding="ascii") as file:
        file.write("1000")
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))


def run(command, seconds):
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen(command, cwd=WORK, stdout=output, stderr=subprocess.STDOUT,
                                   preexec_fn=limit_resources, start_new_session=True)
        try:
            status = process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            return -1, "time-out"
        output.seek(0)
        return status, output.read(1 << 20).decode("utf-8", "replace")


def run_tests(program, seconds):
    return run(["build/tests/" + program, "--gtest_brief=1", "--gtest_fail_fast"], seconds)


def prepare():
    """Builds the copy; returns the programs of the tests with the seconds after which one hangs."""
    shutil.rmtree(os.path.join(WORK, "tessel"), ignore_errors=True)
    shutil.copytree(ROOT, WORK, dirs_exist_ok=True,
                    ignore=lambda folder, names: {"build", ".git"} & set(names)
                    if os.path.samefile(folder, ROOT) else set())
    configure = ["cmake", "-G", "Ninja", "-S", ".", "-B", "build", "-DCMAKE_BUILD_TYPE=Debug",
                 "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DTESSEL_BUILD_EXAMPLES=OFF"]
    status, output = run(configure, 600)
    if status == 0:
        status, output = run(["ninja", "-C", "build"], 3000)
    if status != 0:
        sys.exit(output[-3000:])
    folder = os.path.join(WORK, "build", "tests")
    limits = {}
    for name in sorted(os.listdir(folder)):
        file = os.path.join(folder, name)
        if name.endswith("_tests") and os.path.isfile(file) and os.access(file, os.X_OK):
            start = time.monotonic()
            status, output = run_tests(name, 600)
            if status != 0:
                sys.exit(f"{name} fails although nothing was changed:\n{output[-3000:]}")
            limits[name] = 10 + 10 * (time.monotonic() - start)
    return limits


def fate(path, limits):
    """'killed by X', 'invalid' or 'survived'."""
    own = os.path.basename(os.path.dirname(path)) + "_tests"
    for program in sorted(limits, key=lambda name: (name != own, name)):
        status, output = run(["ninja", "-C", "build", "tests/" + program], 900)
        if status != 0:
            return "invalid" if "error:" in output else "killed by the linker"
        status, output = run_tests(program, limits[program])
        if status != 0:
            failed = re.search(r"FAILED  \] (\S+)", output)
            how = "the time limit of " if output == "time-out" else "a crash of "
            return "killed by " + (failed[1] if failed else how + program)
    return "survived"


def main():
    options = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    options.add_argument("--mutants", type=int, default=300)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--only")
    options.add_argument("--list", action="store_true", help="show the mutants, run none")
    given = options.parse_args()
    chosen = drawn(all_mutants(given.only), given.mutants, given.seed)
    if given.list:
        for path, number, line in chosen:
            print(f"{path}:{number + 1}: {line.strip()}")
        return 0
    limits = prepare()
    counts = {"killed": 0, "invalid": 0, "survived": 0}
    survivors = []
    for path, number, line in chosen:
        target = os.path.join(WORK, path)
        with open(os.path.join(ROOT, path), encoding="utf-8") as source:
            lines = source.read().split("\n")
        before = lines[number]
        lines[number] = line
        with open(target, "w", encoding="utf-8") as file:
            file.write("\n".join(lines))
        end = fate(path, limits)
        shutil.copy(os.path.join(ROOT, path), target)
        os.utime(target)
        counts[end.split()[0]] += 1
        text = f"{path}:{number + 1}: {before.strip()}  ->  {line.strip()}"
        print(f"{end}: {text}", flush=True)
        if end == "survived":
            survivors.append(text)
    with open(os.path.join(WORK, "survivors.txt"), "w", encoding="utf-8") as file:
        file.write("".join(text + "\n" for text in survivors))
    valid = counts["killed"] + counts["survived"]
    share = 100.0 * counts["killed"] / max(valid, 1)
    print(f"{valid} mutants, {counts['killed']} killed ({share:.1f} %), "
          f"{counts['invalid']} did not compile")
    return 0 if share >= LEAST_KILLED else 1


if __name__ == "__main__":
    sys.exit(main())
