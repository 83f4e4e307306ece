"""./dev coverage: which lines and branch outcomes of the product no host test reaches.

usage: ./dev coverage             builds, runs all host tests, and reports
       ./dev coverage --report    only reports, of the runs that there were since the last build

The preset host-coverage counts in source/ and include/, by clang's source-based coverage. Programs
count in mapped files, a folder for each test program, so what a child did that died is there too. A
line, or an outcome of a condition, that nothing reached stands with its reason in
tests/coverage/unreached.json, by file, function and text; a function of which nothing is reached may
stand there as a whole, and a source that this build does not compile does. The report fails for what
is not reached and does not stand there, and for what stands there and is reached, or is nowhere in
the source."""

import collections
import dataclasses
import json
import re
import subprocess
import sys

import programs
import workshop

PRESET = "host-coverage"
COUNTED = ("source", "include/oxdiagk")
LISTED = workshop.TOP / "tests/coverage/unreached.json"
# Kinds of regions in the export: the use of a macro, what the preprocessor leaves out, and what is
# between statements.
EXPANSION_REGION, SKIPPED_REGION, GAP_REGION = 1, 2, 3
NO_CODE = (SKIPPED_REGION, GAP_REGION)
LINE, TRUE, FALSE, FUNCTION, FILE = "line", "true", "false", "function", "file"


@dataclasses.dataclass(frozen=True, order=True)
class Place:
    """What can be reached: a line, an outcome of a condition, or any of a function or a file."""

    file: str
    line: int
    column: int
    function: str
    text: str
    outcome: str

    def key(self):
        return self.file, self.function, self.text, self.outcome

    def told(self):
        what = f"{self.text} is never {self.outcome}" if self.outcome in (TRUE, FALSE) else self.text
        return f"{self.file}:{self.line}: {self.function}: {what}"


# The export of llvm-cov.

class Source:
    """The lines of a file, with where its functions are."""

    def __init__(self, name, text):
        self.name, self.lines = name, text.splitlines()
        self.functions = set()  # (lines, first, last, name)

    def text(self, first_line, first, last_line, last):
        """From one column to another, which count from 1; blanks and ends of lines become one blank."""
        rows = self.lines[first_line - 1:last_line]
        rows[-1] = rows[-1][:last - 1]
        rows[0] = rows[0][first - 1:]
        return " ".join(" ".join(row.rstrip("\\") for row in rows).split())

    def function_at(self, line):
        """The innermost one."""
        around = [each for each in self.functions if each[1] <= line <= each[2]]
        return min(around)[3] if around else ""


def short_name(name):
    """Of a demangled one without parameters, its last part, without what a template was given."""
    while "<" in name and "operator<" not in name:
        shorter = re.sub(r"<[^<>]*>", "", name)
        if shorter == name:
            break
        name = shorter
    return name.split("::")[-1].strip()


def demangled(names):
    """Mangled name, behind a file's where it is of one file only -> what is read in the source."""
    own = [name.rpartition(":")[2] for name in names]
    output = workshop.demand(["c++filt", "-p"], input="\n".join(own) + "\n")
    return dict(zip(names, map(short_name, output.splitlines())))


def counts_of_lines(regions):
    """Line -> how often it was entered, of lines that have code: the most of what begins in it and of
    what it is the continuation of."""
    counts = {}
    for line in range(min(region[0] for region in regions), max(region[2] for region in regions) + 1):
        entered = [region[4] for region in regions if region[0] == line and region[7] not in NO_CODE]
        around = [region for region in regions if region[0] < line and (line, 1) < (region[2], region[3])]
        innermost = max(around, default=None)
        if innermost and innermost[7] != SKIPPED_REGION:
            entered.append(innermost[4])
        if entered:
            counts[line] = max(entered)
    return counts


def body_of(function):
    """The region of all of a function, which no macro leads to."""
    led_to = {region[6] for region in function["regions"] if region[7] == EXPANSION_REGION}
    return next(region for region in function["regions"] if region[5] not in led_to)


def regions_of(function):
    """Name of a file -> its regions of the function, whose macros may be of other files."""
    found = collections.defaultdict(list)
    for region in function["regions"]:
        found[function["filenames"][region[5]]].append(region)
    return found


def read_sources(functions, read):
    """Name -> Source of the files that count."""
    names = demangled(sorted({function["name"] for function in functions}))
    sources = {name: Source(name, read(name))
               for name in {name for function in functions for name in regions_of(function)}
               if is_counted(name)}
    for function in functions:
        body = body_of(function)
        entry = (body[2] - body[0], body[0], body[2], names[function["name"]])
        sources[function["filenames"][body[5]]].functions.add(entry)
    return sources


def line_places(functions, sources):
    """Place -> is reached by any of the functions that the line is in."""
    counts = collections.Counter()
    for function in functions:
        for name, regions in regions_of(function).items():
            for line, count in counts_of_lines(regions).items():
                counts[name, line] += count
    found = {}
    for (name, line), count in counts.items():
        text = sources[name].lines[line - 1].strip() if name in sources else ""
        if any(map(str.isalnum, text)):  # no lone brackets
            found[Place(name, line, 0, sources[name].function_at(line), text, LINE)] = count > 0
    return found


def branch_places(functions, sources):
    """Place -> is reached by any of the functions that the condition is in. A condition is known by its
    begin: with the macros of scheduledAtomics.h it seems to end at the first of them."""
    ends, counts = {}, collections.Counter()
    for function in functions:
        for line, column, *end, when_true, when_false, file, _, _ in function["branches"]:
            begin = (function["filenames"][file], line, column)
            ends[begin] = max(ends.get(begin, end), end)
            counts[(begin, TRUE)] += when_true
            counts[(begin, FALSE)] += when_false
    found = {}
    for (begin, outcome), count in counts.items():
        name, line, column = begin
        if name in sources:
            source = sources[name]
            found[Place(name, line, column, source.function_at(line),
                        source.text(line, column, *ends[begin]), outcome)] = count > 0
    return found


def places(functions, read):
    """(lines, outcomes): Place -> is reached. Outcomes on a line that is not reached are left to it."""
    sources = read_sources(functions, read)
    lines = line_places(functions, sources)
    missing = {(place.file, place.line) for place, is_reached in lines.items() if not is_reached}
    outcomes = {place: is_reached for place, is_reached in branch_places(functions, sources).items()
                if (place.file, place.line) not in missing}
    return lines, outcomes


# The list and the report.

def read_listed(text):
    """Key -> reason."""
    return {(entry["file"], entry.get("function", ""), entry.get("text", ""), entry["outcome"]):
            entry["reason"] for entry in json.loads(text)}


def functions_not_reached(lines):
    """As Places, those of which no line is reached."""
    first, reached = {}, set()
    for place, is_reached in sorted(lines.items()):
        first.setdefault((place.file, place.function), place)
        if is_reached:
            reached.add((place.file, place.function))
    return [dataclasses.replace(place, text="", outcome=FUNCTION)
            for key, place in first.items() if key not in reached]


def files_not_compiled(compiled):
    """As Places, the sources that are not among those of the build."""
    return [Place(name, 0, 0, "", "", FILE)
            for path in sorted((workshop.TOP / COUNTED[0]).rglob("*.cpp"))
            if (name := path.relative_to(workshop.TOP).as_posix()) not in compiled]


def figure(what, reached):
    count = sum(reached.values())
    return f"{what}: {count} of {len(reached)} reached, {100 * count / max(1, len(reached)):.2f} %"


def judge(lines, outcomes, files, listed):
    """The figures, and what fails."""
    whole = [place for place in functions_not_reached(lines) if place.key() in listed]
    functions = {(place.file, place.function) for place in whole}
    missing = whole + files + [place for reached in (lines, outcomes)
                               for place, is_reached in reached.items()
                               if not is_reached and (place.file, place.function) not in functions]
    failed = [f"not reached: {place.told()}" for place in sorted(missing) if place.key() not in listed]
    keys = {place.key() for place in missing}
    known = {place.key() for reached in (lines, outcomes) for place in reached}
    for key in listed:
        if key not in keys:
            why = "listed, but reached" if key in known else "listed, but not there, or reached"
            failed.append(f"{why}: {': '.join(filter(None, key))}")
    told = "\n".join([figure("lines", lines), figure("branch outcomes", outcomes),
                      f"{len(listed)} listed with a reason"])
    return workshop.Outcome(sum(lines.values()) + sum(outcomes.values()) + len(listed), failed, told)


# The build and its runs.

def profiles():
    return sorted(workshop.tree(PRESET).glob("runs/*/*.profraw"))


def counted_programs():
    """What has the product in it."""
    tree = workshop.tree(PRESET)
    return [*sorted((tree / "tests/host/bin").iterdir()), *sorted((tree / "tests/host/image").glob("*.so"))]


def export():
    """The functions of the product, with what llvm-cov says of all runs."""
    if not profiles():
        raise workshop.Failure(f"no profiles in {workshop.tree(PRESET)}/runs")
    merged = workshop.tree(PRESET) / "runs/all.profdata"
    names = workshop.tree(PRESET) / "runs/profiles.txt"
    names.write_text("".join(f"{path}\n" for path in profiles()))
    workshop.demand(["llvm-profdata", "merge", "-sparse", f"-input-files={names}", "-o", merged])
    first, *others = counted_programs()
    objects = [word for path in others for word in ("-object", path)]
    done = subprocess.run(["llvm-cov", "export", first, *objects, f"-instr-profile={merged}"],
                          capture_output=True)
    if done.returncode != 0:
        raise workshop.Failure(done.stderr.decode(errors="replace"))
    return counted(json.loads(done.stdout)["data"][0]["functions"])


def relative(name):
    """To the top; of objects whose paths are mapped (-ffile-prefix-map) it is relative to their tree."""
    return name.removeprefix(f"{workshop.TOP}/").removeprefix(f"out/{PRESET}/")


def is_counted(name):
    return name.startswith(tuple(f"{folder}/" for folder in COUNTED))


def counted(functions):
    """Those of the product, with names of files that are relative to the top."""
    named = [dict(each, filenames=list(map(relative, each["filenames"]))) for each in functions]
    return [each for each in named if is_counted(each["filenames"][body_of(each)[5]])]


def compiled_sources():
    commands = json.loads((workshop.tree(PRESET) / "compile_commands.json").read_text())
    return {command["file"].removeprefix(f"{workshop.TOP}/") for command in commands}


def report():
    lines, outcomes = places(export(), lambda name: (workshop.TOP / name).read_text())
    return judge(lines, outcomes, files_not_compiled(compiled_sources()), read_listed(LISTED.read_text()))


def check():
    for profile in profiles():
        profile.unlink()
    tests = programs.check(PRESET, "host_tests")
    reached = report()
    return workshop.Outcome(tests.passed + reached.passed, tests.failed + reached.failed,
                            "\n".join(filter(None, [tests.output, reached.output])), tests.skipped)


def main(arguments):
    if arguments not in ([], ["--report"]):
        print(__doc__, file=sys.stderr)
        return 2
    outcome = report() if arguments else check()
    print(*outcome.failed, outcome.output, sep="\n")
    return 1 if outcome.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
