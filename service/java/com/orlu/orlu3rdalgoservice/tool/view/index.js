// The index: links to the pages of several requests.

function showIndex() {
  const failed = data.entries.filter(entry => !entry.verdict || !entry.verdict.ok).length;
  const odd = data.entries.filter(
    entry => entry.verdict && entry.verdict.ok && entry.findings.length > 0,
  ).length;
  document
    .getElementById("top")
    .append(
      h(
        "div",
        {class: "bar"},
        h("div", {class: "grow"}, h("h1", null, plural(data.entries.length, "request"))),
        h(
          "span",
          {class: "badge " + (failed ? "wrong" : "good"), id: "verdict"},
          failed ? "✗ " + failed + " failed" : "✓ all verdicts ok",
        ),
        odd ? h("span", {class: "badge look"}, odd + " ok, with findings to check") : null,
        themeButton(),
      ),
    );
  document.getElementById("entries").append(...data.entries.map(entryCard));
  document.addEventListener("keydown", event => {
    if (event.key === "t") switchTheme();
  });
}

function entryCard(entry) {
  if (!entry.page) {
    return h(
      "div",
      {class: "card wrong"},
      h("h2", null, baseName(entry.file)),
      h("p", null, "The request did not run: the process ended earlier."),
    );
  }
  const isWrong = !entry.verdict.ok || entry.findings.some(finding => finding.severity === "wrong");
  const kind = isWrong ? "wrong" : entry.findings.length > 0 ? "look" : "good";
  const picture = (source, text, problem) =>
    h(
      "div",
      null,
      text,
      source ? h("img", {src: source, alt: text}) : h("div", {class: "none"}, problem || "no picture"),
    );
  return h(
    "a",
    {class: "card " + kind, href: entry.page},
    h(
      "div",
      {class: "bar"},
      h("h2", {class: "grow"}, baseName(entry.file)),
      h(
        "span",
        {class: "badge " + (entry.verdict.ok ? "good" : "wrong")},
        entry.verdict.ok ? "✓ ok" : "✗ failed",
      ),
    ),
    h("div", {class: "faint"}, entry.about),
    h("div", {class: "thumbs"}, picture(entry.in, "in"), picture(entry.out, "out", entry.problem)),
    h(
      "div",
      null,
      (entry.algorithms.ran || entry.algorithms.handedOn || []).join(", ") || "no algorithm ran",
      entry.milliseconds.process
        ? h("span", {class: "faint"}, " in " + milliseconds(entry.milliseconds.process))
        : null,
    ),
    entry.findings.map(finding =>
      h("p", null, h("b", null, finding.severity === "wrong" ? "✗ " : "! "), finding.what),
    ),
  );
}

showIndex();
