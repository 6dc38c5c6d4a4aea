#!/usr/bin/env python3
"""Checks that the catalogue's tables have rows for exactly the existing tags, algorithms and image formats.

catalogue_table_test.py ROOT (the project's folder)
"""

import re
import sys
from pathlib import Path

ROOT = Path(sys.argv[1])
CATALOGUE = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/tags"
TAGS = ROOT / "host/java/android/hardware/camera2/impl/tags.txt"
PIXEL_FORMAT = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/tags/PixelFormat.java"
PARAMETERS = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/tags/parameters.txt"
CAMERA_TYPES = {"Bokeh", "BokehTele2", "BokehMoon", "Bokeh_Wide_UltraWide", "BokehTele2_Tele_Wide"}
# A format that the library classifies, but request files cannot have.
LIBRARY_FORMAT = "MIPI_RAW12"
# NAME matches code that searches for, adds or removes one algorithm. NAMES matches a list of algorithms.
NAME = re.compile(r'(?:listHas|append|remove|emplace_back|asksFor|listed)\("(\w+)"|^ +\{"(\w+)", +1U <<')
NAMES = re.compile(r'(?:list|mAlgoList|supported) = \{([^}]*)\};')

failures = []


def rows(file, columns):
    """Yields the line number and columns of each row."""
    for number, line in enumerate(file.read_text().splitlines(), 1):
        if line.strip() and not line.startswith("#"):
            row = line.split(None, columns - 1)
            if len(row) != columns:
                failures.append(f"{file.relative_to(ROOT)}:{number}: needs {columns} columns")
            else:
                yield number, row


def algorithms():
    """Returns all algorithm names in the library, the stand-in and the samples."""
    names = set()
    for source in [*(ROOT / "jni").glob("*.cpp"), *(ROOT / "host/algo").glob("*.cpp")]:
        text = source.read_text()
        names |= {name for line in text.splitlines() for match in NAME.findall(line) for name in match if name}
        names |= {name for literals in NAMES.findall(text) for name in re.findall(r'"(\w+)"', literals)}
    for sample in (ROOT / "samples").glob("*.json"):
        names |= set(re.findall(r'"(\w+)"', re.search(r'"algorithms": \[(.*)\]', sample.read_text()).group(1)))
    return sorted(names, key=str.lower)


def formats():
    text = PIXEL_FORMAT.read_text()
    return sorted(re.findall(r"^    ([A-Z0-9_]+)[,;]", text, re.MULTILINE) + [LIBRARY_FORMAT])


def check_once(file, kinds):
    """Checks that every row's kind is in `kinds`, and that each name has as many rows of a kind as `kinds`
    says (0: any number)."""
    said = {}
    for number, (name, kind, _) in rows(file, 3):
        said.setdefault(name, []).append(kind)
        if kind not in kinds:
            failures.append(f"{file.relative_to(ROOT)}:{number}: unknown kind {kind}")
    for name, found in said.items():
        failures.extend(f"{file.relative_to(ROOT)}: {name} needs {least} row of kind {kind}"
                        for kind, least in kinds.items() if least and found.count(kind) != least)


def check_names(file, columns, names, what, every=True, once=True, sentence=True):
    """Checks that each row starts with one of the names. `once` forbids a second row for a name. `sentence`
    requires that rows end with a sentence. `every` requires a row for every name, in the order of the names.
    Returns the number of rows."""
    found = []
    for number, row in rows(file, columns):
        place = f"{file.relative_to(ROOT)}:{number}"
        if row[0] not in names:
            failures.append(f"{place}: there is no {what} {row[0]}")
        if once and row[0] in found:
            failures.append(f"{place}: {row[0]} already has a row")
        if sentence and not re.search(r"[.!?]$", row[-1]):
            failures.append(f"{place}: {row[-1]!r} does not end with '.', '!' or '?'")
        found.append(row[0])
    if every:
        failures.extend(f"{file.relative_to(ROOT)}: no row for the {what} {name}"
                        for name in names if name not in found)
        order = list(dict.fromkeys(found))
        if not failures and order != list(names):
            wrong = next(a for a, b in zip(order, names) if a != b)
            failures.append(f"{file.relative_to(ROOT)}: {wrong} is out of order")
    return len(found)


def check_words(file, keys):
    """Checks that words in quotes are parameters, algorithms or camera types, and that the library has the
    update functions named in parentheses."""
    functions = "".join(source.read_text() for source in (ROOT / "jni").glob("*.cpp"))
    for number, row in rows(file, 3):
        place = f"{file.relative_to(ROOT)}:{number}"
        failures.extend(f"{place}: unknown word {word}" for word in re.findall(r'"(\w+)"', row[-1])
                        if word not in keys)
        failures.extend(f"{place}: there is no function {name}" for name in re.findall(r"\((upda\w+)\)", row[-1])
                        if f"::{name}(" not in functions)


def main():
    tags = [row[0] for _, row in rows(TAGS, 2)]
    counts = [check_names(CATALOGUE / "tags.txt", 3, tags, "tag"),
              check_names(CATALOGUE / "values.txt", 3, tags, "tag", every=False, once=False),
              check_names(CATALOGUE / "algorithms.txt", 3, algorithms(), "algorithm", once=False),
              check_names(CATALOGUE / "formats.txt", 3, formats(), "format", once=False, sentence=False)]
    keys = {row[1] for _, row in rows(PARAMETERS, 5)} | set(algorithms()) | CAMERA_TYPES
    for table in ("algorithms.txt", "values.txt", "tags.txt"):
        check_words(CATALOGUE / table, keys)
    check_once(CATALOGUE / "algorithms.txt", {"is": 1, "added": 0, "removed": 0, "does": 0, "returns": 0})
    check_once(CATALOGUE / "formats.txt", dict.fromkeys(("is", "code", "planes", "row", "stride", "files"), 1))
    print(*failures, f"{counts} rows of tags, values, algorithms and formats", sep="\n")
    return 1 if failures or not all(counts) else 0


sys.exit(main())
