"""docs/limits.md: each number is that of the constant which is named beside it."""

import functools
import re

import workshop

PAGE = workshop.TOP / "docs/limits.md"
ROW = re.compile(r"^\| [^|]+ \| (\d+) \| [^|]+ \| `(?:(\w+)::)?(\w+)`( - 1)? \|$", re.MULTILINE)
ROWS = re.compile(r"^\| (?!what)[^-|]", re.MULTILINE)
FOLDERS = ["include", "platform", "source"]
NUMBER = re.compile(r"^[\d'xXa-fA-F]+$")


def value_in(text, name):
    """What a constant of a header is; None where it is none, or is not written as a number."""
    match = re.search(rf"\bconstexpr \w+ {name} = ([^;]+);", text)
    if not match:
        return None
    values = []
    for part in match[1].split(" - "):
        number = int(part.replace("'", ""), 0) if NUMBER.match(part) else value_in(text, part)
        if number is None:
            return None
        values.append(number)
    return values[0] - sum(values[1:])


@functools.cache
def texts():
    return [path.read_text() for folder in FOLDERS for path in (workshop.TOP / folder).rglob("*.h")]


def values_of(scope, name):
    """Of the header of its class, or of any."""
    with_name = [text for text in texts() if f"{name} =" in text]
    own = re.compile(rf"^(?:class|struct) (?:\w+ )*{scope or ''}\b[^;\n]*$", re.MULTILINE)
    return {value_in(text, name) for text in with_name if not scope or own.search(text)} - {None}


def complaints():
    text = PAGE.read_text()
    rows = ROW.findall(text)
    wrong = [f"docs/limits.md: {name} is {sorted(values)}, not {number}"
             for number, scope, name, less in rows
             for values in [values_of(scope, name)]
             if values != {int(number) + (1 if less else 0)}]
    if len(rows) != len(ROWS.findall(text)) or not rows:
        wrong.append("docs/limits.md has a row without a number and a constant")
    return wrong
