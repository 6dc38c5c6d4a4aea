#!/usr/bin/env python3
"""Compares docs/conformance.md with the kit's own output: pages_test.py CONFORM PROJECT"""
import re
import subprocess
import sys
from pathlib import Path

page = (Path(sys.argv[2]) / "docs/conformance.md").read_text()


def printed(flag):
    return subprocess.run([sys.argv[1], flag], capture_output=True, text=True, check=True).stdout


wrong = []
if not page.endswith("prints this.\n\n" + printed("--contract")):
    wrong.append("the contract differs from the output of --contract")
described = re.findall(r"^\| `(\w+)` \| (.*?) \|", page, re.MULTILINE)
if described != [tuple(line.split(None, 1)) for line in printed("--list").splitlines()]:
    wrong.append("the table of checks differs from the output of --list")
for text in wrong:
    print("FAILED: docs/conformance.md:", text)
sys.exit(1 if wrong else 0)
