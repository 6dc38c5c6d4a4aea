"""Makes pages with attacks in free-form strings. No attack may run, load anything, or change the text
displayed."""

import json

from pages import ROOT, make_pages, show

ATTACK = ("</script></title></style><script>hit = 1</script><img src=x onerror=hit=1><svg onload=hit=1>"
          "\"' onmouseover=hit=1 x='@script@ @data@ javascript:hit=1 &lt;script&gt;")
CONTROLS = "\u001b[2J\u0085\u202e"
# File names cannot contain slashes.
FILE = "<img src=x onerror=hit=1>\"'@data@ &lt;b\u202e"
UNSAFE = r"[\x00-\x08\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069]"

# Script: returns the scripts, attributes and control characters that must not be in the page.
FOUND = f"""
const found = [];
if ("hit" in window) found.push("a script ran");
if (document.querySelectorAll("script").length !== 2) found.push("a script was added");
for (const element of document.querySelectorAll("*"))
  for (const attribute of element.attributes)
    if (attribute.name.startsWith("on") || /^\\s*javascript:/i.test(attribute.value)
        || attribute.value === "x" || /{UNSAFE}/.test(attribute.value))
      found.push(element.outerHTML.slice(0, 200));
const shown = document.title + document.body.innerText;
const unsafe = shown.match(/.{{0,40}}{UNSAFE}/);
if (unsafe) found.push("a control character: " + JSON.stringify(unsafe[0]));
return found;
"""

# Script: tries actions that the page's content security policy must block.
STOPPED = """
const done = arguments[0], stopped = new Set();
addEventListener("securitypolicyviolation", event => stopped.add(event.effectiveDirective));
const add = (name, key, value) =>
  document.body.append(Object.assign(document.createElement(name), {[key]: value}));
add("script", "textContent", "hit = 1");
add("script", "src", "data:text/javascript,hit=1");
add("img", "src", "http://127.0.0.1:9/x.png");
add("iframe", "src", "http://127.0.0.1:9/");
add("style", "textContent", "body {display: none}");
add("div", "innerHTML", "<b onclick='hit=1' style='color: red'></b>");
fetch("http://127.0.0.1:9/").catch(() => {});
setTimeout(() => done(["hit" in window, [...stopped].sort()]), 500);
"""
POLICY = ["connect-src", "frame-src", "img-src", "script-src-attr", "script-src-elem", "style-src-attr",
          "style-src-elem"]


def hostile_request(folder, name, text):
    """Writes samples/capture.json with `text` in the fields that accept any string. Returns the file."""
    request = json.loads((ROOT / "samples/capture.json").read_text())
    request["about"] = text
    request["request"]["type"] = text
    del request["algorithms"]
    request["properties"] = {"persist.vendor.x": text[-90:].encode()[-91:].decode(errors="ignore")}
    request["photo"] = str(ROOT / "samples/photos/portrait.jpg")
    common = request["frames"]["common"]
    common["captureResult"].update({"com.orlu.chi.override.CameraType": {"text": text},
                                    "orlu.control.localtime": text})
    # Only compositions can have tags that are not in the table of tags.
    common["composition"] = {text: {"string": text}, "orlu.control.algoType": ["jpegEncode", text]}
    file = folder / f"{name}.json"
    file.write_text(json.dumps(request))
    return file


def check_hostile(driver, build, folder, tabs, check):
    """Makes hostile pages with two faults of the algorithm library. Checks their tabs and their index."""
    requests = [hostile_request(folder, FILE, ATTACK + CONTROLS), hostile_request(folder, "plain", ATTACK)]
    for fault in ("answers:process", "aborts:process"):
        pages = folder / f"hostile-{fault}"
        make_pages(build, pages, requests, fault, "off")
        for file in sorted(pages.glob("*.html")):
            show(driver, file)
            for tab in tabs if file.name != "index.html" else ("",):
                if tab:
                    driver.find_element("id", f"tab-{tab}").click()
                folded = driver.find_elements("css selector", "[role=tabpanel] [aria-expanded=false]")
                for closed in folded[:3]:
                    driver.execute_script("arguments[0].click()", closed)
                found = driver.execute_script(FOUND)
                check(f"{fault}, {file.name}, {tab} is safe, found", not found, found)
            text = driver.find_element("tag name", "body").text
            check(f"{fault}, {file.name} shows the attack as text:", "onerror=hit=1" in text, text[:200])
            messages = [entry["message"] for entry in driver.get_log("browser")]
            check(f"{fault}, {file.name}: the console is empty, found", not messages, messages)
        has_run, stopped = driver.execute_async_script(STOPPED)
        check("the policy lets no script run", not has_run)
        check(f"the policy blocks exactly {POLICY}, found", stopped == POLICY, stopped)
        driver.get_log("browser")
