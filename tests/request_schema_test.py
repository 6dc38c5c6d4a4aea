#!/usr/bin/python3
"""Checks that the JSON schema of request files agrees with ./run, and runs the files that ./run new writes:
request_schema_test.py BUILD_FOLDER. Needs python3-jsonschema, which Debian has for /usr/bin/python3 only."""

import copy
import json
import random
import re
import sys
import tempfile
from pathlib import Path

import jsonschema

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import ROOT, failures, finish, run  # noqa: E402

MUTATIONS = 12  # per sample
VALUES = (0, -1, 7, 2.5, 1e12, True, "x", "NV12", [], [1, 2, 3, 4], ["x"], {}, {"first": 1, "step": 2},
          {"fill": 1, "count": 3}, {"long": 5}, {"text": "x"}, {"size": 4, "parts": [{"at": 0, "int8": 1}]})

# Maps each place where ./run reports unknown fields to the schema definition that lists the fields of this
# place. As a place, "" is the whole file; as a definition, it is the top level of the schema.
FIELDS = {"": "", "request": "", "client": "", "frames": "frameSet", "frames.common": "frameSet",
          "frames.each[0]": "frame", "inputs": "commonInput", "inputs[0]": "input", "outputs[0]": "output"}
# member of capture.json | value that both the schema and ./run reject
WRONG = """
misspelt                                                     | 1
request.id                                                   | "101"
request.identifier                                           | 5
algorithms                                                   | "night"
fullAsync                                                    | 1
properties                                                   | {"persist.sys.camera3rd.autotest": 1}
frames.count                                                 | 61
frames.width                                                 | 640
frames.noise                                                 | 256
frames.common.captureResult.orlu.control.currentModEx        | 8
frames.common.captureResult.android.sensor.exposureTime      | "10 ms"
frames.common.captureResult.android.lens.facing              | 2147483648
frames.common.captureResult.android.sensor.info.activeArraySize | [0, 0, 4096]
frames.common.captureResult.android.jpeg.gpsLocation         | {"latitude": 91, "longitude": 0}
frames.common.captureResult.android.statistics.faces         | [{"left": 1, "top": 2, "right": 3}]
frames.common.captureResult.com.orlu.chi.override.CameraType | {"texts": "Master"}
frames.common.composition                                    | {"orlu.control.mirror": {"int": 1, "long": 2}}
inputs.format                                                | "NV22"
inputs.memory                                                | "private"
inputs.width                                                 | 640
outputs                                                      | {"format": "JPEG"}
outputs.0.stride                                             | -1
outputs.0.perFrame                                           | 2
"""


def refused(folder, requests):
    """Runs ./run --check. Returns a dictionary from the number of a rejected request to its first mistake."""
    files = []
    for number, request in enumerate(requests):
        files.append(folder / f"{number}.json")
        files[-1].write_text(json.dumps(request))
    result = run("--check", *files)
    if "Exception" in result.stderr:
        failures.append(result.stderr)
    mistakes = re.findall(rf"{re.escape(str(folder))}/(\d+)\.json:\d+:\d+: error: (.*)", result.stderr)
    return {int(number): text for number, text in reversed(mistakes)}


def with_member(request, path, value):
    """Returns a copy of the request in which the member at `path` has this value. In the path, everything
    after "captureResult." is one name, because tags contain dots."""
    copied = copy.deepcopy(request)
    match = re.fullmatch(r"(.*)\.(captureResult)\.(.*)", path)
    names = [*match.group(1).split("."), match.group(2), match.group(3)] if match else path.split(".")
    place = copied
    for name in names[:-1]:
        place = place[int(name)] if isinstance(place, list) else place[name]
    place[names[-1]] = value
    return copied


def check_wrong(folder, schema, sample):
    rows = [[column.strip() for column in row.split("|", 1)] for row in WRONG.strip().splitlines()]
    requests = [with_member(sample, path, json.loads(value)) for path, value in rows]
    mistakes = refused(folder, requests)
    for number, (path, value) in enumerate(rows):
        if schema.is_valid(requests[number]):
            failures.append(f"the schema accepts {path} {value}")
        if number not in mistakes:
            failures.append(f"./run accepts {path} {value}")


def places(value, path=()):
    """Yields the path of each value inside `value`, at any depth."""
    members = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for name, member in members:
        yield (*path, name)
        yield from places(member, (*path, name))


def mutations(samples):
    """Yields (path, request) for MUTATIONS random paths of each sample. The request is a copy of the sample
    without the value at this path, or with another value there."""
    chance = random.Random(1)
    for sample in samples:
        for path in chance.sample(list(places(sample)), MUTATIONS):
            mutated = copy.deepcopy(sample)
            place = mutated
            for name in path[:-1]:
                place = place[name]
            if chance.random() < 0.2:
                del place[path[-1]]
            else:
                place[path[-1]] = chance.choice(VALUES)
            yield path, mutated


def check_mutations(folder, schema, samples):
    """Checks that the schema accepts each mutation that ./run accepts, and that both reject enough mutations.
    The schema need not reject all that ./run rejects: it cannot detect, for example, missing files."""
    mutated = list(mutations(samples))
    mistakes = refused(folder, [request for _, request in mutated])
    for number, (path, request) in enumerate(mutated):
        error = jsonschema.exceptions.best_match(schema.iter_errors(request))
        if error and number not in mistakes:
            failures.append(f"./run accepts {path}, the schema does not: {error.message[:200]}")
    refusals = sum(not schema.is_valid(request) for _, request in mutated)
    if len(mistakes) < len(mutated) / 4 or refusals < len(mistakes) * 2 / 3:
        failures.append(f"too few of {len(mutated)} mutations are rejected: {len(mistakes)} by ./run, "
                        f"{refusals} by the schema")


def check_fields(folder, schema):
    """Checks that the schema has the fields that ./run lists when it reports an unknown field."""
    for inputs in ({"x": 1}, [{"x": 1}]):
        (folder / "fields.json").write_text(json.dumps({
            "x": 1, "request": {"x": 1}, "client": {"x": 1}, "frames": {"x": 1, "common": {"x": 1}, "each": [{"x": 1}]},
            "inputs": inputs, "outputs": [{"x": 1}]}))
        listed = re.findall(r": (\S*?)\.?x: unknown field; expected one of (.*)",
                            run("--check", folder / "fields.json").stderr)
        for place, names in listed:
            known = FIELDS[place]
            properties = schema["definitions"][known] if known in schema["definitions"] else schema
            properties = properties["properties"]
            if place in ("request", "client", "frames.common"):
                properties = properties[place.split(".")[-1]]["properties"]
            if sorted(properties) != names.split(", "):
                failures.append(f"fields of {place or 'the file'}: ./run lists {names}, "
                                f"the schema {', '.join(sorted(properties))}")
        if len(listed) != len(FIELDS) - 1:
            failures.append(f"./run lists the fields of {len(listed)} places, expected {len(FIELDS) - 1}")


def check_new(folder, schema):
    kinds = [line.split()[0] for line in run("new").stdout.splitlines()]
    files = [folder / f"{kind}.json" for kind in kinds]
    for kind, file in zip(kinds, files):
        made = run("new", kind, "--out", file)
        if made.returncode:
            failures.append(f"new {kind}: {made.stderr}")
        text = re.sub(r"^ *//.*$", "", file.read_text(), flags=re.MULTILINE)
        failures.extend(f"new {kind}: {error.message[:200]}" for error in schema.iter_errors(json.loads(text)))
        failures.extend(f"new {kind}: {len(line)} columns: {line}" for line in file.read_text().splitlines()
                        if len(line) > 110 and "//" in line)
    result = run("--out", folder / "out", *files)
    verdicts = [line for line in result.stdout.splitlines() if line.startswith("verdict")]
    if result.returncode or len(verdicts) <= len(kinds) or len(kinds) < 20:
        failures.append(f"running the files of {len(kinds)} kinds: status {result.returncode}, {verdicts}, "
                        f"{result.stderr}")
    for arguments, text in ((["nite"], "no such kind: nite"), (["hdr6"], "(did you mean hdr"),
                            (["hdr5", "--out", files[0]], "the file already exists"),
                            (["--out", "x"], "requires a KIND")):
        failed = run("new", *arguments)
        if failed.returncode != 2 or text not in failed.stderr:
            failures.append(f"new {arguments}: status {failed.returncode}, {failed.stderr}")


def main():
    text = json.loads(run("schema").stdout)
    jsonschema.Draft7Validator.check_schema(text)
    schema = jsonschema.Draft7Validator(text)
    samples = [json.loads(file.read_text()) for file in sorted((ROOT / "samples").glob("*.json"))]
    for sample in samples:
        failures.extend(f"{sample['about']}: {error.message[:200]}"
                        for error in schema.iter_errors({**sample, "$schema": "request.schema.json"}))
        # The photos are next to the samples; the mutated files are not.
        if "photo" in sample:
            sample["photo"] = str(ROOT / "samples" / sample["photo"])
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        capture = json.loads((ROOT / "samples/capture.json").read_text())
        check_wrong(folder, schema, {**capture, "photo": str(ROOT / "samples" / capture["photo"])})
        check_mutations(folder, schema, samples)
        check_fields(folder, text)
        check_new(folder, schema)
    finish(f"{len(samples)} samples, {MUTATIONS} mutations each")


if __name__ == "__main__":
    main()
