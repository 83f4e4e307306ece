"""Writes docs/trace.svg, the picture of a trace in README.md: a run of the demo in its colors.

usage: python3 tools/dev/picture.py

A host test compares the picture with the demo; who changes a line that it shows runs this again.
"""

import html
import re
import sys

import workshop

ARGUMENTS = ["examples/slotbus/faulty.txt", "--filter", "verbosity>=60", "--trace",
             "--prefixwidth 34"]
PICTURE = workshop.TOP / "docs/trace.svg"

# Of the trace, the lines from one with the first text to one with the second; between them "...".
PARTS = [("start; {", "} tStatus2 code=0; readLine"),
         ("line 32: ", "Line Number = "),
         ("} tStatus2 code=-61007; readLine", "} tStatus2 code=-61007; readLine"),
         ("devices: ", "} read")]

COLUMNS = 104
MARGIN, ROW, LETTER = 12, 18, 7.8  # pixels
CLASSES = {"90": "faint", "31": "red", "33": "yellow", "36": "cyan", "1;31": "red"}
COLOR = re.compile(r"\x1b\[([0-9;]*)m")
STYLE = """
  text { font: 13px ui-monospace, "DejaVu Sans Mono", Consolas, monospace; fill: #1b2127; }
  .back { fill: #f3f5f7; } .faint { fill: #6a7580; } .red { fill: #b3261e; }
  .yellow { fill: #855200; } .cyan { fill: #00687a; }
  @media (prefers-color-scheme: dark) {
    text { fill: #e4e8eb; } .back { fill: #14181c; } .faint { fill: #8b97a2; }
    .red { fill: #ff8f86; } .yellow { fill: #ffc35a; } .cyan { fill: #6fd3e3; }
  }
"""


def plain(line):
    return COLOR.sub("", line)


def trace():
    program = workshop.tree("host-release") / "examples/slotbus/slotbus_demo"
    _, output = workshop.run([program, *ARGUMENTS, "--color", "always"], cwd=workshop.TOP)
    return output.splitlines()


def cut_out(lines, part):
    """The lines of the part, and those behind it."""
    begin = next(n for n, line in enumerate(lines) if part[0] in plain(line))
    end = next(n for n, line in enumerate(lines) if n >= begin and part[1] in plain(line))
    return lines[begin:end + 1], lines[end + 1:]


def chosen():
    rest, lines = trace(), []
    for part in PARTS:
        found, rest = cut_out(rest, part)
        lines += (["..."] if lines else []) + found
    return lines


def spans(line):
    """The line in pieces of one color: (class, text), cut at the picture's width."""
    kind, room, pieces = "", COLUMNS, []
    for index, part in enumerate(COLOR.split(line.replace("\t", "    "))):
        if index % 2 == 1:
            kind = CLASSES.get(part, "")
        elif part and room > 0:
            shown = part if len(part) <= room else part[:room - 1] + "…"
            pieces.append((kind, shown))
            room -= len(part)
    return pieces


def row(number, line):
    marked = "".join(f'<tspan class="{kind}">{html.escape(text, quote=False)}</tspan>' if kind
                     else html.escape(text, quote=False) for kind, text in spans(line))
    height = MARGIN + ROW * number + ROW - 5
    return f'  <text x="{MARGIN}" y="{height}" xml:space="preserve">{marked}</text>'


def picture(lines):
    width = round(2 * MARGIN + COLUMNS * LETTER)
    height = 2 * MARGIN + ROW * len(lines)
    command = html.escape(" ".join(f"'{word}'" if " " in word or ">" in word else word
                                   for word in ARGUMENTS), quote=False)
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
        f'height="{height}" role="img">',
        "  <title>A trace of the demo</title>", f"  <desc>./dev demo {command}</desc>",
        f"  <style>{STYLE}  </style>",
        '  <rect class="back" width="100%" height="100%" rx="6"/>',
        *(row(number, line) for number, line in enumerate(lines)), "</svg>", ""])


def main():
    workshop.build("host-release", "slotbus_demo")
    PICTURE.write_text(picture(chosen()), encoding="utf-8")


if __name__ == "__main__":
    sys.exit(main())
