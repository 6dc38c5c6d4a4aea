#!/usr/bin/env python3
"""Compares the events of two runs of the same requests. docs/events.md describes the fields of events.

compare_events.py FILE FILE

Each thread must have made the same calls in the same order, with the same values and results. Ignores what
depends on the machine: times, addresses, paths, thread ids, call numbers and descriptor numbers.
"""

import json
import sys
from itertools import zip_longest
from pathlib import Path

# Fields that differ between runs: times, ids, addresses and facts about the machine. The number of stack
# frames in "from" depends on the compiler.
OF_THE_RUN = ("t", "tid", "thread", "n", "of", "ns", "from", "cookie", "path", "pid", "machine",
              "pointerBits", "probe")
# Fields that also differ in "pixels" events: the file's name contains the process id, and the checksum of a
# JPEG changes with the creation time stored in it. ./run diff compares the pixels themselves.
OF_THE_PIXELS = ("file", "crc")


def read(file):
    """Returns the events of each thread in order. Threads are sorted by their first event."""
    threads = {}
    for line in file.read_text("utf-8").splitlines():
        event = json.loads(line)
        if event["event"] != "module":
            threads.setdefault(event["tid"], []).append(plain(event))
    return list(threads.values())


def plain(event):
    left_out = OF_THE_RUN + (OF_THE_PIXELS if event["event"] == "pixels" else ())
    event = {field: value for field, value in event.items() if field not in left_out}
    for image in event.get("inputs", []) + event.get("outputs", []):
        image["planes"] = [int(plane, 16) != 0 for plane in image["planes"]]
        image["fds"] = len(image["fds"])
        without_descriptors(image["handle"])
    for handle in event.get("handles", []):
        without_descriptors(handle)
    return event


def without_descriptors(handle):
    if handle is not None:
        handle["data"] = handle["data"][handle["numFds"]:]


def compare_events(one, other):
    """Yields a line for each thread that differs, with its first difference: later ones follow from it."""
    left, right = read(one), read(other)
    if len(left) != len(right):
        yield f"events: {len(left)} threads / {len(right)} threads"
    for thread, (events, counterparts) in enumerate(zip(left, right)):
        for index, (event, counterpart) in enumerate(zip_longest(events, counterparts)):
            if event != counterpart:
                yield f"events, thread {thread}, event {index}: {event} / {counterpart}"
                break


def main():
    one, other = (Path(argument) for argument in sys.argv[1:3])
    found = list(compare_events(one, other))
    count = sum(len(events) for events in read(one))
    print(f"{count} events: " + (f"different in {len(found)} places" if found else "all the same"))
    for line in found:
        print(f"  {line}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
