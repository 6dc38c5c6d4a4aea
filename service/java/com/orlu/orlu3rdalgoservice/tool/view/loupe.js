// A magnifier that shows the same place of several pictures at once.

const LOUPE = 180;

class Loupe {
  constructor() {
    this.isOn = false;
    this.at = {x: 0.5, y: 0.5};
    this.scale = 1;
    this.stages = [];
    this.button = toggle("Magnifier", false, "Follow the pointer or the arrow keys (m)", on => this.set(on));
    this.scaleChoice = h(
      "select",
      {"aria-label": "Magnification (z)", title: "Magnification (z)", onchange: () => this.setScale()},
      [1, 2, 4, 8].map(scale => h("option", {value: scale}, scale + ":1")),
    );
  }

  set(isOn) {
    this.isOn = isOn;
    press(this.button, isOn);
    this.move();
  }

  setScale() {
    this.scale = Number(this.scaleChoice.value);
    this.set(true);
  }

  nextScale() {
    this.scaleChoice.selectedIndex = (this.scaleChoice.selectedIndex + 1) % this.scaleChoice.length;
    this.setScale();
  }

  // Moves the magnifier by fractions of the picture's width and height, for the keyboard.
  step(x, y) {
    this.at = {x: Math.min(1, Math.max(0, this.at.x + x)), y: Math.min(1, Math.max(0, this.at.y + y))};
    this.move();
  }

  // Makes an element with a picture and the magnifier over it. `size` is the picture's unscaled size.
  stage(source, name, size) {
    const image = h("img", {src: source, alt: name, draggable: "false"});
    const glass = h("div", {class: "loupe", hidden: true});
    glass.style.backgroundImage = "url(" + source + ")";
    const element = h("div", {class: "stage"}, image, glass);
    const stage = {element, image, glass, size};
    element.addEventListener("pointermove", event => this.point(event, stage));
    image.addEventListener("load", () => this.move());
    this.stages.push(stage);
    return element;
  }

  // Returns the picture's area in its element. The aspect ratio is kept, so two sides may have borders.
  static box({image, size}) {
    const scale = Math.min(image.clientWidth / size.width, image.clientHeight / size.height);
    const width = size.width * scale;
    const height = size.height * scale;
    return {left: (image.clientWidth - width) / 2, top: (image.clientHeight - height) / 2, width, height};
  }

  point(event, stage) {
    if (!this.isOn) return;
    const outer = stage.image.getBoundingClientRect();
    const box = Loupe.box(stage);
    const part = (at, from, size) => Math.min(1, Math.max(0, (at - from) / size));
    this.at = {
      x: part(event.clientX - outer.left, box.left, box.width),
      y: part(event.clientY - outer.top, box.top, box.height),
    };
    this.move();
  }

  // Updates the magnifier over each picture. One image pixel is `this.scale` screen pixels wide.
  move() {
    const scale = this.scale / window.devicePixelRatio;
    const half = LOUPE / 2;
    for (const stage of this.stages.filter(each => each.element.isConnected)) {
      stage.glass.hidden = !this.isOn || stage.image.clientWidth === 0;
      const box = Loupe.box(stage);
      const {width, height} = stage.size;
      Object.assign(stage.glass.style, {
        left: box.left + this.at.x * box.width - half + "px",
        top: box.top + this.at.y * box.height - half + "px",
        backgroundSize: width * scale + "px " + height * scale + "px",
        backgroundPosition:
          half - this.at.x * width * scale + "px " + (half - this.at.y * height * scale) + "px",
        filter: stage.image.style.filter,
      });
    }
  }
}
