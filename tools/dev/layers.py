"""That every #include of the library and its platform goes down the layers of layers.json.

  layers     from the top down; a file belongs to the one that has a pattern for it
  searched   where the compiler looks for a quoted name, beside every folder include and the folder
             of the file itself
  generated  headers that the build writes, and the layer that they belong to
  compiler   the headers without a library behind them, which any file may include
  targets    folders of headers that only one target has, and which files may include them
  hosted     the files that may include a system's headers
"""

import collections
import fnmatch
import json
import pathlib
import re
import sys

import workshop

sys.path.insert(0, str(workshop.TOP / "tests/dev"))

import layersTest  # noqa: E402

FOLDERS = ["include/oxdiagk", "source", "platform"]
TABLE = pathlib.Path(__file__).resolve().parent / "layers.json"
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')

Include = collections.namedtuple("Include", "file line bracket name")


class Tree:
    """The sources below a folder, judged by the table."""

    def __init__(self, top):
        self.top = top
        self.table = json.loads(TABLE.read_text())
        self.order = [name for name, _ in self.table["layers"]]
        self.files = sorted(path for folder in FOLDERS for path in (top / folder).rglob("*")
                            if path.suffix in (".h", ".cpp"))
        self.searched = [top / folder for folder in self.table["searched"]]
        self.searched += [path for path in [top / "include", *(top / "platform").rglob("include")]
                          if path.is_dir()]

    def name(self, path):
        return path.relative_to(self.top).as_posix()

    def layers_of(self, name):
        return [layer for layer, patterns in self.table["layers"]
                if any(fnmatch.fnmatch(name, pattern) for pattern in patterns)]

    def includes(self):
        for path in self.files:
            for line, text in enumerate(path.read_text().splitlines(), 1):
                match = INCLUDE.match(text)
                if match:
                    yield Include(path, line, *match.groups())

    def places_of(self, include):
        """The files that a quoted name may mean: each target has its own of some."""
        own = include.file.parent / include.name
        found = [own] if own.is_file() else [folder / include.name for folder in self.searched]
        return [path.resolve() for path in found if path.is_file()]

    def layers_reached(self, include):
        if include.name in self.table["generated"]:
            return [self.table["generated"][include.name]]
        return [layer for path in self.places_of(include)
                for layer in self.layers_of(self.name(path))]

    def fault_of(self, include):
        """Why the file may not include this, empty if it may."""
        file = self.name(include.file)
        if include.bracket == "<":
            may = include.name in self.table["compiler"] or any(
                fnmatch.fnmatch(file, pattern) for pattern in self.table["hosted"])
            return "" if may else "is a system's header"
        for prefix, users in self.table["targets"].items():
            if include.name.startswith(prefix) and not fnmatch.fnmatch(file, users):
                return f"is for {users} alone"
        reached = self.layers_reached(include)
        if not reached:
            return "is a header that no layer has"
        return self.fault_of_step(self.layers_of(file), reached)

    def fault_of_step(self, own, reached):
        depth = self.order.index
        upward = [layer for layer in reached if own and depth(layer) < depth(own[0])]
        return f"goes up from {own[0]} to {upward[0]}" if upward else ""

    def findings(self):
        found = []
        for path in self.files:
            layers = self.layers_of(self.name(path))
            if len(layers) != 1:
                which = "no layer" if not layers else " and ".join(layers)
                found.append(f"{self.name(path)} belongs to {which}")
        for include in self.includes():
            fault = self.fault_of(include)
            if fault:
                found.append(f"{self.name(include.file)}:{include.line}: {include.name} {fault}")
        return found


def check():
    """The tree, and that the check finds what it is for."""
    tree = Tree(workshop.TOP)
    results = [("includes along the layers", "\n".join(tree.findings()))]
    if not tree.files:
        results.append(("files with layers", "there is none"))
    results += layersTest.results(Tree)
    failed = [(name, text) for name, text in results if text]
    return workshop.Outcome(len(results) - len(failed), [name for name, _ in failed],
                            "\n".join(f"{name}:\n{text}" for name, text in failed))
