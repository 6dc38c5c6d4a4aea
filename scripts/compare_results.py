#!/usr/bin/env python3
"""Compares what two machines made of the same requests. Called by compare_machines.sh.

compare_results.py FOLDER FOLDER: each holds what one machine left behind,
  results.json  parameters in their order, algorithm lists, values put back, output descriptors
  summary.txt   what ./run printed: which algorithms ran, frames kept and moved, callbacks
  images/       the output images
  events        what passed between the library, the algorithm library and the Java stores

All must be equal but for times: how long something took, and the time of day in a JPEG's EXIF block.
"""

import json
import re
import sys
from pathlib import Path

from compare_events import compare_events, count_events

DURATION = re.compile(r"\b\d+\.\d ms\b")
# A descriptor is a number of the process.
DESCRIPTOR = re.compile(r"\bsharedFd = \d+")
EXIF_TIME = re.compile(rb"\d{4}:\d\d:\d\d \d\d:\d\d:\d\d\0")
SHOWN = 20


def differences(path, one, other):
    """Yields a line for each place where two values of a JSON file are not the same."""
    if type(one) is not type(other):
        yield f"{path}: {one!r} / {other!r}"
    elif isinstance(one, dict):
        # The order of keys counts: it is that of the calls.
        if list(one) != list(other):
            yield f"{path}: keys {list(one)} / {list(other)}"
            return
        for key in one:
            yield from differences(f"{path}.{key}", one[key], other[key])
    elif isinstance(one, list):
        if len(one) != len(other):
            yield f"{path}: {len(one)} entries / {len(other)} entries"
        for index, (left, right) in enumerate(zip(one, other)):
            yield from differences(f"{path}[{name(left, index)}]", left, right)
    elif one != other:
        yield f"{path}: {one!r} / {other!r}"


def name(value, index):
    if isinstance(value, dict) and "key" in value:
        return f"{index} {value['section']} {value['key']}"
    return index


def compare_results(one, other):
    left, right = (json.loads((folder / "results.json").read_text("utf-8")) for folder in (one, other))
    if [report["file"] for report in left] != [report["file"] for report in right]:
        yield "not the same requests"
        return
    for report, counterpart in zip(left, right):
        for timed in (report, counterpart):
            del timed["milliseconds"]
        yield from differences(report["file"], report, counterpart)


def summary(folder):
    text = (folder / "summary.txt").read_text("utf-8").replace(str(folder), "")
    return DESCRIPTOR.sub("sharedFd = *", DURATION.sub("* ms", text)).splitlines()


def compare_summaries(one, other):
    left, right = summary(one), summary(other)
    if len(left) != len(right):
        yield f"summary: {len(left)} lines / {len(right)} lines"
    for index, (line, counterpart) in enumerate(zip(left, right)):
        if line != counterpart:
            yield f"summary, line {index + 1}: {line.strip()} / {counterpart.strip()}"


def image(file):
    content = file.read_bytes()
    return EXIF_TIME.sub(b"*", content) if file.suffix == ".jpg" else content


def compare_images(one, other):
    left, right = ({file.name for file in (folder / "images").iterdir()} for folder in (one, other))
    for missing in sorted(left ^ right):
        yield f"image {missing}: written on one machine alone"
    for both in sorted(left & right):
        if image(one / "images" / both) != image(other / "images" / both):
            yield f"image {both}: not the same bytes"


def counts(folder):
    reports = json.loads((folder / "results.json").read_text("utf-8"))
    parameters = sum(len(report.get("parameters", [])) for report in reports)
    put = sum(len(composition) for report in reports for composition in report["put"])
    images = sum(1 for _ in (folder / "images").iterdir())
    return (f"{len(reports)} requests, {parameters} parameters, {put} values put back, {images} images, "
            f"{count_events(folder)} events")


def main():
    one, other = (Path(argument) for argument in sys.argv[1:3])
    found = [*compare_results(one, other), *compare_summaries(one, other), *compare_images(one, other),
             *compare_events(one, other)]
    print(f"{one.name} / {other.name}: {counts(one)}: "
          + (f"{len(found)} differences" if found else "all the same"))
    for line in found[:SHOWN]:
        print(f"  {line}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
