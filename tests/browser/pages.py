"""Makes pages with ./run --report, and opens them in headless Chromium."""

import contextlib
import json
import os
import pathlib
import subprocess

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LARGE, WIDE, NARROW = (1440, 900), (1280, 800), (420, 900)


def padded_request(folder):
    """Writes a copy of samples/clarity.json, but with padded rows, into the folder. Returns its path."""
    request = json.loads((ROOT / "samples/clarity.json").read_text())
    padded = {"format": "NV21", "stride": 704}
    request.update(photo=str(ROOT / "samples/photos/table.jpg"), inputs=padded, outputs=[padded])
    file = folder / "padded.json"
    file.write_text(json.dumps(request))
    return file


def make_pages(build, folder, requests, fault="", trials="on"):
    """Runs requests, and writes their pages into a folder. `fault`: a fault of tests/planted, or ""."""
    run(build, ["--report", folder, "--out", folder / "out", *requests], fault, trials)


def run(build, arguments, fault="", trials="on"):
    environment = {key: value for key, value in os.environ.items()
                   if key not in ("ANDROID_LOG_TAGS", "ORLU_ALGO_TRACE", "ORLU_EVENTS", "ORLU_PLANTED")}
    environment.update(ORLU_BUILD=str(build), ORLU_TRIALS=trials)
    if fault:
        environment.update(ORLU_ALGO_LIBRARY=str(build / "planted/planted_algo.so"), ORLU_PLANTED=fault)
    subprocess.run([ROOT / "run", *arguments], env=environment, stdout=subprocess.DEVNULL, check=not fault)


@contextlib.contextmanager
def browser():
    """Runs headless Chromium. The driver's get_log("browser") returns the messages of the console."""
    options = Options()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--hide-scrollbars"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    try:
        yield driver
    finally:
        driver.quit()


def show(driver, file, size=WIDE, scheme="light", height=None):
    """Opens a page in a window of this size, with a light or dark theme."""
    set_window(driver, size[0], height or size[1])
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                           {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
    driver.get(file.as_uri())


def set_window(driver, width, height):
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                           {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
