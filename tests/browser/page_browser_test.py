#!/usr/bin/python3
"""Opens the pages of ./run --report in headless Chromium: page_browser_test.py BUILD_FOLDER [--shots FOLDER]

The console must be empty. Tabs, filters, clicks and keys must work. Pages fit the window's width, and text is
readable in light and dark. --shots saves screenshots of all tabs in both window sizes and themes. With
--picture FILE, it checks nothing and only makes the picture for README.md."""

import argparse
import base64
import pathlib
import shutil
import sys
import tempfile
import time

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from hostile_page import check_hostile
from pages import LARGE, NARROW, ROOT, WIDE, browser, make_pages, padded_request, run, set_window, show

TABS = ["pictures", "memory", "timeline", "parameters", "tags", "results", "log"]
LEAST_CONTRAST = 4.5
PICTURE_SIZE = (1000, 640)

# Folder of the pages, request, fault of tests/planted or "", text in the first finding (None: no findings).
PAGES = [("night", "night", "", None), ("bokeh", "bokeh", "", None), ("raw", "raw16", "", None),
         ("failed", "capture", "silent", "timed out"), ("died", "capture", "aborts:process", "ended the process"),
         ("stride", "padded", "outputStride", "wrong stride"), ("colours", "night", "swapped", "exchanged"),
         ("wrong-buffer", "raw16", "elsewhere", "input 0 have changed"),
         ("black", "padded", "black", "Output 0 is black"), ("none", "capture", "lacks:process", "can't be used")]

# Finds the text with the least contrast to its background.
CONTRAST = """
const channel = v => (v /= 255) <= 0.03928 ? v / 12.92 : Math.pow((v + 0.055) / 1.055, 2.4);
const light = c => 0.2126 * channel(c[0]) + 0.7152 * channel(c[1]) + 0.0722 * channel(c[2]);
const numbers = text => (text.match(/[\\d.]+/g) || []).map(Number);
const behind = element => {
  for (let at = element; at; at = at.parentElement) {
    const color = numbers(getComputedStyle(at).backgroundColor);
    if (color.length === 3 || color[3] > 0.5) return color;
  }
  return [255, 255, 255];
};
let least = [99, ""];
for (const element of document.querySelectorAll("body *")) {
  const hasText = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim() !== "");
  if (!hasText || element.offsetParent === null || element.closest("svg")) continue;
  const one = light(numbers(getComputedStyle(element).color)), other = light(behind(element));
  const contrast = (Math.max(one, other) + 0.05) / (Math.min(one, other) + 0.05);
  if (contrast < least[0]) least = [contrast, element.outerHTML.slice(0, 120)];
}
return least;
"""

failures = []


def check(what, is_right, found=""):
    """Unless `is_right`, records a failure: the expectation `what`, then `found`."""
    if not is_right:
        failures.append(f"{what} {found}")


class Page:
    """An open page, with a user's actions."""

    def __init__(self, driver, name):
        self.driver, self.name = driver, name

    def check(self, what, is_right, found=""):
        check(f"{self.name}: {what}", is_right, found)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def press(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def leave(self):
        """Removes the focus from a field."""
        self.driver.execute_script("document.activeElement.blur()")

    def tab(self, name):
        self.one(f"#tab-{name}").click()

    def shown(self, selector):
        return [element for element in self.all(selector) if element.is_displayed()]

    def console(self):
        messages = [entry["message"] for entry in self.driver.get_log("browser")]
        self.check("the console is empty:", not messages, messages)


def check_shape(page, shots, size, scheme):
    """Checks that every tab fits the window and has readable text. Saves screenshots to `shots`, if given."""
    for tab in TABS:
        page.tab(tab)
        width, inner = page.driver.execute_script("return [document.documentElement.scrollWidth, innerWidth]")
        page.check(f"{tab} at {size[0]} pixels fits the window, found a width of", width <= inner, width)
        contrast, element = page.driver.execute_script(CONTRAST)
        page.check(f"{tab}, {scheme}: all text is readable, found a contrast of {contrast:.1f} in",
                   contrast >= LEAST_CONTRAST, element)
        text = page.one("main").text
        page.check(f"{tab} shows no raw value:", not any(
            word in text for word in ("[object", "undefined", "NaN", "null,", "%s", "%d")),
            [line for line in text.splitlines() if "[object" in line or "undefined" in line])
        if shots:
            height = page.driver.execute_script("return document.documentElement.scrollHeight")
            set_window(page.driver, size[0], min(2400, max(size[1], height)))
            page.driver.save_screenshot(str(shots / f"{page.name}-{tab}-{size[0]}-{scheme}.png"))
            set_window(page.driver, *size)


def check_keys(page):
    for number, tab in enumerate(TABS, 1):
        page.press(str(number))
        shown = [panel.get_attribute("id") for panel in page.shown("[role=tabpanel]")]
        page.check(f"the key {number} shows {tab}, found", shown == [f"panel-{tab}"], shown)
    page.one("#tab-log").click()
    page.press(Keys.ARROW_RIGHT)
    page.check("the right arrow leads from the last tab to the first",
               page.one("#tab-pictures").get_attribute("aria-selected") == "true")
    page.leave()
    page.press("4", "/")
    field = page.driver.switch_to.active_element
    page.check("the key / focuses the filter", "filter" in (field.get_attribute("class") or ""))
    page.press("2")
    page.check("a key pressed in a field is entered as text", field.get_attribute("value") == "2" and
               page.one("#panel-parameters").is_displayed())
    page.press(Keys.BACKSPACE, Keys.ESCAPE)
    before = page.one("html").get_attribute("data-theme")
    page.press("t")
    page.check("the key t changes the theme", page.one("html").get_attribute("data-theme") != before)
    page.press("t", "?")
    page.check("the key ? shows the keys", page.one("#keys").is_displayed() and "flicker" in page.one("#keys").text)
    page.press(Keys.ESCAPE)
    page.check("Escape closes the keys", not page.one("#keys").is_displayed())


def check_pictures(page):
    def captions():
        # Reads each caption once: the pictures may change between two reads.
        texts = [caption.text for caption in page.shown("#panel-pictures figcaption")]
        return [text for text in texts if text]

    def places():
        return [glass.rect["x"] for glass in page.shown(".loupe")]

    def magnified():
        return page.driver.execute_script("return document.querySelector('.loupe').style.backgroundSize")

    page.press("1")
    page.check("in and out are side by side", [text[:3] for text in captions()] == ["In:", "Out"], captions())
    page.press("f")
    first = captions()
    page.press("f")
    page.check("the key f switches pictures", len(first) == len(captions()) == 1 and first != captions(),
               f"{first} {captions()}")
    page.one("#auto").click()
    seen = set()
    for _ in range(20):
        seen.update(captions())
        time.sleep(0.1)
    page.check("flickers by itself", len(seen) == 2, seen)
    page.leave()
    page.press("d")
    page.check("the key d shows the difference", captions()[0].startswith("Difference"), captions())
    page.press("s")
    page.all(".strip button")[5].click()
    page.check("a click on an input shows it", captions()[0].startswith("In: input 5"), captions())
    page.leave()
    page.press("m")
    before = places()
    page.press(Keys.ARROW_RIGHT)
    moved = places()
    page.check("magnifiers over both pictures move with the arrows",
               len(before) == len(moved) == 2 and all(a < b for a, b in zip(before, moved)), f"{before} {moved}")
    page.check("the magnifier shows a picture pixel for pixel", magnified().startswith("632px"), magnified())
    page.press("z")
    page.check("the key z enlarges the magnified pixels", magnified().startswith("1264px"), magnified())
    stage = page.all(".stage")[0]
    ActionChains(page.driver).move_to_element_with_offset(stage, -100, 0).perform()
    page.check("the magnifier follows the pointer", places()[0] < before[0] - 50, f"{before} {places()}")
    page.leave()
    page.press("m")


def check_filters(page):
    def rows():
        return page.shown("#panel-parameters tbody tr.row")

    def lines():
        return page.shown("#panel-log tbody tr")

    def choose(field, index):
        page.driver.execute_script("const field = document.getElementById(arguments[0]);"
                                   "field.selectedIndex = arguments[1]; field.dispatchEvent(new Event('change'))",
                                   field, index)

    page.press("4")
    everything = len(rows())
    field = page.one("#panel-parameters .filter")
    field.send_keys("sensor crop")
    some = [row.text for row in rows()]
    page.check("words filter the parameters", 0 < len(some) < everything and all(
        "sensor" in text and "crop" in text for text in some), some)
    field.clear()
    field.send_keys("film_size")
    rows()[0].find_element(By.TAG_NAME, "button").click()
    detail = page.shown("#panel-parameters .detail")[0].text
    page.check("a click explains a parameter", "orlu.control.filmSize" in detail and "jni/" in detail, detail)
    field.clear()
    field.send_keys("frameselect")
    page.check("filtering out a parameter hides its explanation", not page.shown("#panel-parameters .detail"))
    field.clear()
    field.send_keys("film_size x")
    field.clear()
    field.send_keys(Keys.ESCAPE)
    page.press("5")
    field = page.one("#panel-tags .filter")
    field.send_keys("filmSize")
    tags = page.shown("#panel-tags tbody tr")
    page.check("a word filters the tags", tags and all("filmsize" in row.text.lower() for row in tags))
    field.send_keys(Keys.ESCAPE)
    page.press("7")
    everything = len(lines())
    choose("level", 4)
    errors = lines()
    page.check("the level filters the log", 0 < len(errors) < everything and all(
        line.get_attribute("class") == "level-E" for line in errors))
    choose("level", 0)
    choose("class", 1)
    tags = {line.find_elements(By.TAG_NAME, "td")[3].text for line in lines()}
    page.check("the class filters the log", len(tags) == 1, tags)


def check_timeline(page):
    page.press("3")
    slices = page.all("#panel-timeline .slice")
    waits = page.all("#panel-timeline .slice.wait")
    page.check("the timeline has slices and one wait", len(slices) > 100 and len(waits) == 1, len(waits))
    waits[0].click()
    detail = page.one("#panel-timeline [aria-live]").text
    page.check("a click describes a slice",
               detail.startswith("wait for the callback") and "reqId" in detail, detail)
    box = page.one("#panel-timeline .lanes")

    def width():
        return page.driver.execute_script("return arguments[0].scrollWidth", box)

    before = width()
    box.send_keys("+")
    page.check("+ zooms in", width() > 1.5 * before, f"{before} {width()}")
    box.send_keys(Keys.ARROW_RIGHT)
    page.check("an arrow key selects the next slice", page.one("#panel-timeline [aria-live]").text != detail)
    page.check("flow arrows lead from process to results", len(page.all("#panel-timeline .flow")) == 2)


def check_index(driver, build, folder):
    make_pages(build, folder / "index", [ROOT / "samples/capture.json", ROOT / "samples/watermark.json"], trials="off")
    for size, scheme in ((WIDE, "light"), (NARROW, "dark")):
        show(driver, folder / "index/index.html", size, scheme)
        page = Page(driver, "index")
        width = driver.execute_script("return document.documentElement.scrollWidth")
        page.check("fits the window, found a width of", width <= size[0], width)
        page.check("has an entry for each request",
                   len(page.all("a.card")) == 2 and "capture.json" in page.one("main").text)
    page.all("a.card")[1].click()
    page.check("a card leads to its request", "watermark.json" in page.one("h1").text, page.one("h1").text)
    page.one("#top a").click()
    page.check("the request leads back to the index", "2 requests" in page.one("h1").text)
    page.console()


def check_sheets(driver, build, folder):
    """Checks the pages of sweep and compare: pictures must load, fit the window, and grow on a click."""
    capture, stand_in = ROOT / "samples/capture.json", build / "lib/liborlu.vac.interface.so"
    for name, arguments, captions in (
            ("sweep", ["sweep", capture, "--tag", "android.jpeg.orientation=0,90"], ["0", "90"]),
            ("compare", ["compare", "--lib", stand_in, "--lib", copied(stand_in, folder), capture], ["A", "B"])):
        run(build, [*arguments, "--report", folder / name])
        for size, scheme in ((LARGE, "light"), (WIDE, "dark"), (NARROW, "light")):
            show(driver, folder / name / "index.html", size, scheme)
            page = Page(driver, f"{name} at {size[0]} pixels")
            found = [each.text for each in page.all("figcaption")]
            page.check("has captions", [text.split(":")[0].split("=")[-1] for text in found][:2] == captions, found)
            for picture in page.all("figure img"):
                page.check("each picture is loaded", picture.get_property("naturalWidth") > 0)
                rect = picture.rect
                page.check("each picture is whole and large enough:",
                           rect["width"] > 50 and rect["x"] + rect["width"] <= size[0], rect)
            page.all("figure button")[1].click()
            rect = page.one("dialog img").rect
            page.check("a click enlarges a picture", rect["width"] > 50 and rect["x"] + rect["width"] <= size[0], rect)
            page.console()


def copied(library, folder):
    """Copies the library's folder and returns the copied library: compare rejects a library given twice."""
    return shutil.copytree(library.parent, folder / "other") / library.name


def check_all(build, shots):
    with tempfile.TemporaryDirectory() as name, browser() as driver:
        folder = pathlib.Path(name)
        padded = padded_request(folder)
        for title, sample, fault, words in PAGES:
            request = padded if sample == "padded" else ROOT / f"samples/{sample}.json"
            make_pages(build, folder / title, [request], fault, "on" if title == "night" else "off")
            file = folder / title / f"{request.stem}.html"
            for size, scheme in ((WIDE, "light"), (WIDE, "dark"), (NARROW, "light"), (NARROW, "dark")):
                show(driver, file, size, scheme)
                page = Page(driver, title)
                page.check("has the system's theme", page.one("html").get_attribute("data-theme") == scheme)
                found = [each.text for each in page.all(".finding")]
                page.check(f"findings, expected {words}:",
                           found == [] if words is None else words in found[0], found)
                if found:
                    page.check("the first finding is in sight", page.one(".finding").rect["y"] < size[1] / 2)
                    page.one(".finding button").click()
                    page.check("a click on a finding leads to a tab", len(page.shown("[role=tabpanel]")) == 1)
                check_shape(page, shots, size, scheme)
                page.console()
            if title == "night":
                show(driver, file)
                for part in (check_keys, check_pictures, check_filters, check_timeline):
                    part(page)
                page.console()
        check_index(driver, build, folder)
        check_sheets(driver, build, folder)
        check_hostile(driver, build, folder, TABS, check)


def make_picture(build, file):
    with tempfile.TemporaryDirectory() as name, browser() as driver:
        folder = pathlib.Path(name)
        make_pages(build, folder / "pages", [ROOT / "samples/night.json"], "inputStride", "off")
        show(driver, folder / "pages/night.html", PICTURE_SIZE)
        time.sleep(0.5)
        picture = driver.execute_cdp_cmd("Page.captureScreenshot", {"format": "jpeg", "quality": 80})
        file.write_bytes(base64.b64decode(picture["data"]))


arguments = argparse.ArgumentParser()
arguments.add_argument("build", type=pathlib.Path)
arguments.add_argument("--shots", type=pathlib.Path)
arguments.add_argument("--picture", type=pathlib.Path)
options = arguments.parse_args()
if options.picture:
    make_picture(options.build.resolve(), options.picture)
    sys.exit()
if options.shots:
    options.shots.mkdir(parents=True, exist_ok=True)
check_all(options.build.resolve(), options.shots)
for failure in failures:
    print("FAILED:", failure)
print("All passed" if not failures else f"{len(failures)} failures")
sys.exit(bool(failures))
