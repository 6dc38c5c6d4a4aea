#!/usr/bin/env python3
"""Tests that ./run reports every mistake in a wrong request file, with the position of the mistake.

check_test.py BUILD_FOLDER
"""

import json
import os
import random
import re
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, expect, failures, finish, run  # noqa: E402

MUTATIONS = 16  # per sample
LINE = re.compile(r"^(?P<file>[^:]+):(?P<line>\d+):(?P<column>\d+): (?P<text>.+)$")
LONG = "9" * 401
PHOTO = ROOT / "samples/photos/portrait.jpg"


def request(frames='"frames": [{}]', more="", inputs="[]", outputs="[]"):
    """Returns the text of a request file whose second line begins with the frames."""
    return f'{{"request": {{"id": 1}}, "inputs": {inputs}, "outputs": {outputs},\n{frames}{more}}}'


def tag(name, value):
    """Returns the text of a request with a tag. The tag's value starts at line 3, column 1."""
    return request(f'"frames": [{{"captureResult": {{"{name}":\n{value}}}}}]')


INT = "expected a whole number from -2147483648 to 2147483647, found"
FORMATS = "expected one of NV21, NV12, YU12, YV12, MIPI_RAW10, RAW16, RAW_SENSOR, R8G8B8A8, JPEG, found"
MISSING = [f"1:1: missing field {name}" for name in ("request", "frames", "inputs", "outputs")]
KNOWN = "$schema, about, algorithms, client, frames, fullAsync, inputs, outputs, photo, properties, request"
NAME = "was expecting double-quote to start field name"
COLON = "was expecting a colon to separate field name and value"
VALUES = "(JSON String, Number, Array, Object or token 'null', 'true' or 'false')"
# Each row: the text of a file, then the expected messages, without the file's name.
SYNTAX = [
    ("", "1:1: not JSON: the file is empty"),
    ('{"request": {"id": 1}',
     "1:22: not JSON: the file ends too early, within the object that begins at line 1 column 1"),
    (request(frames='"frames": [{}', outputs="[1")[:-1],
     "2:9: not JSON: unexpected character (':' (code 58)): was expecting comma to separate Array entries"),
    ('{\n"about": ["x',
     "2:13: not JSON: the file ends too early, within the list that begins at line 2 column 10"),
    ('{"about": "x\n"}', "1:13: not JSON: illegal unquoted character ((CTRL-CHAR, code 10)): has to be "
     "escaped using backslash to be included in string value"),
    ('{"about": no}', f"1:12: not JSON: unrecognized token 'no': was expecting {VALUES}"),
    ('{"about": NaN}', "1:13: not JSON: non-standard token 'NaN'"),
    ("{'about': '1', \"photo\": 1}", f"1:2: not JSON: unexpected character (''' (code 39)): {NAME}"),
    ("{about: 1, photo = 2}", f"1:2: not JSON: unexpected character ('a' (code 97)): {NAME}"),
    ('{"about" 1}', f"1:10: not JSON: unexpected character ('1' (code 49)): {COLON}"),
    ('{"about": "x" // "y"\n"photo": 1 "id": 2}',
     "2:1: not JSON: unexpected character ('\"' (code 34)): was expecting comma to separate Object entries"),
    (request(inputs="[1 2; {}]"),
     "1:37: not JSON: unexpected character ('2' (code 50)): was expecting comma to separate Array entries"),
    (request(inputs="[10ms]"),
     "1:37: not JSON: unexpected character ('m' (code 109)): was expecting comma to separate Array entries"),
    (request(more=",\n"), f"3:1: not JSON: unexpected character ('}}' (code 125)): {NAME}"),
    ("\n# note\n{}", f"2:1: not JSON: unexpected character ('#' (code 35)): expected a valid value {VALUES}"),
    ('{"about": .5}',
     f"1:11: not JSON: unexpected character ('.' (code 46)): expected a valid value {VALUES}"),
    ('{"about": 01}', "1:11: not JSON: invalid numeric value: Leading zeroes not allowed"),
    ('{"about": 1]', "1:12: not JSON: unexpected close marker ']': expected '}' (for Object starting at "
     "[Source: UNKNOWN; line: 1, column: 1])"),
    ('{"about": \x1b[2J}', "1:11: not JSON: illegal character ((CTRL-CHAR, code 27)): only regular white "
     "space (\\r, \\n, \\t) is allowed between tokens"),
    ("{} {}", "1:4: not JSON: more text after the end of the value"),
    (b'{\n"about": "\xff"}', "2:11: expected UTF-8, found an invalid byte"),
    ("[" * 70 + "]" * 70, "1:66: expected at most 64 levels of nesting, found more"),
    ("[" + "0," * 500_000 + "0]", "1:1000000: expected at most 500000 values, found more"),
    (b" " * (8 << 20) + b"1", "expected at most 8388608 bytes, found 8388609"),
    (request(more=f', "about": {LONG}'), "2:26: about: expected text, found 0",
     f"2:26: expected a number in the range of a double, found {LONG[:60]}..."),
    (request(more=', "about": "x",\n"about": "y"'),
     '3:1: the field "about" is given twice, first at line 2 column 17'),
]
TIME = 'frames[0].captureResult."android.sensor.exposureTime"'
FIELDS = [
    ("5", "1:1: expected an object, found 5"),
    ("{}", *MISSING),
    (request(more=', "fullAsync": "yes"'), '2:30: fullAsync: expected true or false, found "yes"'),
    (request(more=', "photo": "a\\u0000b"'), "2:26: photo: no such file: a\\u0000b"),
    (request(more=f', "properties": {{"a": "{92 * "0"}", "b": 1}}'),
     "2:37: properties.a: expected a name, and a value of at most 91 bytes",
     "2:138: properties.b: expected text, found 1"),
    (request('"frames": []', ', "fullAsync": true, "algorithms": []'),
     "2:28: fullAsync: requires at least one frame, whose composition gets the value",
     "2:48: algorithms: requires at least one frame, whose composition gets the value"),
    (request('"frames": {"count": 2, "nois": 1, "width": 2, "each": [{"shift": [1, 99]}, 7]}'),
     "2:11: frames: expected both width and height, or neither",
     "2:24: frames.nois: unknown field; expected one of blur, common, count, each, gain, height, noise, "
     'seed, shift, width (did you mean noise?)',
     "2:70: frames.each[0].shift[1]: expected a whole number from -64 to 64, found 99",
     "2:76: frames.each[1]: expected an object, found 7"),
    (request('"frames": {"count": 1, "each": [{}, {}]}'),
     "2:32: frames.each: has 2 frames, but count is 1"),
    (request(inputs='{"format": "nv21", "memory": "hard", "stride": -1}'),
     f'1:45: inputs.format: {FORMATS} "nv21" (did you mean NV21?)',
     '1:63: inputs.memory: expected "shared" or "hardware", found "hard" (did you mean hardware?)',
     "1:81: inputs.stride: expected a whole number from 0 to 65536, found -1",
     "1:1: missing field photo; the inputs are made from it"),
    (request(outputs='[{"format": "RAW16", "width": 3}, {"bits": 17}]'),
     "1:79: outputs[0].width: expected an even number, found 3", "1:83: outputs[1]: missing field format",
     "1:92: outputs[1].bits: expected a whole number from 8 to 16, found 17"),
    (tag("android.sensor.exposureTime", '{"first": 1, "stp": 2}'),
     f"3:1: {TIME}: missing field step; the tag is LONG (ns)",
     f'3:14: {TIME}.stp: unknown field; expected one of first, step (did you mean step?); '
     'the tag is LONG (ns)'),
    (request(inputs='{"format": "NV21", "stride": 10}', outputs='[{"format": "R8G8B8A8", "stride": 2047}]',
             more=f', "photo": "{PHOTO}"'),
     "1:63: inputs.stride: expected at least 512 bytes (a row of 512 pixels), found 10",
     "1:113: outputs[0].stride: expected at least 2048 bytes (a row of 512 pixels), found 2047"),
    (request('"frames": {"shift": 64, "width": 2, "height": 2}', inputs='{"format": "NV21"}',
             more=f', "photo": "{PHOTO}"'), "2:60: photo: too small for the frames' shifts"),
    (request(inputs='{"format": "NV21"}', more=', "photo": "0.json"'),
     "2:26: photo: can't read the photo 0.json"),
    (request(more=', "algoritms": ["night"]'),
     f"2:17: algoritms: unknown field; expected one of {KNOWN} (did you mean algorithms?)"),
]
TAGS = [
    ("no.such.tag", "1", "no such tag"),
    ("currentModeEx", "1", 'no such tag (did you mean orlu.control.currentModeEx?)'),
    ("orlu.control.curentModeEx", "1", 'no such tag (did you mean orlu.control.currentModeEx?)'),
    ("orlu.feedback.zoom_ratio", "1", 'no such tag (did you mean orlu.control.zoom_ratio?)'),
    ("android.control.aeMode", '"on"', 'expected a number, found "on"; the tag is INT (code)'),
    ("android.control.aeMode", "2.5", f"{INT} 2.5; the tag is INT (code)"),
    ("android.control.aeMode", str(2**70), f"{INT} {2**70}; the tag is INT (code)"),
    ("android.sensor.exposureTime", f'"{100 * "a"}"',
     f'expected a number, found "{60 * "a"}..."; the tag is LONG (ns)'),
    ("android.lens.aperture", "1e39",
     "expected a number in the range of a float (up to 3.4028235E38), found 1E39; the tag is FLOAT "
     "(f-number)"),
    ("android.scaler.cropRegion", "[1, 2]", "expected a list of 4 elements, found 2; the tag is RECT (px)"),
    ("com.orlu.chi.override.CameraType", '{"txt": "Tele"}',
     'expected exactly one of hex, text, int8, int16, int32, int64, float, double, found "txt" (did you '
     'mean text?); the tag is BYTES (text)'),
]
SHOT = '"frames": [{"captureResult": {'
# Each row: the text of a file, then the expected warnings, without the file's name and the word "warning".
WARNINGS = [
    (request(more=', "algorithms": ["nigth", "nightly", "night"]'),
     '2:32: algorithms[0]: unknown algorithm "nigth" (did you mean night?)',
     '2:41: algorithms[1]: unknown algorithm "nightly"; treated as night because of its prefix'),
    (request(more=', "properties": {"persist.sys.camera3rd.autotst": "1", "vendor.any": "1"}'),
     '2:65: properties."persist.sys.camera3rd.autotst": the native library does not read this property '
     "(did you mean persist.sys.camera3rd.autotest?)"),
    (request('"frames": [{"composition": {"isFulAsync": 1, "orlu.control.camera_id": {"long": 5}}}]'),
     "2:43: frames[0].composition.isFulAsync: no such tag (did you mean isFullAsync?)",
     '2:72: frames[0].composition."orlu.control.camera_id": expected Integer (the tag is INT), found '
     "Long; the tag is treated as absent"),
    (request('"frames": {"count": 5, "common": {"captureResult": {"orlu.control.currentModeEx": 2}}}'),
     "2:11: frames: orlu.control.currentModeEx forms no bracket; expected 5 or 7 frames (1 night frame, "
     "the others HDR frames), 9 frames (3 night frames, then 6 HDR frames), or 3 frames with the algorithm "
     "hdr; found 5 HDR frames (mode & 2), 0 night frames (mode & 8) and 0 others"),
    (request('"frames": {"count": 3, "common": {"captureResult": {"android.sensor.timestamp": 7}}}'),
     '2:81: frames.common.captureResult."android.sensor.timestamp": frames 0 and 1 have the same time 7; '
     'vary it with {"first": ..., "step": ...}'),
    (request('"frames": [{}, {}]', inputs='[{"file": "a", "format": "RAW16", "width": 2, "height": 1}]'),
     "1:34: inputs: expected the same number of images for each frame, found 1 for frame 0 and 0 for frame 1",
     "1:44: inputs[0].file: a has 20 bytes after the last plane"),
    (request(SHOT + '"android.sensor.exposureTime": 10, "android.jpeg.orientation": 45}}]'),
     f"2:62: {TIME}: probably wrong; expected 1000 to 100000000000 (ns), found 10",
     '2:94: frames[0].captureResult."android.jpeg.orientation": expected 0, 90, 180 or 270, found 45'),
    (request(SHOT + '"android.sensor.info.activeArraySize": [0, 0, 9, 9],\n"android.scaler.cropRegion": '
             '[1, 1, 10, 5],\n"android.statistics.faces": [[4, 4, 2, 5]]}}]'),
     '3:30: frames[0].captureResult."android.scaler.cropRegion": [1, 1, 10, 5] exceeds the active array '
     "[0, 0, 9, 9]",
     '4:29: frames[0].captureResult."android.statistics.faces": face 0: expected left <= right and top <= bottom, '
     'found [4, 4, 2, 5]'),
    (request(inputs='[{"file": "a", "format": "RAW16", "width": 2, "height": 3}]'),
     "1:44: inputs[0].file: a has 12 bytes after the last plane"),
    (request(inputs='[{"file": "a", "format": "RAW_SENSOR", "width": 3, "height": 3}]'),
     "1:44: inputs[0].file: a has 6 bytes after the last plane; a stride of 8 bytes would use the whole "
     "file"),
    (request(inputs='[{"file": "a", "format": "RAW16", "width": 3, "height": 3, "stride": 8}]'),
     "1:103: inputs[0].stride: rows of RAW16 can't have padding: the library passes the width, not the "
     "stride; expected 6 (or RAW_SENSOR), found 8"),
    (request('"frames": [{}, {}]', inputs='[{"file": "a", "format": "RAW16", "width": 4, "height": 3}, '
             '{"file": "a", "format": "RAW16", "width": 6, "height": 2}]'),
     "1:136: inputs[1].width: image 0 of frame 1: expected the size 4x3, as in frame 0, found 6x2"),
    (request('"frames": {"width": 64, "height": 64}',
             inputs='[{"file": "a", "format": "RAW16", "width": 4, "height": 3}]'),
     "2:11: frames: this size is not used; expected 4x3, as in the first input's file, found 64x64"),
    (request(outputs='[{"format": "JPEG", "width": 64, "height": 64, "capacity": 255}, '
             '{"format": "NV21", "width": 64, "height": 64, "capacity": 99}]'),
     "1:108: outputs[0].capacity: probably too small for a JPEG of 64x64; expected at least 256 bytes, found "
     "255",
     "1:172: outputs[1].capacity: expected at least 6144 bytes for the pixels, found 99; 6144 are allocated"),
]


def check(*texts):
    """Runs ./run --check on files with these texts. Returns the finished process and a list of
    messages for each file."""
    names = [f"{i}.json" for i in range(len(texts))]
    for name, text in zip(names, texts):
        Path(name).write_bytes(text if isinstance(text, bytes) else text.encode())
    done = run("--check", *names)
    lines = done.stderr.splitlines()
    return done, [[line[len(name) + 1:].lstrip() for line in lines if line.startswith(name + ":")]
                  for name in names]


def severe(line, severity):
    """Returns a message from the tables above as ./run prints it, with the severity after the position."""
    return re.sub(r"^(\d+:\d+: |)", rf"\g<1>{severity}: ", line)


def reports_each():
    cases = SYNTAX + FIELDS
    for name, value, problem in TAGS:
        shown = name if name.isalnum() else f'"{name}"'
        cases.append((tag(name, value), f"3:1: frames[0].captureResult.{shown}: {problem}"))
    done, found = check(*(case[0] for case in cases))
    for (text, *wanted), lines in zip(cases, found):
        expect(text[:200], sorted(severe(line, "error") for line in wanted), sorted(lines))
    count = sum(len(case) - 1 for case in cases)
    files = len(cases)
    expect("the last line", f"run: {count} errors and 0 warnings in {files} of {files} files; nothing runs",
           done.stderr.splitlines()[-1])
    expect("status and output", (2, ""), (done.returncode, done.stdout))


def reports_warnings():
    """Warnings stop a run only with --strict. Samples cause no warnings."""
    Path("a").write_bytes(bytes(24))
    done, found = check(*(case[0] for case in WARNINGS))
    for (text, *wanted), lines in zip(WARNINGS, found):
        expect(text[:200], [severe(line, "warning") for line in wanted], lines)
    expect("status and right files", (0, len(WARNINGS)), (done.returncode, done.stdout.count(": ok: ")))
    samples = run("--check", "--strict", *sorted((ROOT / "samples").glob("*.json")))
    expect("samples", (0, ""), (samples.returncode, samples.stderr))
    strict = run("--strict", "--check", "0.json")
    expect("a strict check", (2, "run: 0 errors and 2 warnings in 1 of 1 file; nothing runs"),
           (strict.returncode, strict.stderr.splitlines()[-1]))
    Path("warned.json").write_text(
        (ROOT / "samples/capture.json").read_text().replace('["jpegEncode"]', '["jpegEncode", "sharp"]')
        .replace("photos/", str(ROOT / "samples/photos") + "/"))
    done = run("warned.json")
    expect(f"a run: {done.stderr}", (0, 2, True),
           (done.returncode, done.stderr.count("\n"), done.stdout.endswith("verdict  ok\n")))


def reports_all_in_order():
    """If a file is wrong, no file runs. Mistakes common to all frames are reported once."""
    Path("right.json").write_text(request())
    texts = ",\n".join(['"x"'] * 150)
    Path("many.json").write_text(request(
        '"frames": {"count": 60, "common": {"captureResult": {"com.orlu.image_sizes": [\n' + texts
        + '],\n"android.sensor.timestamp": {"first": 1, "step": 1e18}}}}'))
    done = run("right.json", "none.json", "many.json", "/dev/zero")
    lines = done.stderr.splitlines()
    expect("files", ["none.json: error: no such file", "many.json: and 51 more",
                     "/dev/zero: error: expected at most 8388608 bytes, found more",
                     "run: 153 errors and 0 warnings in 3 of 4 files; nothing runs"],
           [lines[0], *lines[101:]])
    places = [int(LINE.match(line)["line"]) for line in lines[1:101]]
    expect("the lines' order", list(range(3, 103)), places)
    expect("a run", (2, ""), (done.returncode, done.stdout))
    Path("more.json").write_text(tag("com.orlu.image_sizes", "[" + ",\n".join(['"x"'] * 1100) + "]"))
    expect("over 1000", ["more.json: and over 900 more",
                         "run: over 1000 errors and 0 warnings in 1 of 1 file; nothing runs"],
           run("more.json").stderr.splitlines()[100:])
    expect("a check", "right.json: ok: 1 frame, in nothing, out nothing, no algorithms\n",
           run("--check", "right.json", "none.json").stdout)


def takes_comments():
    """A byte order mark and comments are accepted; a name that contains a tab is printed on one line."""
    done, found = check("\ufeff// note\n" + request(more='/* one */, "a\\tb": 1, "\\u20ac": 2'))
    expect(done.stderr, ['3:26: "a\\u0009b"', '3:37: "\u20ac"'],
           [line.split(": unknown")[0].replace("error: ", "") for line in found[0]])
    done, found = check("// note\n" + request(more="/* one\n */"))
    expect(done.stderr, (0, []), (done.returncode, found[0]))


def escapes_foreign_text():
    """Control characters in a request's strings or its file's name never reach a terminal."""
    attack = "\x1b[2J\x85\u202e"
    whole = json.loads((ROOT / "samples/capture.json").read_text())
    whole["about"] = whole["request"]["type"] = attack
    del whole["algorithms"]
    whole["photo"] = str(ROOT / "samples/photos/portrait.jpg")
    whole["frames"]["common"]["composition"] = {attack: {"string": attack},
                                                "orlu.control.algoType": ["jpegEncode", attack]}
    Path("escape\x1b.json").write_text(json.dumps(whole))
    for options in (["--check"], ["--params", "--tags", "--explain=all"]):
        done = run(*options, "escape\x1b.json", ORLU_TRIALS="off")
        text = done.stdout + done.stderr
        unsafe = re.findall("[^\n]*[\x00-\x08\x0b-\x1f\x7f-\x9f\u202e][^\n]*", text)
        expect(options, (True, []), ("\\u001b" in text, unsafe))


def mutated(text, chance):
    """Returns the text with one random change."""
    tokens = list(re.finditer(r'"[^"]*"|-?\d[\d.]*|[\[\]{},:]', text))
    one, other = sorted(chance.sample(tokens, 2), key=lambda token: token.start())
    before, between, after = text[:one.start()], text[one.end():other.start()], text[other.end():]
    replacement = chance.choice(
        ["5", "-1.5", '"x"', "[]", "{}", "null", "true", "1e999", '{"long": 1}', "[1, 2]"])
    number = chance.choice([token for token in tokens if token.group()[0] in "-0123456789"])
    return chance.choice([
        text[:number.start()] + chance.choice(["0", "1", "2", "7"]) + text[number.end():],
        before + text[one.end():], before + replacement + text[one.end():], text[:one.start() + 1],
        before + other.group() + between + one.group() + after, before + one.group() * 2 + text[one.end():]])


def survives_mutations():
    """A damaged file is accepted, or all its messages have positions. The command never crashes."""
    chance = random.Random(20)
    folder = Path("mutated")
    folder.mkdir()
    (folder / "photos").symlink_to(ROOT / "samples/photos")
    files = []
    for sample in sorted((ROOT / "samples").glob("*.json")):
        for i in range(MUTATIONS):
            files.append(folder / f"{sample.stem}-{i}.json")
            files[-1].write_text(mutated(sample.read_text(), chance))
    done = run("--check", *map(str, files))
    *lines, last = done.stderr.splitlines()
    right = {line.split(": ok: ")[0] for line in done.stdout.splitlines()}
    wrong = set()
    for line in lines:
        match = LINE.match(line)
        if not match or "Exception" in line:
            failures.append(f"a message has no position: {line}")
        elif "warning: " not in line:
            wrong.add(match["file"])
            length = len(Path(match["file"]).read_text().splitlines()) + 1
            expect(line, True, 1 <= int(match["line"]) <= length and int(match["column"]) >= 1)
    expect("right or wrong", {str(file) for file in files}, right | wrong)
    expect("right and wrong", set(), right & wrong)
    expect(f"{len(right)} right, {len(wrong)} wrong", True, len(right) > 20 and len(wrong) > 200)
    expect(last, (2, True), (done.returncode, last.endswith(f" of {len(files)} files; nothing runs")))


with tempfile.TemporaryDirectory() as temporary:
    os.chdir(temporary)
    for case in (reports_each, reports_warnings, reports_all_in_order, takes_comments, escapes_foreign_text,
                 survives_mutations):
        case()
finish()
