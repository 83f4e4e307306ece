"""That Microsoft's tools, and those in their manner, are called by cmake/callTool.cmake.

They take what begins with a slash for an option if they can: llvm-rc reads /c in /clients/a.rc. So
a call that is good in one folder fails in another; that is seen here in any folder."""

import pathlib
import re
import shlex

import workshop

TOOLS = {"lld-link", "llvm-rc", "llvm-lib", "llvm-dlltool", "llvm-mt", "clang-cl"}
COMMAND = re.compile(r"^  (?:COMMAND|command) = (.*)$", re.MULTILINE)
CALLER = str(workshop.TOP / "cmake/callTool.cmake")


def calls(preset):
    """The calls that the build makes in which such a tool is named, each as a list of words."""
    folder = workshop.tree(preset)
    for path in (folder / "build.ninja", folder / "CMakeFiles/rules.ninja"):
        for command in COMMAND.findall(path.read_text()):
            for call in map(shlex.split, command.split(" && ")):
                if TOOLS & {pathlib.Path(word).name for word in call}:
                    yield call


def complaints(preset):
    found = list(calls(preset))
    wrong = [" ".join(call[:3]) + " ... is not called by cmake/callTool.cmake"
             for call in found if call[1:3] != ["-P", CALLER]]
    return wrong if found else ["the build calls none of them"]
