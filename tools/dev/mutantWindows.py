"""./dev kernel mutants: the mutants of what is built for Windows alone, and which driver test sees them.

usage: ./dev kernel mutants [FILE ...]          runs what has no verdict yet, then reports
       ./dev kernel mutants --again [FILE ...]  runs the survivors anew
       ./dev kernel mutants --report [FILE ...] only reports

The sources are woven as ./dev mutants weaves those of the host, and linked into the modules of the preset
`windows`. Each module has the number of the chosen mutant in a section of its own, where it is written
into the file before Wine loads it. A mutant then meets the conformance tests in their driver, and the
slot bus, and what sees it has to see it twice.

What both halves of the library share is not met here: the host's tests see that."""

import json
import os
import pathlib
import re
import shlex
import shutil
import struct
import sys
import time

import kernel
import mutantBuild
import mutants
import wine
import workshop

PRESET = "windows"
TREE = workshop.tree(PRESET)
HERE = mutantBuild.HERE / PRESET
WOVEN, CHANGED = HERE / "modules", HERE / "changed"
FOLDERS = ("platform/vexk/windows/", "platform/control/windows/", "platform/qelmk/windows/",
           "source/package/windows/dllEntry.cpp")
MODULES = [*kernel.LIBRARIES, f"{wine.BOOT}.sys", f"{wine.CONTROL_DRIVER}.sys", "oxdiagtest.sys",
           "oxdiagpnp.sys", "slotbus.sys"]
SECTION = b".mutant"
LIMIT = 40  # seconds of one run, which takes a few
CHECKS = (kernel.check_conformance, kernel.check_devices)
CONFIRMED = 2
WHOLE = "kernel: "  # how the names of checks of a whole run begin
NONE = 0


class Source(mutantBuild.Source):
    """One file, as the preset compiles it for the modules."""

    tree, here = TREE, HERE
    parsed = (*mutantBuild.Source.parsed, "--target")

    def headers_of_compiler(self):
        return ["-resource-dir", workshop.demand([self.words[0], "-print-resource-dir"]).strip()]


def sources():
    """Those that no other program has: the tests compile some once more."""
    commands = json.loads((TREE / "compile_commands.json").read_text())
    found = {}
    for command in commands:
        name = str(pathlib.Path(command["file"]).relative_to(workshop.TOP))
        is_tests = mutantBuild.words_of(command)[1].startswith("tests/")
        if name.startswith(FOLDERS) and name not in mutantBuild.ALONE and not is_tests:
            found[name] = command
    made = [Source(found[name], number) for number, name in enumerate(sorted(found))]
    return [source for source in made if source.file.exists()]


# The modules.

def choice(words, count):
    """The object that has the number of the chosen mutant, compiled as the sources are."""
    source, made = mutantBuild.KIT / "mutantChoiceWindows.cpp", HERE / "choice.obj"
    newest = max(path.stat().st_mtime for path in mutantBuild.KIT.glob("mutant*"))
    if not made.exists() or made.stat().st_mtime < newest:
        workshop.demand([*words, f"-DOXDIAG_MUTANT_NUMBERS={1 + count * mutantBuild.NUMBERS_OF_A_FILE}",
                         "-o", made, "-c", source], cwd=TREE)
    return made


def link_command(name):
    """The folder and the words by which the preset links a module."""
    lines = workshop.demand(["ninja", "-C", TREE, "-t", "commands", f"modules/{name}"])
    folder, words, *_ = lines.strip().splitlines()[-1].split(" && ")
    return folder.removeprefix("cd "), shlex.split(words)


def link(name, replaced):
    """A module with these objects in the place of the preset's; `replaced` ends with the choice."""
    made, original = WOVEN / name, kernel.MODULES / name
    if made.exists() and made.stat().st_mtime > max(path.stat().st_mtime for path in [original, *replaced.values()]):
        return
    folder, words = link_command(name)
    words = [str(replaced.get(os.path.relpath(os.path.normpath(word), TREE), word)) for word in words]
    outputs = {"/out:": made, "/pdb:": made.with_suffix(".pdb"), "/implib:": made.with_suffix(".lib")}
    for number, word in enumerate(words):
        option = re.match(r"/\w+:", word)
        if option and option[0] in outputs:
            words[number] = f"{option[0]}{outputs[option[0]]}"
    workshop.demand([*words, replaced[""]], cwd=folder)


def make():
    """The woven modules; their sources."""
    workshop.build(PRESET)
    found = sources()
    workshop.in_parallel(Source.make, found)
    WOVEN.mkdir(parents=True, exist_ok=True)
    replaced = {source.object: source.made_object() for source in found}
    replaced[""] = choice(found[0].words, len(found))
    for name in MODULES:
        link(name, replaced)
    return found


def place_of_choice(image):
    """Where in the bytes of an image the number is; None in one that has nothing woven."""
    head = struct.unpack_from("<I", image, 0x3C)[0]
    count, optional = struct.unpack_from("<H", image, head + 6)[0], struct.unpack_from("<H", image, head + 20)[0]
    for number in range(count):
        entry = head + 24 + optional + 40 * number
        if image[entry:entry + 8].rstrip(b"\0") == SECTION:
            return struct.unpack_from("<I", image, entry + 20)[0]
    return None


def choose(number):
    """The modules with that mutant, in their folder."""
    CHANGED.mkdir(parents=True, exist_ok=True)
    for name in MODULES:
        image = bytearray((WOVEN / name).read_bytes())
        place = place_of_choice(image)
        if place is not None:
            struct.pack_into("<i", image, place, number)
        (CHANGED / name).write_bytes(image)
    shutil.copy(kernel.DEFAULT_RACK, CHANGED)


# One mutant.

class Doubtful(Exception):
    """What failed does so without a mutant too."""


def fails_without(check):
    choose(NONE)
    return bool(check(CHANGED, LIMIT).failed)


def seen_by(check, number):
    """The test or check that sees the mutant, or None. On a machine that is busy a test may fail by
    itself, so it has to fail once more; and where no test fails but the run as a whole, the next run
    without the mutant has to hold."""
    for _ in range(CONFIRMED):
        choose(number)
        failed = check(CHANGED, LIMIT).failed
        if not failed:
            return None
        if failed[0].startswith(WHOLE) and fails_without(check):
            raise Doubtful(failed[0])
    return failed[0]


def judge(number):
    for check in CHECKS:
        test = seen_by(check, number)
        if test is not None:
            return mutants.KILLED, test
    return mutants.SURVIVED, "all driver tests"


def demand_good():
    try:
        verdict, test = judge(NONE)
    except Doubtful as failed:
        verdict, test = mutants.KILLED, failed
    if verdict == mutants.KILLED:
        raise workshop.Failure(f"without a mutant too {test} fails: ./dev kernel test")


def judged(verdicts, mutant):
    """Its verdict in words, which is kept; of a doubtful one nothing is."""
    try:
        verdicts.known[mutant["number"]] = judge(verdicts.source.base + mutant["number"])
    except Doubtful as failed:
        return f"{verdicts.source.name}:{mutant['line']}: no verdict, as without a mutant too: {failed}"
    verdicts.save()
    return mutants.described(verdicts, mutant)


def judge_all(jobs):
    with wine.alone():
        wine.create_prefix()
        if jobs:
            demand_good()
        start = time.monotonic()
        for done, (verdicts, mutant) in enumerate(jobs, 1):
            said = judged(verdicts, mutant)
            print(f"  {time.monotonic() - start:.0f} s: {done} of {len(jobs)}, {said}", flush=True)


def run(names, again):
    chosen = mutants.chosen([mutants.Verdicts(source) for source in make()], names)
    jobs = mutants.jobs_of(chosen, again)
    print(f"{len(jobs)} mutants to run", flush=True)
    judge_all(jobs)
    return mutants.show(mutants.report(chosen))


def main(arguments):
    words = [word for word in arguments if word.startswith("-")]
    names = [word for word in arguments if not word.startswith("-")]
    if words not in ([], ["--again"], ["--report"]):
        print(__doc__, file=sys.stderr)
        return 2
    if words == ["--report"]:
        return mutants.show(mutants.report(mutants.chosen([mutants.Verdicts(source) for source in sources()], names)))
    return run(names, words == ["--again"])


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
