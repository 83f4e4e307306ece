"""Which page of the handbook tells the idea of a public header: tools/handbook/headers.json, where the
first pattern that fits a header counts, and an earlier page comes before a later one."""

import fnmatch
import functools
import json
import re

import workshop

TABLE = workshop.TOP / "tools/handbook/headers.json"
FOLDERS = ["include", "platform/compiler/include", "platform/vexk/include", "platform/qelmk/include",
           "platform/stl/include", "platform/ntos/include", "platform/vexk/host/include",
           "platform/vexk/windows/include", "platform/ntos/host/include"]
# What other headers include and a client does not.
OWN = re.compile(r"compiler/(clang|gcc|gnu|msvc)/")
ONE_TARGETS = re.compile(r"(vexkhost|vexkwindows|ntoshost)/")


@functools.cache
def headers():
    """Name, as a client includes it -> path, of every public header that a client reads."""
    found = {}
    for folder in FOLDERS:
        for path in sorted((workshop.TOP / folder).rglob("*.h")):
            name = path.relative_to(workshop.TOP / folder).as_posix()
            is_targets = "/host/" in folder or "/windows/" in folder
            if not OWN.match(name) and (not is_targets or ONE_TARGETS.match(name)):
                found[name] = path
    return found


def page_of(name, table):
    for page, patterns in table.items():
        if any(fnmatch.fnmatchcase(name, pattern) for pattern in patterns):
            return page
    return ""


def by_page():
    """Page -> its headers, in the order of the table's patterns."""
    table = json.loads(TABLE.read_text())
    pages = {page: [] for page in [*table, ""]}
    for name in headers():
        pages[page_of(name, table)].append(name)
    return pages


def complaints():
    pages = by_page()
    wrong = [f"{name} has no page in {TABLE.name}" for name in pages[""]]
    wrong += [f"{TABLE.name} names docs/{page}.md, which is not there" for page in pages
              if page and not (workshop.TOP / f"docs/{page}.md").exists()]
    return wrong
