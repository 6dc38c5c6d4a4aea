#!/usr/bin/env python3
"""Tests request files that take images from files: the bytes that reach the library, and rejected files.

image_files_test.py BUILD_FOLDER
"""

import json
import os
import re
import struct
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, expect, finish, run  # noqa: E402
from image_files import dng, png, read_pgm, read_png, tiff  # noqa: E402

WIDTH, HEIGHT = 16, 12
SAMPLES = [[(61 * x + 130 * y) % 1024 for x in range(WIDTH)] for y in range(HEIGHT)]
# Samples of the DNG files. Their images are larger than the others: the reader rejects sides below 22.
SENSOR = [[(61 * x + 130 * y) % 1024 for x in range(32)] for y in range(24)]
GRAY = [[(5 * x + 11 * y) % 256 for x in range(WIDTH)] for y in range(HEIGHT)]
REFUSED = "run: 1 error and 0 warnings in 1 of 1 file; nothing runs"


def little_endian_rows(rows, stride):
    return b"".join(b"".join(s.to_bytes(2, "little") for s in row).ljust(stride, b"\xee") for row in rows)


def packed10_rows(rows, stride):
    packed = b""
    for row in rows:
        groups = (row[i:i + 4] for i in range(0, len(row), 4))
        packed += b"".join(bytes([s >> 2 for s in g] + [sum((s & 3) << 2 * i for i, s in enumerate(g))])
                           for g in groups).ljust(stride, b"\xee")
    return packed


def write_files():
    gray_rows = b"".join(bytes(row).ljust(20, b"\xee") for row in GRAY)
    files = {
        "tight.raw": little_endian_rows(SAMPLES, 32),
        "padded.raw": b"header" + little_endian_rows(SAMPLES, 40),
        "packed.raw10": packed10_rows(SAMPLES, 20),
        "tight.nv21": bytes(sum(GRAY, [])) + bytes([128]) * (WIDTH * HEIGHT // 2),
        # The chroma plane comes first and has its own stride. Two rows of padding follow the luma.
        "planes.yuv": b"\x80" * 150 + gray_rows + b"\xee" * 40,
        "a.dng": dng(SENSOR, white=1023, rows_per_strip=5),
        "packed.dng": dng(SENSOR, bits=10, big_endian=True),
        "tiled.dng": dng(SENSOR, tile=(20, 8), white=1023),
        "thumbnail.dng": dng(SENSOR, thumbnail=True),
        "a.png": png(SAMPLES, 16), "gray.png": png(GRAY, 8), "a.tiff": tiff(SAMPLES),
        "deflated.dng": dng(SENSOR, compression=8), "cut.dng": dng(SENSOR)[:-1], "text.dng": b"no image",
        "strips.dng": dng(SENSOR, rows_per_strip=10, strips=2),
        "cut.png": png(GRAY, 8)[:70], "odd.png": png([row[:15] for row in GRAY], 8),
    }
    for name, content in files.items():
        Path(name).write_bytes(content)


def run_requests(*requests, check=False):
    """Writes the requests to shot0.json and so on, and runs them with one command."""
    files = [Path(f"shot{i}.json") for i in range(len(requests))]
    for file, request in zip(files, requests):
        file.write_text(json.dumps(request))
    return run("--wide", *(["--check"] if check else ["--out", "out"]), *files)


def request(*inputs):
    frames = [{"captureResult": {"android.sensor.timestamp": 1000 + i}} for i in range(len(inputs))]
    return {"request": {"id": 1}, "algorithms": ["engineDistortion"], "frames": frames, "inputs": list(inputs),
            "outputs": [{"format": inputs[0].get("format", "RAW16"), "stride": inputs[0].get("stride", 0)}]}


def takes_raw():
    """The algorithm library gets samples of each kind of file unchanged, and copies them to the output."""
    size = {"width": WIDTH, "height": HEIGHT}
    images = (
        {"file": "tight.raw", "format": "RAW16", **size},
        {"file": "padded.raw", "format": "RAW_SENSOR", "offset": 6, "stride": 40, **size},
        {"file": "padded.raw", "format": "RAW_SENSOR", "planes": [{"offset": 6, "stride": 40, "size": 472}],
         "memory": "hardware", **size},
        {"file": "packed.raw10", "format": "MIPI_RAW10", **size},
        {"file": "a.dng", "format": "RAW16"}, {"file": "a.dng", "format": "MIPI_RAW10"},
        {"file": "packed.dng", "format": "RAW16"}, {"file": "tiled.dng", "format": "RAW16"},
        {"file": "thumbnail.dng", "format": "RAW_SENSOR", "stride": 80},
        {"file": "a.png", "format": "RAW16"}, {"file": "a.tiff", "format": "RAW16"})
    Path("out").mkdir()
    Path("out/shot0-out0.pgm").symlink_to("../linked")
    done = run_requests(*(request(image) for image in images))
    expect("a link in the place of an image", False, Path("linked").exists())
    expect(f"raw files: {done.stderr}{done.stdout}", (0, False), (done.returncode, "noise" in done.stdout))
    for i, image in enumerate(images):
        samples = SENSOR if image["file"].endswith(".dng") else SAMPLES
        expect(f"{image} in", samples, read_pgm(f"out/shot{i}-base.pgm"))
        expect(f"{image} out", samples, read_pgm(f"out/shot{i}-out0.pgm"))


def takes_pictures():
    planes = [{"offset": 150, "stride": 20, "size": 280}, {"offset": 0, "stride": 24, "size": 136}]
    images = (
        {"file": "gray.png", "format": "NV21", "stride": 32}, {"file": "gray.png", "format": "YV12"},
        {"file": "gray.png", "format": "R8G8B8A8"},
        {"file": "tight.nv21", "format": "NV21", "width": WIDTH, "height": HEIGHT},
        {"file": "planes.yuv", "format": "NV21", "width": WIDTH, "height": HEIGHT, "planes": planes})
    done = run_requests(*(request(image) for image in images))
    expect(f"pictures: {done.stderr}{done.stdout}", 0, done.returncode)
    for i, image in enumerate(images):
        expect(f"{image} in", [[s for s in row for _ in range(3)] for row in GRAY],
               read_png(Path(f"out/shot{i}-base.png").read_bytes()))


def takes_several():
    """A request can mix images from files and from the photo. PSNR is printed only if the base frame is from
    the photo."""
    mixed = request({"format": "NV21"}, {"file": "gray.png", "format": "NV21", "frame": 1})
    mixed.update(photo=str(ROOT / "samples/photos/table.jpg"), frames={
        "count": 2, "noise": 5, "width": WIDTH, "height": HEIGHT, "common": {"captureResult": {
            "android.sensor.timestamp": {"first": 1, "step": 1}}}})
    two = request({}, {})
    two["inputs"] = {"format": "RAW16", "file": ["a.dng", "packed.dng"]}
    done = run_requests(mixed, two)
    for part in ("frame 1 from gray.png", "output 0, luma PSNR", "  2 x RAW16 32x24, ",
                 "frame 1 from packed.dng"):
        expect(f"{part}: {done.stderr}{done.stdout}", 1, done.stdout.count(part))


def without_columns(lines):
    return re.sub(r"(?m)^(shot0.json:1):\d+:", r"\1::", lines).splitlines()


def refuses():
    raw = {"file": "tight.raw", "format": "RAW16", "width": WIDTH, "height": HEIGHT}
    nv21 = {"file": "tight.nv21", "format": "NV21", "width": WIDTH, "height": HEIGHT}
    for image, problem in (
            ({**raw, "file": "none.raw"}, "file: no such file: none.raw"),
            ({**raw, "file": "/dev/zero"},
             "file: expected a regular file, found another kind: /dev/zero"),
            ({"format": "RAW16", "file": "tight.raw", "width": 16}, "missing field height"),
            ({"format": "RAW16", "width": 16},
             "width: requires the field \"file\"; without it, the pixels come from a photo"),
            ({**raw, "stride": 30}, "stride: expected at least 32 bytes (a row of 16 pixels), found 30"),
            ({**raw, "height": 13}, "file: tight.raw: plane 0: expected 416 bytes (416 at offset 0), found 384"),
            ({**raw, "offset": 1}, "file: tight.raw: plane 0: expected 385 bytes (384 at offset 1), found 384"),
            ({**nv21, "stride": 18},
             "file: tight.nv21: plane 1: expected 324 bytes (108 at offset 216), found 288"),
            ({**nv21, "planes": [{}]}, "planes: expected 2 planes for NV21, found 1"),
            ({**nv21, "planes": [{"size": 10}, {}]},
             "planes[0].size: expected a whole number from 192 to 536870912, found 10"),
            ({**nv21, "width": 15}, "file: expected even sides for NV21, found 15x12"),
            ({"file": "odd.png", "format": "NV21"}, "file: expected even sides for NV21, found 15x12"),
            ({"file": "a.dng", "format": "RAW16", "width": 18},
             "width: expected 32 as in the header of a.dng, found 18"),
            ({"file": "a.dng", "format": "NV21"}, "file: expected a raw format for a DNG file, found NV21"),
            ({"file": "a.dng", "format": "RAW16", "bits": 9},
             'file: a.dng: a sample is 1021, too large for 9 bits (field "bits")'),
            ({"file": "a.dng", "format": "RAW16", "offset": 4},
             "offset: unexpected for a file with its own header"),
            ({"file": "deflated.dng", "format": "RAW16"},
             "file: deflated.dng: Compression: expected 1 or 7, found 8"),
            ({"file": "cut.dng", "format": "RAW16"},
             "file: cut.dng: too short: strip or tile 0: expected {size} bytes, found {short}"),
            ({"file": "strips.dng", "format": "RAW16"}, "file: strips.dng: expected 3 strips or tiles, found 2"),
            ({"file": "gray.png", "format": "JPEG"}, "file: expected a JPEG file for the format JPEG")):
        cut = Path("cut.dng").stat().st_size
        line = f"error: inputs[0]{': ' if problem.startswith('missing') else '.'}" + problem.format(
            size=cut + 1, short=cut)
        done = run_requests(request(image), check=True)
        expect(image, (2, [f"shot0.json:1:: {line}", REFUSED]),
               (done.returncode, without_columns(done.stderr)))
    Path("below").mkdir()
    whole = Path.cwd() / "tight.raw"
    for name, is_told in (("../tight.raw", True), ("x/../../tight.raw", True), (whole, False)):
        Path("below/x").mkdir(exist_ok=True)
        Path("below/shot.json").write_text(json.dumps(request({**raw, "file": str(name)})))
        done = run("--check", "below/shot.json")
        expect(f"{name}: {done.stderr}", (0, is_told), (
            done.returncode, f"file: outside the request file's folder: {name}" in done.stderr))
    bits = struct.pack("<HHI", 258, 3, 1)
    Path("bits.tiff").write_bytes(tiff(SAMPLES).replace(bits + b"\x10", bits + b"\x18"))
    done = run_requests(request({"file": "bits.tiff", "format": "RAW16"}), check=True)
    problem = "bits.tiff: expected 1 to 16, 32 or 64 bits per sample, found 24"
    expect("24 bits per sample", True, problem in done.stderr)
    for name in ("text.dng", "cut.png"):
        done = run_requests(request({"file": name, "format": "RAW16"}))
        lines = without_columns(done.stderr)
        expect(f"{name}: {lines}", [2, True, [REFUSED], ""], [done.returncode, lines[0].startswith(
            f"shot0.json:1:: error: inputs[0].file: {name}: "), lines[1:], done.stdout])


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    write_files()
    for case in (takes_raw, takes_pictures, takes_several, refuses):
        case()
finish()
