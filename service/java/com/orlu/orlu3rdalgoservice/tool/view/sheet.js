// Pictures side by side: one request with several tag values, or several requests with two libraries.

const failedRows = data.rows.filter(row => !row.ok).length;

function showSheet() {
  document
    .getElementById("top")
    .append(
      h(
        "div",
        {class: "bar"},
        h("div", {class: "grow"}, h("h1", null, data.title), h("div", {class: "faint"}, data.about)),
        h(
          "span",
          {class: "badge " + (failedRows ? "wrong" : "good"), id: "verdict"},
          failedRows ? "✗ " + failedRows + " of " + data.rows.length + " failed" : "✓ all ok",
        ),
        themeButton(),
      ),
    );
  const dialog = h("dialog", {class: "large", onclick: () => dialog.close()});
  document.getElementById("entries").className = "sheet";
  document.getElementById("entries").append(...data.rows.map(row => sheetRow(row, dialog)), dialog);
  document.addEventListener("keydown", event => {
    if (event.key === "t") switchTheme();
  });
}

function sheetRow(row, dialog) {
  const columns = data.columns.length;
  return h(
    "section",
    {class: "card " + (row.ok ? "good" : "wrong")},
    row.name
      ? h(
          "div",
          {class: "bar"},
          h("h2", {class: "grow"}, row.name),
          row.ok ? null : h("span", {class: "badge wrong"}, "✗ failed"),
        )
      : null,
    h(
      "div",
      {class: columns ? "columns" : "flow-cells", style: "--columns: " + columns},
      row.cells.map((cell, i) => sheetCell(columns ? data.columns[i] : "", cell, dialog)),
    ),
    row.lines.map(line => h("p", {class: "mono"}, line)),
  );
}

function sheetCell(column, cell, dialog) {
  const caption = [column, cell.caption].filter(text => text).join(": ");
  const show = () => {
    dialog.replaceChildren(h("p", null, caption), h("img", {src: cell.picture, alt: caption}));
    dialog.showModal();
  };
  return h(
    "figure",
    null,
    h("figcaption", null, caption),
    cell.picture
      ? h(
          "button",
          {type: "button", title: "Enlarge", onclick: show},
          h("img", {src: cell.picture, alt: caption}),
        )
      : h("div", {class: "none"}, cell.problem),
    cell.lines.map(line => h("div", {class: "faint mono"}, line)),
  );
}

showSheet();
