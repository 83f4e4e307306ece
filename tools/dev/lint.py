"""clang-format and clang-tidy over the project's own C++."""

import hashlib
import json
import pathlib

import lintGroups
import workshop

FOLDERS = ["include", "source", "platform", "examples", "tests", "bench", "tools"]
# Windows code first: it is the product, and what the analyser reads fastest.
PRESETS = ["windows-tidy", "host-tidy", "metal"]
CLEAN = workshop.OUT / "tidy"  # one empty file for each unit that was found clean, as it was then


def sources(*suffixes):
    found = []
    for folder in FOLDERS:
        found += [path for path in (workshop.TOP / folder).rglob("*") if path.suffix in suffixes]
    return sorted(found)


def check_format():
    code, output = workshop.run(["clang-format", "--dry-run", "-Werror", *sources(".h", ".cpp")])
    return workshop.Outcome(int(code == 0), [] if code == 0 else ["clang-format"], output)


def units(preset):
    """File -> compiler call of the units in a preset's database that people wrote."""
    database = json.loads((workshop.tree(preset) / "compile_commands.json").read_text())
    return {entry["file"]: entry["command"] for entry in database
            if entry["file"].endswith(".cpp") and workshop.OUT not in pathlib.Path(entry["file"]).parents}


def common_digest():
    """What every unit depends on: the settings, and all headers, whichever it includes."""
    digest = hashlib.sha256()
    settings = [path for path in (workshop.TOP / folder / ".clang-tidy" for folder in ["", *FOLDERS])
                if path.exists()]
    for path in [*settings, *sources(".h")]:
        digest.update(f"{path}\0".encode() + path.read_bytes())
    return digest.digest()


class Unit:
    """One translation unit as one preset compiles it."""

    def __init__(self, file, command, preset, common):
        self.file, self.command, self.preset = file, command, preset
        text = pathlib.Path(file).read_bytes() + command.encode()
        self.stamp = CLEAN / hashlib.sha256(common + text).hexdigest()

    def complaints(self):
        """What clang-tidy says of it, nothing if it is clean."""
        code, output = workshop.run(["clang-tidy", "--quiet", "-p", workshop.tree(self.preset),
                                     self.file])
        if code == 0:
            self.stamp.touch()
        return "" if code == 0 else output


def all_units():
    """Every unit once, as the first of the presets that builds it."""
    common = common_digest()
    calls = {}
    for preset in PRESETS:
        for file, command in sorted(units(preset).items()):
            calls.setdefault(file, (command, preset))
    return [Unit(file, command, preset, common) for file, (command, preset) in calls.items()]


def not_clean(job):
    """The members of a group that is not clean as a whole."""
    number, group = job
    if not group.is_clean(number):
        return group.units
    for unit in group.units:
        unit.stamp.touch()
    return []


def check_tidy():
    """What was found clean as it stands is passed over."""
    for preset in PRESETS:
        workshop.configure(preset)
    CLEAN.mkdir(parents=True, exist_ok=True)
    work = all_units()
    groups, alone = lintGroups.join([unit for unit in work if not unit.stamp.exists()])
    for left in workshop.in_parallel(not_clean, enumerate(groups)):
        alone += left
    said = [text for text in workshop.in_parallel(Unit.complaints, alone) if text]
    failed = ["clang-tidy"] if said or not work else []
    return workshop.Outcome(1 - len(failed), failed, "\n".join(said))
