// Tables and their filters.

// Makes a table. A row is {cells: [...], text, class}; filters search `text`, by default the cells. A column
// whose heading begins with "-" is hidden in a narrow window. Returns the element, and a function
// show(isWanted), which shows only the wanted rows and returns their number.
function table(heads, rows) {
  const classes = heads.map((head, i) =>
    [i === 0 ? "key" : "", head.startsWith("-") ? "narrow-hide" : ""].join(" "),
  );
  const body = h("tbody");
  const element = h(
    "table",
    null,
    h(
      "thead",
      null,
      h(
        "tr",
        null,
        heads.map((head, i) => h("th", {class: classes[i]}, head.replace(/^-/, ""))),
      ),
    ),
    body,
  );
  for (const row of rows) {
    row.element = h(
      "tr",
      {class: row.class || null},
      row.cells.map((cell, i) => h("td", {class: classes[i]}, cell)),
    );
    row.text = (row.text || row.cells.join(" ")).toLowerCase();
    body.append(row.element);
  }
  const show = isWanted => {
    let count = 0;
    for (const row of rows) {
      row.element.hidden = !isWanted(row);
      count += row.element.hidden ? 0 : 1;
      if (row.detail) row.detail.hidden = row.element.hidden || !row.isOpen;
    }
    return count;
  };
  return {element, show};
}

// Makes a table with a filter field and the number of matching rows.
function filtered(label, heads, rows) {
  const made = table(heads, rows);
  const count = h("span", {class: "faint", "aria-live": "polite"}, rows.length + " rows");
  const field = filterField(label, words => {
    count.textContent = made.show(row => matches(row.text, words)) + " of " + rows.length + " rows";
  });
  return {
    element: h(
      "div",
      null,
      h("div", {class: "tools"}, field, count),
      h("div", {class: "scroll"}, made.element),
    ),
    field,
  };
}

// Puts a colon between source and value: without it, "capture result 1" looks like a numbered capture result.
function foundText(text) {
  return text.replace(/^(capture result|composition) +(?=\S)/, "$1: ");
}

// Makes a table of tags; a row is [tag, frames, text].
function tagTable(rows) {
  return h(
    "div",
    {class: "scroll"},
    table(
      ["tag", "frames", "found"],
      rows.map(row => ({cells: [row[0], row[1].replace(/^frames? /, ""), foundText(row[2])]})),
    ).element,
  );
}
