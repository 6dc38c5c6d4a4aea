#!/usr/bin/env python3
"""Queries ./run for its catalogues of tags, algorithms, parameters, formats and samples, and compares the
catalogues' statements with runs: catalogue_test.py BUILD_FOLDER"""

import json
import re
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, failures, finish, run  # noqa: E402

PARTS = ("tags", "algorithms", "parameters", "formats", "samples")
# Samples to run for the comparison with the catalogues: one with processed input, one with raw input.
SAMPLES = ("capture", "hdr5")
# Sample and algorithm for tags whose values have no effect with the default pair (capture.json, jpegEncode).
BASES = {"orlu.doubleExpo.isMirror": ("double-exposure", "flip"), "orlu.control.motionVersion": ("capture", "rawenhance"),
         "orlu.control.RequestLeftInThisSnapshot": ("hdr9", "gra")}

# arguments | status | lines, or parts of the error, that must be printed
CASES = """
tags currentModeEx                | 0 | tag orlu.control.currentModeEx ; unit bits ; changes algorithms, parameter/hdr_process_type, parameter/hdr_shutters,
tags currentModeEx                | 0 | values bit-2 The frame is one of an HDR bracket.
tags aeExposure                   | 0 | tag android.control.aeExposureCompensation ; unit EV/10
tags android.control.aeMode       | 0 | 3 ON_ALWAYS_FLASH. The flash fires: "flash_mode" becomes 1.
tags orlu.control.motion_level    | 0 | when absent control/motion_level -1
tags orlu.feedback.TunningMode    | 0 | put back by updateTunningMode (result_updater_raw_algo.cpp)
tags android.jpeg.quality         | 0 | read by nobody: no function of the library asks for it
tags orlu.control.currentModEx    | 2 | did you mean orlu.control.currentModeEx?
tags currentModEx                 | 2 | run: error: no such tag: currentModEx (did you mean currentModeEx?)
algorithms hdr                    | 0 | algorithm hdr ; stand-in runs ; hdr5 added ran
algorithms jpegEncode             | 0 | removed With raw input. ; raw-night asked removed
algorithms beauti                 | 2 | did you mean beauty?
parameters exif_info_for_write    | 0 | record ExifInfo ; bytes 152
parameters film_size              | 0 | parameter control/film_size ; type int ; bytes 4 ; tags orlu.control.filmSize, orlu.doubleExpo.capture
parameters control/film_size      | 0 | written by updateDoubleExpo (metadata_updater_double_exposure.cpp)
parameters orlu_zoom_ratio        | 0 | without tags 0
parameters zoom/                  | 0 | zoom/sat_crop_regions crop 16 in
parameters nonsense               | 2 | run: error: no such parameter: nonsense
formats RAW16                     | 0 | code 18 ALGO_IMG_RAW16 ; row W * 2
formats nv                        | 0 | NV12 2 ALGO_IMG_NV12 ; NV21 1 ALGO_IMG_NV21
samples night                     | 0 | inputs 7 NV21, shared, stride 640 ; algorithms night, jpegEncode
samples nigth                     | 2 | did you mean night?
samples night day                 | 2 | unexpected argument day
"""



def check_cases():
    for row in CASES.strip("\n").splitlines():
        arguments, status, texts = row.split("|", 2)
        result = run(*arguments.split())
        if result.returncode != int(status):
            failures.append(f"{arguments.strip()}: status {result.returncode}, {result.stderr}")
        # Column widths depend on the content.
        lines = [" ".join(line.split()) for line in result.stdout.splitlines()]
        for text in texts.split(" ; "):
            text = " ".join(text.split())
            is_there = text in lines if status.strip() == "0" else text in result.stderr
            if not is_there:
                failures.append(f"{arguments.strip()}: not printed: {text}")


def check_lists():
    """Checks that the lists and the JSON have the same entries, and that lines fit a terminal. Returns the JSON
    of each part of the catalogue, by name."""
    parts = {}
    for part in PARTS:
        listed, parts[part] = run(part).stdout.splitlines(), json.loads(run(part, "--json").stdout)
        failures.extend(f"{part}: {len(line)} columns: {line}" for line in listed if len(line) > 80)
        names = [entry["name"] for entry in parts[part]]
        shown = [line.split()[0] for line in listed[1:-2] if not line.startswith(" ")]
        if names != shown or not names:
            failures.append(f"{part}: the list ({len(shown)} entries) and the JSON ({len(names)}) differ")
    return parts


def check_claims(parts):
    """Compares the catalogues' types and sizes with the types and sizes in runs."""
    parameters = {(entry["section"], entry["key"]): entry for entry in parts["parameters"]}
    java_types = {entry["name"]: entry["javaType"] for entry in parts["tags"]}
    with tempfile.TemporaryDirectory() as folder:
        files = [ROOT / f"samples/{sample}.json" for sample in SAMPLES]
        run("--out", folder, "--json", f"{folder}/json", "--events", f"{folder}/events", *files)
        reports = json.loads(Path(folder, "json").read_text())["results"]
        events = [json.loads(line) for line in Path(folder, "events").read_text().splitlines()]
    header = (ROOT / "jni/metadata_records.h").read_text()
    failures.extend(f"{entry['name']}: no record {entry['record']} of {entry['bytes']} bytes"
                    for entry in parts["parameters"] if entry["record"]
                    and f"sizeof({entry['record']}) == {entry['bytes']})" not in header)
    compared = 0
    for report in reports:
        for parameter in report["parameters"]:
            entry = parameters[parameter["section"], parameter["key"]]
            size = len(parameter["hex"]) // 2
            compared += 1
            if entry["bytes"] not in ("400 or 8 x frames", size) or "in" not in entry["direction"]:
                failures.append(f"{entry['name']}: {size} bytes were passed in; the catalogue has "
                                f"{entry['bytes']} bytes, {entry['direction']}")
    for event in events:
        held = event.get("held")
        if event["event"] == "lookup" and held and event["source"] == "captureResult":
            compared += 1
            if java_types[event["tag"]] != held:
                failures.append(f"{event['tag']}: a {held} was found, not a {java_types[event['tag']]}")
    if compared < 300:
        failures.append(f"only {compared} claims were compared")


def with_tag(tag, value):
    """Returns a request whose frames have the tag with this value: "1" for a number, "6,4" for a list, ">0"
    for any greater number."""
    sample, algorithm = BASES.get(tag, ("capture", "jpegEncode"))
    request = json.loads((ROOT / f"samples/{sample}.json").read_text())
    request["photo"] = str(ROOT / "samples" / request["photo"])
    request["algorithms"] = [algorithm]
    numbers = [int(number) for number in re.findall(r"\d+", value)]
    number = numbers[0] + (1 if ">" in value and "=" not in value else 0)
    request["frames"]["common"]["captureResult"][tag] = number if len(numbers) == 1 else numbers
    return request


def check_values(tags):
    """Checks the effects on parameters and the algorithm list that the catalogue states for each value."""
    claims = []
    for entry in tags:
        for value in entry["values"]:
            claims += [(entry["name"], value["value"], algorithm, None)
                       for algorithm in re.findall(r'ppends the algorithm "(\w+)"', value["meaning"])]
            claims += [(entry["name"], value["value"], *change)
                       for change in re.findall(r'"(\w+)" becomes (\d+)', value["meaning"])]
    with tempfile.TemporaryDirectory() as folder:
        files = [Path(folder, f"{number}.json") for number in range(len(claims))]
        for file, (tag, value, _, _) in zip(files, claims):
            file.write_text(json.dumps(with_tag(tag, value)))
        run("--out", folder, "--json", f"{folder}/reports", *files)
        reports = json.loads(Path(folder, "reports").read_text())["results"]
    for report, (tag, value, name, number) in zip(reports, claims):
        found = {each["key"]: each["value"] for each in report["parameters"]}
        if number is None and name not in report["algorithmsAfter"] or number and found.get(name) != int(number):
            failures.append(f"{tag} {value}: " + (f"{name} is not appended" if number is None else
                                                  f"expected {name} {number}, found {found.get(name)}"))
    if len(claims) < 10 or len(reports) != len(claims):
        failures.append(f"{len(reports)} of {len(claims)} claims on values were tested; "
                        "expected all, and at least 10")


def main():
    check_cases()
    parts = check_lists()
    check_claims(parts)
    check_values(parts["tags"])
    drift = run("--check", SAMPLES[1], command=[ROOT / "scripts/make_catalogue.py"])
    if drift.returncode:
        failures.append(f"scripts/make_catalogue.py writes a different table:\n{drift.stdout}{drift.stderr}")
    finish(f"{len(CASES.strip().splitlines())} cases, no drift: {drift.stdout.strip()}")


if __name__ == "__main__":
    main()
