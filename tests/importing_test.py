#!/usr/bin/env python3
"""Tests ./run import with three kinds of files: dumps, JSON files of image tests, and photos with EXIF
blocks. The files are complete, truncated or damaged.

importing_test.py BUILD_FOLDER
"""

import json
import os
import struct
import sys
import tempfile
import zlib
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, expect, finish, run  # noqa: E402
from image_files import LONG, SHORT, directory, dng  # noqa: E402

FORMS = ROOT / "tests/importing"
RATIONAL, BYTE, TEXT = 5, 1, 2


def imported(*arguments):
    """Runs import. Returns the request that it wrote and the lines that it printed."""
    done = run("import", *arguments, "--out", "made/shot.json")
    expect(f"{arguments} {done.stderr}", 0, done.returncode)
    return json.loads(Path("made/shot.json").read_text()), done.stdout.splitlines()


def rational(*numbers):
    return b"".join(struct.pack("<II", int(number * 1000), 1000) for number in numbers)


def exif_entries():
    return [(33434, RATIONAL, rational(0.04)), (33437, RATIONAL, rational(1.8)), (34855, SHORT, [3200]),
            (37377, RATIONAL, struct.pack("<II", 1, 0)), (37386, RATIONAL, rational(5.6)),
            (37385, SHORT, [1]), (41989, SHORT, [26]), (41987, SHORT, [0])]


def jpeg_with_exif(entries=None, degrees=rational(48, 15, 0)):
    """Returns the photo table.jpg with an EXIF block inserted at the start."""
    photo = (ROOT / "samples/photos/table.jpg").read_bytes()
    first = directory([(274, SHORT, [6]), (271, TEXT, b"made by hand\0"), (34665, LONG, [200]),
                       (34853, LONG, [600])], 8, "<").ljust(192, b"\0")
    sub = directory(entries or exif_entries(), 200, "<").ljust(400, b"\0")
    gps = directory([(1, TEXT, b"N\0"), (2, RATIONAL, degrees), (3, TEXT, b"W\0"),
                     (4, RATIONAL, rational(11, 30, 0)), (6, RATIONAL, rational(519))], 600, "<")
    block = b"Exif\0\0" + b"II*\0\x08\0\0\0" + first + sub + gps
    return photo[:2] + b"\xff\xe1" + struct.pack(">H", len(block) + 2) + block + photo[2:]


def reads_dump():
    shot, lines = imported(FORMS / "dump.txt", "--algorithms", "night,jpegEncode",
                           "--photo", ROOT / "samples/photos/table.jpg")
    expect("dump", [{"captureResult": {
        "android.control.aeMode": 2,
        "android.control.aeRegions": [
            {"left": 100, "top": 200, "right": 300, "bottom": 400, "weight": 1000},
            {"left": 1, "top": 2, "right": 3, "bottom": 4, "weight": 0}],
        "android.control.zoomRatio": 1.5,
        "android.jpeg.gpsLocation": {"latitude": 48.25, "longitude": -11.5, "altitude": 519,
                                     "provider": "network", "time": 1700000000000},
        "android.lens.facing": 1, "android.scaler.cropRegion": [16, 32, 4016, 3032],
        "android.sensor.exposureTime": 33333333, "android.sensor.info.activeArraySize": [0, 0, 4096, 3072],
        "android.sensor.sensitivity": 3200, "android.sensor.timestamp": 812000000001,
        "android.statistics.faces": [{"left": 100, "top": 200, "right": 300, "bottom": 400, "score": 90},
                                     {"left": 5, "top": 6, "right": 70, "bottom": 80, "score": 51}],
        "orlu.control.beauty_param.enable": 1, "orlu.control.currentModeEx": 8,
        "orlu.control.localtime": "1700", "orlu.control.sensor_gain": "NaN",
        "orlu.feedback.ccm": [1, -2, 3, 4, -5],
        "orlu.feedback.sensor_pdaf_info": "01ff00"}}], shot["frames"])
    expect("dump's images", [["night", "jpegEncode"], {"format": "NV21"}, [{"format": "JPEG"}]],
           [shot["algorithms"], shot["inputs"], shot["outputs"]])
    expect("dump's notes", [
        "6: note: android.control.afMode dropped; neither a number nor a known name: \"SIDEWAYS\"",
        "14: note: android.control.aeLock dropped; unknown tag 10002",
        "24: note: android.lens.focalLength dropped; wrong type: int64 instead of float",
        "39: note: android.statistics.lensShadingMap dropped; incomplete entry: 16 of 884 values are printed",
        "48: note: orlu.control.isNativeMode dropped; wrong type: int32[2] instead of one value",
        "50: note: orlu.control.reqID dropped; incomplete entry: 0 of 1 values are printed",
        "58: note: unknownSection.unknownTag dropped; unknown tag 80ff0001",
        "61: note: the buffer is not allocated",
        "64: note: buffer dropped; missing android.sensor.timestamp",
        "69: note: the buffer describes a camera; its tags are added to results that lack them",
        "69: note: android.info.supportedHardwareLevel dropped; unknown tag 150000"],
        sorted((line.split("dump.txt:")[1] for line in lines if "dump.txt:" in line and "note: " in line),
               key=lambda line: int(line.split(":")[0])))
    expect("dump runs", 0, run("--out", "out", "made/shot.json").returncode)


def reads_suite():
    raw = [bytes([seed]) + bytes(16 * 12 * 2 - 1) for seed in (1, 2)]
    for name, content in (("0.raw", raw[0]), ("1.raw", raw[1]), ("odd.raw", raw[0][1:])):
        Path(name).write_bytes(content)
    shot, lines = imported("0.raw", FORMS / "suite.json", "1.raw", "odd.raw")
    expect("suite", [{"captureResult": {
        "android.control.aeMode": 1,
        "android.control.aeRegions": [{"left": 1, "top": 2, "right": 31, "bottom": 42, "weight": 5}],
        "android.lens.aperture": 1.8, "android.sensor.exposureTime": 33333333,
        "android.sensor.info.activeArraySize": {"left": 0, "top": 0, "right": 4096, "bottom": 3072},
        "android.sensor.sensitivity": 3200, "android.sensor.timestamp": 812000000001,
        "android.statistics.faces": [{"left": 1, "top": 2, "right": 30, "bottom": 40, "score": 77}],
        "com.orlu.image_sizes": [4096, 3072], "orlu.control.isNativeMode": 1,
        "orlu.feedback.sensor_pdaf_info": {"int8": [1, -1, 0]}}},
        {"captureResult": {"android.sensor.info.activeArraySize": {
            "left": 0, "top": 0, "right": 4096, "bottom": 3072},
            "android.sensor.sensitivity": 1, "android.sensor.timestamp": 812000000002}}], shot["frames"])
    expect("suite's inputs", [
        {"file": f"../{i}.raw", "format": "RAW16", "width": 16, "height": 12, "frame": i} for i in range(2)],
        shot["inputs"])
    expect("suite's notes", [
        "captureResults[0]: android.control.aeLock dropped; unknown tag",
        'captureResults[0]: android.jpeg.gpsLocation dropped; expected an object, found "Location[gps 48.25]"',
        'captureResults[1]: android.sensor.sensitivity dropped; expected a number, found "high"',
        "captureResults[1]: android.control.aeRegions dropped; expected a whole number from -2147483648 to "
        "2147483647, found 2147483648",
        "captureResults[2]: dropped; not an object of tags",
        "outputs[2]: dropped; expected width, height and a format of [dng, jpeg, jpg, raw, raw10, yuv]",
        "captureRequest: ignored; not a result or an output",
        "odd.raw: note: dropped; no JSON file describes an output of 383 bytes"],
        [line.split("suite.json: note: ")[-1] for line in lines[:-1]])
    expect("suite runs", 0, run("--out", "out", "made/shot.json").returncode)


def takes_pictures_by_name_and_size():
    """If a file's size fits two outputs, the file's extension selects the output."""
    outputs = [{"format": "yuv", "width": 16, "height": 16}, {"format": "raw", "width": 16, "height": 12}]
    for given in ((), ("two.raw",)):
        Path("two.json").write_text(json.dumps({"captureResult": {}, "outputs": outputs}))
        Path("two.raw").write_bytes(bytes(384))
        shot, lines = imported("two.json", *given)
        expect(f"two outputs of 384 bytes {lines}", ["RAW16"], [image["format"] for image in shot["inputs"]])


def reads_exif():
    Path("a.jpg").write_bytes(jpeg_with_exif())
    rows = [[512] * 32] * 24
    blue_first = [(33421, SHORT, [2, 2]), (33422, BYTE, bytes([2, 1, 1, 0]))]
    Path("a.dng").write_bytes(dng(rows, white=1023, pattern=blue_first, components=2, extra=[
        (34855, SHORT, [400]), (33434, RATIONAL, rational(0.5))]))
    shot, lines = imported("a.jpg", "a.dng")
    expect("EXIF", [{"captureResult": {
        "android.control.awbMode": 1, "android.flash.mode": 1, "android.flash.state": 3,
        "android.jpeg.gpsLocation": {"latitude": 48.25, "longitude": -11.5, "altitude": 519},
        "android.jpeg.orientation": 90, "android.lens.aperture": 1.8, "android.lens.focalLength": 5.6,
        "android.sensor.exposureTime": 40000000, "android.sensor.sensitivity": 3200,
        "orlu.feedback.focalLengthIn35mm": 26}}, {"captureResult": {
            "android.sensor.exposureTime": 500000000, "android.sensor.info.colorFilterArrangement": 3,
            "android.sensor.info.whiteLevel": 1023, "android.sensor.sensitivity": 400}}], shot["frames"])
    expect("EXIF inputs", [["../a.jpg", "NV21", 0], ["../a.dng", "RAW16", 1]],
           [[i["file"], i["format"], i["frame"]] for i in shot["inputs"]])
    expect("EXIF notes", [True], ["Make" in lines[0] and "Shutter Speed" in lines[0]])


def drops_odd_exif():
    """Import drops fractions with a zero denominator, and uses the first of two sensitivities."""
    none = struct.pack("<II", 0, 0)
    Path("odd.jpg").write_bytes(jpeg_with_exif(
        [(33434, RATIONAL, none), (33437, RATIONAL, none), (34855, SHORT, [100, 200])],
        struct.pack("<IIIIII", 1, 0, 0, 1, 0, 1)))
    shot, lines = imported("odd.jpg")
    expect("odd EXIF", {"android.jpeg.orientation": 90, "android.sensor.sensitivity": 100},
           shot["frames"][0]["captureResult"])
    expect("odd EXIF's notes", [
        "ExposureTime: android.sensor.exposureTime dropped; not a finite number",
        "FNumber: android.lens.aperture dropped; not a finite number",
        "GPS: android.jpeg.gpsLocation dropped; the coordinates are not finite"],
        [line.split("odd.jpg: note: ")[1] for line in lines if "dropped" in line])


def survives_damage():
    """Import reads a truncated or damaged file as far as possible, or rejects it with a one-line error."""
    sources = {**{name: (FORMS / name).read_bytes() for name in ("dump.txt", "suite.json")},
               "a.jpg": jpeg_with_exif(), "a.dng": dng([[1] * 32] * 24)}
    for name, data in sources.items():
        ends = (9, len(data) // 3, len(data) // 2) if name != "a.jpg" else (9, 60, 300)
        damaged = [data[:end] for end in ends] + [data[:150] + b"\xff\0[(" * 20 + data[230:]]
        for i, content in enumerate(damaged):
            Path(name).write_bytes(content)
            done = run("import", name, "--out", "made/cut.json")
            told = done.stderr.splitlines()
            expect(f"{name} damaged {i}: {told}", [True, True, False],
                   [done.returncode in (0, 2), len(told) == done.returncode // 2,
                    "Exception" in done.stdout + done.stderr])
    expect("cut dump",
           ["23: note: the line is truncated", "2: note: expected a buffer of 26 entries, found 9"],
           cut_dump_notes())
    Path("link").symlink_to("a.json")
    for arguments, line in ((("none", "--out", "a.json"), "no such file: none"),
                            ((FORMS / "dump.txt",),
                             "missing --out FILE; see ./run import --help"),
                            (("cut.txt", "--out", "cut.txt"),
                             "--out would overwrite the imported file cut.txt"),
                            (("cut.txt", "--out", "link"), "--out: expected a file, found a link: link"),
                            (("cut.txt", "--out", "made"), "--out: expected a file, found a folder: made"),
                            (("cut.txt", "--out", "cut.txt/a.json"),
                             f"--out: can't create the folder {Path.cwd()}/cut.txt"),
                            (("made", "--out", "a.json"),
                             "expected a regular file, found another kind: made")):
        done = run("import", *arguments)
        expect(arguments, (2, f"run: error: {line}\n"), (done.returncode, done.stderr))


def png_header(width, height, depth=8, colour=2):
    """Returns a PNG file with this size in its header, and almost no pixels."""
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    header = chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0))
    return b"\x89PNG\r\n\x1a\n" + header + chunk(b"IDAT", zlib.compress(bytes(99))) + chunk(b"IEND", b"")


def limits_foreign_files():
    """Import rejects files that would take gigabytes or minutes, or reads them in part. It prints no control
    characters."""
    result = ("Dumping camera metadata array: 1 / 1 entries\n"
              " android.sensor.timestamp (e0010): int64[1]\n [5 ]\n")
    exif = jpeg_with_exif()
    rows = [
        ("big.png", png_header(16000, 16000),
         "pixels not used as an input: expected at most 134217728 pixels, found 16000x16000"),
        ("deep.png", png_header(16000, 8000, 16, 6),
         "pixels not used as an input: expected at most 536870912 decoded bytes, found 1024000000"),
        ("wide.png", png_header(20000, 2), "expected sides of at most 16384 pixels, found 20000x2"),
        ("many.txt", (result * 70).encode(), "10 results dropped; a request has at most 60 frames"),
        ("dots.txt", (result + "a." * 600000 + "\n").encode(),
         "4: note: line dropped; expected at most 1048576 characters, found 1200000"),
        ("slow.txt", (result + "." * 900000 + "\n").encode(), "1 frames with 1 tags"),
        ("large.txt", b"a\n" * (5 << 20), "expected at most 8388608 bytes for a dump, found 10485760"),
        ("esc.txt", (result + " android.control.aeMode (1): byte[1]\n [\x1b[2J\x9b\u202e]\n").encode(),
         "neither a number nor a known name: \"\\u001b[2J\\u009b\\u202e\""),
        ("esc.json", json.dumps({"captureResult": {"a\x1b[2J": 1}}).encode(),
         "a\\u001b[2J dropped; unknown tag"),
        ("many.json", json.dumps({"captureResults": [{}] * 1000, "outputs": [7] * 2000}).encode(),
         "and 1001 more notes"),
        ("values.txt", (result + " orlu.control.localtime (1): byte[3000000]\n"
                        + ("[" + "1 " * 500000 + "]\n") * 6).encode(),
         "localtime dropped; incomplete entry: 1500000 of 3000000 values are printed"),
        ("marker.jpg", exif.replace(b"II*\0", b"IIx\0", 1), "can't be read: Unexpected TIFF marker: 0x78"),
        ("empty.tif", b"", "can't be read: Attempt to read from beyond end"),
    ]
    for name, content, line in rows:
        Path(name).write_bytes(content)
        done = run("import", name, "--out", "made/\x1b\u202e.json")
        printed = done.stdout + done.stderr
        expect(f"{name}: {printed[:300]}", (True, True, []),
               (line in printed, done.returncode in (0, 2),
                [c for c in printed if ord(c) < 32 and c != "\n" or 127 <= ord(c) < 160 or c == "\u202e"]))


def cut_dump_notes():
    text = (FORMS / "dump.txt").read_text()
    Path("cut.txt").write_text(text[:text.index("BACK") + 2])
    _, lines = imported("cut.txt")
    return [line.split("cut.txt:")[1] for line in lines if "is truncated" in line or "of 26" in line]


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for case in (reads_dump, reads_suite, takes_pictures_by_name_and_size, reads_exif,
                 drops_odd_exif, survives_damage, limits_foreign_files):
        case()
finish()
