"""The step `dist`: the archive for Windows as somebody has it who unpacks it."""

import os
import pathlib
import re
import shutil
import sys
import tempfile

import release
import wine
import windowsArchive
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/compile"))

import samples  # noqa: E402

ROW = re.compile(r"^([\w./-]+) {2,}\S", re.MULTILINE)
LINES = re.compile(r"^(?:    c.*\n)+", re.MULTILINE)  # of clang++ or cmake
DRIVER = "hello"
# Where each way to build leaves the driver.
WAYS = {"one call of clang": "hello.sys", "CMake": "build/hello.sys"}


class Archive:
    """The archive, made and unpacked."""

    def __init__(self, folder):
        made, = windowsArchive.make(folder)
        shutil.unpack_archive(made, folder)
        self.top = folder / windowsArchive.name()
        self.page = (self.top / "README.txt").read_text()
        self.files = {path.relative_to(self.top).as_posix()
                      for path in self.top.rglob("*") if path.is_file()}

    def build_lines(self):
        """The indented lines behind the heading, a script each."""
        return LINES.findall(self.page.split("\nA DRIVER OF YOUR OWN\n")[1])


def check_names(archive):
    """Every file is named, alone or with its folder, and every name is of one."""
    rows = ROW.findall(archive.page)
    found = {row: {file for file in archive.files
                   if file == row or row.endswith("/") and file.startswith(row)} for row in rows}
    unnamed = archive.files.difference(*found.values())
    return [f"{file} is not named" for file in sorted(unnamed)] + \
        [f"{row} is not there" for row, files in found.items() if not files]


def check_page(archive):
    licence = release.LICENCE in " ".join(archive.page.split())
    wide = [line for line in archive.page.splitlines() if len(line) > 140]
    raw = (archive.top / "README.txt").read_bytes()
    return [complaint for held, complaint in [
        (licence, "README.txt says nothing of a licence"),
        (not wide, f"too wide: {wide}"),
        (raw.count(b"\n") == raw.count(b"\r\n"), "its lines do not end as on Windows"),
    ] if not held]


def check_sums(archive):
    """They hold, and are of every other file."""
    code, output = workshop.run(["sha256sum", "--strict", "--quiet", "-c", "SHA256SUMS"],
                                cwd=archive.top)
    summed = {line.split("  ", 1)[1]
              for line in (archive.top / "SHA256SUMS").read_text().splitlines()}
    missing = archive.files - summed - {"SHA256SUMS"}
    return ([] if code == 0 else [output]) + [f"{file} has no sum" for file in sorted(missing)]


def check_guide(archive):
    """The driver is the one that docs/windows.md shows, but for the comment at its head."""
    source = (archive.top / "examples/hello-driver/hello.cpp").read_text().split("\n\n", 1)[1]
    sample = samples.sample_source(workshop.TOP / "docs/windows.md").split("\n", 1)[1]
    return [] if sample == source else ["docs/windows.md shows another driver"]


def driver_texts(archive, image):
    """What the debugger sees of a driver beside the modules of the archive."""
    files = {path.name: path for path in (archive.top / "modules").iterdir()}
    files[f"{wine.CONTROL_DRIVER}.sys"] = (
        archive.top / f"drivers/{wine.CONTROL_DRIVER}/{wine.CONTROL_DRIVER}.sys")
    files[f"{wine.BOOT}.sys"] = windowsArchive.moduleFiles.MODULES / f"{wine.BOOT}.sys"
    files[f"{DRIVER}.sys"] = image
    with wine.alone():
        wine.create_prefix()
        run = wine.run_driver(DRIVER, files)
    texts = wine.lines_of_texts(run.texts)
    return run.stopped, texts


def run_complaints(archive, image):
    """It traces its two lines, and comes and goes without a word of anybody else's."""
    stopped, texts = driver_texts(archive, image)
    traced = [text.split("] ", 1)[1] for text in texts if text.startswith(f"[{DRIVER}--")]
    wrong = [] if stopped else ["it does not end"]
    if traced != ["hello", "good bye"]:
        wrong.append(f"it traces {traced}")
    return wrong + (texts[-30:] if wrong else [])


def check_driver(archive, way, lines):
    """Built with nothing but the archive, the compiler and the kit's headers."""
    with tempfile.TemporaryDirectory() as name:
        top = pathlib.Path(name) / "unpacked here"
        shutil.copytree(archive.top, top)
        folder = top / "examples/hello-driver"
        environment = dict(os.environ, CCACHE_DISABLE="1")
        code, output = workshop.run(["sh", "-ec", lines], cwd=folder, env=environment)
        if code != 0 or "warning" in output:
            return [output]
        return run_complaints(archive, folder / WAYS[way])


def check_programs(archive):
    """Each says its version when it is started there."""
    wrong = []
    with wine.alone():
        wine.create_prefix()
        for program in sorted((archive.top / "bin").iterdir()):
            code, output = workshop.run(["wine", program, "--version"],
                                        env=dict(wine.environment(), WINEDEBUG="-all"))
            if code != 0 or not output.startswith(f"{program.stem} {release.version()}"):
                wrong.append(f"{program.name} --version: {code} {output!r}")
        wine.stop_server()
    return wrong


CHECKS = {
    "README.txt names every file": check_names,
    "README.txt": check_page,
    "SHA256SUMS": check_sums,
    "the driver of docs/windows.md": check_guide,
    "programs start": check_programs,
}


def results():
    with tempfile.TemporaryDirectory() as folder:
        archive = Archive(pathlib.Path(folder))
        found = {title: function(archive) for title, function in CHECKS.items()}
        lines = archive.build_lines()
        found["README.txt has every way to build"] = (
            [] if len(lines) == len(WAYS) else [f"it has {len(lines)}"])
        for way, script in zip(WAYS, lines):
            found[f"the driver, built with {way}, runs"] = check_driver(archive, way, script)
    return found


def check():
    workshop.build("windows", f"{wine.BOOT}.module")
    found = results()
    failed = [f"archive for Windows: {title}" for title, wrong in found.items() if wrong]
    return workshop.Outcome(len(found) - len(failed), failed,
                            "\n".join(line for wrong in found.values() for line in wrong))
