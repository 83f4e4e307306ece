"""The headers that a client on Windows gets: of the library, and of the parts beneath it."""

import re

import workshop

PARTS = ["compiler", "vexk", "qelmk", "stl"]

# Of the compiler's part, what "compiler/compiler.h" alone includes.
COMPILER = re.compile(r"compiler/(clang|gcc|gnu|msvc)/")


def folders(top=workshop.TOP):
    found = [top / "include"]
    found += [top / "platform" / part / folder
              for part in PARTS for folder in ("include", "windows/include")]
    return [folder for folder in found if folder.is_dir()]


def paths(top=workshop.TOP):
    return [path for folder in folders(top) for path in sorted(folder.rglob("*.h"))]


def names(top=workshop.TOP):
    """As a client includes them, without those that are for one compiler."""
    found = {path.relative_to(folder).as_posix()
             for folder in folders(top) for path in folder.rglob("*.h")}
    return sorted(name for name in found if not COMPILER.match(name))
