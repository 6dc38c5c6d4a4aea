// Two pictures to compare: side by side, in turns, or their difference; and a magnifier over both.

const LOUPE = 160;
const FLICKER_MILLISECONDS = 500;

class Compare {
  constructor(images, onInput) {
    this.images = images;
    this.onInput = onInput;
    this.input = images.base;
    this.output = 0;
    this.mode = "pair";
    this.showsOutput = true;
    this.loupeOn = false;
    this.at = {x: 0.5, y: 0.5};
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
      mode("pair", "Side by side", "In and out beside each other (s)"),
      mode("flicker", "Flicker", "In and out in turns, in the same place (f)"),
      mode("difference", "Difference", "Grey where nothing changed (d)"),
    ];
    this.auto = h("input", {type: "checkbox", id: "auto", onchange: () => this.setTimer()});
    this.autoLabel = h("label", {for: "auto"}, this.auto, " by itself");
    this.loupeButton = toggle("Magnifier 1:1", false, "Follow the pointer or the arrow keys (m)", on =>
      this.setLoupe(on),
    );
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
      this.loupeButton,
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

  // The key changes to the flicker, and then from one picture to the other.
  flicker() {
    if (this.mode !== "flicker") {
      this.setMode("flicker");
    } else {
      this.showsOutput = !this.showsOutput;
      this.show();
    }
  }

  setTimer() {
    clearInterval(this.timer);
    this.timer = null;
    if (this.auto.checked && this.mode === "flicker") {
      this.timer = setInterval(() => this.flicker(), FLICKER_MILLISECONDS);
    }
  }

  setLoupe(on) {
    this.loupeOn = on;
    press(this.loupeButton, on);
    this.moveLoupe();
  }

  // By a part of the picture, from the keyboard.
  stepLoupe(x, y) {
    this.at = {x: Math.min(1, Math.max(0, this.at.x + x)), y: Math.min(1, Math.max(0, this.at.y + y))};
    this.moveLoupe();
  }

  show() {
    for (const button of this.modeButtons) press(button, button.dataset.mode === this.mode);
    this.autoLabel.hidden = this.mode !== "flicker";
    if (this.mode !== "flicker" || !this.timer) this.setTimer();
    const input = this.images.inputs[this.input];
    const output = this.images.outputs[this.output];
    this.stageBox.className = this.mode === "pair" ? "pair" : "pair single";
    const shown =
      this.mode === "pair"
        ? [this.figure("In", input), this.figure("Out", output)]
        : this.mode === "difference"
          ? [this.difference()]
          : [this.showsOutput ? this.figure("Out", output) : this.figure("In", input)];
    this.stageBox.replaceChildren(...shown);
    this.applyBrightness();
    this.moveLoupe();
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
        h("div", {class: "stage"}, h("div", {class: "none"}, "The request has none.")),
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
      this.stage(image.large || image.small, image.name, image.facts),
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
        "There is no difference picture: it needs an output and an input of the same size, " +
          "and one of them is missing or of another size.",
      );
    }
    const psnr =
      found.psnr === undefined
        ? "no pixel differs"
        : "PSNR " + found.psnr + " dB, the largest " + "difference is " + found.most + " of 255";
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
            ", " +
            found.amplification +
            " times enlarged: grey is equal, lighter is brighter in the output; " +
            psnr,
        ),
      ),
      this.stage(found.picture, "difference", base.facts),
    );
  }

  stage(source, name, facts) {
    const image = h("img", {src: source, alt: name, draggable: "false"});
    const stage = h("div", {class: "stage", onpointermove: event => this.point(event, image)}, image);
    stage.facts = facts;
    image.addEventListener("load", () => this.moveLoupe());
    return stage;
  }

  // Where the picture lies in its element: it keeps its shape, and may have a border beside or above it.
  static box(image, facts) {
    const scale = Math.min(image.clientWidth / facts.width, image.clientHeight / facts.height);
    const width = facts.width * scale;
    const height = facts.height * scale;
    return {left: (image.clientWidth - width) / 2, top: (image.clientHeight - height) / 2, width, height};
  }

  point(event, image) {
    if (!this.loupeOn) return;
    const outer = image.getBoundingClientRect();
    const box = Compare.box(image, image.parentElement.facts);
    const part = (at, from, size) => Math.min(1, Math.max(0, (at - from) / size));
    this.at = {
      x: part(event.clientX - outer.left, box.left, box.width),
      y: part(event.clientY - outer.top, box.top, box.height),
    };
    this.moveLoupe();
  }

  moveLoupe() {
    for (const stage of this.stageBox.querySelectorAll(".stage")) {
      const old = stage.querySelector(".loupe");
      if (old) old.remove();
      const image = stage.querySelector("img");
      if (!this.loupeOn || !image || image.clientWidth === 0) continue;
      const {width, height} = stage.facts;
      const box = Compare.box(image, stage.facts);
      const half = LOUPE / 2;
      stage.append(
        h("div", {
          class: "loupe",
          style:
            "left:" +
            (box.left + this.at.x * box.width - half) +
            "px;top:" +
            (box.top + this.at.y * box.height - half) +
            "px;background-image:url(" +
            image.src +
            ");background-size:" +
            width +
            "px " +
            height +
            "px;background-position:" +
            (half - this.at.x * width) +
            "px " +
            (half - this.at.y * height) +
            "px;filter:" +
            (image.style.filter || "none"),
        }),
      );
    }
  }
}

// What is embedded may be smaller than the image.
function scaleText(image) {
  if (!image.facts) return "";
  if (!image.large) return ", a small copy";
  return image.largeWidth < image.facts.width
    ? ", scaled to " + Math.round((100 * image.largeWidth) / image.facts.width) + " %"
    : "";
}
