#!/usr/bin/env python3
"""Checks that parameters.txt has a row for every parameter in a golden text or in the library's source.

parameter_table_test.py ROOT (the project's folder)
"""

import re
import sys
from pathlib import Path

ROOT = Path(sys.argv[1])
TABLE = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/tags/parameters.txt"
SECTIONS = "control|parameter|sensor|feedback|system|zoom"
GOLDEN_LINE = re.compile(rf"(?:> |~ )?({SECTIONS}) (\S+?)(?:#\d+)? ([a-z]+)(?:\[(\d+)\])?((?: \S+)*)\s*$")
ELEMENT_SIZES = {"byte": 1, "int": 4, "long": 8, "float": 4, "double": 8}
# Maps each type in golden texts to the types in parameters.txt that can display a value of that type.
SHOWN_AS = {
    "byte": {"BOOL"}, "int": {"INT", "MILLISECONDS"}, "float": {"FLOAT", "MILLISECONDS"},
    "long": {"LONG", "UNSIGNED_LONG"}, "ints": {"INTS", "RECT", "CROP", "SENSOR_CROP"}, "longs": {"LONGS"},
    "floats": {"FLOATS"}, "doubles": {"DOUBLES"}, "text": {"TEXT"},
}
# NAMED_KEY matches a section constant and a key. RESULT_KEY matches quoted words with underscores; in
# result_updater*.cpp, all of these are keys.
NAMED_KEY = re.compile(rf'\bk({SECTIONS.title()}),\s*"(\w+)"')
RESULT_KEY = re.compile(r'"([a-z][a-z0-9]*(?:_[a-z0-9]+)+)"')

failures = []


def fail(where, number, problem):
    failures.append(f"{where.relative_to(ROOT)}:{number}: {problem}")


def read_table():
    rows = {}
    for number, line in enumerate(TABLE.read_text().splitlines(), 1):
        if line and not line.startswith("#"):
            section, key, kind, size, way = line.split()
            if (section, key) in rows:
                fail(TABLE, number, f"{section} {key} already has a row")
            if rows and (section, key) < list(rows)[-1]:
                fail(TABLE, number, f"{section} {key} is out of order")
            rows[section, key] = (kind, size, way.split(","))
    return rows


def size_of(kind, size, values):
    """Returns the number of bytes of a golden value, as text; "0*8" is eight zeros."""
    if size:
        return size
    counts = [re.fullmatch(r".+\*(\d+)", value) for value in values.split()]
    return str(ELEMENT_SIZES[kind.removesuffix("s")] * sum(int(c.group(1)) if c else 1 for c in counts))


def check_golden(file, rows):
    for number, line in enumerate(file.read_text().splitlines(), 1):
        match = GOLDEN_LINE.match(line)
        if not match:
            continue
        section, key, kind, size = match.group(1, 2, 3, 4)
        size = size_of(kind, size, match.group(5))
        row = rows.get((section, key))
        if row is None:
            shown = sorted(SHOWN_AS.get(kind, {"BYTES"}))[0]
            fail(file, number, f"no row for {section} {key}; "
                 f"add to {TABLE.relative_to(ROOT)}: {section} {key} {shown} {size} in")
        elif row[0] not in SHOWN_AS.get(kind, {row[0]}) or row[1] not in ("*", size) or "in" not in row[2]:
            fail(file, number, f"writes {section} {key} as {kind}, {size} bytes; its row in "
                 f"{TABLE.relative_to(ROOT)} has {row[0]} {row[1]} {','.join(row[2])}")


def check_source(file, rows):
    text = file.read_text()
    keys = {key for _, key in rows}
    for pattern in [NAMED_KEY] + [RESULT_KEY] * file.name.startswith("result_updater"):
        for match in pattern.finditer(text):
            section = match.group(1).lower() if pattern is NAMED_KEY else "SECTION"
            key = match.groups()[-1]
            if (section, key) not in rows and not (pattern is RESULT_KEY and key in keys):
                fail(file, text.count("\n", 0, match.start()) + 1, f"no row for {section} {key}; "
                     f"add to {TABLE.relative_to(ROOT)}: {section} {key} TYPE BYTES in|out")


def main():
    rows = read_table()
    golden = sorted((ROOT / "tests/golden").rglob("*.txt"))
    sources = sorted((ROOT / "jni").glob("*.cpp"))
    for file in golden:
        check_golden(file, rows)
    for file in sources:
        check_source(file, rows)
    print(*failures, f"{len(rows)} rows, {len(golden)} golden texts, {len(sources)} sources", sep="\n")
    return 1 if failures or not rows or not golden else 0


sys.exit(main())
