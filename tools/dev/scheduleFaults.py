"""That the schedules of tests/host/schedules find what they are for: each patch of their folder
`faults` takes a repair out of one source, and the model that it names has to fail then."""

import pathlib
import re
import shlex
import tempfile

import workshop

PRESET = "host-plain"
FAULTS = workshop.TOP / "tests/host/schedules/faults"
SECONDS = 120  # for one model


class Fault:
    """One patch: what it breaks, and the test of the program that has to see it."""

    def __init__(self, path):
        text = path.read_text()
        self.path, self.name = path, path.stem
        self.program, self.test = re.search(r"^Found by (\S+) (\S+)$", text, re.M).groups()
        self.source = re.search(r"^--- a/(\S+)$", text, re.M).group(1)


def faults(names=()):
    known = [Fault(path) for path in sorted(FAULTS.glob("*.patch"))]
    return [fault for fault in known if not names or fault.name in names]


def commands_of(program):
    """The commands that make a program, the last of which links it."""
    text = workshop.demand(["ninja", "-C", workshop.tree(PRESET), "-t", "commands", program])
    return [line for line in text.splitlines() if " -o " in line]


def is_of(source, command):
    return f" -c {workshop.TOP / source}" in command


def broken_source(fault, folder):
    """A copy of the source without its repair."""
    copy = folder / fault.source
    copy.parent.mkdir(parents=True)
    copy.write_text((workshop.TOP / fault.source).read_text())
    workshop.demand(["git", "apply", fault.path], cwd=folder)
    return copy


def compiled(fault, commands, folder):
    """The object of the broken source, with points, and the one that it stands for, if any."""
    model = next(line for line in commands if "scheduled_parts.dir" in line and " -c " in line)
    made = next((line for line in commands if "scheduled_parts.dir" in line
                 and is_of(fault.source, line)), None)
    words = shlex.split(made or model)
    former = words[words.index("-o") + 1]
    target = folder / "broken.o"
    words[words.index("-o") + 1] = str(target)
    words[words.index("-c") + 1] = str(broken_source(fault, folder))
    for option in ("-MF", "-MT"):
        words[words.index(option) + 1] = str(folder / "broken.d")
    words.insert(1 if words[0] != "ccache" else 2,
                 f"-I{(workshop.TOP / fault.source).parent}")
    workshop.demand(words, cwd=workshop.tree(PRESET))
    return target, former if made else None


def linked(fault, commands, folder):
    """The program with the broken source."""
    target, former = compiled(fault, commands, folder)
    line = re.sub(r"^.*?&& |&& :$", "", commands[-1])
    words = shlex.split(line)
    program = folder / fault.program
    words[words.index("-o") + 1] = str(program)
    if former in words:
        words[words.index(former)] = str(target)
    else:
        words.insert(words.index("-o"), str(target))
    workshop.demand(words, cwd=workshop.tree(PRESET))
    return program


def survives(fault, commands):
    """None when the model fails, else why it did not."""
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        try:
            program = linked(fault, commands[fault.program], folder)
        except workshop.Failure as failure:
            return f"{fault.name}: {failure}\n"
        command = ["timeout", SECONDS, program, f"--gtest_filter={fault.test}"]
        code, output = workshop.run(command, cwd=folder)
    if code == 124:
        return f"{fault.name}: {fault.test} takes longer than {SECONDS} s\n"
    if "1 test from 1 test suite" not in output:
        return f"{fault.name}: {fault.program} has no test {fault.test}\n"
    return f"{fault.name}: {fault.test} does not find it\n" if code == 0 else None


def check(names=()):
    listed = faults(names)
    programs = sorted({fault.program for fault in listed})
    workshop.build(PRESET, *programs)
    commands = {program: commands_of(program) for program in programs}
    found = [survives(fault, commands) for fault in listed]
    failed = [complaint for complaint in found if complaint is not None]
    return workshop.Outcome(len(listed) - len(failed),
                            [complaint.split(":")[0] for complaint in failed], "".join(failed))
