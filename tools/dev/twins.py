"""That two clones at different paths make the same modules, byte for byte, PDBs included, and the
same packages."""

import os
import pathlib
import shutil
import tempfile

import debianPackages
import images
import moduleFiles
import windowsArchive
import workshop

PRESET = "windows"
PLACES = ("one", "another/and/deeper")
LEFT_OUT = {"out", ".git"}


def left_out(folder, names):
    return LEFT_OUT & set(names) if pathlib.Path(folder) == workshop.TOP else []


def environment():
    """For clones that have no history: the time of this one's. A compiler cache would hand the objects
    of the first clone to the second."""
    code, time = workshop.run(["git", "log", "-1", "--format=%ct"], cwd=workshop.TOP)
    clean = dict(os.environ, CCACHE_DISABLE="1")
    return dict(clean, SOURCE_DATE_EPOCH=time.strip()) if code == 0 and time.strip() else clean


def make_clones(folder):
    """All of them at once: whoever works on the sources meanwhile changes none."""
    tops = [pathlib.Path(folder) / place for place in PLACES]
    for top in tops:
        shutil.copytree(workshop.TOP, top, ignore=left_out, symlinks=True)
    return tops


def build_clone(top, variables):
    """File name -> its bytes, of everything that is made of the family, and of its packages."""
    settings = {"cwd": top, "env": variables}
    workshop.demand(["cmake", "--preset", PRESET], **settings)
    targets = [f"{pathlib.Path(image).stem}.module" for image in images.FAMILY]
    workshop.demand(["cmake", "--build", "--preset", PRESET, "-j", workshop.CORES,
                     "--target", *targets], **settings)
    workshop.demand(["python3", "tools/dev/dist.py"], **settings)
    return {path.name: path.read_bytes() for folder in (f"out/{PRESET}/modules", "out/dist")
            for path in (top / folder).iterdir()}


def complaints(one, other):
    wanted = {name for image in images.FAMILY for name in (image, moduleFiles.pdb_of(image).name)}
    wanted |= {f"{windowsArchive.name()}.zip", *map(debianPackages.file_name,
                                                    debianPackages.COMPONENTS)}
    return [f"{name} is made by every clone" for name in sorted(wanted - set(one))] + \
        [f"{name} is the same in every clone" for name in sorted(set(one) | set(other))
         if one.get(name) != other.get(name)]


def check():
    with tempfile.TemporaryDirectory(prefix="oxdiagk-") as folder:
        variables = environment()
        one, other = [build_clone(top, variables) for top in make_clones(folder)]
    failed = complaints(one, other)
    return workshop.Outcome(len(one) - len(failed), failed, "")
