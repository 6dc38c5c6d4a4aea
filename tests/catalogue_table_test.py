#!/usr/bin/env python3
"""The catalogue's tables have a row for each tag, in its place, and none for what does not exist.

catalogue_table_test.py ROOT (the project's folder)
"""

import re
import sys
from pathlib import Path

ROOT = Path(sys.argv[1])
CATALOGUE = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/catalogue"
TAGS = ROOT / "host/java/android/hardware/camera2/impl/tags.txt"

failures = []


def rows(file, columns):
    """Line number and columns of each row."""
    for number, line in enumerate(file.read_text().splitlines(), 1):
        if line.strip() and not line.startswith("#"):
            row = line.split(None, columns - 1)
            if len(row) != columns:
                failures.append(f"{file.relative_to(ROOT)}:{number}: needs {columns} columns")
            else:
                yield number, row


def check_names(file, columns, names, what, every=True, once=True):
    """Rows begin with a name of names, which are sorted; every name has a row; a row ends in a sentence."""
    found = []
    for number, row in rows(file, columns):
        place = f"{file.relative_to(ROOT)}:{number}"
        if row[0] not in names:
            failures.append(f"{place}: there is no {what} {row[0]}")
        if once and row[0] in found:
            failures.append(f"{place}: {row[0]} has a row already")
        if not re.search(r"[.!?]$", row[-1]):
            failures.append(f"{place}: {row[-1]!r} is no sentence")
        found.append(row[0])
    if every:
        failures.extend(f"{file.relative_to(ROOT)}: no row for the {what} {name}"
                        for name in names if name not in found)
        if not failures and found != list(names):
            wrong = next(a for a, b in zip(found, names) if a != b)
            failures.append(f"{file.relative_to(ROOT)}: {wrong} is not where {TAGS.name} has it")
    return len(found)


def main():
    tags = [row[0] for _, row in rows(TAGS, 2)]
    counts = [check_names(CATALOGUE / "tags.txt", 3, tags, "tag"),
              check_names(CATALOGUE / "values.txt", 3, tags, "tag", every=False, once=False)]
    print(*failures, f"{counts} rows of tags and values", sep="\n")
    return 1 if failures or not all(counts) else 0


sys.exit(main())
