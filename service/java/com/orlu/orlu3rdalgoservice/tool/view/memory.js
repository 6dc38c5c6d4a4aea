// Draws each image's memory to scale: planes with their rows and padding, and the bytes after them.

const DRAWING_WIDTH = 320;
const LEAST_PADDING = 4;

function memoryPanel() {
  if (!data.images || data.images.inputs.length + data.images.outputs.length === 0) {
    return {
      element: h(
        "p",
        {class: "card"},
        "No memory to show: the request did not run, ended too early, or has no images.",
      ),
    };
  }
  const swatch = (color, text) => h("span", null, h("i", {style: "background:" + color}), text);
  return {
    element: h(
      "div",
      null,
      h(
        "p",
        null,
        "Planes are drawn to scale: each row of the drawing is a row of bytes, with its padding on the right. " +
          "The bar below them is the whole memory from its first byte to its last.",
      ),
      data.images.lost ? h("p", null, LOST) : null,
      h(
        "p",
        {class: "legend"},
        swatch("var(--plane-a)", "pixels of a plane"),
        swatch("var(--plane-b)", "the next plane"),
        swatch("var(--empty)", "all bytes 0"),
        swatch("var(--wait)", "padding, or bytes after the planes, that are not 0"),
        swatch("var(--wrong)", "past the end of the memory"),
      ),
      h("div", {class: "layouts"}, alike(data.images.outputs.concat(data.images.inputs)).map(memoryCard)),
    ),
  };
}

// Returns groups of images with equal properties; the images of a group share a card.
function alike(images) {
  const groups = new Map();
  for (const image of images) {
    const key = JSON.stringify([
      image.name.split(" ")[0],
      image.layout,
      image.problem,
      image.written,
      image.hardware,
    ]);
    if (!groups.has(key)) groups.set(key, []);
    groups.get(key).push(image);
  }
  return [...groups.values()];
}

function memoryCard(images) {
  const image = images[0];
  const names =
    images.length === 1
      ? image.name + (image.frame >= 0 ? ", frame " + image.frame : "")
      : image.name.split(" ")[0] + "s " + images.map(each => each.name.split(" ")[1]).join(", ");
  const layout = image.layout;
  const notes = [];
  if (image.problem) notes.push(["wrong", "This image is " + image.problem + "."]);
  if (image.written) notes.push(["wrong", "The algorithm library changed bytes of this input."]);
  if (layout.missing > 0)
    notes.push(["wrong", "The planes exceed the memory by " + bytes(layout.missing) + "."]);
  if (layout.usedBehind > 0) {
    notes.push([
      "look",
      bytes(layout.usedBehind) + " after the planes are not 0, from byte " + layout.firstBehind + " on.",
    ]);
  }
  return h(
    "div",
    {class: "card", "data-image": image.name},
    h("h3", null, names),
    h(
      "p",
      {class: "faint"},
      layout.format +
        " " +
        layout.width +
        "×" +
        layout.height +
        ", strides " +
        layout.strides +
        ", " +
        (image.hardware ? "hardware buffer" : "shared memory") +
        " of " +
        bytes(layout.memory),
    ),
    notes.map(([kind, text]) => h("p", null, h("span", {class: "badge " + kind}, text))),
    layoutDrawing(layout),
    h(
      "ul",
      {class: "faint", style: "margin:0.3rem 0;padding-left:1.1rem"},
      layout.planes.map(plane => h("li", null, planeText(plane))),
    ),
  );
}

function planeText(plane) {
  if (plane.rows === 1) {
    return plane.name + ": " + bytes(plane.size) + (plane.usedRows ? "" : ", all 0");
  }
  const padding = plane.stride - plane.rowBytes;
  return (
    plane.name +
    ": from byte " +
    plane.offset +
    ", " +
    plane.rows +
    " rows of " +
    plane.rowBytes +
    (padding > 0 ? " + " + padding + " bytes of padding" : " bytes, no padding") +
    (plane.usedRows < plane.rows ? "; 0 in " + plural(plane.rows - plane.usedRows, "row") : "") +
    (plane.usedPadding > 0 ? "; padding is not 0 in " + plural(plane.usedPadding, "row") : "")
  );
}

function layoutDrawing(layout) {
  const scale =
    DRAWING_WIDTH / Math.max(...layout.planes.map(plane => (plane.rows === 1 ? 1 : plane.stride)), 1);
  const parts = [];
  let y = 0;
  layout.planes.forEach((plane, i) => {
    if (plane.rows > 1) {
      parts.push(planeDrawing(plane, i, scale, y));
      y += plane.rows * scale + 6;
    }
  });
  parts.push(memoryBar(layout, y + 4));
  return s(
    "svg",
    {
      viewBox: "0 0 " + (DRAWING_WIDTH + 2) + " " + (y + 44).toFixed(1),
      role: "img",
      "aria-label": layout.planes.map(planeText).join("; "),
    },
    parts,
  );
}

function planeColor(index) {
  return index % 2 === 0 ? "var(--plane-a)" : "var(--plane-b)";
}

function planeDrawing(plane, index, scale, top) {
  const height = plane.rows * scale;
  const bands = plane.pixels.length;
  const padding =
    plane.stride > plane.rowBytes ? Math.max(LEAST_PADDING, (plane.stride - plane.rowBytes) * scale) : 0;
  const pixelWidth = plane.stride * scale - padding;
  const parts = [s("rect", {x: 1, y: top, width: pixelWidth, height, fill: "var(--empty)"})];
  for (let band = 0; band < bands; ++band) {
    const box = {y: top + (band * height) / bands, height: height / bands + 0.3};
    if (plane.pixels[band] > 0) {
      parts.push(
        s("rect", {
          x: 1,
          width: pixelWidth,
          fill: planeColor(index),
          "fill-opacity": plane.pixels[band] / 100,
          ...box,
        }),
      );
    }
    if (padding > 0) {
      parts.push(
        s("rect", {
          x: 1 + pixelWidth,
          width: padding,
          fill: plane.padding[band] > 0 ? "var(--wait)" : "var(--empty)",
          ...box,
        }),
      );
    }
  }
  if (padding > 0) {
    parts.push(
      s("line", {
        x1: 1 + pixelWidth,
        x2: 1 + pixelWidth,
        y1: top,
        y2: top + height,
        stroke: "var(--text)",
        "stroke-dasharray": "3 2",
        "stroke-width": 0.7,
      }),
    );
  }
  parts.push(
    s("rect", {
      x: 1,
      y: top,
      width: plane.stride * scale,
      height,
      fill: "none",
      stroke: "var(--text)",
      "stroke-width": 0.7,
    }),
  );
  if (height > 14) parts.push(s("text", {x: 7, y: top + 13}, plane.name));
  return parts;
}

function memoryBar(layout, top) {
  const whole = layout.memory + layout.missing;
  const x = at => 1 + (DRAWING_WIDTH * at) / whole;
  const box = (from, to, fill, title) =>
    s(
      "rect",
      {x: x(from), y: top, width: Math.max(0.5, x(to) - x(from)), height: 14, fill},
      s("title", null, title),
    );
  const parts = [box(0, layout.memory, "var(--empty)", "the memory, " + bytes(layout.memory))];
  layout.planes.forEach((plane, i) =>
    parts.push(
      box(
        plane.offset,
        Math.min(layout.memory, plane.offset + plane.size),
        plane.usedRows ? planeColor(i) : "var(--empty)",
        plane.name,
      ),
    ),
  );
  if (layout.usedBehind > 0) {
    parts.push(
      box(layout.firstBehind, layout.memory, "var(--wait)", "bytes after the planes, not all 0"),
    );
  }
  if (layout.missing > 0) parts.push(box(layout.memory, whole, "var(--wrong)", "past the end"));
  for (const plane of layout.planes) {
    parts.push(
      s("line", {
        x1: x(plane.offset + plane.size),
        x2: x(plane.offset + plane.size),
        y1: top,
        y2: top + 18,
        stroke: "var(--text)",
        "stroke-width": 0.8,
      }),
    );
  }
  parts.push(
    s("rect", {
      x: 1,
      y: top,
      width: x(layout.memory) - 1,
      height: 14,
      fill: "none",
      stroke: "var(--text)",
      "stroke-width": 0.7,
    }),
    s("text", {x: 1, y: top + 28}, "0"),
    s("text", {x: DRAWING_WIDTH, y: top + 28, "text-anchor": "end"}, String(whole)),
  );
  return parts;
}
