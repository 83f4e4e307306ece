"""What the check of the layers must find, each in a made-up tree of a few headers."""

import pathlib
import tempfile

# Headers for the made-up file to include, none of which is at fault itself.
HEADERS = [
    "include/oxdiagk/api.h",
    "include/oxdiagk/tConfigurable.h",
    "include/oxdiagk/tStatus2.h",
    "include/oxdiagk/tTrace.h",
    "platform/compiler/include/compiler/types.h",
    "platform/ntos/host/include/ntoshost/executive.h",
    "platform/ntos/include/ntos/types.h",
    "platform/qelmk/include/qelmk/tObject.h",
    "platform/stl/include/stl/string.h",
    "platform/vexk/host/include/vexk/linkage.h",
    "platform/vexk/include/vexk/sync.h",
    "platform/vexk/windows/include/vexk/linkage.h",
    "source/config/tUserText.h",
    "source/package/windows/globalObjects.h",
]

# The made-up file, its line, and what must be said of it; nothing where it keeps to the layers.
CASES = [
    ("source/config/made.cpp", '#include "oxdiagk/tTrace.h"', "goes up from config to trace"),
    ("source/config/made.cpp", '#  include "oxdiagk/tTrace.h"', "goes up from config to trace"),
    ("source/status/made.h", '#include "config/tUserText.h"', "goes up from status to config"),
    ("source/trace/made.cpp", '#include "package/windows/globalObjects.h"',
     "goes up from trace to package"),
    ("source/config/made.cpp", '#include "../package/windows/globalObjects.h"',
     "goes up from config to package"),
    ("include/oxdiagk/tStatus2Made.h", '#include "oxdiagk/tTrace.h"',
     "goes up from status to trace"),
    ("include/oxdiagk/made.h", '#include "oxdiagk/api.h"', "made.h belongs to no layer"),
    ("include/oxdiagk/tTraceReportable.h", "", "belongs to trace and status"),
    ("platform/vexk/common/made.cpp", '#include "qelmk/tObject.h"', "goes up from vexk to qelmk"),
    ("platform/stl/include/stl/made.h", '#include "vexk/linkage.h"', "goes up from stl to vexk"),
    ("platform/ntos/host/made.cpp", '#include "stl/string.h"', "goes up from ntos to stl"),
    ("platform/qelmk/common/made.cpp", '#include "oxdiagk/tStatus2.h"',
     "goes up from qelmk to status"),
    ("source/trace/made.cpp", '#include "ntoshost/executive.h"', "is for platform/*/host/* alone"),
    ("platform/vexk/common/made.cpp", '#include "ntoshost/executive.h"',
     "is for platform/*/host/* alone"),
    ("source/trace/made.cpp", "#include <vector>", "is a system's header"),
    ("source/trace/made.cpp", '#include "trace/nowhere.h"', "is a header that no layer has"),
    ("source/trace/made.cpp", "#include <stddef.h>", ""),
    ("source/trace/made.cpp", '#include "vexk/linkage.h"', ""),
    ("source/trace/made.cpp", '// as #include "package/windows/globalObjects.h"', ""),
    ("source/package/windows/made.cpp", '#include "build/version.h"', ""),
    ("source/trace/made.cpp", '#include "build/version.h"', "goes up from trace to package"),
    ("source/assert/made.cpp", '#include "oxdiagk/tTrace.h"', ""),
    ("platform/qelmk/common/made.cpp", '#include "vexk/sync.h"', ""),
    ("platform/vexk/host/made.cpp", "#include <vector>", ""),
    ("platform/compiler/include/compiler/msvc/made.h", "#include <intrin.h>", ""),
    ("platform/compiler/include/compiler/gnu/made.h", "#include <intrin.h>",
     "is a system's header"),
    ("platform/compiler/include/compiler/made.h", '#include "ntos/types.h"',
     "goes up from compiler to ntos"),
    ("platform/ntos/include/ntos/made.h", '#include "compiler/types.h"', ""),
    ("platform/vexk/host/made.cpp", '#include "ntoshost/executive.h"', ""),
]


def findings(tree, file, line):
    """What the check says of the made-up tree with this file in it."""
    with tempfile.TemporaryDirectory() as folder:
        top = pathlib.Path(folder).resolve()
        for name in [*HEADERS, file]:
            (top / name).parent.mkdir(parents=True, exist_ok=True)
            (top / name).write_text("#pragma once\n")
        (top / file).write_text(f"#pragma once\n{line}\n")
        return tree(top).findings()


def fault(found, wanted):
    """Exactly what is wanted was found, else what was."""
    held = len(found) == 1 and wanted in found[0] if wanted else not found
    return "" if held else "\n".join(found) or f"did not find: {wanted}"


def results(tree):
    """(check, what was wrong with it, if anything) for every case."""
    return [(f"{line or 'a name'} in {file}", fault(findings(tree, file, line), wanted))
            for file, line, wanted in CASES]
