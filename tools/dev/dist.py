"""./dev dist [FOLDER]: the Debian packages and the archive for Windows."""

import argparse
import pathlib
import sys
import tempfile

import debianPackages
import release
import windowsArchive
import workshop

MAKERS = [("Debian packages", debianPackages.make), ("archive for Windows", windowsArchive.make)]


def folder_of(name):
    """The folder, made if it is missing; otherwise the program ends with a sentence."""
    folder = pathlib.Path(name).resolve()
    try:
        folder.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryFile(dir=folder):
            return folder
    except OSError as error:
        sys.exit(f"dist: cannot write into '{name}': {error.strerror}")


def arguments(given):
    parser = argparse.ArgumentParser(
        prog="./dev dist", description="Makes the Debian packages and the archive for Windows.")
    parser.add_argument("folder", nargs="?", metavar="FOLDER", default=workshop.OUT / "dist",
                        help="where they are put; by default out/dist")
    return parser.parse_args(given)


def main(given):
    folder = folder_of(arguments(given).folder)
    made = [path for title, make in MAKERS for path in workshop.step(title, make, folder)]
    for path in made:
        print(f"{release.digest(path)}  {path.stat().st_size:>9}  {path}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
