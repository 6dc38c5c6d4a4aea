// Draws a histogram of the levels 0 to 255: luma as an area; red, green and blue as lines.

function histogram(facts) {
  const counts = facts.histogram;
  // The scale ignores levels 0 and 255, which may be far more frequent than the other levels.
  const inner = ["luma", "red", "green", "blue"].flatMap(name => counts[name].slice(1, 255));
  const most = Math.max(1, ...inner);
  const y = count => 100 - 97 * Math.sqrt(Math.min(1, count / most));
  const line = name => counts[name].map((count, level) => level + "," + y(count).toFixed(1)).join(" ");
  return s(
    "svg",
    {
      viewBox: "0 0 256 100",
      preserveAspectRatio: "none",
      class: "histogram",
      role: "img",
      "aria-label": "Histogram, dark on the left; mean brightness " + facts.mean + " of 255",
    },
    s("polygon", {points: "0,100 " + line("luma") + " 255,100", fill: "var(--empty)"}),
    ["red", "green", "blue"].map(name =>
      s("polyline", {
        points: line(name),
        fill: "none",
        stroke: "var(--" + name + ")",
        "vector-effect": "non-scaling-stroke",
      }),
    ),
  );
}

function histogramText(facts) {
  const clipped = facts.clipped >= 0.001 ? ", " + (100 * facts.clipped).toFixed(1) + " % white" : "";
  const legend = "Histogram, dark to bright: grey is brightness, the lines are red, green and blue. ";
  return legend + "Mean brightness " + facts.mean + " of 255" + clipped;
}
