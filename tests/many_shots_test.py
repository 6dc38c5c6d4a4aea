#!/usr/bin/env python3
"""Tests sweeps, bursts, comparisons, runs of whole folders, and the machine-readable output of each.

many_shots_test.py BUILD_FOLDER
"""

import fcntl
import json
import os
import pty
import struct
import subprocess
import sys
import tempfile
import termios
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import jsonschema

sys.path.insert(0, str(Path(__file__).resolve().parent / "support"))
from command import BUILD, ROOT, expect, finish, run

PLANTED = {"ORLU_ALGO_LIBRARY": str(BUILD / "planted/planted_algo.so")}
SCHEMA = json.loads((ROOT / "docs/results.schema.json").read_text())


def write(folder, name, sample, **fields):
    request = json.loads((ROOT / f"samples/{sample}.json").read_text())
    request["photo"] = str(ROOT / "samples" / request["photo"])
    request["frames"].update(width=64, height=48)
    (folder / name).write_text(json.dumps({**request, **fields}))


def refused(folder, line, *arguments):
    result = run(*arguments, cwd=folder)
    expect(arguments, (2, f"run: error: {line}\n", ""), (result.returncode, result.stderr, result.stdout))


def check_folder(folder):
    plain = run("--quiet", "--json", "one", "shots", cwd=folder)
    expect("--quiet", (0, "verdict  ok\n", ""), (plain.returncode, plain.stdout, plain.stderr))
    side = run("--jobs", "3", "--json", "-", "shots", cwd=folder)
    one, several = json.loads((folder / "one").read_text()), json.loads(side.stdout)
    for results in one, several:
        jsonschema.validate(results, SCHEMA)
        for result in results["results"]:
            result.pop("milliseconds")
            result["photo"] and expect("SSIM", True, 0 < result["photo"][0]["ssim"] <= 1)
    expect("results with --jobs", one, several)
    expect("order", ["a", "b", "c"], [result["name"] for result in one["results"]])
    timed = run("--jobs", "2", "--quiet", "--junit", "timed.xml", "shots", cwd=folder)
    expect("times of JUnit", (0, True), (timed.returncode, all(
        float(test.get("time")) > 0 for test in ElementTree.parse(folder / "timed.xml").iter("testcase"))))
    printed = run("--jobs", "2", "shots", cwd=folder).stdout
    expect("order of the output", True, printed.index("shots/a") < printed.index("shots/b")
           < printed.index("shots/c"))
    expect("verdicts", 4, printed.count("verdict  ok"))
    pages = run("--jobs", "2", "--report", "pages", "shots", cwd=folder, ORLU_TRIALS="off")
    expect("pages", (0, ["a.html", "b.html", "c.html", "index.html"]),
           (pages.returncode, sorted(page.name for page in (folder / "pages").iterdir())))
    index = (folder / "pages/index.html").read_text()
    expect("pages in the index", [True] * 3, [f'"page":"{name}.html"' in index for name in "abc"])


def check_crash(folder):
    """Even if the library crashes in every request, each request is run and reported."""
    for name, kind in (("a", "capture"), ("b", "die"), ("c", "capture")):
        write(folder / "shots", f"{name}.json", "capture", request={"id": 7, "type": kind})
    result = run("--jobs", "1", "--junit", "-", "shots", cwd=folder, ORLU_PLANTED="aborts:process", **PLANTED)
    tests = ElementTree.fromstring(result.stdout)
    expect("a crash", (1, "3", "3"), (result.returncode, tests.get("tests"), tests.get("failures")))
    expect("the reason", True, "ended the process" in tests.find("testcase/failure").get("message"))


def check_tags(folder):
    for degrees in 90, 180:
        result = run("--tag", f"android.jpeg.orientation={degrees}", "--json", "-", "shots/a.json",
                     cwd=folder)
        parameters = json.loads(result.stdout)["results"][0]["parameters"]
        expect("--tag", [degrees], [each["value"] for each in parameters if each["key"] == "jpeg_rotation"])
    refused(folder, "--tag android.jpeg.qualty: no such tag (did you mean android.jpeg.quality?)", "--tag",
            "android.jpeg.qualty=1", "shots/a.json")
    refused(folder, '--tag android.jpeg.quality: expected a number, found "NaN"', "--tag",
            "android.jpeg.quality=NaN", "shots/a.json")
    refused(folder, '--tag: expected NAME=VALUE, found "x"', "--tag", "x", "shots/a.json")


def check_compare(folder):
    stand_in, planted = BUILD / "lib/liborlu.vac.interface.so", PLANTED["ORLU_ALGO_LIBRARY"]

    def compare(*options, planted_fault=""):
        result = run("compare", "--lib", str(stand_in), "--lib", planted, "--json", "-", *options, cwd=folder,
                     ORLU_PLANTED=planted_fault)
        report = json.loads(result.stdout)
        jsonschema.validate(report, SCHEMA)
        return result.returncode, report["results"]

    status, equal = compare("--jobs", "2", "shots")
    expect("equal libraries", (0, ["Infinity"] * 3), (status, [pair["psnr"] for pair in equal]))
    status, pairs = compare("shots/c.json", planted_fault="aborts:process")
    expect("a crash of B", (1, "ok / FAILED"), (status, pairs[0]["status"]))
    write(folder, "colours.json", "night", outputs=[{"format": "NV21"}], algorithms=["night"])
    status, pairs = compare("colours.json", planted_fault="black")
    low = pairs[0]["psnr"]
    expect("an output that differs", (1, True), (status, low < 60))
    expect("--fail-below", [0, 1], [compare("--fail-below", str(limit), "colours.json",
                                            planted_fault="black")[0] for limit in (low - 1, low + 1)])
    _, pairs = compare("--fail-below", "10", "shots/c.json", planted_fault="aborts:process")
    expect("no outputs of B", "the outputs can't be compared", pairs[0]["verdict"]["reasons"][-1])
    refused(folder, f"both --lib options name the same file: {planted}", "compare", "--lib", planted, "--lib",
            planted, "shots")
    refused(folder, "expected --lib twice, found 1", "compare", "--lib", planted, "shots")
    refused(folder, "no such file: none", "compare", "--lib", planted, "--lib", "none", "shots")


def check_sweep(folder):
    def sweep(*options):
        result = run("sweep", "--json", "sweep.json", *options, cwd=folder)
        report = json.loads((folder / "sweep.json").read_text())
        jsonschema.validate(report, SCHEMA)
        return result.returncode, report["results"], [line.split() for line in result.stdout.splitlines()]

    _, runs, _ = sweep("shots/a.json", "--tag", "orlu.control.frameFlag=0:1234567891:2")
    expect("large bounds", "1234567891", runs[-1]["tags"]["orlu.control.frameFlag"])
    status, runs, lines = sweep("shots/a.json", "--jobs", "2", "--tag", "android.jpeg.orientation=0:180:3")
    expect("a range", (0, ["0", "90", "180"]),
           (status, [each["tags"]["android.jpeg.orientation"] for each in runs]))
    expect("what changes", (True, False), tuple(any("control/jpeg_rotation: 0 / 90" in line for line in
                                                    runs[i]["differences"]) for i in (1, 0)))
    expect("the table", (["0", "ok"], ["90", "ok"]), (lines[1][:2], lines[2][:2]))
    expect("the photo", True, all(each["reference"] == "photo" and 20 < each["psnr"] < 60 for each in runs))
    status, runs, lines = sweep("shots/b.json", "--tag", "android.jpeg.orientation=0,90", "--report", "grid",
                                "--tag", "orlu.control.filmSize=0,1")
    expect("a grid", (0, 4, {"android.jpeg.orientation": "90", "orlu.control.filmSize": "0"}),
           (status, len(runs), runs[2]["tags"]))
    expect("pictures", 4, (folder / "grid/index.html").read_text().count('"picture":"data:image/jpeg'))
    for values, problem in (("0:1:1", "expected 2 to 1000 values, found 1"),
                            ("1.2.3:4:5", 'expected numbers around the first ":"')):
        refused(folder, f"--tag android.jpeg.orientation={values}: {problem}", "sweep", "shots/a.json",
                "--tag",
                f"android.jpeg.orientation={values}")
    refused(folder, "--tag android.jpeg.orientation: expected a whole number from -2147483648 to 2147483647, found 0.5",
            "sweep", "shots/a.json", "--tag",
            "android.jpeg.orientation=0:1:3")
    refused(folder, "expected one request and one or two --tag, found 3 requests and 1 --tag", "sweep",
            "shots", "--tag", "android.jpeg.orientation=0,90")


def check_burst(folder):
    write(folder, "async.json", "night-async")

    def burst(*options, **variables):
        result = run("--burst", "12", "--json", "-", *options, cwd=folder, **variables)
        report = json.loads(result.stdout)
        jsonschema.validate(report, SCHEMA)
        return result.returncode, report["results"][0]

    status, shots = burst("--in-flight", "3", "--algo-delay", "1-60,unordered", "--timeline", "trace",
                          "async.json")
    expect("in any order", (0, 12, 12, True),
           (status, shots["requests"], shots["ownResults"], 1 < shots["mostInFlight"] <= 3))
    names = {event.get("name") for event in json.loads((folder / "trace").read_text())["traceEvents"]}
    expect("the timeline", True, {"request 102", "Java: update result", "callback"} <= names)
    status, shots = burst("--algo-delay", "30", "--interval", "50", "shots/a.json")
    expect("one after the other", (0, 12, 1, True), (status, shots["ownResults"], shots["mostInFlight"],
           shots["latency"]["whole"]["median"] > 30))
    status, shots = burst("async.json", ORLU_PLANTED="twice", **PLANTED)
    expect("a second callback", (1, True),
           (status, "one callback and one report to Java, found 2 and " in shots["verdict"]["reasons"][0]))
    status, shots = burst("async.json", ORLU_PLANTED="crossed", **PLANTED)
    expect("foreign results", (1, 1, "request 103 got the results of request 102"),
           (status, shots["ownResults"], shots["verdict"]["reasons"][0]))
    refused(folder, '--algo-delay: expected MS[-MS][,unordered], found "x"', "--algo-delay", "x",
            "shots/a.json")
    refused(folder, "--in-flight requires --burst", "--in-flight", "2", "shots/a.json")
    refused(folder, "--report can't be combined with --burst", "--burst", "2", "--report", "p",
            "shots/a.json")


def check_recorded(folder):
    run("--record", "recorded", "shots/a.json", cwd=folder)
    again = run("replay", "recorded", "--junit", "-", cwd=folder)
    expect("replay", (0, "1", "0"), (again.returncode, *map(ElementTree.fromstring(again.stdout).get,
                                                            ("tests", "failures"))))
    different = run("diff", "shots/a.json", "shots/b.json", "--no-explain", "--json", "-", cwd=folder)
    report = json.loads(different.stdout)
    jsonschema.validate(report, SCHEMA)
    expect("diff", (1, False, True),
           (different.returncode, report["ok"], len(report["results"][0]["differences"]) > 3))
    quiet = run("diff", "shots/a.json", "shots/a.json", "--quiet", cwd=folder)
    expect("diff --quiet", (0, "verdict  ok\n"), (quiet.returncode, quiet.stdout))


def check_terminal(folder):
    """Checks the progress on a narrow terminal: no line wraps, and the last line is cleared."""
    try:
        terminal, stderr = pty.openpty()
    except OSError as error:
        print(f"Progress on a terminal is not tested: no pseudo-terminal here: {error}")
        return
    fcntl.ioctl(stderr, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 20, 0, 0))
    command = [ROOT / "run", "sweep", "shots/a.json", "--tag", "android.jpeg.orientation=0,90,180"]
    with subprocess.Popen(command, cwd=folder, env={**os.environ, "ORLU_BUILD": str(BUILD)},
                          stdout=subprocess.DEVNULL, stderr=stderr) as process:
        os.close(stderr)
        printed = b""
        try:
            while part := os.read(terminal, 4096):
                printed += part
        except OSError:  # the terminal's other end is closed
            pass
    os.close(terminal)
    lines = printed.decode().split("\r\x1b[K")
    expect("progress", (0, True, 19, ""),
           (process.returncode, lines[1].startswith("running values: "), max(map(len, lines)), lines[-1]))


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / "shots").mkdir()
        (folder / "empty").mkdir()
        for stem, sample in (("c", "capture"), ("a", "capture"), ("b", "portrait")):
            write(folder / "shots", f"{stem}.json", sample)
        check_folder(folder)
        check_tags(folder)
        check_compare(folder)
        check_sweep(folder)
        check_burst(folder)
        check_terminal(folder)
        check_recorded(folder)
        refused(folder, "empty: expected request files (*.json) or recordings, found neither",
                "empty")
        refused(folder, "--jobs: expected a number of at least 1, found 0", "--jobs", "0", "shots")
        refused(folder, "--timeline can't be combined with --jobs", "--jobs", "2", "--timeline", "t",
                "shots")
        (folder / "shots/b.json").write_text("{")
        wrong = run("--jobs", "2", "--check", "shots", cwd=folder)
        expect("a wrong file", (2, "run: errors in 1 of 3 files; nothing runs"),
               (wrong.returncode, wrong.stderr.splitlines()[-1]))
        checked = json.loads(run("--check", "--json", "-", "shots", cwd=folder).stdout)
        jsonschema.validate(checked, SCHEMA)
        expect("--check", [0, 2, 0], [result["verdict"]["status"] for result in checked["results"]])
        check_crash(folder)
    finish()


main()
