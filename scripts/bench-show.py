#!/usr/bin/env python3
"""Shows the results of scripts/bench.sh as a table with ratios to the floor.

Usage: scripts/bench-show.py RESULTS [--update]

  --update  puts the table into docs/performance.md instead, as the whole of its section "One run", and
            draws docs/performance.svg: a bar for each measurement on a logarithmic axis

The results have a line for each time that was measured: row, role, name and nanoseconds, separated by
tabs; the first line describes the machine. Every row has one floor.
"""
import argparse
import math
import pathlib
import statistics
import sys
from xml.sax.saxutils import escape

# The ratio to the floor that the product is to stay under.
GOALS = {"getConnectivityType": 1.15, "getWifiSSID": 1.25, "listRecord": 1.10, "enqueue16": 1.10,
         "sendTextCommand100": 2.0, "logAppended": 1.10}
ROLES = ("floor", "product", "peer")

WIDTH, LABEL_WIDTH, RIGHT_MARGIN, LINE_HEIGHT, TOP = 980, 280, 70, 18, 84
STYLE = """
 svg { background: #ffffff; font: 12px sans-serif; }
 text { fill: #1f2328; } .faint { fill: #656d76; } .title { font-size: 18px; font-weight: bold; }
 .row { font-weight: bold; } .product { fill: #0969da; } .peer { fill: #b5bac0; }
 .grid { stroke: #d8dee4; } .floor { stroke: #1a7f37; stroke-width: 1.5; }
 @media (prefers-color-scheme: dark) {
  svg { background: #0d1117; } text { fill: #e6edf3; } .faint { fill: #8d96a0; } .product { fill: #4493f8; }
  .peer { fill: #57606a; } .grid { stroke: #30363d; } .floor { stroke: #3fb950; }
 }
"""


def load(path):
    """The sentence about the machine, and {row: [(role, name, times, ratio), ...]}, floors first."""
    machine, *lines = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
    times = {}
    for line in lines:
        row, role, name, nanoseconds = line.split("\t")
        times.setdefault(row, {}).setdefault((ROLES.index(role), name), []).append(float(nanoseconds))
    if not times:
        sys.exit("There are no measurements")
    rows = {}
    for row, measured in times.items():
        ordered = sorted(measured.items(), key=lambda item: (item[0][0], statistics.median(item[1])))
        if [role for (role, _), _ in ordered].count(0) != 1:
            sys.exit(f"The row {row} needs one floor")
        floor = statistics.median(ordered[0][1])
        rows[row] = [(ROLES[role], "by hand" if name.startswith("floor") else name, runs, statistics.median(runs) / floor)
                     for (role, name), runs in ordered]
    return machine.removeprefix("# "), rows


def duration(nanoseconds):
    return f"{nanoseconds:.1f} ns" if nanoseconds < 10_000 else f"{nanoseconds / 1000:.1f} us"


def ratio_text(ratio):
    return f"{ratio:.2f}" if ratio < 10 else f"{ratio:,.0f}"


def table(machine, rows):
    yield machine
    yield ""
    yield "| row | what | median | lowest to highest | ratio | goal |"
    yield "|---|---|---:|---:|---:|---:|"
    for row, measurements in rows.items():
        for role, name, runs, ratio in measurements:
            yield (f"| {row if role == 'floor' else ''} | {f'**{name}**' if role == 'product' else name} | "
                   f"{duration(statistics.median(runs))} | {duration(min(runs))} to {duration(max(runs))} | "
                   f"{'1' if role == 'floor' else ratio_text(ratio)} | {GOALS.get(name, '')} |")


def text(x, y, content, css="", anchor="start"):
    return f'<text x="{x:.1f}" y="{y:.1f}" class="{css}" text-anchor="{anchor}">{escape(content)}</text>'


def picture(machine, rows):
    ratios = [ratio for measurements in rows.values() for *_, ratio in measurements]
    decades = max(1, math.ceil(math.log10(max(ratios))))
    left_end = math.log10(min(0.5, 0.9 * min(ratios)))

    def x(ratio):
        return LABEL_WIDTH + (WIDTH - LABEL_WIDTH - RIGHT_MARGIN) * (math.log10(ratio) - left_end) / (decades - left_end)

    bars, y = [], TOP
    for row, measurements in rows.items():
        y += LINE_HEIGHT
        bars.append(text(16, y, f"{row}, by hand {duration(statistics.median(measurements[0][2]))}", "row"))
        for role, name, _, ratio in measurements[1:]:
            y += LINE_HEIGHT
            start, end = sorted((x(1), x(ratio)))
            bars += [text(LABEL_WIDTH - 8, y, name, "", "end"), text(end + 6, y, ratio_text(ratio), "faint"),
                     f'<rect x="{start:.1f}" y="{y - 10}" width="{max(end - start, 2):.1f}" height="11" class="{role}"/>']
        y += LINE_HEIGHT // 3
    caption = [part.strip() for part in machine.split(";")]  # lines that fit
    height = y + 24 + LINE_HEIGHT * len(caption)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" height="{height}" '
           'role="img" aria-label="Time of each operation as a ratio to the same work by hand">')
    yield f"<style>{STYLE}</style>"
    yield text(16, 28, "What an operation takes, as a ratio to the same work by hand", "title")
    yield text(16, 48, "Blue: ours. Grey: other ways to do it. Logarithmic; shorter is faster, left of the line is faster "
               "than by hand.", "faint")
    for decade in range(decades + 1):
        css = "grid" if decade else "floor"
        yield f'<line x1="{x(10 ** decade):.1f}" x2="{x(10 ** decade):.1f}" y1="{TOP - 8}" y2="{y}" class="{css}"/>'
        yield text(x(10 ** decade), TOP - 14, f"{10 ** decade:,}" if decade else "by hand = 1", "faint", "middle")
    yield from bars
    for index, part in enumerate(caption):
        yield text(16, y + 28 + LINE_HEIGHT * index, part, "faint")
    yield "</svg>"


def update(machine, rows, folder):
    document = folder / "performance.md"
    before, begin, rest = document.read_text(encoding="utf-8").partition("## One run\n")
    _, end, after = rest.partition("\n## ")
    if not end:
        sys.exit(f"{document} needs a section \"One run\" with another one after it")
    document.write_text(before + begin + "\n" + "\n".join(table(machine, rows)) + "\n" + end + after, encoding="utf-8")
    (folder / "performance.svg").write_text("\n".join(picture(machine, rows)) + "\n", encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("results")
    parser.add_argument("--update", action="store_true")
    arguments = parser.parse_args()
    machine, rows = load(arguments.results)
    if arguments.update:
        update(machine, rows, pathlib.Path(__file__).parent.parent / "docs")
    else:
        print("\n".join(table(machine, rows)))


if __name__ == "__main__":
    main()
