"""The built Windows modules as files, read with LLVM's own readers."""

import re

import workshop

MODULES = workshop.tree("windows") / "modules"


def read(image, *what):
    return workshop.demand(["llvm-readobj", *what, MODULES / image])


def pdb_of(image):
    return (MODULES / image).with_suffix(".pdb")


def every_image():
    """The images that the build makes, those of the tests included."""
    rules = (workshop.tree("windows") / "build.ninja").read_text()
    return sorted(set(re.findall(r"^build modules/(\w+\.(?:dll|sys))\b", rules, re.M)))
