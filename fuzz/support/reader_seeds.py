#!/usr/bin/env python3
"""Writes the examples that fuzz/readers mutates: reader_seeds.py ROOT SEEDS

Each example has its own folder, SEEDS/FORM/NAME. A form is a kind of input, such as "recording" or "dump".
"""

import json
import shutil
import subprocess
import sys
from pathlib import Path

root, seeds = map(Path, sys.argv[1:])
sys.path.insert(0, str(root / "tests/support"))
from image_files import dng, png, tiff  # noqa: E402

RECORDED = ("capture", "watermark", "raw16", "night-async", "bokeh")
ROWS = [[(x * 37 + y * 101) % 1024 for x in range(32)] for y in range(24)]


def small(name):
    """Returns a sample request with small frames."""
    request = json.loads((root / f"samples/{name}.json").read_text())
    request["frames"] |= {"width": 64, "height": 48, "shift": 0}
    return request


def example(form, name, **files):
    folder = seeds / form / name
    folder.mkdir(parents=True)
    for file, data in files.items():
        file = folder / file.replace("__", ".")
        file.write_bytes(data if isinstance(data, bytes) else json.dumps(data, indent=1).encode())
    return folder


# Recordings of small requests, and a JPEG that one of the requests wrote.
work = seeds / "work"
for name in RECORDED:
    folder = example("work", name, request__json=small(name))
    (folder / "photos").symlink_to(root / "samples/photos")
requests = [str(work / name / "request.json") for name in RECORDED]
subprocess.run([root / "run", "--out", work / "out", "--record", seeds / "recording", *requests],
               stdout=subprocess.DEVNULL, check=True)
photo = next((work / "out").glob("*-out0.jpg")).read_bytes()
shutil.rmtree(work)

for sample in sorted(root.glob("samples/*.json")):
    folder = example("request", sample.stem, request__json=sample.read_bytes())
    (folder / "photos").mkdir()
    for picture in root.glob("samples/photos/*.jpg"):
        (folder / "photos" / picture.name).symlink_to(picture)

PICTURES = {"plain.dng": dng(ROWS), "packed.dng": dng(ROWS, bits=10, rows_per_strip=5),
            "tiles.dng": dng(ROWS, big_endian=True, tile=(16, 16)),
            "lossless.dng": dng(ROWS, bits=12, compression=7, components=2, thumbnail=True),
            "grey.tif": tiff(ROWS), "grey.png": png(ROWS, 16), "small.jpg": photo}
for name, data in PICTURES.items():
    example("photo", name, **{name: data})
    request = {"request": {"id": 1, "type": "capture"}, "frames": {"count": 1},
               "inputs": [{"file": name, "format": "NV21" if name.endswith("jpg") else "RAW16"}],
               "outputs": [{"format": "NV21"}]}
    example("picture", name, **{name: data, "request.json": request})
bytes_of_yuv = {"file": "main.yuv", "format": "NV21", "width": 32, "height": 16, "offset": 8,
                "planes": [{"offset": 8, "stride": 32, "size": 512}, {"offset": 520, "stride": 32,
                                                                        "size": 256}]}
example("picture", "bytes", **{"main.yuv": bytes(800), "request.json": {
    "request": {"id": 1, "type": "capture"}, "frames": {"count": 1}, "inputs": [bytes_of_yuv],
    "outputs": [{"format": "JPEG"}]}})
example("picture", "scene", **{"small.jpg": photo, "request.json": small("capture") | {"photo": "small.jpg"}})

example("dump", "usual", dump__txt=(root / "tests/importing/dump.txt").read_bytes())
example("suite", "usual", suite__json=(root / "tests/importing/suite.json").read_bytes(),
        main__raw=bytes(384))

for finding in sorted(root.glob("fuzz/corpus/readers/*/*")):
    shutil.copytree(finding, seeds / finding.parent.name / finding.name)
