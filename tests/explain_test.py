#!/usr/bin/env python3
"""Changes tags of samples, one at a time, and checks that ./run --explain reports every effect. Also checks
the reported tags of known parameters and the printed text of one request.

explain_test.py BUILD_FOLDER [--all]    without --all, uses only some of the samples
"""

import concurrent.futures
import json
import random
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
from command import BUILD, ROOT, failures, finish, run  # noqa: E402

CHANGES_PER_SAMPLE = 12
SIDE = 64  # Frames are small, because the pixels do not matter.

# sample | parameter | all tags that affect the parameter, with their frames; found manually in the source.
# Tags that affect 60 or more parameters are omitted.
KNOWN = """
hdr7      | parameter/hdr_process_type    | orlu.control.currentModeEx 0-6
night     | control/film_size             | orlu.control.filmSize 0
portrait  | sensor/camera_type            | com.orlu.MultiCameraBokehSelectSessionId 0, com.orlu.chi.override.CameraType 0
"""


def run_in(folder, *arguments):
    return run("--out", folder / "out", *arguments, cwd=folder,
               ORLU_ALGO_LIBRARY=str(BUILD / "trial/liborlu.vac.interface.so"))


def small(sample):
    """Returns a sample's request with small frames. Each frame gets its own copy of the common tags."""
    request = json.loads(sample.read_text())
    if "photo" in request:
        request["photo"] = str(sample.parent / request["photo"])
    frames = request.get("frames", [])
    frames = frames if isinstance(frames, dict) else {"each": frames}
    each = frames.get("each", [])
    common = frames.pop("common", {})
    frames["each"] = []
    for index in range(frames.get("count", max(1, len(each)))):
        own = each[index] if index < len(each) else {}
        stores = {store: {**common.get(store, {}), **own.get(store, {})}
                  for store in ("captureResult", "composition")}
        frames["each"].append({**own, **stores})
    request["frames"] = {**frames, "width": SIDE, "height": SIDE}
    return request


def other(value, chance):
    """Returns another value of the same type; None if the tag can only be removed."""
    if isinstance(value, bool) or value is None:
        return None
    if isinstance(value, (int, float)):
        return value + chance.choice([1, -1, 2, 5])
    if isinstance(value, str):
        return value + "1"
    if isinstance(value, list) and value:
        index = chance.randrange(len(value))
        changed = other(value[index], chance)
        return value[:index] + ([] if changed is None else [changed]) + value[index + 1:]
    if isinstance(value, dict):
        numbers = [key for key, number in value.items() if isinstance(number, int) and key != "step"]
        if numbers:
            key = chance.choice(numbers)
            return {**value, key: value[key] + 1}
    return None


def changes(request, chance):
    """Yields (frame, tag, request with this tag changed or removed), for random tags."""
    places = [(index, store, tag) for index, frame in enumerate(request["frames"]["each"])
              for store in ("captureResult", "composition") for tag in frame[store]]
    for index, store, tag in chance.sample(places, min(CHANGES_PER_SAMPLE, len(places))):
        changed = json.loads(json.dumps(request))
        tags = changed["frames"]["each"][index][store]
        value = other(tags[tag], chance) if chance.random() < 0.6 else None
        if value is None:
            del tags[tag]
        else:
            tags[tag] = value
        yield index, tag, changed


def handed_over(report):
    """Maps each parameter to its values in a report, in order, and "algorithms" to the algorithm list."""
    values = {}
    for parameter in report["parameters"]:
        values.setdefault(f"{parameter['section']}/{parameter['key']}", []).append(parameter["hex"])
    if "algorithmsAfter" in report:
        values["algorithms"] = report["algorithmsAfter"]
    return values


def short(name):
    return name.removeprefix("orlu.algo.")


def check_samples(samples, folder):
    """Returns the failures, one line each, and the number of changes with an effect."""
    folder.mkdir()
    originals, changed, places = [], [], []
    for sample in samples:
        request = small(sample)
        requests = [(None, None, request), *changes(request, random.Random(sample.stem))]
        files = [f"{sample.stem}-{number}.json" for number in range(len(requests))]
        for file, (_, _, content) in zip(files, requests):
            (folder / file).write_text(json.dumps(content))
        originals.append(files[0])
        changed += files
        places.append([place[:2] for place in requests])
    # Each process runs many requests, because starting a process takes as long as several requests.
    with concurrent.futures.ThreadPoolExecutor() as pool:
        explained = pool.submit(run_in, folder, "--explain", "all", "--json", "explained", *originals)
        plain = pool.submit(run_in, folder, "--json", "plain", *changed)
    if not (folder / "explained").exists() or not (folder / "plain").exists():
        return [f"{explained.result().stderr}{plain.result().stderr}{plain.result().stdout[-200:]}"], 0
    explanations = json.loads((folder / "explained").read_text())["results"]
    reports = iter(json.loads((folder / "plain").read_text())["results"])
    problems, effects = [], 0
    for sample, explanation, sample_places in zip(samples, explanations, places):
        trials = explanation["trials"]
        handed = [handed_over(next(reports)) for _ in sample_places]
        more, count = unexplained(sample, trials, sample_places, handed)
        problems += more + known_problems(sample, trials)
        effects += count
    return problems, effects


def unexplained(sample, trials, places, handed):
    """Returns the failures, mostly effects that trials missed, and the number of changes with an effect."""
    problems = [f"{sample.stem}: {trials['problem']}"] if trials["problem"] else []
    named = {}
    for tag in trials["tags"]:
        named.setdefault((tag["frame"], tag["tag"]), set()).update(tag["parameters"])
    effects = 0
    for (frame, tag), report in zip(places[1:], handed[1:]):
        changed = {name for name in report.keys() | handed[0].keys()
                   if report.get(name) != handed[0].get(name)} - set(trials["unsteady"])
        effects += bool(changed)
        for name in sorted(changed - named.get((frame, tag), set())):
            problems.append(f"{sample.stem}: not explained: {tag} of frame {frame} changes {short(name)}")
    return problems, effects


def known_problems(sample, trials):
    problems = []
    for row in KNOWN.strip().splitlines():
        name, parameter, tags = (column.strip() for column in row.split("|"))
        if name != sample.stem:
            continue
        wanted = set()
        for tag, frames in (text.split() for text in tags.split(",")):
            first, _, last = frames.partition("-")
            wanted |= {(int(frame), tag) for frame in range(int(first), int(last or first) + 1)}
        found = {(tag["frame"], tag["tag"]) for tag in trials["tags"]
                 if any(short(name) == parameter for name in tag["parameters"]) and len(tag["parameters"]) < 60}
        if found != wanted:
            problems.append(f"{name}: {parameter} depends on {sorted(found)} instead of {sorted(wanted)}")
    return problems


def check_printed(folder):
    """Checks the lines about tags that are overridden, of a wrong type, or never read."""
    folder.mkdir()
    request = small(ROOT / "samples/capture.json")
    frame = request["frames"]["each"][0]
    frame["composition"].update({"orlu.control.filmSize": {"string": "5"}, "orlu.control.camera_id": 3,
                                 "orlu.control.misspelt": 1})
    (folder / "fates.json").write_text(json.dumps(request))
    result = run_in(folder, "--tags", "--strict", "--explain", "film_size", "fates.json")
    wanted = """
tags overridden by the composition: 1
    frame 0      3 overrides the capture result's 0
tags of a wrong type, so the default applies: 1
    frame 0      composition     String "5" instead of Integer: the algori [...]
tags never read: 2
  orlu.control.misspelt
    frame 0      composition     1
explain  control/film_size
  counts      0 (int)
                frame 0      composition     String "5" instead of Integer
"""
    lines = result.stdout.splitlines()
    problems = [f"not printed: {line}" for line in wanted.strip("\n").splitlines() if line not in lines]
    reasons = "2 tags never read: orlu.control.currentModeEx, orlu.control.misspelt; 1 tag of a wrong type: orlu.control.filmSize; 2 warnings on the request file"
    if result.returncode != 1 or reasons not in lines[-1]:
        problems.append(f"status {result.returncode}, {lines[-1]}")
    problems += [f"{len(line)} columns: {line}" for line in lines[:-1] if len(line) > 80]
    return problems


def main():
    samples = sorted((ROOT / "samples").glob("*.json"))
    if "--all" not in sys.argv:
        samples = [sample for index, sample in enumerate(samples) if index % 6 == 0 or f"{sample.stem} " in KNOWN]
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        problems, effects = check_samples(samples, folder / "samples")
        failures.extend(problems)
        failures.extend(check_printed(folder / "printed"))
    if effects < len(samples):
        failures.append(f"only {effects} changes had an effect")
    finish(f"All explained: {effects} changes of {len(samples)} samples had an effect")


if __name__ == "__main__":
    main()
