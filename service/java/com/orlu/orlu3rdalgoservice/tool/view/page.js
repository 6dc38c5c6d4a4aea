// The page on one request: its header, its findings, and the tabs.

const PANELS = [
  ["pictures", "Pictures", picturesPanel],
  ["memory", "Memory", memoryPanel],
  ["timeline", "Timeline", timelinePanel],
  ["parameters", "Parameters", parametersPanel],
  ["tags", "Tags", tagsPanel],
  ["results", "Results", resultsPanel],
  ["log", "Log", logPanel],
];

const KEYS = [
  ["1 … 7", "open a tab"],
  ["/", "filter this tab"],
  ["f", "flicker between input and output"],
  ["s", "show input and output side by side"],
  ["d", "show the difference"],
  ["m", "show or hide the magnifier; arrow keys move it"],
  ["z", "change the magnification"],
  ["+  -  0", "zoom the timeline"],
  ["← →", "previous or next slice of the timeline"],
  ["t", "switch between light and dark"],
  ["?", "show these keys"],
];

const made = new Map();
let shownTab = null;

function showTop() {
  const isOk = data.verdict.ok;
  const wrong = data.findings.filter(finding => finding.severity === "wrong").length;
  document
    .getElementById("top")
    .append(
      h(
        "div",
        {class: "bar"},
        h(
          "div",
          {class: "grow"},
          h("h1", null, baseName(data.file)),
          h("div", {class: "faint"}, data.about || "request " + data.id),
        ),
        h(
          "span",
          {class: "badge " + (isOk ? "good" : "wrong"), id: "verdict"},
          isOk ? "✓ verdict ok" : "✗ verdict failed",
        ),
        isOk && wrong > 0 ? h("span", {class: "badge wrong"}, "✗ but looks wrong") : null,
        data.hasIndex ? h("a", {href: "index.html"}, "All requests") : null,
        themeButton(),
        h("button", {type: "button", id: "help", title: "Keys (?)", onclick: showKeys}, "Keys"),
      ),
    );
}

function showFindings() {
  const box = document.getElementById("findings");
  const isWrong = data.findings.some(finding => finding.severity === "wrong");
  box.classList.add(isWrong ? "wrong" : data.findings.length > 0 ? "look" : "good");
  if (data.findings.length === 0) {
    box.append(
      h("h2", null, "✓ Nothing looks wrong"),
      h(
        "p",
        {class: "faint"},
        "The verdict is ok, and no known fault was found in the pictures, their memory or the frames.",
      ),
    );
    return;
  }
  box.append(
    h("h2", null, "What looks wrong"),
    ...data.findings.map(finding =>
      h(
        "div",
        {class: "finding " + finding.severity, "data-kind": finding.kind},
        h(
          "div",
          {class: "sign", "aria-label": finding.severity === "wrong" ? "wrong" : "check this"},
          finding.severity === "wrong" ? "✗" : "!",
        ),
        h("div", {class: "body"}, h("div", {class: "what"}, finding.what), h("div", null, finding.why)),
        h(
          "button",
          {type: "button", onclick: () => showTab(finding.tab, true)},
          "Show " + titleOf(finding.tab),
        ),
      ),
    ),
  );
}

function titleOf(name) {
  return PANELS.find(panel => panel[0] === name)[1];
}

function showFacts() {
  const list = names => (names.length === 0 ? "(empty list)" : names.join(", "));
  const asked = data.algorithms.asked;
  const handedOn = data.algorithms.handedOn;
  const facts = [
    ["request", data.id + " “" + data.type + "”" + (data.fullAsync ? ", full-async" : "")],
    ["requested", list(asked)],
    [
      "passed on",
      !handedOn
        ? data.findings.some(finding => /^(crash|unusable)$/.test(finding.kind))
          ? "nothing"
          : "nothing: the request needs no algorithms"
        : handedOn.length === 0
          ? list(handedOn)
          : handedOn.map(name => name + (asked.includes(name) ? "" : " (appended)")).join(", "),
    ],
  ];
  const gone = handedOn ? asked.filter(name => !handedOn.includes(name)) : [];
  if (gone.length > 0) facts.push(["removed", list(gone)]);
  if (data.algorithms.ran) {
    facts.push([
      "ran",
      (data.algorithms.ran.join(", ") || "nothing, passed through") +
        " in " +
        milliseconds(data.algorithms.milliseconds),
    ]);
  }
  if (data.milliseconds.process) facts.push(["Java's call took", milliseconds(data.milliseconds.process)]);
  document.getElementById("facts").append(
    h(
      "dl",
      {class: "facts", style: "margin:0"},
      facts.map(([name, text]) => h("div", null, h("dt", null, name), h("dd", null, text))),
    ),
  );
}

function makeTabs() {
  const tabs = document.getElementById("tabs");
  for (const [name, title, make] of PANELS) {
    tabs.append(
      h(
        "button",
        {
          type: "button",
          role: "tab",
          id: "tab-" + name,
          "aria-controls": "panel-" + name,
          "aria-selected": "false",
          tabindex: -1,
          onclick: () => showTab(name),
        },
        title,
      ),
    );
    const panel = make();
    made.set(name, panel);
    document
      .getElementById("panels")
      .append(
        h(
          "div",
          {role: "tabpanel", id: "panel-" + name, "aria-labelledby": "tab-" + name, hidden: true},
          panel.element,
        ),
      );
  }
  tabs.addEventListener("keydown", event => {
    const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
    if (!step) return;
    const at = (PANELS.findIndex(panel => panel[0] === shownTab) + step + PANELS.length) % PANELS.length;
    showTab(PANELS[at][0]);
    document.getElementById("tab-" + shownTab).focus();
    event.preventDefault();
  });
}

function showTab(name, doScroll) {
  shownTab = name;
  for (const [other] of PANELS) {
    const tab = document.getElementById("tab-" + other);
    tab.setAttribute("aria-selected", String(other === name));
    tab.tabIndex = other === name ? 0 : -1;
    document.getElementById("panel-" + other).hidden = other !== name;
  }
  const panel = made.get(name);
  if (panel.onShow) panel.onShow();
  if (panel.compare) panel.compare.loupe.move();
  if (doScroll) document.getElementById("tabs").scrollIntoView({behavior: "smooth"});
}

function showKeys() {
  const dialog = document.getElementById("keys");
  if (dialog.childElementCount === 0) {
    dialog.append(
      h("h2", null, "Keys"),
      h(
        "table",
        null,
        KEYS.map(([key, text]) => h("tr", null, h("td", null, h("kbd", null, key)), h("td", null, text))),
      ),
      h("p", null, h("button", {type: "button", onclick: () => dialog.close()}, "Close")),
    );
  }
  if (!dialog.open) dialog.showModal();
}

function pressedKey(event) {
  const isTyping = /^(INPUT|SELECT|TEXTAREA)$/.test(event.target.tagName);
  if (isTyping && event.key === "Escape") event.target.blur();
  if (isTyping || event.ctrlKey || event.metaKey || event.altKey || document.getElementById("keys").open)
    return;
  const {compare, field} = {...made.get(shownTab)};
  const pictures = made.get("pictures").compare;
  const arrow = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]}[event.key];
  const act = {"/": () => field && field.focus(), "?": showKeys, t: switchTheme}[event.key];
  const picture = {
    f: () => pictures.flicker(),
    s: () => pictures.setMode("pair"),
    d: () => pictures.setMode("difference"),
    z: () => pictures.loupe.nextScale(),
    m: () => pictures.loupe.set(!pictures.loupe.isOn),
  }[event.key];
  if (/^[1-7]$/.test(event.key)) {
    showTab(PANELS[Number(event.key) - 1][0]);
  } else if (picture && pictures) {
    showTab("pictures");
    picture();
  } else if (arrow && compare && compare.loupe.isOn && event.target.getAttribute("role") !== "tab") {
    compare.loupe.step(arrow[0] / 50, arrow[1] / 50);
  } else if (act) {
    act();
  } else {
    return;
  }
  event.preventDefault();
}

showTop();
showFindings();
showFacts();
makeTabs();
showTab("pictures");
document.addEventListener("keydown", pressedKey);
window.addEventListener(
  "resize",
  () => made.get("pictures").compare && made.get("pictures").compare.loupe.move(),
);
