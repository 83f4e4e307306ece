"""Doxygen's input filter: takes the plain comments of a header for documentation.

What stands in front of a declaration is about it, and about those that follow without an empty
line; what stands behind one on its line is about that one; the first comment of a file is about the
file. Indented lines of a comment are shown as they are, unless they are a list. Nothing in a comment
is a command.

usage: doxygenFilter.py HEADER
"""

import pathlib
import re
import sys
import textwrap

COMMENT = re.compile(r"^\s*// ?(.*)$")
TRAILING = re.compile(r"^(?!\s*#)(.*[,;{}(]|\s*\w+ = [^/]*|\s*k\w+)\s+// (.*)$")
INSTANTIATION = re.compile(r"^(extern )?template (class|struct) ")
LIST = re.compile(r"^\s*(- |\d+\. )")
SPECIAL = re.compile(r"[\\@<>#%&*_\[\]|~$]")
ENTITIES = {"*": "&lowast;", "_": "_", "|": "|", "[": "[", "]": "]", "~": "~"}


def escaped(text):
    """The text without a meaning to Doxygen; what is between backticks is shown as it is."""
    parts = text.split("`")
    for index in range(0, len(parts), 2):
        part = SPECIAL.sub(lambda match: ENTITIES.get(match[0], f"\\{match[0]}"), parts[index])
        parts[index] = part.replace("--", "\\--")
    return "`".join(parts)


def is_shown_as_is(line):
    return line.startswith("  ")


def paragraphs(lines):
    """(whether it is shown as it is, lines) of each run."""
    runs = []
    within_list = False
    for line in lines:
        indented = is_shown_as_is(line)
        within_list = LIST.match(line) is not None or within_list and indented
        kind = indented and not within_list
        if line == "" and runs and runs[-1][0]:
            kind = True
        if not runs or runs[-1][0] != kind:
            runs.append((kind, []))
        runs[-1][1].append(line)
    return runs


def documentation(lines, indent, first=""):
    """A comment for Doxygen that says the same."""
    text = [first] if first else []
    for as_is, run in paragraphs(lines):
        if not as_is:
            text += [escaped(line) for line in run]
            continue
        while run and run[-1] == "":
            run.pop()
        shown = textwrap.dedent("\n".join(run)).replace("*/", "* /").split("\n")
        text += ["@verbatim", *shown, "@endverbatim", ""]
    return [f"{indent}/** {text[0]}", *text[1:], f"{indent}*/"]


def take_comment(lines, index):
    """The text of the comment at the index, and the index behind it."""
    text = []
    while index < len(lines) and (match := COMMENT.match(lines[index])):
        text.append(match[1].rstrip())
        index += 1
    return text, index


def with_trailing(line):
    match = TRAILING.match(line)
    return f"{match[1]}  /**< {escaped(match[2])} */" if match else line


def ends_function(line):
    return line.rstrip().endswith((";", "}"))


def depth_of(line):
    return line.count("{") + line.count("(") - line.count("}") - line.count(")")


def filtered(source):
    """The source with its comments for Doxygen."""
    lines = [line for line in source.splitlines() if not INSTANTIATION.match(line)]
    output, index, is_first = [], 0, True
    while index < len(lines):
        if not COMMENT.match(lines[index]):
            output.append(with_trailing(lines[index]))
            index += 1
            continue
        indent = re.match(r"\s*", lines[index])[0]
        text, index = take_comment(lines, index)
        following = lines[index] if index < len(lines) else ""
        if text == ["clang-format off"] or text == ["clang-format on"]:
            continue
        if is_first and following.strip() == "":
            output += documentation(text, indent, "@file")
        elif following.strip() and following.strip()[0] != "}":
            index = declarations(lines, index, documentation(text, indent), output)
        is_first = False
    return "\n".join(output) + "\n"


def declarations(lines, index, comment, output):
    """The declarations behind a comment: each function among them gets it. Returns the index."""
    depth, is_new = 0, True
    while index < len(lines) and lines[index].strip() != "" and not COMMENT.match(lines[index]):
        line = lines[index]
        if is_new and (comment is not None):
            output += comment
        output.append(with_trailing(line))
        index += 1
        depth += depth_of(line)
        is_new = depth == 0 and ends_function(line)
        if depth > 0 and not "(" in line or depth < 0 or "(" not in line and is_new:
            break  # a class, its end, or a plain variable
    return index


if __name__ == "__main__":
    sys.stdout.write(filtered(pathlib.Path(sys.argv[1]).read_text()))
