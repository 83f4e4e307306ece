"""The step `cppcheck`: what cppcheck says of the product, but for what cppcheck.txt gives a reason for."""

import pathlib

import workshop

SUPPRESSIONS = pathlib.Path(__file__).with_suffix(".txt")
CHECKED = ["source", "platform/vexk/common", "platform/vexk/host", "platform/qelmk/common", "platform/stl"]
INCLUDES = ["include", "source", *(f"platform/{part}/include" for part in (
    "compiler", "compiler/host", "ntos", "ntos/host", "vexk", "vexk/host", "vexk/ntos", "stl", "stl/host",
    "qelmk"))]


def command(*suppressions):
    return ["cppcheck", "--std=c++20", "--enable=warning,performance,portability", "-q", f"-j{workshop.CORES}",
            "--suppress=missingInclude", *suppressions, "--template={file}:{line}: {id}: {message}",
            "--template-location=", *(f"-I{folder}" for folder in INCLUDES), *CHECKED]


def complaints(output):
    return sorted({line for line in output.splitlines() if line.strip()})


def check():
    said = complaints(workshop.demand(command(f"--suppressions-list={SUPPRESSIONS}"), cwd=workshop.TOP))
    return workshop.Outcome(int(not said), ["cppcheck"] if said else [], "\n".join(said))
