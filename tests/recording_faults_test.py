#!/usr/bin/env python3
"""Tests info and replay with damaged and oversized recordings, and the recorder with a full disk.

recording_faults_test.py BUILD_FOLDER
"""

import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, expect, finish, run  # noqa: E402

SAMPLES = ("capture", "bokeh", "raw16", "night-async")
DAMAGED_OF_EACH = 75
REPLAYED = 8


def outcome(*arguments, **how):
    """Runs ./run. Returns its status, standard output and standard error."""
    done = run(*arguments, **how)
    return done.returncode, done.stdout, done.stderr


def request(sample):
    return str(ROOT / "samples" / f"{sample}.json")


TEXTS = ("request.json", "outcome.json", "events.jsonl")
ANYTHING = r"(?s).*"
# Traces of a Java error. Messages about syntax may contain 'null' in quotes.
STACK = re.compile(r"Exception|(?<!')null")


def damage(shot, copy, chance):
    """Copies a recording, then truncates one file of the copy or flips one bit in it. Returns a pattern that
    the output of info must match."""
    shutil.copytree(shot, copy)
    file = copy / chance.choice([file.name for file in shot.iterdir()] + list(TEXTS))
    whole = file.read_bytes()
    at = chance.randrange(len(whole))
    is_cut = chance.random() < 0.5
    damaged = bytearray(whole)
    damaged[at] ^= 1 << chance.randrange(8)
    file.write_bytes(whole[:at] if is_cut else damaged)
    if file.name not in TEXTS or file.name == "events.jsonl":
        return re.escape(f"{file.name} is cut or damaged")
    if not is_cut:
        # With one bit flipped, a number or name may still be valid.
        return ANYTHING
    if whole[at:].strip() == b"":
        return ANYTHING
    return rf"{file.name}:\d+:\d+: " if file.name == "request.json" else rf"not reached: damaged/\d+/{file.name}"


def joined(text):
    """Returns the output of info with wrapped lines joined."""
    return re.sub(r"\n {5,}", " ", text)


def check_damage(shots):
    chance = random.Random(14)
    wanted = {}
    for i in range(DAMAGED_OF_EACH * len(shots)):
        copy = Path("damaged") / f"{i:04}"
        wanted[str(copy)] = damage(shots[i % len(shots)], copy, chance)
    _, out, err = outcome("info", "damaged")
    expect(f"no stack: {err}", None, STACK.search(err))
    found = dict(re.findall(r"^(damaged/\d+)\n((?:  .*\n)*)", out, re.MULTILINE))
    refused = {re.search(r"damaged/\d+", line)[0]: line for line in err.splitlines()}
    for copy, pattern in wanted.items():
        text = joined(found.get(copy, "")) + refused.get(copy, "")
        expect(f"{copy}, {pattern}: {text}", True, text != "" and re.search(pattern, text) is not None)
        expect(f"{copy} is either listed or refused", True, (copy in found) != (copy in refused))
    expect("lines over 80 columns", [],
           [line for line in out.splitlines() if len(line) > 80 and " " in line.strip()])
    for copy in chance.sample(sorted(wanted), REPLAYED):
        status, out, err = outcome("replay", copy, "--no-explain")
        expect(f"replay {copy}: {status} {out}{err}", True, status in (0, 1, 2) and out + err != "")
        expect(f"replay {copy}: {err}", None, STACK.search(err))


def limited(shot):
    """Yields requests that exceed a limit or have a wrong field, each with the message that info must print.
    The caller enlarges the file of the last request."""
    whole = json.loads((shot / "request.json").read_text())
    image = {"format": "NV21", "width": 2, "height": 2, "rowStrides": None, "planeSizes": None,
             "memory": "shared"}
    large = {**image, "size": 1 << 30}
    rows = {
        "frames": (1001 * whole["frames"][:1], "frames: expected at most 1000 elements, found 1001"),
        "inputs": (4001 * [image], "inputs: expected at most 4000 elements, found 4001"),
        "outputs": (3 * [large],
                    "outputs[2]: expected at most 2147483648 bytes of images up to this one, found "),
    }
    for member, (value, problem) in rows.items():
        yield {**whole, "inputs": [], member: value}, problem
    for changed, problem in (
            ({"size": (1 << 30) + 1}, "size: expected a whole number from 0 to 1073741824, found 1073741825"),
            ({"rowStrides": 17 * [2]}, "rowStrides: expected at most 16 planes, found 17"),
            ({"memory": "hardware", "buffer": None}, "buffer: expected a list, found null"),
            ({"file": "a" * 101, "crc": ""}, "file: expected the name of a file in the recording's folder"),
            ({"file": "a b", "crc": ""}, "file: expected the name of a file in the recording's folder")):
        yield {**whole, "inputs": [{**image, **changed}]}, f"inputs[0].{problem}"
    yield {**whole, "trimmed": []}, "request.json: error: expected at most 8388608 bytes, found 8388609"


def check_limits(shot):
    problems = {}
    for i, (request_json, problem) in enumerate(limited(shot)):
        folder = Path("limits") / f"{i:02}"
        folder.mkdir(parents=True)
        (folder / "request.json").write_text(json.dumps(request_json))
        problems[folder] = problem
    os.truncate(folder / "request.json", (8 << 20) + 1)
    for name, severity, most in (("outcome.json", "", 8 << 20), ("events.jsonl", "error: ", 32 << 20)):
        folder = Path("limits") / name
        shutil.copytree(shot, folder)
        os.truncate(folder / name, most + 1)
        problems[folder] = f"{name}: {severity}expected at most {most} bytes, found {most + 1}"
    _, out, err = outcome("info", "limits")
    for folder, problem in problems.items():
        expect(f"{problem}: {out}{err}", True, any(
            str(folder) in text and problem in text for text in joined(out + err).splitlines()))


def results(folder):
    """Returns the bytes of the outputs without the dates and times of their EXIF blocks."""
    return {file.name: re.sub(rb"\d{4}:\d\d:\d\d \d\d:\d\d:\d\d", b"", file.read_bytes())
            for file in sorted(Path(folder).glob("*-out*"))}


def check_full_disk():
    """A full disk stops the recording with one line in the log. The request's results stay the same."""
    alone = ["unshare", "-m"] if os.geteuid() == 0 else ["unshare", "-Urm"]
    mounted = subprocess.run([*alone, "mount", "-t", "tmpfs", "tmpfs", "/mnt"], capture_output=True,
                             check=False)
    if mounted.returncode != 0:
        print("skipped: cannot mount a file system of a given size here")
        return
    Path("full").mkdir()
    status, plain, _ = outcome("--out", "plain", request("capture"))
    expect("without a recorder", 0, status)
    parameters = [line for line in plain.splitlines() if "parameters" in line]
    has_reason = False
    # A larger disk fills up later: the disk of 4 KiB at the recording's first file, the disk of 900 KiB at
    # the events. The last disk is read-only.
    for size, option in ((4, ""), (8, ""), (300, ""), (700, ""), (900, ""), (4, "ro")):
        script = (f"mount -t tmpfs -o size={size}k tmpfs full && "
                  f"{'mount -o remount,ro full && ' if option else ''}"
                  "{ \"$@\"; status=$?; cp -r full/. kept; exit $status; }")
        shutil.rmtree("kept", ignore_errors=True)
        Path("kept").mkdir()
        status, out, err = outcome("--record", "full/shots", "--out", "images", request("capture"),
                                   command=(*alone, "bash", "-c", script, "bash", ROOT / "run"),
                                   ORLU_PIXELS="full/pixels")
        what = f"a disk of {size} KiB {option}"
        expect(f"{what}: {out}{err}", 0, status)
        expect(f"{what}: the same results", True, results("plain") == results("images"))
        expect(f"{what}: parameters", parameters, [line for line in out.splitlines() if "parameters" in line])
        expect(f"{what}: log {err}", 1, err.count("WARNING: recording of request 103 stopped: "))
        for shot in Path("kept").glob("shots/*"):
            status, out, err = outcome("info", str(shot))
            out = joined(out)
            expect(f"{what}: info {out}{err}", True,
                   "not reached: " in out or "request.json: error: no such regular file: " in err)
            has_reason |= "recording failed: java.io.IOException: No space left on device" in out + err
    expect("a recording that names the full disk", True, has_reason)


with tempfile.TemporaryDirectory() as temporary:
    os.chdir(temporary)
    expect("recorded", 0, outcome("--record", "shots", "--out", "out", *map(request, SAMPLES))[0])
    shots = sorted(Path("shots").iterdir())
    check_damage(shots)
    check_limits(shots[0])
    check_full_disk()
    os.chdir("/")
finish()
