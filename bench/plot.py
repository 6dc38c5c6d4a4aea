#!/usr/bin/env python3
"""plot.py OUTPUT.json DOCS_FOLDER: rewrites the tables and plots of cost.md from the benchmarks' output."""
import json
import os
import re
import sys

KINDS = [("capture", "one-frame JPEG capture"), ("night", "seven-frame night shot"),
         ("two_camera", "twelve-frame two-camera shot"), ("clarity", "fifty-frame clarity request")]
WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 640, 360, 70, 20, 40, 50
FEW_CALLS = 20  # functions with fewer calls in every column share a row
COLOURS = ["#1f6fb4", "#c8501e", "#3a8a3a"]


def load(path):
    with open(path) as file:
        benchmarks = json.load(file)["benchmarks"]
    # "request/night/tags/sync/iterations:1000/manual_time" -> "request/night/tags/sync"
    return {re.sub(r"/iterations.*", "", b["name"]): b for b in benchmarks}


def series(results, group):
    """Returns [(x, result)] of the benchmarks "group/x", sorted by x."""
    found = [(int(name.split("/")[1]), r) for name, r in results.items() if re.fullmatch(group + r"/\d+", name)]
    return sorted(found, key=lambda pair: pair[0])


def line_through(points):
    """Returns slope and intercept of the least-squares line."""
    n = len(points)
    mean_x, mean_y = (sum(p[i] for p in points) / n for i in (0, 1))
    spread = sum((x - mean_x) ** 2 for x, _ in points)
    slope = sum((x - mean_x) * (y - mean_y) for x, y in points) / spread if spread else 0.0
    return slope, mean_y - slope * mean_x


def number(value):
    return f"{value:,.0f}" if abs(value) >= 1000 else f"{value:.3g}" if abs(value) < 1 else f"{value:.1f}"


def table(head, rows):
    alignment = ["---"] + ["--:"] * (len(head) - 1)
    lines = [head, alignment] + [[cell if isinstance(cell, str) else number(cell) for cell in row] for row in rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def count(value):
    return f"{int(value):,}"


# ---- Tables

def request_rows(results):
    for kind, label in KINDS:
        for tags in ("tags", "no_tags"):
            for mode in ("sync", "async"):
                r = results.get(f"request/{kind}/{tags}/{mode}")
                if r:
                    yield f"{label}, {'tags' if tags == 'tags' else 'no tags'}, {mode}", r


def request_table(results):
    head = ["request", "µs", "floor, µs", "ratio", "JNI calls", "allocations", "bytes", "local references",
            "debug lines", "error lines"]
    return table(head, [[label, r["request_us"], r["floor_us"], f"{r['ratio']:.2f}", count(r["jni"]),
                         count(r["allocations"]), count(r["allocated_bytes"]), count(r["local_references"]),
                         count(r["debug_lines"]), count(r["error_lines"])] for label, r in request_rows(results)])


def function_table(results):
    columns = [("capture", "tags"), ("capture", "no_tags"), ("night", "tags"), ("two_camera", "tags"),
               ("clarity", "tags")]
    found = [results[f"request/{kind}/{tags}/sync"] for kind, tags in columns]
    names = {key[4:] for r in found for key in r if key.startswith("jni:")}
    rows = sorted(([name] + [int(r.get("jni:" + name, 0)) for r in found] for name in names),
                  key=lambda row: (-max(row[1:]), row[0]))
    rare = [row[1:] for row in rows if max(row[1:]) < FEW_CALLS]
    rows = [row for row in rows if max(row[1:]) >= FEW_CALLS]
    rows.append([f"{len(rare)} others"] + [sum(calls) for calls in zip(*rare)])
    rows.append(["all"] + [int(r["jni"]) for r in found])
    head = ["JNI function"] + [kind.replace("_", "-") + (", no tags" if tags == "no_tags" else "")
                               for kind, tags in columns]
    return table(head, [[row[0]] + [count(value) for value in row[1:]] for row in rows])


def wakeup_table(results):
    labels = {"wait": "the wait alone", "no_results": "a request without frames", **dict(KINDS)}
    rows = []
    for name, label in labels.items():
        r = results.get("wakeup/" + name)
        if r:
            rows.append([label, r["request_us"], r["floor_us"], f"{r['ratio']:.2f}"])
    return table(["from callback to return", "µs", "floor, µs", "ratio"], rows)


def growth_table(results, group, columns):
    """Each column is (heading, counter)."""
    return table([group.replace("_", " ")] + [heading for heading, _ in columns],
                 [[count(x)] + [number(r[counter]) for _, counter in columns]
                  for x, r in series(results, group)])


def frames_table(results):
    shared = dict(series(results, "shared_frames"))
    rows = [[count(x), r["request_us"], r["floor_us"], count(r["jni"]), count(r["allocations"]),
             shared[x]["request_us"], shared[x]["descriptors_us"], f"{shared[x]['ratio_descriptors']:.2f}"]
            for x, r in series(results, "frames")]
    return table(["frames", "µs", "floor, µs", "JNI calls", "allocations", "in shared memory, µs",
                  "descriptors alone, µs", "shared memory / (floor + descriptors)"], rows)


def fit_text(results, group, counter, unit, what):
    slope, base = line_through([(x, r[counter]) for x, r in series(results, group)])
    start = f"{base:,.0f}" if abs(base) >= 1000 else f"{base:.3g}"
    return f"Linear fit: {start} {unit} plus {slope:.3g} {unit} per {what}."


def memory_table(results):
    rows = [[count(x), count(r["resident_kb"])] for x, r in series(results, "memory")]
    return table(["requests", "resident, KiB"], rows)


def memory_slope(results):
    # Skips the first tenth of the requests, during which the VM warms up.
    points = [(x, r["resident_kb"]) for x, r in series(results, "memory")][1:]
    slope, _ = line_through(points)
    return f"Slope from the second tenth on: {slope * 1024:.3g} bytes per request."


# ---- Plots

def ticks(top):
    step = 10 ** (len(str(int(max(top, 1)))) - 1)
    while top / step < 4:
        step /= 2
    return [i * step for i in range(int(top / step) + 1)]


def plot(path, title, x_label, y_label, lines):
    """Writes an SVG plot. Each line is (name, [(x, y)], whether to draw its linear fit too)."""
    top_x = max(x for _, points, _ in lines for x, _ in points) or 1
    top_y = 1.1 * max(y for _, points, _ in lines for _, y in points) or 1

    def at(x, y):
        return (LEFT + x / top_x * (WIDTH - LEFT - RIGHT),
                HEIGHT - BOTTOM - y / top_y * (HEIGHT - TOP - BOTTOM))

    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
           'font-size="12">', f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>',
           f'<text x="{WIDTH / 2}" y="20" text-anchor="middle" font-size="14">{title}</text>']
    for value in ticks(top_y):
        x, y = at(0, value)
        svg.append(f'<path d="M{x:.1f} {y:.1f}H{WIDTH - RIGHT}" stroke="#ddd"/>')
        svg.append(f'<text x="{x - 6:.1f}" y="{y + 4:.1f}" text-anchor="end">{value:,.10g}</text>')
    for value in ticks(top_x):
        x, y = at(value, 0)
        svg.append(f'<text x="{x:.1f}" y="{y + 18:.1f}" text-anchor="middle">{value:,.10g}</text>')
    svg.append(f'<text x="{WIDTH / 2}" y="{HEIGHT - 10}" text-anchor="middle">{x_label}</text>')
    svg.append(f'<text x="16" y="{HEIGHT / 2}" text-anchor="middle" '
               f'transform="rotate(-90 16 {HEIGHT / 2})">{y_label}</text>')
    for i, (name, points, is_straight) in enumerate(lines):
        colour = COLOURS[i % len(COLOURS)]
        path_data = "L".join("{:.1f} {:.1f}".format(*at(x, y)) for x, y in points)
        svg.append(f'<path d="M{path_data}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
        svg += ['<circle cx="{:.1f}" cy="{:.1f}" r="3" fill="{}"/>'.format(*at(x, y), colour) for x, y in points]
        if is_straight:
            slope, base = line_through(points)
            (x0, y0), (x1, y1) = at(0, max(base, 0)), at(top_x, max(base + slope * top_x, 0))
            svg.append(f'<path d="M{x0:.1f} {y0:.1f}L{x1:.1f} {y1:.1f}" stroke="{colour}" '
                       'stroke-dasharray="4 4" fill="none"/>')
            name += f", slope {slope:.3g}"
        y = TOP + 14 * i + 6
        svg.append(f'<path d="M{LEFT + 12} {y}h18" stroke="{colour}" stroke-width="2"/>')
        svg.append(f'<text x="{LEFT + 36}" y="{y + 4}">{name}</text>')
    svg.append("</svg>\n")
    with open(path, "w") as file:
        file.write("\n".join(svg))


def points_of(results, group, counter):
    return [(x, r[counter]) for x, r in series(results, group)]


def write_plots(results, folder):
    def path(name):
        return os.path.join(folder, f"cost_{name}.svg")

    plot(path("frames"), "Time per request by number of frames", "frames", "µs",
         [("hardware buffers", points_of(results, "frames", "request_us"), True),
          ("hardware buffers: floor", points_of(results, "frames", "floor_us"), False),
          ("shared memory", points_of(results, "shared_frames", "request_us"), True)])
    plot(path("tags"), "Time of a one-frame request by number of tags", "tags in the capture result", "µs",
         [("request", points_of(results, "tags", "request_us"), True),
          ("floor", points_of(results, "tags", "floor_us"), False)])
    plot(path("in_flight"), "Time per request by requests in flight", "requests in flight", "µs",
         [("request", points_of(results, "in_flight", "request_us"), True),
          ("map operations alone", points_of(results, "in_flight", "map_us"), True)])
    plot(path("clients"), "Clients on two cores", "clients", "requests per second",
         [("all clients together", points_of(results, "clients", "requests_per_s"), False)])
    if series(results, "memory"):
        plot(path("memory"), "Resident size", "requests", "KiB",
             [("resident", points_of(results, "memory", "resident_kb"), False)])


# ---- The page

def blocks(results):
    made = {
        "requests": request_table(results),
        "functions": function_table(results),
        "wakeup": wakeup_table(results),
        "frames": frames_table(results) + "\n\n" + fit_text(results, "frames", "request_us", "µs", "frame")
        + "\n" + fit_text(results, "frames", "jni", "JNI calls", "frame"),
        "tags": growth_table(results, "tags", [("µs", "request_us"), ("floor, µs", "floor_us"),
                                               ("JNI calls", "jni")])
        + "\n\n" + fit_text(results, "tags", "request_us", "µs", "tag"),
        "in_flight": growth_table(results, "in_flight", [("µs", "request_us"), ("map operations alone, µs", "map_us")])
        + "\n\n" + fit_text(results, "in_flight", "map_us", "µs", "request in flight"),
        "clients": growth_table(results, "clients", [("µs per request, median", "request_us"),
                                                     ("requests per second, all clients", "requests_per_s")]),
    }
    if series(results, "memory"):
        made["memory"] = memory_table(results) + "\n\n" + memory_slope(results)
    return made


def rewrite(page, made):
    with open(page) as file:
        text = file.read()
    for name, block in made.items():
        pattern = re.compile(rf"(<!-- {name} -->\n).*?(<!-- end -->)", re.DOTALL)
        text, replaced = pattern.subn(lambda match: match[1] + block + "\n" + match[2], text)
        if replaced != 1:
            sys.exit(f"{page}: expected one block named {name}, found {replaced}")
    with open(page, "w") as file:
        file.write(text)


def check_bars(results):
    """Prints each benchmark whose ratio exceeds the limit. Never fails the run: machines are noisy."""
    for name, r in sorted(results.items()):
        bar = {"request": 1.10, "wakeup": 1.20}.get(name.split("/")[0])
        if bar and r["ratio"] > bar:
            print(f"above {bar:.2f}: {name} {r['ratio']:.2f}")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    results = load(sys.argv[1])
    made = blocks(results)
    os.makedirs(sys.argv[2], exist_ok=True)
    page = os.path.join(sys.argv[2], "cost.md")
    if os.path.exists(page):
        rewrite(page, made)
    write_plots(results, sys.argv[2])
    print(made["requests"], made["wakeup"], sep="\n\n")
    check_bars(results)


if __name__ == "__main__":
    main()
