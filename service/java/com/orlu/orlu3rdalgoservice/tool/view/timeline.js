// The timeline: a lane for each thread, slices that nest, arrows from process to callback to results.

const ROW = 20;
const LANE_HEAD = 20;
const AXIS = 22;
const LEAST_TEXT = 34;
const MOST_ZOOM = 4000;

class TimelineView {
  constructor(events) {
    this.slices = events.filter(event => event.ph === "X").sort((a, b) => a.ts - b.ts || b.dur - a.dur);
    this.arrows = arrowsOf(events);
    this.lanes = lanesOf(events, this.slices);
    this.end = Math.max(1, ...this.slices.map(slice => slice.ts + slice.dur));
    this.zoom = null;
    this.chosen = null;
    this.box = h("div", {
      class: "scroll lanes card",
      tabindex: 0,
      "aria-label": "Timeline",
      onkeydown: event => this.key(event),
    });
    this.detail = h(
      "div",
      {class: "card", "aria-live": "polite"},
      h(
        "p",
        {class: "faint"},
        "Click a slice, or use the arrow keys, for details. Nested calls are drawn below their caller. Times " +
          "count from the first slice. Arrows lead from process to its callback and on to the results.",
      ),
      this.openSlices(),
    );
    const button = (text, title, act) => h("button", {type: "button", title, onclick: act}, text);
    const swatch = (name, text) => h("span", null, h("i", {style: "background:var(--" + name + ")"}), text);
    this.element = h(
      "div",
      null,
      h(
        "div",
        {class: "tools"},
        button("+", "Zoom in (+)", () => this.setZoom(this.zoom * 2)),
        button("−", "Zoom out (-)", () => this.setZoom(this.zoom / 2)),
        button("The request", "From Java's call to the results (0)", () => this.showRequest()),
        button("All", "Including the command's work before and after the request", () => this.setZoom(1)),
        h(
          "span",
          {class: "legend"},
          swatch("java", "Java"),
          swatch("request", "translation, results"),
          swatch("wait", "waiting"),
          swatch("algorithms", "algorithms"),
          swatch("library", "library call"),
          swatch("wrong", "has not returned"),
        ),
      ),
      this.box,
      this.detail,
    );
    this.box.addEventListener("scroll", () => requestAnimationFrame(() => this.draw()));
    window.addEventListener("resize", () => this.draw());
  }

  // Returns a line for each call whose return was not recorded.
  openSlices() {
    return this.slices
      .filter(isOpen)
      .map(slice =>
        h(
          "p",
          null,
          h("span", {class: "badge wrong"}, "has not returned"),
          " ",
          h("button", {type: "button", onclick: () => this.choose(slice)}, slice.name),
          " ",
          slice.args.key ? slice.args.section + "/" + slice.args.key : "",
        ),
      );
  }

  setZoom(zoom) {
    const middle = (this.box.scrollLeft + this.box.clientWidth / 2) / (this.width || 1);
    this.zoom = Math.min(MOST_ZOOM, Math.max(1, zoom));
    this.draw();
    const chosen = this.chosen ? (this.chosen.ts + this.chosen.dur / 2) / this.end : middle;
    this.box.scrollLeft = chosen * this.width - this.box.clientWidth / 2;
  }

  // Zooms to the request, without the calls that create and release the client.
  showRequest() {
    const own = this.slices.filter(
      slice =>
        /^Java: (process|wait|update result)$/.test(slice.name) ||
        ["translation", "results", "wait for the callback", "callback"].includes(slice.name) ||
        slice.cat === "algorithms",
    );
    const start = Math.min(this.end, ...own.map(slice => slice.ts));
    const end = Math.max(start, ...own.map(slice => slice.ts + slice.dur));
    this.chosen = null;
    this.setZoom(own.length === 0 ? 1 : Math.max(1, this.end / (1.06 * (end - start))));
    this.box.scrollLeft = ((start - 0.03 * (end - start)) / this.end) * this.width;
    this.draw();
  }

  // A hidden panel has no width and is not drawn.
  draw() {
    if (this.box.clientWidth === 0) return;
    if (this.zoom === null) {
      this.zoom = 1;
      this.showRequest();
      return;
    }
    this.width = (this.box.clientWidth - 40) * this.zoom;
    const x = time => (time / this.end) * this.width;
    const parts = [hatch()];
    let y = AXIS;
    for (const lane of this.lanes) {
      lane.top = y;
      y += LANE_HEAD + lane.depth * ROW + 8;
    }
    parts.push(this.axis(x, y));
    for (const lane of this.lanes) {
      parts.push(
        s("text", {x: Math.max(0, this.box.scrollLeft), y: lane.top + 13, class: "lane-name"}, lane.name),
      );
      for (const slice of lane.slices) parts.push(this.slice(slice, lane, x));
    }
    for (const arrow of this.arrows) parts.push(this.arrow(arrow, x));
    this.box.replaceChildren(s("svg", {width: this.width + 6, height: y}, parts));
  }

  axis(x, height) {
    const step = niceStep((this.end / this.width) * 110);
    const parts = [];
    for (let time = 0; time <= this.end; time += step) {
      parts.push(
        s("line", {x1: x(time), x2: x(time), y1: 0, y2: height, class: "tick"}),
        s("text", {x: x(time) + 3, y: 13, class: "tick-text"}, timeText(time)),
      );
    }
    return parts;
  }

  slice(slice, lane, x) {
    const width = Math.max(isOpen(slice) ? 6 : 1.2, x(slice.dur));
    const y = lane.top + LANE_HEAD + slice.depth * ROW;
    const kind = isOpen(slice) ? "open" : isWait(slice) ? "wait" : isWhole(slice) ? "java" : slice.cat;
    const rect = s(
      "rect",
      {
        x: x(slice.ts),
        y,
        width,
        height: ROW - 2,
        rx: 2,
        class: "slice " + kind + (slice === this.chosen ? " chosen" : ""),
        onclick: () => this.choose(slice),
      },
      s("title", null, slice.name + ", " + timeText(slice.dur)),
    );
    if (width < LEAST_TEXT) return rect;
    const letters = Math.floor((width - 6) / 6.4);
    const text =
      slice.name.length > letters ? slice.name.slice(0, Math.max(1, letters - 1)) + "…" : slice.name;
    const at = Math.max(x(slice.ts), Math.min(this.box.scrollLeft, x(slice.ts) + width - 60));
    return [
      rect,
      s("text", {x: at + 4, y: y + 13, class: "slice-text" + (kind === "wait" ? " dark" : "")}, text),
    ];
  }

  arrow(points, x) {
    const place = point => {
      const lane = this.lanes.find(each => each.tid === point.tid);
      const inside = lane.slices.filter(slice => slice.ts <= point.ts && point.ts <= slice.ts + slice.dur);
      const depth = Math.max(0, ...inside.map(slice => slice.depth));
      return [x(point.ts), lane.top + LANE_HEAD + depth * ROW + ROW / 2];
    };
    const known = points.filter(point => this.lanes.some(lane => lane.tid === point.tid)).map(place);
    return known
      .slice(1)
      .map((to, i) =>
        s("path", {
          class: "flow",
          "marker-end": "url(#head)",
          d:
            "M" +
            known[i] +
            " C" +
            (known[i][0] + 25) +
            "," +
            known[i][1] +
            " " +
            (to[0] - 25) +
            "," +
            to[1] +
            " " +
            to,
        }),
      );
  }

  choose(slice) {
    this.chosen = slice;
    this.draw();
    const rows = Object.entries(slice.args || {}).map(([name, value]) =>
      h(
        "tr",
        null,
        h("td", {class: "faint"}, name),
        h("td", null, typeof value === "string" ? value : JSON.stringify(value)),
      ),
    );
    this.detail.replaceChildren(
      h("h3", null, slice.name),
      h(
        "p",
        null,
        timeText(slice.dur) + ", from " + timeText(slice.ts) + " on",
        isWait(slice) ? h("span", {class: "badge look"}, "waiting") : null,
      ),
      h("table", null, rows),
    );
  }

  key(event) {
    const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
    if (step) {
      const at = this.chosen ? this.slices.indexOf(this.chosen) + step : 0;
      this.choose(this.slices[Math.min(this.slices.length - 1, Math.max(0, at))]);
    } else if (event.key === "+") {
      this.setZoom(this.zoom * 2);
    } else if (event.key === "-") {
      this.setZoom(this.zoom / 2);
    } else if (event.key === "0") {
      this.showRequest();
    } else {
      return;
    }
    event.preventDefault();
  }
}

function isOpen(slice) {
  return slice.args !== undefined && slice.args.outcome === "has not returned";
}

// Returns whether the slice spans all work for a request; such a slice has the name of the request's file.
function isWhole(slice) {
  return slice.cat === "request" && slice.name === baseName(data.file);
}

function isWait(slice) {
  return slice.name === "wait for the callback" || slice.name === "Java: wait";
}

// Returns the arrows, each as a list of its points in order.
function arrowsOf(events) {
  const arrows = new Map();
  for (const event of events.filter(each => "stf".includes(each.ph))) {
    if (!arrows.has(event.id)) arrows.set(event.id, []);
    arrows.get(event.id).push(event);
  }
  return [...arrows.values()];
}

// Returns the lanes from top to bottom, and sets the nesting depth of each slice.
function lanesOf(events, slices) {
  const order = new Map(
    events
      .filter(event => event.name === "thread_sort_index")
      .map(event => [event.tid, event.args.sort_index]),
  );
  const names = events.filter(event => event.name === "thread_name");
  return names
    .map(event => {
      const lane = {
        tid: event.tid,
        name: event.args.name,
        slices: slices.filter(slice => slice.tid === event.tid),
      };
      const ends = [];
      lane.depth = 0;
      for (const slice of lane.slices) {
        while (ends.length > 0 && ends[ends.length - 1] <= slice.ts) ends.pop();
        slice.depth = ends.length;
        ends.push(slice.ts + slice.dur);
        lane.depth = Math.max(lane.depth, ends.length);
      }
      return lane;
    })
    .filter(lane => lane.slices.length > 0)
    .sort((a, b) => order.get(a.tid) - order.get(b.tid));
}

function niceStep(least) {
  const power = Math.pow(10, Math.floor(Math.log10(least)));
  return [1, 2, 5, 10].map(factor => factor * power).find(step => step >= least);
}

// `time` is in microseconds.
function timeText(time) {
  if (time >= 1e6) return (time / 1e6).toFixed(2) + " s";
  return time >= 1000 || time === 0
    ? Number((time / 1000).toFixed(2)) + " ms"
    : Number(time.toFixed(1)) + " µs";
}

function hatch() {
  return s(
    "defs",
    null,
    s(
      "pattern",
      {id: "hatch", width: 8, height: 8, patternUnits: "userSpaceOnUse", patternTransform: "rotate(45)"},
      s("rect", {width: 8, height: 8, fill: "var(--card)"}),
      s("rect", {width: 3, height: 8, fill: "var(--wait)"}),
    ),
    s(
      "marker",
      {id: "head", viewBox: "0 0 8 8", refX: 7, refY: 4, markerWidth: 7, markerHeight: 7, orient: "auto"},
      s("path", {d: "M0,0 L8,4 L0,8 z", fill: "var(--text)"}),
    ),
  );
}

function timelinePanel() {
  if (!data.trace.some(event => event.ph === "X")) {
    return {element: h("p", {class: "card"}, "The recording contains no calls.")};
  }
  const view = new TimelineView(data.trace);
  return {element: view.element, onShow: () => view.draw(), view};
}
