"""What the check of the public headers must find, each in a made-up header."""

import pathlib
import tempfile

HEADER = "include/oxdiagk/made.h"
LINKAGE = "platform/vexk/windows/include/vexk/made.h"
MSVC = "platform/compiler/include/compiler/msvc/made.h"
GNU = "platform/compiler/include/compiler/gnu/made.h"
CHOICE = "platform/compiler/include/compiler/compiler.h"

# The made-up header, its line, and what must be said of it; nothing where it may stand there.
CASES = [
    (HEADER, "inline u64 now() { return __builtin_ia32_rdtsc(); }", "__builtin_ia32_rdtsc"),
    (HEADER, "inline u32 get(u32& a) { return __atomic_load_n(&a, 0); }", "__atomic_load_n"),
    (HEADER, 'inline void stop() { __asm__ volatile(""); }', "__asm__"),
    (HEADER, 'inline void stop() { asm(""); }', "asm is one compiler's own"),
    (HEADER, "void put() __attribute__((cold));", "__attribute__"),
    (HEADER, "[[gnu::cold]] void put();", "[[gnu::"),
    (HEADER, "[[ clang::noinline ]] void put();", "[[ clang::"),
    (HEADER, "#pragma GCC poison none", "#pragma GCC"),
    (HEADER, "#  pragma clang diagnostic push", "#  pragma clang"),
    (HEADER, '_Pragma("clang diagnostic push")', "_Pragma"),
    (HEADER, "#include_next <stddef.h>", "#include_next"),
    (HEADER, "template <class T> constexpr bool kIs = __is_trivial(T);", "__is_trivial"),
    (HEADER, "using tWide = __int128;", "__int128"),
    (HEADER, "using tWide = __int64;", "__int64"),
    (HEADER, "#ifdef __clang__\n#endif", "__clang__ asks for the compiler"),
    (HEADER, "#if defined(_MSC_VER)\n#endif", "_MSC_VER asks for the compiler"),
    (LINKAGE, "#ifdef __GNUC__\n#endif", "__GNUC__ asks for the compiler"),
    (GNU, "#ifdef __clang__\n#endif", "__clang__ asks for the compiler"),
    (HEADER, '#include "ntos/types.h"', "ntos/types.h is the kernel's own"),
    (LINKAGE, '#include "vexkntos/handlerOf.h"', "vexkntos/handlerOf.h is the kernel's own"),
    (GNU, '#include "ntos/types.h"', "ntos/types.h is the kernel's own"),
    (HEADER, "#include <intrin.h>", "intrin.h is a library's header"),
    (HEADER, "#include <string.h>", "string.h is a library's header"),
    (GNU, "#include <string.h>", "string.h is a library's header"),
    (HEADER, "#define min(a, b) a", "the macro min has no prefix"),
    (HEADER, "#define PASSIVE_LEVEL 0", "the macro PASSIVE_LEVEL has no prefix"),
    (MSVC, "#include <intrin.h>", ""),
    (GNU, "inline void stop() { __builtin_trap(); }", ""),
    (CHOICE, "#if defined(__clang__)\n#endif", ""),
    (HEADER, "// as __builtin_trap() of #pragma GCC", ""),
    (HEADER, "/* __atomic_load_n\n   __asm__ */", ""),
    (HEADER, 'constexpr char kText[] = "// no comment"; using T = __int128;', "__int128"),
    (HEADER, "#include <stddef.h>", ""),
    (HEADER, '#include "compiler/compiler.h"', ""),
    (HEADER, "#define OXDIAG_MADE 1", ""),
    (HEADER, "struct _DEVICE_OBJECT;", ""),
    (LINKAGE, "#define VEX_EXPORT __declspec(dllexport)", ""),
    ("platform/ntos/include/ntos/made.h", "#define PASSIVE_LEVEL __builtin_none", ""),
    ("platform/vexk/host/include/vexk/made.h", "void put() __attribute__((cold));", ""),
]


def found_in(findings, file, line):
    with tempfile.TemporaryDirectory() as folder:
        top = pathlib.Path(folder).resolve()
        (top / file).parent.mkdir(parents=True)
        (top / file).write_text(f"#pragma once\n{line}\n")
        return findings(top)


def fault(found, wanted):
    """Exactly what is wanted was found, else what was."""
    held = len(found) == 1 and wanted in found[0] if wanted else not found
    return "" if held else "\n".join(found) or f"did not find: {wanted}"


def results(findings):
    """(check, what was wrong with it, if anything) for every case."""
    return [(f"{line} in {file}", fault(found_in(findings, file, line), wanted))
            for file, line, wanted in CASES]
