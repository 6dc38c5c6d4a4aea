#!/usr/bin/env python3
"""Tests the checks on mutants: mutants_test.py BUILD [--all | EMULATOR...]. For each mutant, runs the
check for the mutant's fault; this check must fail, or warn if mutants.txt marks it with "?". With --all, runs
every check on every mutant, and compares the failing checks with mutants.txt."""
import json
import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

here = Path(__file__).parent
build = Path(sys.argv[1])
runs_all = sys.argv[2:] == ["--all"]
emulator = [] if runs_all else sys.argv[2:]
# Number of parallel runs of the kit. May exceed the number of cores: most runs only wait for callbacks that
# are missing or must not arrive.
AT_ONCE = 6
QUICK = ["--json", "--patience", "2", "--limit", "30", "--hostile", "0.3"]
# Shortens the check `threads`, which takes most of the time, for mutants of other checks. The shortened
# check still detects faults that do not depend on timing.
FEW_ROUNDS = ["--hammer", "0.1"]


def judge(library, mutant="", options=()):
    """Returns the names of the checks that fail or warn; appends "?" to those that only warn. If the kit
    writes no report, returns one text that begins with "no report"."""
    ran = subprocess.run([*emulator, build / "bin/conform", build / "mutants" / library, *QUICK, *options],
                         env={**os.environ, "ORLU_MUTANT": mutant}, capture_output=True, text=True)
    try:
        checks = json.loads(ran.stdout)["checks"]
    except json.JSONDecodeError:
        return {f"no report: {ran.stdout}{ran.stderr}"}
    failed = {c["name"] for c in checks if c["verdict"] == "failed"}
    return failed | {c["name"] + "?" for c in checks if c["warnings"] and c["name"] not in failed}


def compare(row):
    mutant, allowed = row[0], {name.strip("()") for name in row[1:]}
    wanted = {name for name in row[1:] if "(" not in name}
    options = [] if row[1] == "threads" else FEW_ROUNDS
    if not runs_all:
        options = [*options, "--only", row[1].rstrip("?")]
        wanted = {row[1]}
    # On a loaded machine, late callbacks look like faults. Real faults persist, so repeat the run.
    for _ in range(3):
        found = judge("libmutant_algo.so", mutant, options)
        if wanted <= found and ("any" in allowed or found <= allowed):
            return None
    return f"{mutant} fails {' '.join(sorted(found)) or 'nothing'} instead of {' '.join(sorted(wanted))}"


def perf(library):
    return [*emulator, build / "bin/conform", build / "mutants" / library, "--perf", "--only", "copy"]


table = (here / "mutants/mutants.txt").read_text()
rows = [line.split() for line in table.splitlines() if re.match("[a-z]", line)]
source = "".join(file.read_text() for file in here.glob("mutants/*_mutants.cpp"))
planted = set(re.findall(r'\{"(\w+)",\s*\w+\s*\}', source))
wrong = [f"{name} must be in both mutants.txt and *_mutants.cpp"
         for name in planted ^ {row[0] for row in rows}]
with ThreadPoolExecutor(AT_ONCE) as pool:
    wrong += [text for text in pool.map(compare, rows) if text]
# --perf must fail for a baseline that is a thousand times faster, and reject an invalid baseline.
measure = perf("libminimal_algo.so")
measured = subprocess.run([*measure, "--json"], capture_output=True, text=True)
faster = re.sub(r'"(ms|noise)": (\S+),',
                lambda field: f'"{field[1]}": {float(field[2]) / 1000:.4f},', measured.stdout)
for baseline, status in ((faster, 1), ("{}", 2)):
    with tempfile.NamedTemporaryFile("w") as before:
        before.write(baseline)
        before.flush()
        # On a loaded machine, noise can hide that a row is slower, so repeat the run.
        for _ in range(3):
            ran = subprocess.run([*measure, "--baseline", before.name], capture_output=True)
            if ran.returncode == status:
                break
    if ran.returncode != status:
        wrong.append(f"--perf --baseline ended with status {ran.returncode} instead of {status}")
# The first library can't be opened; the second never calls back for some formats.
for library, message in (("libmutant_unbound.so", "can't be used"), ("libmutant_algo.so", "no callback")):
    ran = subprocess.run([*perf(library), "--patience", "1"],
                         env={**os.environ, "ORLU_MUTANT": "refuse_formats"}, capture_output=True, text=True)
    if ran.returncode != 1 or message not in ran.stderr:
        wrong.append(f"--perf of {library} ended with status {ran.returncode}: {ran.stderr}")
unbound = judge("libmutant_unbound.so", options=FEW_ROUNDS)
if unbound != {"loading"}:
    wrong.append(f"mutant_unbound fails {unbound} instead of loading")
names = subprocess.run([*emulator, build / "bin/conform", "--list"], capture_output=True, text=True).stdout
for check in (line.split()[0] for line in names.splitlines()):
    if not any(row[1].rstrip("?") == check for row in rows):
        wrong.append(f"no mutant proves the check {check}")
for text in wrong:
    print("FAILED:", text)
if not wrong:
    print(f"All passed: {len(rows) + 1} mutants")
sys.exit(1 if wrong else 0)
