"""The public headers beside the driver kit's, and as the vendor's compiler takes them.

The kit's headers are those of mingw-w64, which a clang for the vendor's ABI takes as well when it
calls itself the gcc that they ask for. The two names keep wdm.h from defining intrinsics again that
they have defined before.

The vendor's compiler is not here. Its options and warnings are clang-cl's, and its own branch of
platform/compiler is compiled by a clang that does not say that it is one, with a few lines in place
of the library's headers that this branch includes.
"""

import functools
import pathlib
import re
import tempfile

import dialect
import documents
import publicHeaders
import samples
import workshop

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE / "kit"
DRIVER_KIT = pathlib.Path("/usr/share/mingw-w64/include")
KIT = ["-fgnuc-version=4.2.1", "-D__INTRINSIC_DEFINED_InterlockedBitTestAndSet",
       "-D__INTRINSIC_DEFINED_InterlockedBitTestAndReset",
       "-isystem", DRIVER_KIT, "-isystem", DRIVER_KIT / "ddk"]
KIT_HEADERS = ["ntddk.h", "wdm.h", "ntifs.h"]
MOST = "ntifs.h"  # includes the others

CLANG = ["clang++", "--target=x86_64-pc-windows-msvc", "-std=c++20", "-fms-extensions",
         "-ffreestanding", "-fno-exceptions", "-fno-rtti", "-fno-threadsafe-statics",
         "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-ferror-limit=0"]
CLANG_CL = ["clang++", "--driver-mode=cl", "/c", "/O2", "/std:c++20", "/permissive-", "/W4",
            "-Wgnu", "-Wpedantic", "-Werror", "/GR-", "/GS-", "/Zc:threadSafeInit-",
            "/clang:-ffreestanding", "/clang:-fasynchronous-unwind-tables"]

# A macro's name, and the rest of its definition; a word; what asks for a macro and does not use it.
DEFINITION = re.compile(r"^[ \t]*#[ \t]*define[ \t]+(\w+)((?:.*\\\n)*.*)", re.MULTILINE)
WORD = re.compile(r"\w+")
QUESTION = re.compile(r"^[ \t]*#[ \t]*(?:ifn?def|undef)\b.*", re.MULTILINE)

# The family's global names that the kit has too, besides its tags: none.
TAGS = {"_DEVICE_OBJECT", "_DRIVER_OBJECT", "_GUID", "_IRP", "_UNICODE_STRING"}


def folders():
    return [f"-I{folder}" for folder in [*publicHeaders.folders(), HERE]]


def lines(headers, quotes='""'):
    return "".join(f"#include {quotes[0]}{header}{quotes[1]}\n" for header in headers)


def ours():
    return lines(publicHeaders.names())


def kit_first(kit, text):
    return lines([kit], "<>") + text


def kit_last(kit, text):
    return text + lines([kit], "<>")


def compile_with(command, source):
    with tempfile.NamedTemporaryFile("w", suffix=".cpp") as file:
        file.write(source)
        file.flush()
        return workshop.run([*command, file.name])


def kit_compile(source):
    return compile_with([*CLANG, *KIT, *folders(), "-fsyntax-only"], source)


def together_check(kit, order):
    behind = lines(["kit/sameTypes.h", "kit/values.h", "kit/macros.h"])
    code, output = kit_compile(order(kit, ours()) + behind)
    return f"all headers, {order.__name__} ({kit})", code == 0, output


def library_check(order):
    """Beside the C++ library's own placement new, which a driver may include."""
    library = "#include <stddef.h>\nvoid* operator new(size_t, void* place) noexcept;\n" \
        "inline void* operator new(size_t, void* place) noexcept { return place; }\n" \
        "inline void operator delete(void*, void*) noexcept {}\n"
    code, output = kit_compile(library + ours() if order == "first" else ours() + library)
    return f"all headers, the library's placement new {order}", code == 0, output


def alone_check(precompiled, header):
    text = lines([header])
    code, output = compile_with(
        [*CLANG, *KIT, *folders(), "-include-pch", precompiled, "-fsyntax-only"], text)
    if code == 0:
        code, output = kit_compile(kit_last(MOST, text))
    return f"{header} before and after {MOST}", code == 0, output


def alone_checks():
    with tempfile.TemporaryDirectory() as folder:
        header, precompiled = pathlib.Path(folder) / "kit.h", pathlib.Path(folder) / "kit.pch"
        header.write_text(lines([MOST], "<>"))
        code, output = workshop.run([*CLANG, *KIT, "-x", "c++-header", "-o", precompiled, header])
        if code != 0:
            return [("the kit's headers, precompiled", False, output)]
        return workshop.in_parallel(functools.partial(alone_check, precompiled),
                                    publicHeaders.names())


def listed(source):
    """Names that a source declares, those of parameters and members without their scope too."""
    return set(compile_with([*CLANG, *KIT, *folders(), "-fsyntax-only", "-Xclang", "-ast-list"],
                            source)[1].split())


def is_global(name):
    probe = f"namespace nProbe {{ using ::{name}; }}\n"
    return kit_compile(ours() + probe)[0] == 0


def names_check():
    """What both declare, were it the same to the letter, the compiler would take."""
    own = listed(ours()) - listed("#include <stddef.h>\n#include <stdint.h>\n#include <stdarg.h>\n")
    common = {name for name in own & listed(lines([MOST], "<>")) if name.isidentifier()}
    both = {name for name in common if is_global(name)}
    held = both == TAGS
    return "no name but the tags is the kit's as well", held, f"both declare {sorted(both)}"


def macros_of(texts):
    """Name -> the words that its definitions, of which there may be several, consist of."""
    found = {}
    for text in texts:
        for name, body in DEFINITION.findall(text):
            found.setdefault(name, set()).update(WORD.findall(body))
    return found


def unused_macros():
    """Macros of the public headers that neither a header nor kit/macros.h uses, in a definition that
    is used or outside of any."""
    texts = [dialect.without_comments(path.read_text()) for path in publicHeaders.paths()]
    macros = macros_of(texts)
    texts.append((SOURCES / "macros.h").read_text())
    used, new = set(), {word for text in texts
                        for word in WORD.findall(QUESTION.sub("", DEFINITION.sub("", text)))}
    while new:
        used |= new
        new = {word for name in new & set(macros) for word in macros[name]} - used
    return sorted(set(macros) - used)


def macros_check():
    unused = unused_macros()
    return "every macro for clients is compiled", not unused, f"kit/macros.h does not use {unused}"


def vendor_check(name, more):
    source = ours() + lines(["kit/macros.h"])
    with tempfile.TemporaryDirectory() as folder:
        code, output = compile_with([*CLANG_CL, *folders(), f"/Fo{folder}/all.obj", *more], source)
    return f"all headers and macros, {name}", code == 0, output


def page_checks():
    """The samples that use the kit's headers, each a source of its own."""
    for page in documents.documents():
        for name in samples.named_samples(page):
            source = samples.sample_source(page, name)
            if not samples.uses_kit(source):
                continue
            code, output = compile_with(
                [*CLANG, *KIT, *folders(), f"-I{SOURCES}/framework", "-fsyntax-only"], source)
            yield f"sample {name or 'without a name'} of {page.name}", code == 0, output


def driver_check():
    """The driver that is tested on Linux is one for the kit, which knows nothing of the library."""
    folder = workshop.TOP / "examples/letterbox"
    code, output = compile_with([*CLANG, *KIT, f"-I{folder}", "-fsyntax-only"],
                                (folder / "driver.cpp").read_text())
    return "examples/letterbox with the kit", code == 0, output


def outcome_of(results):
    failed = [(name, output) for name, held, output in results if not held]
    text = "\n".join(f"{name}:\n{output}" for name, output in failed)
    return workshop.Outcome(len(results) - len(failed), [name for name, _ in failed], text)


def check():
    results = [together_check(kit, order) for kit in KIT_HEADERS for order in (kit_first, kit_last)]
    results += [library_check(order) for order in ("first", "last")]
    results += [names_check(), macros_check(), vendor_check("clang-cl", []),
                vendor_check("the vendor's branch", ["-U__clang__", f"-I{SOURCES}/msvc"])]
    results += page_checks()
    results.append(driver_check())
    return outcome_of(results)


def check_alone():
    """Each header by itself: the kit's are read again for each, which takes a minute."""
    return outcome_of(alone_checks())
