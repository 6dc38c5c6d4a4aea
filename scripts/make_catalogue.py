#!/usr/bin/env python3
"""Writes the catalogue of tags and parameters. Runs the samples to find the parameters that depend on each
tag, the functions that write each parameter, its value without tags, and the outcome of each sample's
algorithms. Finds in the source the functions that read each tag.

make_catalogue.py                     write service/java/.../tool/catalogue/catalogue.json, and docs/contract.md
make_catalogue.py --texts             write both from tool/tags/, the samples and the previous findings
make_catalogue.py --check             compare both with new findings, and write nothing
make_catalogue.py --check SAMPLE...   check that no finding of these samples (names without .json) is missing

A whole run takes about a minute. It first builds ./run, unless ORLU_BUILD names a build folder.
"""

import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import catalogue_entries

ROOT = Path(__file__).resolve().parent.parent
CATALOGUE = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/catalogue/catalogue.json"
TAGS = ROOT / "host/java/android/hardware/camera2/impl/tags.txt"
PAGE = ROOT / "docs/contract.md"
LONGEST_VALUE = 60
# Samples that also run with all algorithms of the catalogue except frameClarOnly, because some algorithms are
# in no sample. "capture" has processed input, "raw-night" has raw input.
ALL_OF = ("capture", "raw-night")


# -- Search of the source for the functions that contain a literal.

FUNCTION = re.compile(r"^(?!namespace|struct|class|enum|using|template|static_assert)\w[\w:<>,&*~ ]*?(\w+)\(")
KEPT_TAG = re.compile(r'KeptTag<.*> m(\w)(\w*)\{"([\w.]+)"\}')
TAG_CONSTANT = re.compile(r'constexpr char (k\w+)\[\] = "([\w.]+)"')
SECTIONS = "Control|Parameter|Sensor|Feedback|System|Zoom"
PARAMETER = re.compile(rf'\bk({SECTIONS}),\s*"(\w+)"')
# Results whose keys are constants in the source.
OTHER_RETURNS = {"kQueryResult,": "feedback/query_result"}
# Parameters of an abort. No sample requests an abort, so no trial finds their writers.
ABORT = ("abort_key", "abort_val")
# Matches the text before the name of a function of Shot; "hot." matches "shot." and "mShot.". Each function
# of Shot that reads one fixed tag uses a KeptTag. Only exposureOf() does not, because it takes a frame.
SHOT = r"(?:hot\.|Shot::)"
EXPOSURE_TAG = "kAecTag"
EXPOSURE = "exposureOf"


def functions(file):
    """Yields (function, line) for each line of a source; the function is "" outside functions."""
    inside = ""
    for line in file.read_text().splitlines():
        match = FUNCTION.match(line)
        if match and not line.rstrip().endswith(";"):
            inside = match.group(1)
        yield inside, line
        if line.startswith("}"):
            inside = ""


def source_rows(tags):
    jni = ROOT / "jni"
    names = {tag: {f'"{re.escape(tag)}"'} for tag in tags}
    for header in jni.glob("*.h"):
        for constant, tag in TAG_CONSTANT.findall(header.read_text()):
            names.get(tag, set()).update({constant} | ({SHOT + EXPOSURE} if constant == EXPOSURE_TAG else set()))
        for first, rest, tag in KEPT_TAG.findall(header.read_text()):
            names[tag].add(SHOT + first.lower() + rest)
    rows = set()
    for file in sorted(jni.glob("*.cpp")):
        # A constant of a .cpp file counts only in that file.
        own = {tag: set(words) for tag, words in names.items()}
        for constant, tag in TAG_CONSTANT.findall(file.read_text()):
            own.get(tag, set()).add(constant)
        patterns = {tag: re.compile("|".join(rf"{word}(?!\w)" for word in sorted(words)))
                    for tag, words in own.items()}
        for function, line in functions(file):
            if not function or line.lstrip().startswith("//"):
                continue
            for tag, pattern in patterns.items():
                if pattern.search(line):
                    rows.add(f"{'puts' if is_put(file, line) else 'reads'} {tag} {function} jni/{file.name}")
            # The metadata updater, too, reads back some parameters that it has written.
            if file.name.startswith("result_updater") or "readBack<" in line:
                for section, key in PARAMETER.findall(line):
                    rows.add(f"returns {section.lower()}/{key} {function} jni/{file.name}")
            for constant, key in OTHER_RETURNS.items():
                if constant in line:
                    rows.add(f"returns {key} {function} jni/{file.name}")
            for key in ABORT:
                if f'"{key}"' in line:
                    rows.add(f"writes control/{key} {function} jni/{file.name}")
    return rows


# Returns whether a line that names a tag writes it. The result updater reads only the tag kTimestampTag and
# writes all other tags. The callback puts values into a map.
def is_put(file, line):
    if file.name.startswith("algo_native_callback"):
        return True
    return file.name.startswith("result_updater") and not re.search(r"\bkTimestampTag\b", line)


# -- Trials.

def requests(samples):
    """Yields the name of each run, its request, and whether to run trials with its tags."""
    for sample in samples:
        request = json.loads((ROOT / "samples" / f"{sample}.json").read_text())
        yield sample, request, True
        yield f"{sample}-bare", bare(request), False
        if sample in ALL_OF:
            names = [name for name in catalogue_entries.algorithm_names() if name != "frameClarOnly"]
            everything = {**request, "algorithms": names}
            yield f"{sample}-all", everything, True
            yield f"{sample}-all-bare", bare(everything), False


def bare(request):
    """Returns the request without its frames' tags; keeps the other fields of "frames", such as the count."""
    frames = request["frames"]
    kept = {name: value for name, value in frames.items() if name not in ("common", "each")}
    return {**request, "frames": kept}


def run(folder, name, request, is_tried):
    """Returns the report, the printed text, and the stand-in's trace."""
    request = {**request, "photo": str(ROOT / "samples" / request["photo"])}
    (folder / f"{name}.json").write_text(json.dumps(request))
    trace = folder / f"{name}.trace"
    environment = dict(os.environ, ORLU_ALGO_TRACE=str(trace))
    command = [ROOT / "run", "--wide", "--out", folder / f"{name}.out", "--json", folder / f"{name}.report"]
    command += ["--explain", "all"] if is_tried else []
    result = subprocess.run(command + [folder / f"{name}.json"], env=environment, cwd=folder, text=True,
                            capture_output=True, check=False)
    if not (folder / f"{name}.report").exists():
        sys.exit(f"make_catalogue: {name}: {result.stderr}{result.stdout[-500:]}")
    report = json.loads((folder / f"{name}.report").read_text())["results"][0]
    if report.get("trials", {}).get("problem"):
        sys.exit(f"make_catalogue: {name}: {report['trials']['problem']}")
    lines = trace.read_text().splitlines() if trace.exists() else []
    return report, result.stdout, [json.loads(line) for line in lines]


def short(name):
    return name.removeprefix("orlu.algo.")


def absent_rows(report):
    last = {f"{short(each['section'])}/{each['key']}": each for each in report["parameters"]}
    for name, parameter in last.items():
        yield f"absent {name} {'0' if not parameter['hex'].strip('0') else value_text(parameter['value'])}"


def value_text(value):
    if isinstance(value, list) and len(value) > 1 and len(set(value)) == 1:
        return f"{value_text(value[0])} in all {len(value)}"
    text = value if isinstance(value, str) else json.dumps(value)
    return text if len(text) <= LONGEST_VALUE else text[:LONGEST_VALUE].rsplit(" ", 1)[0] + " ..."


def algorithm_rows(sample, report, trace):
    asked, kept = report["algorithmsBefore"], report.get("algorithmsAfter", [])
    done = next((line for line in trace if line.get("op") == "done"), {})
    for name in sorted(set(asked + kept)):
        fate = ["asked" if name in asked else "added"]
        if "algorithmsAfter" not in report:
            fate.append("not submitted")
        elif name not in kept:
            fate.append("removed")
        elif name in done.get("ran", []):
            fate.append("ran")
        elif name in done.get("skipped", []):
            fate.append("skipped")
        yield f"algorithm {name} {sample} {' '.join(fate)}"


def dependence_rows(report):
    names = {f"{each['section']}/{each['key']}" for each in report["parameters"]}
    for tag in report["trials"]["tags"]:
        changed = tag["parameters"] + tag["together"]
        if len(tag["parameters"]) > len(names) / 2:
            yield f"depends {tag['tag']} *"
        else:
            yield from (f"depends {tag['tag']} {short(name)}" for name in changed)


def writer_rows(text):
    name = ""
    for line in text.splitlines():
        heading = re.match(r"explain  (\w+/\w+)", line)
        name = heading.group(1) if heading else name
        writer = re.match(r" +by (\w+), (jni/\w+\.cpp):\d+", line)
        if writer:
            yield f"writes {name} {writer.group(1)} {writer.group(2)}"


def asked_tags(report):
    return {tag["tag"] for tag in report["trials"]["tags"]}


def found(samples, tags):
    """Returns all findings, a line of text each, and the tags that were read."""
    rows, asked = set(), set()
    # Builds first, so that concurrent runs do not.
    subprocess.run([ROOT / "run", "--check"], stdout=subprocess.DEVNULL, check=True)
    with tempfile.TemporaryDirectory() as name, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = list(requests(samples))
        results = pool.map(lambda each: run(Path(name), *each), runs)
        for (request, _, is_tried), (report, text, trace) in zip(runs, results):
            if is_tried:
                rows |= set(dependence_rows(report)) | set(writer_rows(text))
                asked |= asked_tags(report)
            else:
                rows |= set(absent_rows(report))
            if request in samples:
                rows |= set(algorithm_rows(request, report, trace))
    return rows | source_rows(tags), asked


# -- The page.

def table(heading, rows):
    cells = [heading, ["---"] * len(heading), *rows]
    return "".join("| " + " | ".join(str(cell).replace("|", "\\|") for cell in row) + " |\n" for row in cells)


def code(texts):
    return ", ".join(f"`{text}`" for text in texts)


def functions_of(places):
    return code(dict.fromkeys(place.split(" ")[0] for place in places))


def type_of(entry):
    return entry["type"] + (f" (`{entry['record']}`)" if entry["record"] else "")


def handed_over(catalogue):
    """Returns a table for each section."""
    text, sections = "", {}
    for entry in catalogue["parameters"]:
        if "in" in entry["direction"]:
            sections.setdefault(entry["section"], []).append(entry)
    for section, entries in sections.items():
        rows = [[f"`{entry['key']}`", type_of(entry), entry["bytes"], " or ".join(entry["withoutTags"]) or "not sent",
                 code(tag for tag in entry["tags"] if tag != catalogue_entries.ALGORITHM_LIST),
                 functions_of(entry["writtenBy"])]
                for entry in entries]
        text += f"### {section}\n\n"
        text += table(["key", "type", "bytes", "without tags", "tags that change it", "written by"], rows) + "\n"
    return text.rstrip("\n") + "\n"


def read_back(catalogue):
    return table(["section", "key", "type", "bytes", "read by"],
                 [[entry["section"], f"`{entry['key']}`", type_of(entry), str(entry["bytes"]).split(" ")[0],
                   functions_of(entry["readBackBy"])]
                  for entry in catalogue["parameters"] if "out" in entry["direction"]])


def algorithm_page(catalogue):
    return table(["algorithm", "purpose", "added", "removed", "effect if listed", "results", "stand-in"],
                 [[f"`{entry['name']}`", entry["is"], " ".join(entry["added"]), " ".join(entry["removed"]),
                   " ".join(entry["does"]), " ".join(entry["returns"]), entry["standIn"]]
                  for entry in catalogue["algorithms"]])


def tag_page(catalogue):
    return table(["tag", "type", "unit", "meaning", "read by", "put back by"],
                 [[f"`{entry['name']}`", entry["type"], entry["unit"], entry["meaning"],
                   "nobody" if "nobody" in str(entry["readBy"]) else functions_of(entry["readBy"]),
                   functions_of(entry["putBackBy"])] for entry in catalogue["tags"]])


def value_page(catalogue):
    return table(["tag", "value", "meaning"],
                 [[f"`{entry['name']}`", value["value"], value["meaning"]]
                  for entry in catalogue["tags"] for value in entry["values"]])


def format_page(catalogue):
    fields = ("is", "code", "planes", "row", "stride", "files")
    return table(["format", "contents", *fields[1:]], [[f"`{entry['name']}`", *(entry[field] for field in fields)]
                                                       for entry in catalogue["formats"]])


TABLES = {"parameters": handed_over, "results": read_back, "algorithms": algorithm_page, "tags": tag_page,
          "values": value_page, "formats": format_page}


def page(catalogue):
    """Returns the page with new tables. The text between them is hand-written."""
    text = PAGE.read_text()
    for name, make in TABLES.items():
        start, end = f"<!-- made: {name} -->\n", "<!-- end -->\n"
        before, rest = text.split(start)
        text = before + start + make(catalogue) + end + rest.split(end, 1)[1]
    return text


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    modes = parser.add_mutually_exclusive_group()
    modes.add_argument("--texts", action="store_true")
    modes.add_argument("--check", nargs="*", metavar="SAMPLE")
    arguments = parser.parse_args()
    is_check = arguments.check is not None
    chosen = arguments.check or []
    known = catalogue_entries.rows_of(json.loads(CATALOGUE.read_text()))
    problems = []
    if arguments.texts:
        rows, samples = known, []
    else:
        samples = chosen or [sample.name for sample in catalogue_entries.samples()]
        tags = [line.split()[0] for line in TAGS.read_text().splitlines() if line and not line.startswith("#")]
        rows, asked = found(samples, tags)
        if not chosen:
            read = {row.split()[1] for row in rows if row.startswith("reads ")}
            problems += [f"{tag} was read, but no function of jni/ names it" for tag in sorted(asked - read)]
            problems += [f"{tag} is named in jni/, but no run of a sample reads it" for tag in sorted(read - asked)]
    catalogue = catalogue_entries.parts(known if chosen else rows)
    texts = {CATALOGUE: catalogue_entries.text(catalogue), PAGE: page(catalogue)}
    if is_check:
        gone = set() if chosen else known - rows
        problems += [f"{CATALOGUE.name} lacks: {row}" for row in sorted(rows - known)]
        problems += [f"{CATALOGUE.name} has a stale row: {row}" for row in sorted(gone)]
        problems += [f"{file.relative_to(ROOT)} is out of date; run scripts/make_catalogue.py --texts"
                     for file, text in texts.items() if text != file.read_text()]
    else:
        for file, text in texts.items():
            file.write_text(text)
    print(*problems, f"{len(rows)} rows" + (f" of {len(samples)} samples" if samples else ""), sep="\n")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
