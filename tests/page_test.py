#!/usr/bin/env python3
"""Checks the pages that ./run --report writes, without a browser: page_test.py BUILD_FOLDER [--all]

Without --all, the test omits about half of the samples. A page must be a single file without external
resources. Its data must equal the output of --json. The page of a request in FAULTS must have exactly the
findings of its row. The page of an unchanged sample must have no findings."""

import base64
import html.parser
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(sys.argv[1]).resolve()
ENVIRONMENT = {key: value for key, value in os.environ.items()
               if key not in ("ANDROID_LOG_TAGS", "ORLU_ALGO_TRACE", "ORLU_EVENTS", "ORLU_PLANTED", "ORLU_LOG_FILE")}
PLANTED = BUILD / "planted/planted_algo.so"
LARGEST_PAGE = 3_000_000

# request | planted fault | kinds of findings | part of the findings' text
FAULTS = """
padded | | |
night | inputStride | stride | a stride of 632 instead of 640
padded | outputStride | stride | padding contains pixels
night | swapped | colours-exchanged | U and V
raw16 | elsewhere | wrong-buffer | input 0
watermark | untouched | untouched | output 0
padded | black | black | Output 0 is black: its mean brightness is 0.0
padded | dark | dark | much darker than input 0
padded | clipped | clipped | 100 %
padded | stamped | input-written | input 0 have changed
padded | green | plane-untouched | plane VU
padded | half | rows-missing | last 200 of 400 rows
night | selects | |
capture | silent | time-out | no callback for request 103
capture | aborts:process | crash | SIGABRT
capture | aborts:createClient | crash | createClient
capture | lacks:process | unusable | lacks process
capture | lacks:setValue | incomplete | ran without its parameters
capture | answers:init | failed-call | init returned -22
capture | empty | unreadable written-behind | a JPEG of size 0
slanted | | stride | request states a wrong stride
capture | oversized | past-end unreadable | exceed its memory by
missing | | frame-missing | frame 1
twice | | frame-twice | frame 2
"""

failures = []


def check(what, is_right, found=""):
    if not is_right:
        failures.append(f"{what} {found}")


class References(html.parser.HTMLParser):
    """Collects the URLs of a page, and the elements that are not closed."""

    def __init__(self):
        super().__init__()
        self.loads, self.links, self.open = [], [], []

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("src", "href", "srcset", "data", "action"):
                (self.links if tag == "a" else self.loads).append(value)
        if tag not in ("meta", "link", "br", "img", "input"):
            self.open.append(tag)

    def handle_endtag(self, tag):
        check("an end tag without a matching open element:", self.open and self.open.pop() == tag, tag)


def read_page(file):
    """Checks a page, and returns its data."""
    text = file.read_text(encoding="utf-8")
    references = References()
    references.feed(text)
    references.close()
    check(f"{file.name} loads a resource:", all(load.startswith("data:") for load in references.loads),
          references.loads)
    check(f"{file.name} has unclosed elements:", not references.open, references.open)
    outside = [url for url in re.findall(r"(?:https?:)?//[a-z0-9.]+\.[a-z]+[^\s\"')]*", text)
               if not url.startswith("http://www.w3.org/")]
    check(f"{file.name} has external URLs:", not outside, outside)
    check(f"{file.name} is too large:", file.stat().st_size < LARGEST_PAGE, file.stat().st_size)
    check(f"{file.name} has a placeholder left", not re.search(r"@(title|style|script|data)@", text))
    return json.loads(re.search(r'<script type="application/json" id="data">(.*?)</script>', text, re.S).group(1))


def run(folder, requests, fault="", status=None, trials="off"):
    """Runs requests, and writes their pages into the folder. Returns the output.

    Trials take most of the time; without them pages lack the tags that parameters depend on.
    """
    environment = dict(ENVIRONMENT, ORLU_BUILD=str(BUILD), ORLU_TRIALS=trials)
    if fault:
        if not PLANTED.exists():
            sys.exit(f"no {PLANTED}: build planted_algo")
        environment.update(ORLU_ALGO_LIBRARY=str(PLANTED), ORLU_PLANTED=fault)
    result = subprocess.run(
        [ROOT / "run", "--report", folder, "--json", folder.parent / "json", "--out", folder.parent / "out",
         *requests], env=environment, cwd=folder.parent, text=True, capture_output=True, check=False)
    if status is not None:
        check(f"{requests}, {fault}: status:", result.returncode == status, f"{result.returncode} {result.stderr}")
    return result.stdout


def request_with(name, folder, **members):
    """Writes a copy of samples/clarity.json with `members` replaced or added. Returns the file."""
    request = json.loads((ROOT / "samples/clarity.json").read_text())
    request["photo"] = str(ROOT / "samples/photos/table.jpg")
    request.update(members)
    file = folder / f"{name}.json"
    file.write_text(json.dumps(request))
    return file


def nv21(width, height, stride, seed):
    """Returns the NV21 bytes of a grey picture with edges and gradients. Both planes have this stride."""
    rows = bytearray()
    for y in range(height):
        rows += bytes((40 + seed + (x * 3 + y // 4) % 160 + (60 if (x - 90) ** 2 + (y - 60) ** 2 < 2500 else 0)) % 256
                      for x in range(width)) + bytes(stride - width)
    return bytes(rows) + bytes([128]) * (stride * height // 2)


def file_requests(folder):
    """Writes requests with faulty image files: a wrong stride, a frame of zeros, a repeated frame."""
    width, height = 240, 160
    frames = {"count": 3, "common": json.loads((ROOT / "samples/clarity.json").read_text())["frames"]["common"]}
    pictures = {"a": nv21(width, height, width, 0), "b": nv21(width, height, width, 9),
                "c": nv21(width, height, width, 18), "zero": bytes(width * height * 3 // 2),
                "padded": nv21(width, height, width + 16, 0)}
    for name, pixels in pictures.items():
        (folder / f"{name}.nv21").write_bytes(pixels)

    def request(name, files):
        inputs = [{"format": "NV21", "file": f"{file}.nv21", "width": width, "height": height} for file in files]
        return request_with(name, folder, frames=frames, inputs=inputs, outputs=[{"format": "NV21"}])
    return {"slanted": request("slanted", ["padded"] * 3), "missing": request("missing", ["a", "zero", "c"]),
            "twice": request("twice", ["a", "b", "a"])}


def check_faults(folder):
    padded = {"format": "NV21", "stride": 704}
    night = json.loads((ROOT / "samples/night.json").read_text())
    night["photo"] = str(ROOT / "samples" / night["photo"])
    night["frames"]["count"] = 3
    requests = {"padded": request_with("padded", folder, inputs=padded, outputs=[padded]),
                "night": request_with("night", folder, **night), **file_requests(folder)}
    rows = [[field.strip() for field in row.split("|")] for row in FAULTS.strip().splitlines()]
    without_fault = [requests[name] for name, fault, _, _ in rows if not fault]
    for name, fault, kinds, words in rows:
        where = f"{name}, {fault}:"
        pages = folder / (fault or "no-fault")
        page = pages / f"{name}.html"
        # Requests without a planted fault share one run.
        if not pages.exists():
            run(pages, [requests.get(name, ROOT / f"samples/{name}.json")] if fault else without_fault, fault,
                trials="on" if fault == "aborts:process" else "off")
        if not page.exists():
            failures.append(f"{where} no page")
            continue
        data = read_page(page)
        found = [finding["kind"] for finding in data["findings"]]
        # The frames of the slanted request are equal, so findings of repeated frames are expected.
        found = [kind for kind in found if name != "slanted" or kind != "frame-twice"]
        check(f"{where} findings", found == kinds.split(), f"{found} instead of {kinds}")
        said = " ".join(finding["what"] + " " + finding["why"] for finding in data["findings"])
        check(f"{where} findings", words in said and "%" not in said.replace(" %", ""),
              f"lack “{words}” or contain a stray %: {said}")
        tabs = {finding["tab"] for finding in data["findings"]}
        check(f"{where} wrong tabs:", tabs <= {"pictures", "memory", "timeline", "tags", "results", "log"}, tabs)
        if fault == "selects":
            base = data["images"]["base"], data["images"]["baseNamedBy"]
            check(f"{where} is compared with a wrong base:",
                  base == (2, "orlu.feedback.frameSelectResult"), base)
        if fault == "aborts:process":
            images = data["images"]
            check(where + " wrong pictures", images["lost"] and not images["outputs"] and
                  ["large" in image for image in images["inputs"]] == [True])
            check(where + " no inputs in the summary", "1 x NV21 512x512" in data["printed"], data["printed"])
            check(where + " no parameters of the process that ended", len(data["parameters"]) > 90)
            check(where + " no crash report", "SIGABRT" in data["crash"], data["crash"][:200])
            check(where + " no explanations", data["explained"]["orlu.algo.control/film_size"]["tags"])
            open_calls = [event["name"] for event in data["trace"] if event.get("args", {}).get("outcome") ==
                          "has not returned"]
            check(where + " open calls:", open_calls == ["process"], open_calls)


def check_images(data, name):
    images = data["images"]
    for image in images["inputs"] + images["outputs"]:
        layout = image["layout"]
        ends = [plane["offset"] + plane["size"] for plane in layout["planes"]]
        check(f"{name}: {image['name']} has planes past its memory", max(ends) <= layout["memory"], layout)
        for size in ("small", "large"):
            if size in image:
                jpeg = base64.b64decode(image[size].split(",")[1])
                check(f"{name}: {image['name']} is not a JPEG",
                      jpeg[:2] == b"\xff\xd8" and b"\xff\xd9" in jpeg[-64:]
                      or image["name"].startswith("output"))
        if "facts" in image:
            pixels = layout["width"] * layout["height"]
            sums = {key: sum(counts) for key, counts in image["facts"]["histogram"].items()}
            check(f"{name}: {image['name']} has incomplete histograms", set(sums.values()) == {pixels}, sums)


def check_against_json(data, report, name):
    """Checks that the page has the same content as --json."""
    parameters = [(f"orlu.algo.{row['section']}", row["key"], row["type"], row["hex"]) for row in data["parameters"]]
    wanted = [(row["section"], row["key"], row["type"], row["hex"]) for row in report["parameters"]]
    check(f"{name}: other parameters than in --json", parameters == wanted)
    last = {(section, key): i for i, (section, key, _, _) in enumerate(wanted)}
    for i, row in enumerate(data["parameters"]):
        is_last = last[wanted[i][:2]] == i
        check(f"{name}: {row['name']} has a wrong mark of replacement", row["replaced"] != is_last)
        check(f"{name}: {row['name']} has no source line", re.search(r", jni/\w+\.(cpp|h):\d+$", row["place"]),
              row["place"])
    put = [(int(frame.split()[1]), tag) for frame, tag, _ in data["put"]]
    check(f"{name}: wrong values put", put == [(i, tag) for i, frame in enumerate(report["put"]) for tag in frame], put)
    check(f"{name}: wrong verdict", data["verdict"]["reasons"] == report["verdict"]["reasons"])
    descriptors = [row for row in data["descriptors"] if row[2] != row[3]]
    changed = [(i, field) for i, before in enumerate(report["outputsBefore"]) for field, value in before.items()
               if report["outputsAfter"][i][field] != value]
    check(f"{name}: wrong descriptors changed", len(descriptors) == len(changed), descriptors)
    depending = {}
    for tag in report["trials"]["tags"]:
        for parameter in tag["parameters"] + tag["together"]:
            depending.setdefault(parameter, set()).add(tag["tag"])
    general = {row[0] for row in data["generalTags"]}
    for parameter, explained in data["explained"].items():
        tags = {row[0] for row in explained["tags"]}
        missing = depending.get(parameter, set()) - tags - general
        check(f"{name}: {parameter} lacks tags or has too many:", explained["unsteady"] or
              not missing and tags <= depending.get(parameter, set()), missing or tags)


def check_samples(folder):
    samples = sorted((ROOT / "samples").glob("*.json"))
    pages = folder / "samples"
    explained = [sample for sample in samples if sample.stem in ("bokeh", "hdr7", "night", "night-async")]
    others = [sample for sample in samples if sample not in explained]
    if "--all" not in sys.argv:
        others = [sample for index, sample in enumerate(others) if index % 2 == 0 or sample.stem == "no-pass"]
    reports = []
    for requests, trials in ((explained, "on"), (others, "off")):
        printed = run(pages, requests, status=0, trials=trials)
        reports += json.loads((folder / "json").read_text())["results"]
        check("the index is not named", f"page        {pages}/index.html" in printed)
        index = read_page(pages / "index.html")
        check("the index lists wrong requests", [entry["page"] for entry in index["entries"]] ==
              [f"{sample.stem}.html" for sample in requests])
    for sample, report in zip(explained + others, reports):
        data = read_page(pages / f"{sample.stem}.html")
        if sample in explained:
            check(f"{sample.stem}: no trials", len(report["trials"]["tags"]) > 100)
        check(f"{sample.stem}: has findings:", data["findings"] == [], data["findings"])
        check(f"{sample.stem}: has no link to the index", data["hasIndex"])
        check_images(data, sample.stem)
        check_against_json(data, report, sample.stem)
        requests = [event for event in data["trace"] if "verdict" in event.get("args", {})]
        check(f"{sample.stem}: has slices of other requests", len(requests) == 1 and
              requests[0]["args"]["file"] == str(sample), requests)
        tags = {line[3] for line in data["log"]}
        check(f"{sample.stem}: has no log", "_V_VASJNI-VRequest" in tags, tags)
        check(f"{sample.stem}: has invalid log lines", all(line[2] in "VDIWEF" for line in data["log"]))
    night = read_page(pages / "night.html")
    names = [event["name"] for event in night["trace"] if event["ph"] == "X"]
    for name in ("translation", "wait for the callback", "results", "algorithms: night, jpegEncode", "callback"):
        check(f"night: slices {name}:", names.count(name) == 1, names.count(name))
    headings = {group["heading"].split(",")[0]: len({row[0] for row in group["rows"]}) for group in night["tags"]}
    check("night: tags", headings == {"read": 34, "absent": 78, "read in other frames only": 29}, headings)
    check("night: the base", night["images"]["base"] == 3, night["images"]["base"])
    check("night: the PSNR of the difference is not above 20", night["images"]["differences"][0]["psnr"] > 20)
    same = read_page(pages / "no-pass.html")
    check("no-pass: algorithms are shown as passed on", same["algorithms"].get("handedOn") is None)


def check_several(folder):
    """Checks the pages of several requests in one run.

    If a request crashes, it and the requests before it must have pages; the index must also list the later
    requests. A repeated request must get a page of its own. A script in a request must stay text.
    """
    pages = folder / "several"
    capture = ROOT / "samples/capture.json"
    run(pages, [ROOT / "samples/no-pass.json", capture, capture], "aborts:process", status=1)
    index = read_page(pages / "index.html")
    check("several: entries", [entry.get("page") for entry in index["entries"]] ==
          ["no-pass.html", "capture.html", None], index)
    data = read_page(pages / "capture.html")
    check("several: has data of earlier requests", data["start"] > 0 and len(data["parameters"]) < 200)
    check("several: no log of the request", any("processImage()" in line[4] for line in data["log"]))
    twice = folder / "twice"
    run(twice, [capture, capture], status=0)
    check("twice: wrong pages", sorted(file.name for file in twice.iterdir()) ==
          ["capture-2.html", "capture.html", "index.html"])
    wrong = request_with("odd", folder, about="</script><script>alert(1)</script>")
    run(folder / "odd", [wrong], status=0)
    check("odd: another text than in the request",
          read_page(folder / "odd/odd.html")["about"].startswith("</script>"))


with tempfile.TemporaryDirectory() as name_of_folder:
    work = pathlib.Path(name_of_folder)
    check_faults(work)
    check_samples(work)
    check_several(work)

for failure in failures:
    print("FAILED:", failure)
print("All passed" if not failures else f"{len(failures)} failures")
sys.exit(bool(failures))
