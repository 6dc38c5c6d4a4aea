// The page's panels with the results and the log.

function resultsPanel() {
  const put =
    data.put.length === 0
      ? h("p", null, "No result was put into a composition.")
      : filtered(
          "Filter results",
          ["tag", "frame", "value"],
          data.put.map(row => ({
            cells: [row[1], row[0].replace("frame ", ""), h("code", null, row[2])],
            text: row.join(" "),
          })),
        );
  const changed = data.descriptors.filter(row => row[2] !== row[3]);
  return {
    field: put.field,
    element: h(
      "div",
      null,
      h(
        "section",
        {class: "card"},
        h("h2", null, "Put into the compositions: " + data.put.length),
        put.element || put,
      ),
      h(
        "section",
        {class: "card"},
        h(
          "h2",
          null,
          "Output descriptors: " +
            (changed.length === 0 ? "none changed" : plural(changed.length, "field") + " changed"),
        ),
        data.descriptors.length === 0
          ? null
          : h(
              "div",
              {class: "scroll"},
              table(
                ["output", "field", "before", "after"],
                data.descriptors.map(row => ({cells: row, class: row[2] !== row[3] ? "changed" : null})),
              ).element,
            ),
      ),
      data.crash
        ? h(
            "details",
            {class: "card", open: true},
            h("summary", null, "How the process ended"),
            h("pre", null, data.crash),
          )
        : null,
      callbacksCard(),
      h("details", {class: "card"}, h("summary", null, "Output of ./run"), h("pre", null, data.printed)),
    ),
  };
}

function callbacksCard() {
  if (data.callbacks.length === 0) return null;
  return h(
    "section",
    {class: "card"},
    h("h2", null, "Reported to Java"),
    data.callbacks.map(callback =>
      h(
        "p",
        null,
        Object.entries(callback)
          .map(([key, value]) => key + " = " + JSON.stringify(value))
          .join(", "),
      ),
    ),
  );
}

// Log levels, from the least to the most severe.
const LEVELS = [
  ["V", "verbose"],
  ["D", "debug"],
  ["I", "info"],
  ["W", "warning"],
  ["E", "error"],
  ["F", "fatal"],
];

function logPanel() {
  if (data.log.length === 0) {
    return {element: h("p", {class: "card"}, "The library logged nothing.")};
  }
  const rows = data.log.map(([time, thread, level, tag, text]) => ({
    level,
    tag,
    class: "level-" + level,
    cells: [
      h("span", {class: "faint"}, ((time - data.start) / 1e6).toFixed(2)),
      level,
      thread,
      shortTag(tag),
      h("code", null, text),
    ],
    text: tag + " " + text,
  }));
  const made = table(["-ms from the start", "level", "-thread", "-class", "text"], rows);
  const state = {words: "", level: 0, tag: ""};
  const count = h("span", {class: "faint", "aria-live": "polite"}, plural(rows.length, "line"));
  const apply = () => {
    const shown = made.show(
      row =>
        (state.tag === "" || row.tag === state.tag) &&
        matches(row.text, state.words) &&
        LEVELS.findIndex(each => each[0] === row.level) >= state.level,
    );
    count.textContent = shown + " of " + plural(rows.length, "line");
  };
  const field = filterField("Filter the log", words => {
    state.words = words;
    apply();
  });
  const level = h(
    "select",
    {
      id: "level",
      "aria-label": "Lowest level",
      onchange: event => {
        state.level = Number(event.target.value);
        apply();
      },
    },
    LEVELS.map(([, name], i) => h("option", {value: i}, name + (i < LEVELS.length - 1 ? " and above" : ""))),
  );
  const tags = [...new Set(rows.map(row => row.tag))].sort();
  const tag = h(
    "select",
    {
      id: "class",
      "aria-label": "Class",
      onchange: event => {
        state.tag = event.target.value;
        apply();
      },
    },
    h("option", {value: ""}, "all classes"),
    tags.map(name => h("option", {value: name}, shortTag(name))),
  );
  return {
    field,
    element: h(
      "div",
      null,
      h(
        "p",
        {class: "faint"},
        "“get … is null” at level E usually means only that a tag is absent, so the default applies.",
      ),
      h("div", {class: "tools"}, field, level, tag, count),
      h("div", {class: "scroll"}, made.element),
    ),
  };
}

function shortTag(tag) {
  return tag.replace(/^(_V_)?VASJNI-/, "");
}
