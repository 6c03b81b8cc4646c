#!/usr/bin/env python3
"""Single-point faults, one at a time: python3 tests/mutation/run.py SRC BUILD [ID...]

SRC is a copy of the source tree (the mutants are written there and put back),
BUILD a configured build of it. Each mutant replaces one text that must stand
exactly once in its file, rebuilds the suites named for it, runs them and
prints: id, file:line, and the tests that failed (none: SURVIVED)."""
import os, re, subprocess, sys

src, build = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
only = set(sys.argv[3:])
here = os.path.dirname(os.path.abspath(__file__))
for row in open(os.path.join(here, "mutants.tsv"), encoding="utf-8"):
    if row.startswith("#") or not row.strip():
        continue
    ident, path, old, new, suites = row.rstrip("\n").split("\t")
    if only and ident not in only:
        continue
    full = os.path.join(src, path)
    text = open(full, encoding="latin-1").read()
    if text.count(old) != 1:
        print(f"{ident}\t{path}\tn/a (text found {text.count(old)} times)", flush=True)
        continue
    line = text[: text.index(old)].count("\n") + 1
    open(full, "w", encoding="latin-1").write(text.replace(old, new))
    try:
        targets = [f"test_{s}" for s in suites.split()]
        b = subprocess.run(["cmake", "--build", build, "-j2", "--target", *targets], capture_output=True, text=True)
        if b.returncode != 0:
            print(f"{ident}\t{path}:{line}\tbuild failed", flush=True)
            continue
        failed = []
        for s in suites.split():
            tmp = os.path.join(build, "tests", f"tmp_{s}")
            os.makedirs(tmp, exist_ok=True)
            env = dict(os.environ, CT600_TEMP_DIR=tmp, CT600_LOG_FILE=os.path.join(tmp, "ct600.log"))
            r = subprocess.run([os.path.join(build, "tests", f"test_{s}"), "--gtest_brief=1"],
                               capture_output=True, text=True, env=env, cwd=tmp, timeout=600)
            failed += sorted(set(re.findall(r"^\[  FAILED  \] (\S+\.\S+)", r.stdout, re.M)))
        print(f"{ident}\t{path}:{line}\t{' '.join(dict.fromkeys(failed)) or 'SURVIVED'}", flush=True)
    finally:
        open(full, "w", encoding="latin-1").write(text)
