"""What docs/windows.md says is so: the commands build the driver on that page, and the packages of the
drivers are complete."""

import os
import re
import tempfile

import driverPackages
import images
import samples
import workshop

PAGE = workshop.TOP / "docs/windows.md"
BUILD = re.compile(r"^```build\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MODULES = workshop.tree("windows") / "modules"


# The vendor's names for its clang and its linker, which Debian has under others.
STAND_INS = {"clang-cl": 'exec clang++ --driver-mode=cl "$@"', "link": 'exec lld-link "$@"'}


def scripts_of(page):
    """The ways to build, each with the commands that all of them share, which come first."""
    shared, *ways = BUILD.findall(page)
    return [f"set -e\n{shared}{way}" for way in ways]


def put_tools(folder):
    os.mkdir(folder)
    for name, line in STAND_INS.items():
        path = f"{folder}/{name}"
        with open(path, "w") as file:
            file.write(f"#!/bin/sh\n{line}\n")
        os.chmod(path, 0o755)


def image_complaints(path):
    missing = {"oxdiagk.dll"} - images.imports_of(path)
    headers = workshop.demand(["llvm-readobj", "--file-headers", path])
    claims = [(images.exception_table_size(headers) > 0, "has no unwind data"),
              ("IMAGE_DLL_CHARACTERISTICS_GUARD_CF" in headers, "has no control-flow guard")]
    return [f"hello.sys does not import from {name}" for name in sorted(missing)] + \
        [f"hello.sys {complaint}" for held, complaint in claims if not held]


def build_complaints(script, source):
    with tempfile.TemporaryDirectory() as folder:
        put_tools(f"{folder}/tools")
        with open(f"{folder}/hello.cpp", "w") as file:
            file.write(source)
        environment = dict(os.environ, OXDIAG=str(workshop.TOP), MODULES=str(MODULES),
                           PATH=f"{folder}/tools:{os.environ['PATH']}")
        code, output = workshop.run(["sh", "-c", script], cwd=folder, env=environment)
        # A compiler that ignores an option says so in a warning and goes on.
        if code != 0 or "warning" in output:
            return [output]
        return image_complaints(f"{folder}/hello.sys")


def build_results():
    source = samples.sample_source(PAGE)
    results = [(f"docs/windows.md builds a driver, way {number}", build_complaints(script, source))
               for number, script in enumerate(scripts_of(PAGE.read_text()), 1)]
    bus = (workshop.TOP / "tests/compile/kit/busDriver.cpp").read_text()
    results.append(("a bus driver links with the kit's names",
                    build_complaints(scripts_of(PAGE.read_text())[0], bus)))
    ways = ["there are not two ways to build"] if len(results) != 3 else []
    return [*results, ("docs/windows.md builds with two compilers", ways)]


def check():
    """The modules are built."""
    results = [*build_results(), *driverPackages.checks()]
    failed = [title for title, complaints in results if complaints]
    output = "\n".join(line for _, complaints in results for line in complaints)
    return workshop.Outcome(len(results) - len(failed), failed, output)
