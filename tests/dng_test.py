#!/usr/bin/env python3
"""Tests DNG files as input: compares every pixel of compressed and uncompressed files, and checks the reports
on unsupported and damaged files.

dng_test.py BUILD_FOLDER
"""

import json
import os
import random
import re
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import expect, finish, run  # noqa: E402
from image_files import BYTE, SHORT, dng, read_pgm  # noqa: E402

NO_DNG = "not a valid DNG file: no header contains a DNGVersion"


def sensor(bits):
    """Returns samples with steps of all sizes between neighbours, and the markers of dng_file.cpp."""
    rows = [[(x * x * 977 + y * 2731 * (x % 3)) % (1 << bits) for x in range(32)] for y in range(24)]
    rows[5][7:12] = [value % (1 << bits) for value in (0xA5C3, 0x5A3C, 0, 0xFFFF, 0x8000)]
    return rows


def run_with(option, contents):
    """Writes the contents to shot0.dng and so on, and runs a request with each of these files as input."""
    requests = []
    for i, content in enumerate(contents):
        Path(f"shot{i}.dng").write_bytes(content)
        requests.append(Path(f"shot{i}.json"))
        requests[-1].write_text(json.dumps({
            "request": {"id": 1}, "algorithms": ["engineDistortion"],
            "frames": [{"captureResult": {"android.sensor.timestamp": 1}}],
            "inputs": [{"file": f"shot{i}.dng", "format": "RAW16"}], "outputs": [{"format": "RAW16"}]}))
    return run(*option, *requests)


def takes_every_sample():
    files = [{"bits": bits, "components": components, **blocks}
             for bits in (8, 10, 12, 14, 16) for components in (1, 2)
             for blocks in ({}, {"tile": (12, 16)}, {"rows_per_strip": 10, "backwards": True})]
    files += [{"bits": bits, "backwards": True, "big_endian": bits == 12, **blocks}
              for bits in (8, 12, 16) for blocks in ({"tile": (18, 16)}, {"rows_per_strip": 10})]
    files.append({"bits": 12, "components": 2, "thumbnail": True, "tile": (40, 32), "big_endian": True})
    # LibRaw applies ActiveArea (50829) and BlackLevel (50714) only when it develops an image, not here.
    files.append({"bits": 12, "extra": [(50829, SHORT, [1, 1, 23, 31]), (50714, SHORT, [64])]})
    done = run_with(["--out", "out"], [dng(sensor(file["bits"]), **file) for file in files])
    expect(f"DNG files: {done.stderr}{done.stdout[-300:]}", 0, done.returncode)
    for i, file in enumerate(files):
        expect(file, sensor(file["bits"]), read_pgm(f"out/shot{i}-base.pgm"))


def refuses():
    rows = sensor(12)
    packed = dng(rows, bits=12, components=2, tile=(16, 24))
    table = (
        (b"no image", NO_DNG),
        (dng(rows).replace(bytes([1, 4, 0, 0]), bytes(4)), NO_DNG),
        (dng(rows, photometric=34892), "contains no raw image: no PhotometricInterpretation is 32803"),
        (dng([row[:16] for row in rows]), "ImageWidth: expected 22 to 16384, found 16"),
        (dng(rows).replace(b"\0\1\4\0\1\0\0\0\x20\0\0", b"\0\1\4\0\1\0\0\0\x20\0\1", 1),
         "ImageWidth: expected 22 to 16384, found 65568"),
        (dng(rows, extra=[(277, SHORT, [3])]), "SamplesPerPixel: expected 1, found 3"),
        (dng(rows, pattern=[(33421, SHORT, [6, 6]), (33422, BYTE, bytes([1, 2, 1, 1, 0, 1] * 6))]),
         "CFAPattern: expected a Bayer mosaic, found a 6x6 mosaic"),
        (dng(rows, compression=34892), "Compression: expected 1 or 7, found 34892"),
        (dng(rows, compression=7), "damaged: strip or tile 0 lacks 768 of 768 samples"),
        (dng(rows, tile=(16, 12), strips=3), "expected 4 strips or tiles, found 3"),
        # The second tile begins with an end marker, which LibRaw interprets as the end of all tiles.
        (b"\xff\xd8".join(packed.rsplit(b"\xff\xd8", 1)[:1]) + b"\xff\xd9" + packed.rsplit(b"\xff\xd8", 1)[1],
         "damaged: strip or tile 1 lacks 384 of 384 samples"))
    done = run_with(["--check"], [content for content, _ in table])
    for i, line in enumerate(re.sub(r"json:1:\d+", "json", done.stderr).splitlines()[:-1]):
        expect(f"refused {i}", f"shot{i}.json: error: inputs[0].file: shot{i}.dng: {table[i][1]}", line)
    expect("refused", len(table), len(done.stderr.splitlines()) - 1)


def survives_damage():
    """A truncated file is rejected; a file with flipped bits is accepted, or rejected with one line."""
    dice = random.Random(7)
    whole = [dng(sensor(12), bits=12, **blocks)
             for blocks in ({"components": 2, "tile": (16, 24)}, {"rows_per_strip": 10})]
    cut = [data[:end] for data in whole for end in range(0, len(data) - 4, len(data) // 25)]
    flipped = []
    for data in whole * 40:
        damaged = bytearray(data)
        for _ in range(dice.choice((1, 8))):
            damaged[dice.randrange(dice.choice((300, len(data))))] ^= 1 << dice.randrange(8)
        flipped.append(bytes(damaged))
    done = run_with(["--check"], cut)
    expect(f"cut: {done.stdout}", [2, len(cut) + 1, ""],
           [done.returncode, len(done.stderr.splitlines()), done.stdout])
    done = run_with(["--check"], flipped)
    told = [line for line in (done.stdout + done.stderr).splitlines() if re.match(r"shot\d+\.json:", line)]
    expect(f"flipped: {done.stderr[-300:]}", [2, len(flipped)], [done.returncode, len(told)])


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for case in (takes_every_sample, refuses, survives_damage):
        case()
finish()
