#!/usr/bin/env python3
"""Draws the results of scripts/bench.sh as a picture, on standard output.

Usage: scripts/bench-picture.py RESULTS.json > docs/performance.svg

A logarithmic axis of ratios to the floor; a bar for each measurement, ours marked. Only the results
file is read, and the picture follows a browser's light or dark scheme.
"""
import math
import sys
from xml.sax.saxutils import escape

import bench_results

WIDTH = 980
LABEL_WIDTH = 400
RIGHT_MARGIN = 70
LINE_HEIGHT = 18
TOP = 84

STYLE = """
 svg { background: #ffffff; font: 12px sans-serif; }
 text { fill: #1f2328; } .faint { fill: #656d76; } .title { font-size: 18px; font-weight: bold; }
 .row { font-weight: bold; } .product { fill: #0969da; } .peer { fill: #b5bac0; }
 .grid { stroke: #d8dee4; } .floor { stroke: #1a7f37; stroke-width: 1.5; } text.ours { fill: #0969da; font-weight: bold; }
 @media (prefers-color-scheme: dark) {
  svg { background: #0d1117; } text { fill: #e6edf3; } .faint { fill: #8d96a0; } .product { fill: #4493f8; }
  .peer { fill: #57606a; } .grid { stroke: #30363d; } .floor { stroke: #3fb950; } text.ours { fill: #4493f8; }
 }
"""


def text(x, y, content, css="", anchor="start"):
    return f'<text x="{x:.1f}" y="{y:.1f}" class="{css}" text-anchor="{anchor}">{escape(content)}</text>'


def ratio_text(ratio):
    return f"{ratio:.2f}" if ratio < 10 else f"{ratio:,.0f}"


def duration(nanoseconds):
    return f"{nanoseconds:.0f} ns" if nanoseconds < 10_000 else f"{nanoseconds / 1000:.0f} us"


class Axis:
    """From half of the floor, or less, to the power of ten above the highest ratio."""

    def __init__(self, ratios):
        self.decades = max(1, math.ceil(math.log10(max(ratios))))
        self.left = math.log10(min(0.5, 0.9 * min(ratios)))
        self.scale = (WIDTH - LABEL_WIDTH - RIGHT_MARGIN) / (self.decades - self.left)

    def x(self, ratio):
        return LABEL_WIDTH + self.scale * (math.log10(ratio) - self.left)

    def grid(self, bottom):
        for decade in range(self.decades + 1):
            x = self.x(10 ** decade)
            css = "floor" if decade == 0 else "grid"
            yield f'<line x1="{x:.1f}" x2="{x:.1f}" y1="{TOP - 8}" y2="{bottom}" class="{css}"/>'
            yield text(x, TOP - 14, "floor = 1" if decade == 0 else f"{10 ** decade:,}", "faint", "middle")


def bars(results, axis):
    """The rows' elements and the y below them."""
    elements, y = [], TOP
    for row in results["rows"]:
        y += LINE_HEIGHT
        floor = row["measurements"][0]
        elements.append(text(16, y, row["row"], "row"))
        elements.append(text(LABEL_WIDTH - 8, y, f"floor: {duration(floor['nanoseconds'])}", "faint", "end"))
        for measurement, ratio in bench_results.with_ratios(row)[1:]:
            y += LINE_HEIGHT
            is_ours = measurement["role"] == "product"
            left, right = sorted((axis.x(1), axis.x(ratio)))
            elements.append(text(LABEL_WIDTH - 8, y, measurement["what"], "ours" if is_ours else "", "end"))
            elements.append(f'<rect x="{left:.1f}" y="{y - 10}" width="{max(right - left, 2):.1f}" height="11" '
                            f'class="{measurement["role"]}"/>')
            elements.append(text(right + 6, y, ratio_text(ratio), "ours" if is_ours else "faint"))
        y += LINE_HEIGHT // 3
    return elements, y


def picture(results):
    axis = Axis([ratio for row in results["rows"] for _, ratio in bench_results.with_ratios(row)])
    elements, bottom = bars(results, axis)
    sentences = bench_results.machine_sentence(results["machine"])
    caption = [part.strip() for sentence in sentences for part in sentence.split(";")]  # lines that fit
    height = bottom + 24 + LINE_HEIGHT * len(caption)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" height="{height}" '
           'role="img" aria-label="Time of each operation as a ratio to the same work by hand">')
    yield f"<style>{STYLE}</style>"
    yield text(16, 28, "What an operation takes, as a ratio to the same work by hand", "title")
    yield text(16, 48, "Blue: ours. Grey: other ways to do it. Logarithmic; shorter is faster, left of the line is faster "
               "than the floor.", "faint")
    yield from axis.grid(bottom)
    yield from elements
    for index, part in enumerate(caption):
        yield text(16, bottom + 28 + LINE_HEIGHT * index, part, "faint")
    yield "</svg>"


def main():
    if len(sys.argv) != 2 or sys.argv[1] in ("-h", "--help"):
        sys.exit(__doc__ if len(sys.argv) != 2 else print(__doc__))
    print("\n".join(picture(bench_results.load(sys.argv[1]))))


main()
