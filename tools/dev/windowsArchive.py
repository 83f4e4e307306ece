"""oxdiagk-VERSION-windows-x64.zip: what somebody unpacks who works on Windows."""

import pathlib
import re
import shutil
import sys
import tempfile
import time
import zipfile

import control
import images
import moduleFiles
import release
import versions
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/compile"))

import driverPackages  # noqa: E402

TEMPLATES = workshop.TOP / "packaging/windows"
LIBRARIES = ["vexk.dll", "qelmk.dll", "oxdiagk.dll"]
# For who has no driver kit: the kernel's names, and what a driver has of a language runtime.
IMPORT_LIBRARIES = ["ntoskrnl.lib", "driverRuntime.lib"]
HEADER_FOLDERS = ["include", *(f"platform/{part}/{place}" for part in
                               ("compiler", "vexk", "qelmk", "stl")
                               for place in ("include", "windows/include"))]
# All pages but those of work on Linux and on the library itself.
NOTES = ["windows", "existing-driver", "bus-driver", "tracing", "options", "destinations", "viewing",
         "no-trace", "configuring", "status", "reportables", "status-codes", "crash-dump", "debugging",
         "irql", "limits", "reliability", "versions", "installing", "glossary"]
EXAMPLE = workshop.TOP / "examples/hello-driver"
VIEWS = workshop.TOP / "tools/debugger/oxdiagk.natvis"
FIRST_MOMENT = (1980, 1, 1, 0, 0, 0)  # the earliest time that an archive can tell

# What README.txt says of each file, or of all files of a folder; of the programs what they say of
# themselves.
PAGES = {
    "README.txt": "this page",
    "SHA256SUMS": "the sum of every other file",
}
CONTENTS = {
    "modules/vexk.dll": "platform layer",
    "modules/qelmk.dll": "object framework",
    "modules/oxdiagk.dll": "the library; a driver has all three modules beside itself",
    "drivers/oxdiagcontrol/": "control device, which oxdiagctl.exe needs, and its INF file",
    "drivers/slotbus/": "example of a bus driver, its INF file and all it needs",
    "symbols/": "a PDB for each module and driver",
    "include/": "headers of a client; begin with oxdiagk/oxdiagk.h",
    "lib/vexk.lib": "import library of the module",
    "lib/qelmk.lib": "import library of the module",
    "lib/oxdiagk.lib": "import library of the module",
    "lib/ntoskrnl.lib": "import library of a few kernel calls; a kit has all",
    "lib/driverRuntime.lib": "a driver's entry, its guards and operator new",
    "lib/compile.rsp": "options of clang for a driver",
    "lib/link.rsp": "options of clang to link a driver",
    "lib/mingw-kit.rsp": "options of clang for the headers of mingw-w64",
    "debugger/oxdiagk.natvis": "views of the library's objects for WinDbg and Visual Studio",
    "cmake/driver.cmake": "toolchain file for a driver",
    "cmake/oxdiagkConfig.cmake": "target oxdiagk::driver for find_package",
    "cmake/oxdiagkConfigVersion.cmake": "its version",
    "examples/hello-driver/hello.cpp": "driver that traces two lines",
    "examples/hello-driver/CMakeLists.txt": "its build",
    "notes/": "the manual, begin with windows.md; CHANGELOG.md",
}

VERSION_FILE = """set(PACKAGE_VERSION {version})
if(PACKAGE_FIND_VERSION_MAJOR STREQUAL "{major}" AND
   NOT PACKAGE_FIND_VERSION VERSION_GREATER "{version}")
  set(PACKAGE_VERSION_COMPATIBLE TRUE)
endif()
"""


def name():
    return f"oxdiagk-{release.version()}-windows-x64"


def build():
    """What the family has, and no driver of the tests."""
    workshop.build("windows", "driverRuntime",
                   *(f"{pathlib.Path(image).stem}.module" for image in images.FAMILY))
    workshop.build("windows-tools")


def inf_files(inf):
    """The files that an INF file installs, and itself."""
    text = (moduleFiles.MODULES / inf).read_text(encoding="ascii")
    return [inf, *driverPackages.Inf(text).keys("SourceDisksFiles")]


def put_drivers(top):
    for driver in (image for image in images.FAMILY if image.endswith(".sys")):
        stem = pathlib.Path(driver).stem
        folder = top / "drivers" / stem
        folder.mkdir(parents=True)
        for file in inf_files(f"{stem}.inf"):
            shutil.copyfile(moduleFiles.MODULES / file, folder / file)


def put_modules(top):
    for folder in ("modules", "lib", "symbols", "bin"):
        (top / folder).mkdir(parents=True)
    for library in LIBRARIES:
        shutil.copyfile(moduleFiles.MODULES / library, top / "modules" / library)
    for library in [*(pathlib.Path(name).with_suffix(".lib") for name in LIBRARIES),
                    *IMPORT_LIBRARIES]:
        shutil.copyfile(moduleFiles.MODULES / library, top / "lib" / library)
    for image in images.FAMILY:
        pdb = moduleFiles.pdb_of(image)
        shutil.copyfile(pdb, top / "symbols" / pdb.name)
    for program in control.every_program():
        shutil.copyfile(program, top / "bin" / program.name)


def put_headers(top):
    for folder in map(workshop.TOP.joinpath, HEADER_FOLDERS):
        for header in folder.rglob("*.h"):
            target = top / "include" / header.relative_to(folder)
            if target.exists():
                raise workshop.Failure(f"two headers are {header.relative_to(folder)}")
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(header, target)


def put_texts(top):
    (top / "cmake").mkdir()
    for text in TEMPLATES.glob("*.rsp"):
        shutil.copyfile(text, top / "lib" / text.name)
    for text in TEMPLATES.glob("*.cmake"):
        shutil.copyfile(text, top / "cmake" / text.name)
    number = re.match(r"[\d.]+", release.version()).group()
    (top / "cmake/oxdiagkConfigVersion.cmake").write_text(
        VERSION_FILE.format(version=number, major=number.split(".")[0]))
    (top / "examples/hello-driver").mkdir(parents=True)
    for file in ("hello.cpp", "CMakeLists.txt"):
        shutil.copyfile(EXAMPLE / file, top / "examples/hello-driver" / file)
    (top / "debugger").mkdir()
    shutil.copyfile(VIEWS, top / "debugger" / VIEWS.name)
    (top / "notes").mkdir()
    for note in NOTES:
        shutil.copyfile(workshop.TOP / f"docs/{note}.md", top / f"notes/{note}.md")
    shutil.copyfile(workshop.TOP / "CHANGELOG.md", top / "notes/CHANGELOG.md")


def files_of(top):
    return sorted(path for path in top.rglob("*") if path.is_file())


def contents():
    """Path or folder -> what README.txt says of it."""
    programs = {f"bin/{program.name}":
                versions.text_property(versions.resource(program), "FileDescription")
                for program in control.every_program()}
    return {**PAGES, **programs, **CONTENTS}


def table(rows):
    width = max(map(len, rows)) + 2
    return "\n".join(f"{path.ljust(width)}{text}" for path, text in rows.items())


def put_page_and_sums(top):
    page = release.filled(TEMPLATES / "README.txt.in", VERSION=release.version(),
                          CONTENTS=table(contents()))
    (top / "README.txt").write_bytes(page.replace("\n", "\r\n").encode("ascii"))
    sums = [f"{release.digest(path)}  {path.relative_to(top).as_posix()}\n"
            for path in files_of(top)]
    (top / "SHA256SUMS").write_text("".join(sums))


def unnamed(top):
    """Files that README.txt does not name, and what it names that is not there."""
    files = [path.relative_to(top).as_posix() for path in files_of(top)]
    held = {path: [file for file in files
                   if file == path or path.endswith("/") and file.startswith(path)]
            for path in contents()}
    named = {file for found in held.values() for file in found}
    return [f"README.txt does not name {file}" for file in files if file not in named] + \
        [f"README.txt names {path}, which is not there"
         for path, found in held.items() if not found]


def assemble(top):
    put_modules(top)
    put_drivers(top)
    put_headers(top)
    put_texts(top)
    put_page_and_sums(top)
    wrong = unnamed(top)
    if wrong:
        raise workshop.Failure("\n".join(wrong))


def pack(top, archive):
    """The same bytes whenever and wherever it is done."""
    moment = max(time.gmtime(release.source_time())[:6], FIRST_MOMENT)
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as file:
        for path in files_of(top):
            entry = zipfile.ZipInfo(f"{top.name}/{path.relative_to(top).as_posix()}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system, entry.external_attr = 3, 0o644 << 16  # of Unix, so with a mode
            file.writestr(entry, path.read_bytes())


def make(folder):
    """The archive, in a folder that there is."""
    build()
    archive = folder / f"{name()}.zip"
    with tempfile.TemporaryDirectory() as work:
        top = pathlib.Path(work) / name()
        assemble(top)
        pack(top, archive)
    return [archive]
