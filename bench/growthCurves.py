#!/usr/bin/env python3
"""Draws how the time of a work grows with a number, from the JSON of a benchmark run, as SVG.

A panel for each name that was measured with several numbers. Both axes are logarithmic, a decade
being as long on either, so what grows as the number does climbs along the dashed line.

usage: growthCurves.py [FILE]     the file, or standard input; the picture on standard output
"""

import math
import sys
from xml.sax.saxutils import escape

import ratios
import results

COLUMNS = 3
PANEL = 300  # pixels, square, with its title
MARGIN = 34
PLOT = PANEL - 2 * MARGIN
LEAST_DECADES = 1


def spoken(time):
    """A time as people say it: three digits and a unit."""
    for unit, nanoseconds in (("ms", 1e6), ("µs", 1e3)):
        if time >= nanoseconds:
            return f"{time / nanoseconds:.3g} {unit}"
    return f"{time:.3g} ns"


class Panel:
    """The curve of one name, its fewest at the left and its shortest time at the bottom."""

    def __init__(self, name, points):
        self.name, self.points = name, points
        self.left = math.log10(points[0][0])
        self.bottom = math.log10(min(time for _, time in points))
        top = math.log10(max(time for _, time in points))
        right = math.log10(points[-1][0])
        self.decades = max(right - self.left, top - self.bottom, LEAST_DECADES)

    def place(self, number, time):
        across = (math.log10(number) - self.left) / self.decades
        up = (math.log10(time) - self.bottom) / self.decades
        return MARGIN + across * PLOT, PANEL - MARGIN - up * PLOT

    def label(self, number, time):
        across, down = self.place(number, time)
        side = "start" if across < PANEL / 2 else "end"
        return (f'<text x="{across:.1f}" y="{down - 8:.1f}" text-anchor="{side}">{spoken(time)}</text>'
                f'<text x="{across:.1f}" y="{PANEL - MARGIN + 16}" text-anchor="middle">{number}</text>')

    def linear(self):
        """The end of the dashed line through the first point."""
        first, time = self.points[0]
        rest = self.decades - (math.log10(time) - self.bottom)
        return self.place(first * 10 ** rest, time * 10 ** rest)

    def draw(self, power):
        places = [self.place(*point) for point in self.points]
        curve = " ".join(f"{across:.1f},{down:.1f}" for across, down in places)
        dots = "".join(f'<circle cx="{across:.1f}" cy="{down:.1f}" r="3"/>' for across, down in places)
        end = self.linear()
        return "\n".join([
            f'<rect x="{MARGIN}" y="{MARGIN}" width="{PLOT}" height="{PLOT}" class="frame"/>',
            f'<line x1="{places[0][0]:.1f}" y1="{places[0][1]:.1f}" x2="{end[0]:.1f}" '
            f'y2="{end[1]:.1f}" class="linear"/>',
            f'<polyline points="{curve}"/>{dots}',
            self.label(*self.points[0]) + self.label(*self.points[-1]),
            f'<text x="{MARGIN}" y="{MARGIN - 12}" class="title">{escape(self.name)}: '
            f'power {power:.2f}</text>'])


STYLE = """text { font: 12px sans-serif; fill: #222 } .title { font-weight: bold }
.frame { fill: none; stroke: #bbb } .linear { stroke: #999; stroke-dasharray: 5 4 }
polyline { fill: none; stroke: #1565c0; stroke-width: 2 } circle { fill: #1565c0 }"""


def draw(times):
    grown = results.growths(times)
    panels = []
    for index, (name, numbers) in enumerate(grown.items()):
        points = [(number, times[f"{name}/{number}"]) for number in numbers]
        across, down = index % COLUMNS * PANEL, index // COLUMNS * PANEL
        body = Panel(name, points).draw(ratios.power(times, name, numbers))
        panels.append(f'<g transform="translate({across} {down})">\n{body}\n</g>')
    width, height = COLUMNS * PANEL, -(-len(grown) // COLUMNS) * PANEL
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
        f'width="{width}" height="{height}">',
        f'<style>{STYLE}</style>', f'<rect width="{width}" height="{height}" fill="white"/>',
        *panels, "</svg>"]) + "\n"


if __name__ == "__main__":
    print(draw(results.load(sys.argv[1:], "growthCurves.py", __doc__)), end="")
