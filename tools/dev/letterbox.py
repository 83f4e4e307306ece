"""examples/letterbox in the hands of somebody who has nothing but the installed package."""

import re
import shutil

import workshop

SAMPLE = workshop.TOP / "examples/letterbox"
PAGE = workshop.TOP / "docs/testing-your-driver.md"
COMMANDS = re.compile(r"^```letterbox\n(.*?)^```$", re.MULTILINE | re.DOTALL)
SKIPPED = "1 test, listed below"

# A letter without room for its head: the driver writes behind its block.
RIGHT, WRONG = "sizeof(LETTER) + Length, LETTERBOX_TAG", "Length, LETTERBOX_TAG"


def copy_sample(work, name):
    folder = work / name
    shutil.copytree(SAMPLE, folder)
    return folder


def type_commands(prefix, folder):
    """As the page says, with the place where the package is."""
    blocks = COMMANDS.findall(PAGE.read_text())
    if len(blocks) != 1:
        return [f"{PAGE.name} has {len(blocks)} blocks of commands"]
    code, output = workshop.run(["sh", "-ec", blocks[0].replace("/usr/local", str(prefix))],
                                cwd=folder)
    return [] if code == 0 and "100% tests passed" in output else [output]


def check_commands(prefix, work):
    return type_commands(prefix, copy_sample(work, "letterbox"))


def check_mistake(_, work):
    """The sanitizer knows the blocks of the installed executive. After check_commands."""
    folder = work / "letterbox"
    source = (folder / "driver.cpp").read_text()
    (folder / "driver.cpp").write_text(source.replace(RIGHT, WRONG))
    workshop.demand(["cmake", "--build", folder / "build"])
    code, output = workshop.run([folder / "build/letterbox_tests"])
    found = code != 0 and "AddressSanitizer: use-after-poison" in output and RIGHT in source
    return [] if found else [f"the mistake was not found: {code} {output}"]


def check_without_sanitizers(prefix, work):
    folder = copy_sample(work, "letterbox_bare")
    workshop.demand(["cmake", "-G", "Ninja", "-S", folder, "-B", folder / "build",
                     f"-DCMAKE_PREFIX_PATH={prefix}", "-DLETTERBOX_SANITIZERS=OFF"])
    workshop.demand(["cmake", "--build", folder / "build"])
    code, output = workshop.run([folder / "build/letterbox_tests"])
    return [] if code == 0 and SKIPPED not in output else [f"{code} {output}"]


CHECKS = {
    "examples/letterbox as its page builds it": check_commands,
    "a mistake in examples/letterbox is found": check_mistake,
    "examples/letterbox on a kernel's stack": check_without_sanitizers,
}
