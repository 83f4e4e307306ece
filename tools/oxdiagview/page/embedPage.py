"""Writes a C++ source with the page of a trace, whole but for the trace.

usage: embedPage.py SOURCE.cpp

Style and scripts are put into page.html. The page's policy names their hashes, so that a browser runs
and applies nothing else, whatever stands in a trace, and loads nothing.
"""

import base64
import hashlib
import pathlib
import sys

FOLDER = pathlib.Path(__file__).resolve().parent
SCRIPTS = ["traceModel.js", "lineFilter.js", "lineList.js", "timeLine.js", "main.js"]
LONGEST_LITERAL = 16000  # characters; compilers promise 65,536 bytes
DELIMITER = "page"


def read(name):
    return (FOLDER / name).read_text(encoding="utf-8")


def source_of(text):
    """The hash of an inline script or style, as a policy names it."""
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"


def policy(style, script):
    return (f"default-src 'none'; script-src {source_of(script)}; style-src {source_of(style)}; "
            "base-uri 'none'; form-action 'none'")


def page_parts():
    """The page before the trace and behind it."""
    style = read("page.css")
    script = "".join(read(name) for name in SCRIPTS)
    page = read("page.html").replace("@POLICY@", policy(style, script))
    page = page.replace("@STYLE@", style).replace("@SCRIPT@", script)
    before, behind = page.split("@TRACE@")
    return before, behind


def literal(text):
    if f"){DELIMITER}\"" in text:
        sys.exit("embedPage.py: the page has the end of a literal in it")
    pieces = [text[at:at + LONGEST_LITERAL] for at in range(0, len(text), LONGEST_LITERAL)]
    return "\n".join(f'    R"{DELIMITER}({piece}){DELIMITER}",' for piece in pieces)


def main(output):
    before, behind = page_parts()
    pathlib.Path(output).write_text(
        "// Written by embedPage.py.\n\n"
        '#include "oxdiagview/page/pageParts.h"\n\n'
        "namespace oxdiagview {\n\n"
        "std::vector<std::string_view> const& getPageBeforeTrace() {\n"
        f"  static std::vector<std::string_view> const pieces = {{\n{literal(before)}}};\n"
        "  return pieces;\n}\n\n"
        "std::vector<std::string_view> const& getPageBehindTrace() {\n"
        f"  static std::vector<std::string_view> const pieces = {{\n{literal(behind)}}};\n"
        "  return pieces;\n}\n\n}  // namespace oxdiagview\n", encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1])
