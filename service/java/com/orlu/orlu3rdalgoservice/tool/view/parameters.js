// Parameters with their explanations, and tags grouped by the outcome of their look-ups.

function parametersPanel() {
  if (!data.parameters || data.parameters.length === 0) {
    return {element: h("p", {class: "card"}, "No parameter was passed to the algorithm library.")};
  }
  const rows = data.parameters.map(parameterRow);
  const made = filtered(
    "Filter by section, key, value or tag",
    ["section / key", "-type", "value", "-written by"],
    rows,
  );
  const note = data.explanationProblem
    ? "The tags are unknown or incomplete: " + data.explanationProblem + "."
    : "The tags of the parameters were " + data.explanationEffort + ".";
  return {
    element: h(
      "div",
      null,
      h(
        "p",
        {class: "faint"},
        "The values are in the order in which the algorithm library received them. Click a key to see its source. " +
          "Values struck out were replaced by a later write. " +
          note,
      ),
      algorithmsCard(),
      made.element,
    ),
    field: made.field,
  };
}

function algorithmsCard() {
  const explained = data.explained.algorithms;
  return h(
    "details",
    {class: "card"},
    h("summary", null, "Source of the algorithm list"),
    explanation("algorithms", explained),
  );
}

function parameterRow(parameter) {
  const explained = data.explained[parameter.name] || {tags: []};
  const row = {class: "row" + (parameter.replaced ? " replaced" : "")};
  const button = h(
    "button",
    {
      type: "button",
      class: "expand mono",
      "aria-expanded": "false",
      onclick: () => open(row, button, parameter, explained),
    },
    parameter.section + "/" + parameter.key,
  );
  row.cells = [
    button,
    parameter.type,
    h("code", null, parameter.value),
    h("code", {class: "faint"}, parameter.place),
  ];
  row.text = [
    parameter.section,
    parameter.key,
    parameter.type,
    parameter.value,
    parameter.place,
    ...explained.tags.map(tag => tag[0]),
    parameter.replaced ? "replaced" : "",
  ].join(" ");
  return row;
}

function open(row, button, parameter, explained) {
  row.isOpen = !row.isOpen;
  button.setAttribute("aria-expanded", String(row.isOpen));
  row.element.classList.toggle("open", row.isOpen);
  if (!row.detail) {
    row.detail = h("tr", null, h("td", {colspan: 4}, parameterDetail(parameter, explained)));
    row.element.after(row.detail);
  }
  row.detail.hidden = !row.isOpen;
}

function parameterDetail(parameter, explained) {
  const writes = data.parameters.filter(each => each.name === parameter.name);
  return h(
    "div",
    {class: "detail"},
    h(
      "p",
      null,
      writes.length > 1 ? "Written " + writes.length + " times; the last write counts:" : "Written once:",
    ),
    h(
      "ul",
      null,
      writes.map(write =>
        h(
          "li",
          null,
          write.replaced ? "replaced: " : "counts: ",
          h("code", null, write.value),
          " (" + write.type + ", " + bytes(write.bytes) + ") by ",
          h("code", null, write.place),
        ),
      ),
    ),
    h(
      "details",
      null,
      h("summary", null, "Raw bytes"),
      h("pre", null, parameter.hex.replace(/(.{2})/g, "$1 ").replace(/(.{96})/g, "$1\n")),
    ),
    explanation(parameter.name, explained),
  );
}

function explanation(name, explained) {
  if (!explained || explained.unsteady) {
    return h("p", null, "It differs between translations of the same request.");
  }
  if (explained.tags.length === 0) {
    return h(
      "p",
      null,
      data.explanationProblem
        ? "Its tags are unknown."
        : "No specific tag changes it: it is constant, or comes from the request or its images.",
      general(),
    );
  }
  return h("div", null, h("p", null, "It depends on:"), tagTable(explained.tags), general());
}

function general() {
  if (!data.generalTags || data.generalTags.length === 0) return null;
  return h(
    "p",
    {class: "faint"},
    "Like most parameters, it also depends on: " +
      [...new Set(data.generalTags.map(tag => tag[0]))].join(", ") +
      ".",
  );
}

function tagsPanel() {
  if (!data.tags || data.tags.length === 0) {
    return {element: h("p", {class: "card"}, "No tag was looked up.")};
  }
  const groups = data.tags.map(tagGroup);
  const field = filterField("Filter tags", words => {
    for (const group of groups) {
      const count = group.table.show(row => matches(row.text, words));
      group.element.hidden = count === 0;
      group.element.open = words !== "" || group.isOpen;
    }
  });
  return {
    element: h(
      "div",
      null,
      h("div", {class: "tools"}, field),
      groups.map(group => group.element),
    ),
    field,
  };
}

// Makes the card of one group of tags. The cards of tags with errors and of tags that were read start open.
function tagGroup(group) {
  const made = table(
    ["tag", "frames", "found"],
    group.rows.map(row => ({cells: [row[0], row[1].replace(/^frames? /, ""), foundText(row[2])]})),
  );
  const isWrong = /wrong type|no table/.test(group.heading);
  const isOpen = isWrong || group.heading === "read";
  const tags = new Set(group.rows.map(row => row[0])).size;
  return {
    table: made,
    isOpen,
    element: h(
      "details",
      {class: "card", open: isOpen},
      h("summary", null, "Tags " + group.heading + ": " + tags),
      h("div", {class: "scroll"}, made.element),
    ),
  };
}
