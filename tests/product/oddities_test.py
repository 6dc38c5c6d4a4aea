#!/usr/bin/env python3
"""Checks that docs/oddities.md agrees with the code in jni/: each "Oddity N" in the code has a paragraph, the
code mentions the number of each paragraph, and the tests that a paragraph lists exist. The tests that
docs/robustness.md names must exist too.

oddities_test.py PROJECT_FOLDER
"""

import pathlib
import re
import sys

PARTS = ("Expected", "Done", "Depends on it", "Held by")


def paragraphs(text):
    """Maps each oddity's number to (line of its heading, text of each part by the part's name)."""
    found = {}
    for match in re.finditer(r"^### (\d+)\. .+\n((?:.+\n)*)", text + "\n", re.MULTILINE):
        line = text.count("\n", 0, match.start()) + 1
        body = re.sub(r"\n  +", " ", match[2])
        if int(match[1]) in found:
            raise SystemExit(f"FAILED: oddity {match[1]} occurs twice")
        found[int(match[1])] = (line, dict(re.findall(r"^- ([^:]+): (.+)$", body, re.MULTILINE)))
    return found


def named_in_code(folder):
    """Maps the number of each oddity that the code mentions to the first file that mentions it."""
    places = {}
    for path in sorted((folder / "jni").iterdir()):
        text = re.sub(r"\n\s*//", " ", path.read_text())
        for match in re.finditer(r"Oddit(?:y|ies) (\d+(?:(?:, | and |\s+)+\d+)*)", text):
            for number in re.findall(r"\d+", match[1]):
                places.setdefault(int(number), path.name)
    return places


def names_of_tests(folder):
    """Returns the names of suites, tests, golden texts and their variations."""
    names = set()
    for path in (folder / "tests").rglob("*_test.cpp"):
        for suite, test in re.findall(r"^TEST(?:_[FP])?\((\w+),\s*(\w+)\)", path.read_text(), re.MULTILINE):
            names |= {suite, f"{suite}.{test}"}
    golden = folder / "tests" / "golden"
    for path in golden.rglob("*.txt"):
        names |= {path.name, str(path.relative_to(golden))}
        names |= set(re.findall(r"^= (\w+) of ", path.read_text(), re.MULTILINE))
    return names


def mistakes(folder):
    page = "docs/oddities.md"
    found = paragraphs((folder / page).read_text())
    code = named_in_code(folder)
    tests = names_of_tests(folder)
    for number in sorted(code.keys() - found.keys()):
        yield f"jni/{code[number]}: Oddity {number} has no paragraph in {page}"
    if sorted(found) != list(range(1, len(found) + 1)):
        yield f"{page}: the numbers are not 1 to {len(found)}, each once"
    for number, (line, parts) in sorted(found.items()):
        if number not in code:
            yield f"{page}:{line}: no code mentions Oddity {number}"
        if tuple(parts) != PARTS:
            yield f"{page}:{line}: oddity {number} has the parts {tuple(parts)}, expected {PARTS}"
        holders = re.findall(r"`([^`]+)`", parts.get("Held by", ""))
        if not holders:
            yield f"{page}:{line}: oddity {number} lists no test"
        for name in holders:
            if name not in tests:
                yield f"{page}:{line}: oddity {number} lists {name}, neither a test nor a golden text"
    page = "docs/robustness.md"
    for name in re.findall(r"`(\w+Test(?:\.\w+)?)`", (folder / page).read_text()):
        if name not in tests:
            yield f"{page}: {name} is not a test"


if __name__ == "__main__":
    lines = list(mistakes(pathlib.Path(sys.argv[1])))
    print("\n".join(lines))
    sys.exit(1 if lines else 0)
