"""The conformance tests with fallible calls that fail, and at raised levels.

usage: python3 tools/dev/faults.py [SECONDS [SEED]]     as ./dev test faults-long
       python3 tools/dev/faults.py --write-levels       what holds now is asked for from now on

Each test is run again and again, each time with another of its fallible calls failing; afterwards
nothing may be left, no lock owned, the IRQL as before, and the modules unload. The places in the
library that such calls come from are counted: there may not be fewer than in failurePlaces.txt. At
a raised IRQL the tests hold that are not listed in belowLEVEL.txt, for what needs a lower one."""

import os
import re
import sys
import tempfile

import programs
import workshop

PRESET = "host-clang"
PROGRAM = "conformance_tests"
ROOM = workshop.TOP / "tests/host/main"
PLACES = ROOM / "failurePlaces.txt"
LEVELS = ("apc", "dispatch")
ROUNDS = 300  # of the short form
DEPTH = 3  # lines that tell one place from another
SECONDS = 120  # of failures at random
LIBRARY = re.compile(r"(?:^|/)((?:source|platform/(?:vexk|qelmk))/.*)$")
HELPERS = re.compile(r"memory\.(?:cpp|h)$|statusMemory|placementNew|tClassImplementation")
# Templates that a test uses, with its own mistakes in their arguments.
TEMPLATES = re.compile(r"platform/stl/include|/gtest/")
FRAME = re.compile(r"^ *#\d+ .* (\S+?):\d+", re.MULTILINE)
COUNTS = re.compile(r"^(\d+) rounds, (\d+) failed calls, \d+ rounds without one, (\d+) findings$",
                    re.MULTILINE)


def program():
    return workshop.tree(PRESET) / "tests/host/bin" / PROGRAM


def run(*words):
    """What the program says; its own findings are for the caller."""
    environment = programs.environment()
    environment["ASAN_OPTIONS"] += ":detect_leaks=0"  # children end without their destructors
    return workshop.run([program(), *words], env=environment)[1]


def told_of(addresses):
    """What addr2line says of them."""
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as asked:
        asked.write("\n".join(addresses) + "\n")
        asked.flush()
        with open(asked.name) as source:
            return workshop.demand(["addr2line", "-a", "-i", "-e", program()], stdin=source)


def lines_of(addresses):
    """Address -> the places of the source that it stands for, innermost first."""
    shares = [addresses[first::workshop.CORES] for first in range(workshop.CORES)]
    found, current = {}, None
    for line in "".join(workshop.in_parallel(told_of, filter(None, shares))).splitlines():
        if line.startswith("0x"):
            current = found.setdefault(int(line, 16), [])
        else:
            current.append(line.split(" (")[0])
    return found


def path_of(stack, lines):
    """The innermost lines of the library, but those of its allocation functions and of the template
    by which a class makes its objects: who asked, for whom. None when a test asked."""
    path = []
    for address in stack:
        for line in lines[int(address, 16)]:
            match = LIBRARY.search(line.rpartition(":")[0])
            if match and not HELPERS.search(match[1]):
                path.append(f"{match[1]}:{line.rpartition(':')[2]}")
    return tuple(path[:DEPTH]) or None


def places_in(text):
    """(kind, path) of each fallible call of the library, from what the program wrote of them."""
    stacks = {(kind, *rest.split()) for kind, rest in
              (line.split("\t") for line in text.splitlines())}
    lines = lines_of(sorted({address for _, *stack in stacks for address in stack}))
    return {(kind, path) for kind, *stack in stacks if (path := path_of(stack, lines))}


def own_deaths(output):
    """Of the findings at random, those of a test that went on with what it had not been given: the
    innermost frame, but for the templates that it uses, is the test's."""
    count = 0
    for finding in output.split("FINDING ")[1:]:
        frames = [place for place in FRAME.findall(finding) if not TEMPLATES.search(place)]
        count += " died: " in finding and bool(frames) and "tests/conformance/" in frames[0]
    return count


def judge_random(output):
    """Nearly every call of a test may fail here, more than it can look out for."""
    match = COUNTS.search(output)
    own = own_deaths(output)
    if not match or int(match[3]) != own:
        return ["calls that fail at random"], output
    return [], f"{match[0]}, {own} of them a test's own end"


def judge(output, name):
    match = COUNTS.search(output)
    if not match or match[3] != "0":
        return [name], output
    return [], match[0]


def fail_each_call(*words):
    with tempfile.TemporaryDirectory() as folder:
        points = os.path.join(folder, "points.txt")
        output = run("--fail-each-call", *words, "--points", points)
        with open(points) as text:
            places = places_in(text.read())
    failed, told = judge(output, "a call that fails")
    least = int(PLACES.read_text())
    if len(places) < least:
        failed.append(f"{len(places)} places that can fail, of {least} before")
    return failed, f"{told}\n{len(places)} places of the library that can fail"


def below(level):
    return ROOM / f"below{level.capitalize()}.txt"


def check_level(level):
    output = run("--at-level", level, "--below", below(level))
    ends = re.findall(r"^(held|failed|died) (\S+)\t(.*)$", output, re.MULTILINE)
    wrong = [f"{test} at {level}: {said or end}" for end, test, said in ends if end != "held"]
    held = sum(end == "held" for end, _, _ in ends)
    return workshop.Outcome(held, wrong if held else [f"no test held at {level}"], output if wrong else "")


def merged(outcomes):
    return workshop.Outcome(sum(each.passed for each in outcomes),
                            [name for each in outcomes for name in each.failed],
                            "\n".join(each.output for each in outcomes if each.output))


def check():
    workshop.build(PRESET, PROGRAM)
    failed, told = fail_each_call("--rounds", ROUNDS)
    return merged([workshop.Outcome(1, failed, told), *map(check_level, LEVELS)])


def check_long(seconds=SECONDS, seed=0):
    workshop.build(PRESET, PROGRAM)
    failed, told = fail_each_call()
    print(told, flush=True)
    output = run("--fail-randomly", seconds, "--seed", seed)
    print(output.partition("\n")[0], flush=True)
    wrong, at_random = judge_random(output)
    return workshop.Outcome(2, failed + wrong, f"{told}\n{at_random}")


def write_levels():
    """What holds now is asked for from now on."""
    for level in LEVELS:
        ends = re.findall(r"^(held|failed|died) (\w+)\.(\w+)\t", run("--at-level", level), re.MULTILINE)
        suites = {}
        for end, suite, test in ends:
            suites.setdefault(suite, {})[test] = end == "held"
        rows = [f"# Tests that are not for {level.upper()}_LEVEL, by suite."]
        for suite, tests in sorted(suites.items()):
            lower = sorted(test for test, held in tests.items() if not held)
            if lower:
                rows.append(f"{suite}: " + ("*" if len(lower) == len(tests) else " ".join(lower)))
        below(level).write_text("\n".join(rows) + "\n")


def main(arguments):
    if arguments == ["--write-levels"]:
        write_levels()
        return 0
    outcome = check_long(*arguments[:2])
    print(outcome.output, *outcome.failed, sep="\n")
    return 1 if outcome.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
