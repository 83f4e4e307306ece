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


def build_complaints():
    with tempfile.TemporaryDirectory() as folder:
        with open(f"{folder}/hello.cpp", "w") as file:
            file.write(samples.sample_source(PAGE))
        script = "set -e\n" + BUILD.search(PAGE.read_text()).group(1)
        environment = dict(os.environ, OXDIAG=str(workshop.TOP), MODULES=str(MODULES))
        code, output = workshop.run(["sh", "-c", script], cwd=folder, env=environment)
        if code != 0:
            return [output]
        imported = images.imports_of(f"{folder}/hello.sys")
        headers = workshop.demand(["llvm-readobj", "--file-headers", f"{folder}/hello.sys"])
    missing = {"oxdiagk.dll", "vexk.dll"} - imported
    unguarded = "IMAGE_DLL_CHARACTERISTICS_GUARD_CF" not in headers
    return [f"hello.sys does not import from {name}" for name in sorted(missing)] + \
        (["hello.sys has no control-flow guard"] if unguarded else [])


def check():
    """The modules are built."""
    results = [("docs/windows.md builds a driver", build_complaints()), *driverPackages.checks()]
    failed = [title for title, complaints in results if complaints]
    output = "\n".join(line for _, complaints in results for line in complaints)
    return workshop.Outcome(len(results) - len(failed), failed, output)
