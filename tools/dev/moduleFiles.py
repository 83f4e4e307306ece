"""The built Windows modules as files, read with LLVM's own readers."""

import workshop

MODULES = workshop.tree("windows") / "modules"


def read(image, *what):
    return workshop.demand(["llvm-readobj", *what, MODULES / image])


def pdb_of(image):
    return (MODULES / image).with_suffix(".pdb")
