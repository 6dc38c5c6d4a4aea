#!/usr/bin/env python3
"""Tests trimmed recordings: cropped pixels and their descriptions, private copies, and replays.

trimming_test.py BUILD_FOLDER
"""

import json
import os
import sys
import tempfile
import zlib
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, expect, failures, finish, run  # noqa: E402

WIDTH, HEIGHT = 32, 24
X, Y, NEW_WIDTH, NEW_HEIGHT = 8, 6, 12, 10
# Layout of each image: format | memory | (stride, number of extra bytes after the plane) for the first plane
# or the first two planes | for each plane, bytes per image column | for each plane, image rows per plane row.
# A negative number means that the last row is shorter than the stride. Other planes have no extra bytes.
LAYOUTS = {
    "nv21": ("NV21", "shared", [(32, 0)], [1, 1], [1, 2]),
    "padded": ("NV21", "hardware", [(48, 0)], [1, 1], [1, 2]),
    "nv12": ("NV12", "shared", [(40, 80), (40, -8)], [1, 1], [1, 2]),
    "yu12": ("YU12", "shared", [(36, 0)], [1, .5, .5], [1, 2, 2]),
    "yv12": ("YV12", "hardware", [(32, 0)], [1, .5, .5], [1, 2, 2]),
    "raw16": ("RAW16", "shared", [(64, 0)], [2], [1]),
    "sensor": ("RAW_SENSOR", "hardware", [(72, 0)], [2], [1]),
    "raw10": ("MIPI_RAW10", "hardware", [(44, 0)], [1.25], [1]),
    "rgba": ("R8G8B8A8", "hardware", [(136, 0)], [4], [1]),
}


def printed(status, *arguments):
    """Runs ./run, which must exit with this status (None: any). Returns its output."""
    done = run(*arguments)
    if status not in (None, done.returncode):
        failures.append(f"{arguments}: status {done.returncode} instead of {status}: "
                        f"{done.stdout}{done.stderr}")
    return done.stdout + done.stderr


def planes_of(layout):
    """Returns a list of (offset, stride, bytes per row, rows), one per plane, and the size of the memory."""
    _, _, planes, column, subsampling = layout
    strides = [planes[0][0]] + [planes[-1][0] if len(planes) > 1 else int(planes[0][0] * c)
                                for c in column[1:]]
    found, at = [], 0
    for i, stride in enumerate(strides):
        rows = HEIGHT // subsampling[i]
        found.append((at, stride, int(WIDTH * column[i]), rows))
        at += stride * rows + (planes[i][1] if i < len(planes) else 0)
    return found, at


def value(plane, row, byte):
    return (plane * 91 + row * 37 + byte * 3 + 1) % 255 + 1


def request(name, layout):
    planes, size = planes_of(layout)
    pixels = bytearray(size)
    for i, (at, stride, row_bytes, rows) in enumerate(planes):
        for row in range(rows):
            start = at + row * stride
            pixels[start:start + row_bytes] = bytes(value(i, row, b) for b in range(row_bytes))
    Path(f"{name}.bin").write_bytes(pixels)
    image = {"format": layout[0], "memory": layout[1], "width": WIDTH, "height": HEIGHT,
             "file": f"{name}.bin", "stride": layout[2][0][0], "frame": 0}
    if len(layout[2]) > 1:
        second = planes[1][0]
        image["planes"] = [{"offset": 0, "stride": layout[2][0][0], "size": second},
                           {"offset": second, "stride": layout[2][1][0], "size": size - second}]
    sample = json.loads((ROOT / "samples" / "watermark.json").read_text())
    return {**{key: sample[key] for key in ("client", "algorithms")}, "request": {"id": 1, "type": "capture"},
            "about": name, "frames": [sample["frames"]["common"] if "frames" in sample else {}],
            "inputs": [image],
            "outputs": [{key: image[key] for key in ("format", "memory", "width", "height")}]}


def recorded(folder):
    return json.loads((folder / "request.json").read_text())


def check_crop(name, layout, folder):
    whole, size = planes_of(layout)
    found = recorded(folder)
    image, output = found["inputs"][0], found["outputs"][0]
    pixels = (folder / image["file"]).read_bytes()
    expect(f"{name} check", f"{zlib.crc32(pixels):08x}", image["crc"])
    expect(f"{name} size", image["size"], len(pixels))
    for part in ("inputs", "outputs"):
        expect(f"{name} {part} area", (NEW_WIDTH, NEW_HEIGHT),
               (found[part][0]["width"], found[part][0]["height"]))
    # A crop preserves the number of padding bytes after each row and after each plane.
    column, subsampling = layout[3], layout[4]
    at = 0
    for i, (old, stride, row_bytes, rows) in enumerate(whole):
        new_row, new_rows = int(NEW_WIDTH * column[i]), NEW_HEIGHT // subsampling[i]
        new_stride = stride - row_bytes + new_row
        for row in range(new_rows):
            first_row, first = Y // subsampling[i], int(X * column[i])
            wanted = bytes(value(i, first_row + row, first + b) for b in range(new_row))
            start = at + row * new_stride
            expect(f"{name} plane {i} row {row}", wanted, pixels[start:start + new_row])
        if i < len(image["rowStrides"]):
            expect(f"{name} stride {i}", new_stride, image["rowStrides"][i])
        behind = (whole[i + 1][0] if i + 1 < len(whole) else size) - old - stride * rows
        at += new_stride * new_rows + behind
    expect(f"{name} memory", at, len(pixels))
    expect(f"{name} planes", len(pixels), sum(image["planeSizes"]))
    expect(f"{name} files", {"request.json", image["file"]}, {file.name for file in folder.iterdir()})


def check_every_layout():
    for name, layout in LAYOUTS.items():
        Path(f"{name}.json").write_text(json.dumps(request(name, layout)))
    printed(None, "--record", "shots", "--out", "out", *[f"{name}.json" for name in LAYOUTS])
    shots = sorted(Path("shots").iterdir())
    expect("recordings", len(LAYOUTS), len(shots))
    for shot, (name, layout) in zip(shots, LAYOUTS.items()):
        out = printed(0, "trim", shot, "--out", f"cropped/{name}",
                      "--crop", f"{X},{Y},{NEW_WIDTH},{NEW_HEIGHT}")
        expect(f"{name} note", True, "note: unchanged tags with sizes or positions" in out)
        check_crop(name, layout, Path("cropped") / name)
    out = printed(0, "replay", "cropped")
    expect("replayed", len(LAYOUTS), out.count(": ran, "))
    expect("notes", len(LAYOUTS), out.count("note: this recording is trimmed: cropped to 12x10 from 8,6"))
    # Without X,Y, --crop selects the middle of the image, at a position that is aligned for all formats.
    out = printed(0, "trim", shots[0], "--out", "middle", "--crop", "20,12") + printed(0, "info", "middle")
    expect("the middle", True, "cropped to 20x12" in out)
    pixels = Path("middle/input0.bin").read_bytes()
    expect("the middle's rows", bytes(value(0, 6, 4 + b) for b in range(20)), pixels[:20])
    form = "expected X and WIDTH in multiples of 4, Y and HEIGHT in multiples of 2, and no empty area"
    for area, problem in {
        "12": "expected WIDTH,HEIGHT or X,Y,WIDTH,HEIGHT, found 12",
        "8,6,12,10,2": "expected WIDTH,HEIGHT or X,Y,WIDTH,HEIGHT, found 8,6,12,10,2",
        "2,6,12,10": f"{form}, found 2,6,12,10",
        "8,3,12,10": f"{form}, found 8,3,12,10",
        "0,12": f"{form}, found 0,12",
        "24,6,12,10": "12x10 from 24,6 exceeds input 0 of 32x24",
        "36,10": "36x10 exceeds input 0 of 32x24",
    }.items():
        out = printed(2, "trim", shots[0], "--out", "refused", "--crop", area)
        expect(area, f"run: error: --crop: {problem}\n", out)
    expect("nothing is left", False, Path("refused").exists())


def check_samples():
    """Trims several samples to the last frame and a crop; checks which frames and inputs the copies have."""
    kinds = {"night": 1, "bokeh": 2, "raw-night": 1, "hdr7": 1, "refocus": 1}
    printed(0, "--record", "kinds", "--out", "out", *[ROOT / "samples" / f"{kind}.json" for kind in kinds])
    for shot, (kind, inputs) in zip(sorted(Path("kinds").iterdir()), kinds.items()):
        frames = recorded(shot)["frames"]
        kept = [len(frames) - 1]
        out = printed(0, "trim", shot, "--out", f"few/{kind}", "--frames", str(kept[0]), "--crop", "200,160")
        expect(f"{kind}, a JPEG", kind == "refocus", "input 0 is JPEG: unchanged" in out)
        found = recorded(Path("few") / kind)
        expect(f"{kind} frames", [frames[kept[0]]], found["frames"])
        images = found["inputs"]
        expect(f"{kind} inputs", [0] * inputs, [image["frame"] for image in images])
        expect(f"{kind} files", True, all((Path("few") / kind / image["file"]).exists() for image in images))
    out = printed(0, "replay", "few")
    expect("kinds replayed", len(kinds), out.count(": ran, "))


# Kind and value of each tag that a private copy omits. No file of the copy may contain any of SECRETS.
IDENTITY = "value that may identify a person or machine"
PRIVATE = {
    "android.jpeg.gpsLocation": ("location", {"latitude": 48.137, "longitude": 11.575, "time": 1700000000123}),
    "android.statistics.faces": ("face", [{"left": 1, "top": 2, "right": 3, "bottom": 4, "score": 98}]),
    "orlu.control.gender_type": ("face", 1),
    "orlu.control.localtime": ("time of day", "1700000456"),
    "orlu.control.watermark_name": (IDENTITY, "Shot by Anna"),
    "my.serialNumber": (IDENTITY, "R58ABC"),
    "my.serialNumbers": (IDENTITY, {"long": 42424242}),
    "my.owners": (IDENTITY, {"strings": ["Anna"]}),
    "my.log": ("text", "/home/anna/log"),
    "my.blob": ("text", {"bytes": b"\0\1/home/anna/calibration\0".hex()}),
    "my.wide": ("text", {"bytes": "/home/anna".encode("utf-16-le").hex()}),
    "my.long": ("text", {"bytes": "41" * 30000}),  # a parser must not recurse per character
}
SECRETS = ("48.137", "1700000", "R58ABC", "424242", "anna", "Anna", b"anna".hex(),
           "anna".encode("utf-16-le").hex(), "about someone", "Linux", "Exif")
KEPT = ("my.updates", "my.allocations", "my.surfaceRect", "my.ghost")


def check_private():
    request = json.loads((ROOT / "samples/capture.json").read_text())
    request |= {"about": "about someone", "photo": str(ROOT / "samples/photos/portrait.jpg")}
    request["properties"] = {"persist.sys.camera3rd.autotest": "1", "debug.dump": "/home/anna"}
    request["frames"] |= {"width": 64, "height": 48}
    common = request["frames"]["common"]
    for name, (_, value) in PRIVATE.items():
        common.setdefault("composition" if name.startswith("my.") else "captureResult", {})[name] = value
    common["composition"] |= {name: "plain" for name in KEPT}
    Path("private.json").write_text(json.dumps(request))
    printed(0, "--record", "whole", "--out", "out", "private.json")
    shot = next(Path("whole").iterdir())
    listed = printed(0, "info", "--private", shot)
    out = printed(0, "trim", shot, "--out", "private", "--private")
    for name, (kind, _) in [*PRIVATE.items(), ("debug.dump", ("text", ""))]:
        expect(f"info on {name}", True, f"  {kind}: {name}\n" in listed)
        expect(f"left out {name}", True, f"  note: left out, {kind}: {name}\n" in out)
    for line in ("time of day: recording.milliseconds", "machine: recording.system", "of a JPEG: output0.bin",
                 "names of threads: events.jsonl"):
        expect(f"info on {line}", True, line in listed)
    held = [secret for secret in SECRETS for file in Path("private").iterdir()
            if secret.encode() in file.read_bytes()]
    expect("secrets in the copy", [], held)
    expect("info on the copy", "private: nothing found outside the pixels\n",
           printed(0, "info", "--private", "private"))
    copy = recorded(Path("private"))
    expect("what else is kept", True, {"android.sensor.timestamp", "android.sensor.info.colorFilterArrangement"}
           <= set(copy["frames"][0]["captureResult"]))
    expect("names that look private", set(KEPT), set(KEPT) & set(copy["frames"][0]["composition"]))
    expect("properties", {"persist.sys.camera3rd.autotest": "1"}, copy["properties"])
    out = printed(0, "replay", "private")
    expect("the copy runs", True, ": ran, " in out and "trimmed: without private facts" in out)
    printed(0, "trim", shot, "--out", "faces", "--private", "--faces")
    expect("faces on demand", True, "android.statistics.faces" in Path("faces/request.json").read_text())

    # Adds a JPEG input with an EXIF block, and strings in places where another tool may write them.
    jpeg = (shot / "output0.bin").read_bytes()
    image = recorded(shot)["outputs"][0] | {"file": "input0.bin", "size": len(jpeg), "frame": 0,
                                            "crc": f"{zlib.crc32(jpeg):08x}"}
    folder = Path("private")
    (folder / "input0.bin").write_bytes(jpeg)
    changed = recorded(folder) | {"inputs": [image], "trimmed": [{"frames": [0, "anna"], "by": "anna"}]}
    changed["request"]["type"] = "capture for anna@example.org"
    (folder / "request.json").write_text(json.dumps(changed))
    (folder / "outcome.json").write_text(json.dumps({"failed": "no space in /home/anna"}))
    out = printed(0, "info", "--private", folder) + printed(0, "trim", folder, "--out", "jpeg", "--private")
    for line in ("text: request.type", "text: outcome.json, failed"):
        expect(f"info on {line}", True, line in out)
    expect("secrets elsewhere", False, b"anna" in Path("jpeg/request.json").read_bytes())
    plain = Path("jpeg/input0.bin").read_bytes()
    expect("EXIF", (True, False), (b"Exif" in jpeg, b"Exif" in plain))
    scan = jpeg.index(b"\xff\xda")
    expect("a JPEG's picture", jpeg[scan:], plain[scan:])


with tempfile.TemporaryDirectory() as temporary:
    os.chdir(temporary)
    Path("cropped").mkdir()
    check_every_layout()
    check_samples()
    check_private()
    os.chdir("/")
finish()
