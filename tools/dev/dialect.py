"""That the public headers are what every compiler and the driver kit's headers can stand beside.

No header uses what one compiler has for itself, or asks which compiler it is: what differs between
compilers is in platform/compiler, and is chosen in one header there. No header includes the
kernel's own declarations, which are the kit's where there is one, or a library. Macros have the
family's prefixes.
"""

import re
import sys

import publicHeaders
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/dev"))

import dialectTest  # noqa: E402

CHOICE = "platform/compiler/include/compiler/compiler.h"
DIFFERENCES = "platform/compiler/include/compiler/"
MSVC = DIFFERENCES + "msvc/"

PREFIXES = ("OXDIAG_", "QELM_", "VEX_", "STL_", "COMPILER_")
LIBRARY = {"stdarg.h", "stddef.h", "stdint.h"}
MSVC_LIBRARY = LIBRARY | {"intrin.h", "source_location", "string.h"}

COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/|("(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\')', re.DOTALL)
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
DEFINE = re.compile(r"^\s*#\s*define\s+(\w+)")
KERNEL = re.compile(r"(ntos|ntoshost|vexkntos|vexkhost)/")

OWN_WORDS = re.compile(
    r"\b(__builtin_\w+|__atomic_\w+|__sync_\w+|__asm__|__asm|asm|__attribute__|__extension__|"
    r"__typeof\w*|typeof|__int128\w*|__u?int128_t|__restrict\w*|__PRETTY_FUNCTION__|__inline\w*|"
    r"__is_\w+|__has_\w+|__underlying_type|__int\d+|_Pragma|_?_?Interlocked\w+)\b|"
    r"(\[\[\s*(?:gnu|clang|msvc)\s*::|#\s*pragma\s+(?!once\b)\w+|#\s*include_next)")
COMPILERS = re.compile(r"\b(__clang\w*__|__GNUC\w*__|__GNUG__|_MSC_\w+|__MINGW\w+__)\b")


def without_comments(text):
    """Comments are blank, literals stay, lines keep their numbers."""
    def kept(match):
        return match.group(1) or "\n" * match.group(0).count("\n")
    return COMMENT.sub(kept, text)


def include_fault(name, bracket, included):
    if bracket == '"':
        return "is the kernel's own" if KERNEL.match(included) else ""
    may = MSVC_LIBRARY if name.startswith(MSVC) else LIBRARY
    return "" if included in may else "is a library's header"


def line_faults(name, line):
    include = INCLUDE.match(line)
    if include:
        fault = include_fault(name, *include.groups())
        return [f"{include.group(2)} {fault}"] if fault else []
    found = []
    define = DEFINE.match(line)
    if define and not define.group(1).startswith(PREFIXES):
        found.append(f"the macro {define.group(1)} has no prefix of the family")
    if not name.startswith(DIFFERENCES):
        found += [f"{match.group(0)} is one compiler's own" for match in OWN_WORDS.finditer(line)]
    if name != CHOICE:
        found += [f"{match.group(0)} asks for the compiler" for match in COMPILERS.finditer(line)]
    return found


def findings(top):
    found = []
    for path in publicHeaders.paths(top):
        name = path.relative_to(top).as_posix()
        for number, line in enumerate(without_comments(path.read_text()).splitlines(), 1):
            found += [f"{name}:{number}: {fault}" for fault in line_faults(name, line)]
    return found


def check():
    """The public headers, and that the check finds what it is for."""
    results = [("public headers are for every compiler", "\n".join(findings(workshop.TOP)))]
    if not publicHeaders.paths():
        results.append(("public headers", "there is none"))
    results += dialectTest.results(findings)
    failed = [(name, text) for name, text in results if text]
    return workshop.Outcome(len(results) - len(failed), [name for name, _ in failed],
                            "\n".join(f"{name}:\n{text}" for name, text in failed))
