"""./dev dist [FOLDER]: the Debian packages and the archive for Windows."""

import argparse
import os
import pathlib
import sys
import tempfile

import debianPackages
import release
import windowsArchive
import workshop

MAKERS = [("Debian packages", debianPackages.make), ("archive for Windows", windowsArchive.make)]


def folder_of(name):
    """The folder, made if it is missing."""
    if not str(name):
        sys.exit("dist: the name of the folder is empty")
    folder = pathlib.Path(name).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def arguments(given):
    parser = argparse.ArgumentParser(
        prog="./dev dist", description="Makes the Debian packages and the archive for Windows.")
    parser.add_argument("folder", nargs="?", metavar="FOLDER", default=workshop.OUT / "dist",
                        help="where they are put; by default out/dist")
    return parser.parse_args(given)


def make_all(folder):
    """Whole files in the folder, or what was there before."""
    with tempfile.TemporaryDirectory(prefix=".making-", dir=folder) as work:
        made = [path for title, make in MAKERS
                for path in workshop.step(title, make, pathlib.Path(work))]
        return [path.replace(folder / path.name) for path in made]


def print_sums(made):
    for path in made:
        print(f"{release.digest(path)}  {path.stat().st_size:>9}  {path}")
    sys.stdout.flush()


def end(place, error):
    sys.exit(f"dist: {place}: {error.strerror or error}")


def main(given):
    name = arguments(given).folder
    try:
        made = make_all(folder_of(name))
    except OSError as error:
        end(name, error)
    try:
        print_sums(made)
    except OSError as error:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())  # for what was not written
        end("standard output", error)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
