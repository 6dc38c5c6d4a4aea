// The first tab: an input next to an output, and small copies of all inputs.

function picturesPanel() {
  const images = data.images;
  if (!images) {
    return {
      element: h(
        "p",
        {class: "card"},
        "No pictures: the process ended early, and the inputs were not recorded or can't be read.",
      ),
    };
  }
  if (images.inputs.length + images.outputs.length === 0) {
    return {
      element: h("p", {class: "card"}, "No pictures: the request did not run, or has no images."),
    };
  }
  const thumbs = images.inputs.map((image, i) => inputThumb(image, i, index => compare.setInput(index)));
  const mark = index => thumbs.forEach((thumb, i) => press(thumb, i === index));
  const compare = new Compare(images, mark);
  mark(compare.input);
  const element = h(
    "div",
    null,
    compare.element,
    h("h2", {style: "margin:1rem 0 0.4rem"}, plural(images.inputs.length, "input") + " "),
    h(
      "p",
      {class: "faint"},
      "Click an input to show it above. " +
        (images.lost ? "The inputs are shown as they were sent. " : baseText(images)) +
        (data.algorithms.frames?.length
          ? " The algorithm library reported which frames it kept or dropped."
          : ""),
    ),
    h("div", {class: "strip"}, thumbs),
  );
  return {element, compare};
}

// Returns a sentence that explains which input the outputs are compared with, and why.
function baseText(images) {
  if (!images.hasBase) return "Outputs are not compared, because no readable input belongs to the base frame.";
  return (
    "Outputs are compared with the input marked base: " +
    (images.baseNamedBy
      ? "the frame named by the result (" + images.baseNamedBy + ")."
      : "the first, since the result names no frame.")
  );
}

function inputThumb(image, index, onChoose) {
  const frames = data.algorithms.frames || [];
  const frame = frames[image.frame];
  const marks = [
    index === data.images.base && data.images.hasBase && !data.images.lost ? "base" : null,
    frame ? (frame.kept ? "kept" : "dropped") : null,
    image.written ? "written to" : null,
  ]
    .filter(Boolean)
    .join(", ");
  return h(
    "button",
    {type: "button", "aria-pressed": "false", onclick: () => onChoose(index)},
    image.small
      ? h("img", {src: image.small, alt: image.name})
      : h("div", {class: "none"}, image.problem.startsWith("untouched") ? "all bytes 0" : "no picture"),
    h("b", null, image.name),
    " frame " + image.frame + (marks ? ", " + marks : ""),
  );
}
