// Compares an input with an output: side by side, alternating, or as their difference. A magnifier
// enlarges the same place in both pictures.

const FLICKER_MILLISECONDS = 500;
const LOST = "The process ended before the request finished, so the contents of the output are unknown.";

class Compare {
  constructor(images, onInput) {
    this.images = images;
    this.onInput = onInput;
    // Starts with the first input that the algorithm library changed, because such a change is a fault.
    const written = images.inputs.findIndex(image => image.written);
    this.input = written < 0 ? images.base : written;
    this.output = 0;
    this.mode = "pair";
    this.showsOutput = true;
    this.loupe = new Loupe();
    this.timer = null;
    this.brightness = 1;
    this.element = h("div", {class: "compare"});
    this.stageBox = h("div", {class: "pair"});
    this.element.append(this.tools(), this.stageBox);
    this.show();
  }

  tools() {
    const mode = (name, text, title) => {
      const button = toggle(text, false, title, () => this.setMode(name));
      button.dataset.mode = name;
      return button;
    };
    this.modeButtons = [
      mode("pair", "Side by side", "Input and output side by side (s)"),
      mode("flicker", "Flicker", "Alternate between input and output in the same place (f)"),
      mode("difference", "Difference", "Grey where nothing changed (d)"),
    ];
    this.auto = h("input", {type: "checkbox", id: "auto", onchange: () => this.setTimer()});
    this.autoLabel = h("label", {for: "auto"}, this.auto, " automatically");
    const bright = h("input", {
      type: "range",
      min: 1,
      max: 8,
      step: 0.5,
      value: 1,
      "aria-label": "Brighten",
      oninput: event => {
        this.brightness = event.target.value;
        this.applyBrightness();
      },
    });
    return h(
      "div",
      {class: "tools"},
      this.modeButtons,
      this.autoLabel,
      h("span", null, this.loupe.button, " ", this.loupe.scaleChoice),
      h("label", null, "Brighten ", bright),
      this.outputChoice(),
    );
  }

  outputChoice() {
    if (this.images.outputs.length < 2) return null;
    const options = this.images.outputs.map((image, i) => h("option", {value: i}, image.name));
    return h(
      "select",
      {
        "aria-label": "Output",
        onchange: event => {
          this.output = Number(event.target.value);
          this.show();
        },
      },
      options,
    );
  }

  setInput(index) {
    this.input = index;
    this.show();
    this.onInput(index);
  }

  setMode(mode) {
    this.mode = mode;
    this.show();
  }

  // Selects the flicker mode. If it is already selected, switches to the other picture.
  flicker() {
    if (this.mode !== "flicker") {
      this.setMode("flicker");
    } else {
      this.showsOutput = !this.showsOutput;
      this.showTurn();
      this.loupe.move();
    }
  }

  setTimer() {
    clearInterval(this.timer);
    this.timer = null;
    if (this.auto.checked && this.mode === "flicker") {
      this.timer = setInterval(() => this.flicker(), FLICKER_MILLISECONDS);
    }
  }

  show() {
    for (const button of this.modeButtons) press(button, button.dataset.mode === this.mode);
    this.autoLabel.hidden = this.mode !== "flicker";
    if (this.mode !== "flicker" || !this.timer) this.setTimer();
    const input = this.images.inputs[this.input];
    const output = this.images.outputs[this.output];
    this.stageBox.className = this.mode === "pair" ? "pair" : "pair single";
    this.loupe.stages = [];
    const shown =
      this.mode === "difference"
        ? [this.difference()]
        : [this.figure("In", input), this.figure("Out", output)];
    this.stageBox.replaceChildren(...shown);
    this.showTurn();
    this.applyBrightness();
    this.loupe.move();
  }

  // In flicker mode, hides the input or the output. Both stay in the page, so switching rebuilds nothing.
  showTurn() {
    const [input, output] = this.stageBox.children;
    if (output) {
      input.hidden = this.mode === "flicker" && this.showsOutput;
      output.hidden = this.mode === "flicker" && !this.showsOutput;
    }
  }

  applyBrightness() {
    for (const image of this.stageBox.querySelectorAll(".stage img")) {
      image.style.filter = this.brightness > 1 ? "brightness(" + this.brightness + ")" : "";
    }
  }

  figure(label, image) {
    if (!image) {
      return h(
        "figure",
        null,
        h("figcaption", null, h("b", null, label)),
        h("div", {class: "stage"}, h("div", {class: "none"}, this.images.lost ? LOST : "The request has no such image.")),
      );
    }
    const layout = image.layout;
    const caption = h(
      "figcaption",
      null,
      h("b", null, label + ": " + image.name),
      " ",
      h(
        "span",
        {class: "faint"},
        (image.frame >= 0 ? "frame " + image.frame + ", " : "") +
          layout.format +
          " " +
          layout.width +
          "×" +
          layout.height +
          (image.raw ? ", raw, shown in colour" : "") +
          (image.written ? ", written to" : "") +
          scaleText(image),
      ),
    );
    if (!image.facts) {
      return h(
        "figure",
        null,
        caption,
        h("div", {class: "stage"}, h("div", {class: "none"}, "No picture: " + image.problem)),
      );
    }
    return h(
      "figure",
      null,
      caption,
      this.loupe.stage(image.large || image.small, image.name, image.facts),
      histogram(image.facts),
      h("div", {class: "faint"}, histogramText(image.facts)),
    );
  }

  difference() {
    const found = this.images.differences.find(each => each.output === this.output);
    if (!found) {
      return h(
        "p",
        null,
        "No difference picture: it needs an output and an input of the same size.",
      );
    }
    const psnr =
      found.psnr === undefined
        ? "all pixels are equal"
        : "PSNR " + found.psnr + " dB, the largest difference is " + found.most + " of 255";
    const base = this.images.inputs[this.images.base];
    return h(
      "figure",
      null,
      h(
        "figcaption",
        null,
        h("b", null, "Difference"),
        " ",
        h(
          "span",
          {class: "faint"},
          "output " +
            this.output +
            " against " +
            base.name +
            ", amplified " +
            found.amplification +
            " times: grey is equal, lighter is brighter in the output; " +
            psnr,
        ),
      ),
      this.loupe.stage(found.picture, "difference", base.facts),
    );
  }
}

// Returns caption text about the scale of the embedded picture; "" at full width or without a picture.
function scaleText(image) {
  if (!image.facts) return "";
  if (!image.large) return ", a small copy";
  return image.largeWidth < image.facts.width
    ? ", scaled to " + Math.round((100 * image.largeWidth) / image.facts.width) + " %"
    : "";
}
