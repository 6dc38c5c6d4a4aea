#!/usr/bin/env python3
"""Compares the events of two runs of the same requests: docs/events.md has their form.

compare_events.py FILE FILE

Equal must be, for each thread, what was called in which order, with which values, and what came of it. Left out is
what a machine decides: times, addresses, numbers of threads, calls and descriptors, and the files' places.
"""

import json
import sys
from itertools import zip_longest
from pathlib import Path

# Differ from run to run: times and numbers; addresses. How many frames a call came through is the compiler's
# choice.
OF_THE_RUN = ("t", "tid", "thread", "n", "of", "ns", "from", "cookie", "path", "pid", "machine",
              "pointerBits", "probe")
# Of written pixels also: their file is named after the process, and a JPEG says in which second it was made.
# ./run diff compares the pixels themselves.
OF_THE_PIXELS = ("file", "crc")


def read(file):
    """The events of each thread in their order, by the order in which the threads appear."""
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
    """Yields a line for each difference; only the first of a thread, which the rest follows from."""
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
    print(f"{count} events: " + (f"{len(found)} differences" if found else "all the same"))
    for line in found:
        print(f"  {line}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
