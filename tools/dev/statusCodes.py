"""docs/status-codes.md: every status code of the family, from the headers that define it. What to do
about one is told in tools/handbook/remedies.json, and a code without that is a finding."""

import functools
import json
import re

import doxygenFilter
import headerPages
import workshop

PAGE = workshop.TOP / "docs/status-codes.md"
REMEDIES = workshop.TOP / "tools/handbook/remedies.json"
CODE = re.compile(r"^\s*(?:static )?constexpr i32 (kStatus\w+) = (-?\d+);")
FOLDERS = ["include", "platform", "source"]

HEAD = """# Status codes

Every code that the library and the layers beneath it give, by number. A code is 32-bit signed: negative
is an error, positive a warning, 0 success. The numbers from 50,000 to 59,999 and from 88,000 to 89,999,
with either sign, are kept for these modules; all others but 0 are free for clients. A component takes a
range of its own, documents it, and keeps the meaning of a number for ever, since statuses are saved. Who
set a code is said by the component name in the status: one number may mean two things in two components.

The codes of the example are in `examples/slotbus/component/statusCodes.h`. What a dispatch routine or
the start of a module returns is an NTSTATUS of the kernel, not one of these codes.

| code | name | cause | what to do | stated in |
|---|---|---|---|---|
"""


def sources():
    return [path for folder in FOLDERS for path in sorted((workshop.TOP / folder).rglob("*.h"))]


def cause_of(lines, index):
    """The comment in front of a line."""
    start = index
    while start > 0 and doxygenFilter.COMMENT.match(lines[start - 1]):
        start -= 1
    return " ".join(doxygenFilter.take_comment(lines, start)[0]) if start < index else ""


@functools.cache
def codes():
    """(number, name, cause), by number."""
    found = []
    for path in sources():
        lines = path.read_text().splitlines()
        for index, line in enumerate(lines):
            if match := CODE.match(line):
                found.append((int(match[2]), match[1], cause_of(lines, index)))
    return sorted(found, key=lambda each: (abs(each[0]), each[1]))


@functools.cache
def header_texts():
    return {header: path.read_text() for header, path in headerPages.headers().items()}


def headers_that_tell(name, number):
    """Public headers that state it as a result of an operation."""
    word = re.compile(rf"\b{name}\b|(?<!\d){number}\b")
    return [header for header, text in header_texts().items()
            if not header.endswith("statusCodes.h") and header != "stl/memory.h"
            and (name in text or str(number) in text) and word.search(text)]


def places(name, number):
    headers = headers_that_tell(name, number)
    if not headers:
        return "the library alone"
    shown = ", ".join(f"`{header}`" for header in headers[:2])
    return f"{shown} and {len(headers) - 2} more" if len(headers) > 2 else shown


def table():
    remedies = json.loads(REMEDIES.read_text())
    return "".join(f"| {number} | `{name}` | {cause} | {remedies.get(name, '')} | {places(name, number)} |\n"
                   for number, name, cause in codes())


def complaints():
    remedies = json.loads(REMEDIES.read_text())
    known = {name for _, name, _ in codes()}
    wrong = [f"{name} has no remedy in {REMEDIES.name}" for name in sorted(known - set(remedies))]
    wrong += [f"{REMEDIES.name} tells of {name}, which is no code" for name in sorted(set(remedies) - known)]
    wrong += [f"{name} has no comment that says its cause" for _, name, cause in codes() if not cause]
    if not PAGE.exists() or PAGE.read_text() != HEAD + table():
        wrong.append("docs/status-codes.md is not what ./dev docs --write makes of the headers")
    return wrong


def write():
    PAGE.write_text(HEAD + table())
