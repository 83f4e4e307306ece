"""./dev mutants: every mutant of the product, and which test sees it.

usage: ./dev mutants [FOLDER | FILE ...]          runs what has no verdict yet, then reports
       ./dev mutants --quick [FOLDER | FILE ...]  the same with the conformance tests only
       ./dev mutants --again [FOLDER | FILE ...]  runs the survivors anew: with all tests, or new ones
       ./dev mutants --sample COUNT [SEED]        so many at random, whatever their verdicts
       ./dev mutants --report [FOLDER | FILE ...] only reports

Each source is compiled once with all its mutants woven in (mutantPlaces.py, mutantBuild.py), and the
containers with the tests that use them (mutantHeaders.py). Each test program runs once without a
mutant: that tells which test reaches which place. A mutant then meets the tests that reach it: those
that saw its neighbours, the conformance tests, the other programs, those first that are quick and reach
little else, until one fails, crashes or takes too long.

Verdicts are kept in out/mutants/verdicts until the source changes. A survivor that nothing can observe
stands with its reason in tests/mutants/unobservable.json, by file, function and text. The report fails
for one that does not stand there, and for one that stands there and is killed."""

import collections
import concurrent.futures
import contextlib
import dataclasses
import json
import os
import random
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time

import mutantBuild
import mutantHeaders
import workshop

HERE = mutantBuild.HERE
VERDICTS = HERE / "verdicts"
LISTED = workshop.TOP / "tests/mutants/unobservable.json"
WORKERS = 3 * workshop.CORES  # some wait
SAMPLE = 60

# A program that takes so many times its time, and these seconds, hangs: of the processor, and in all.
BUSY, LEAST_BUSY = 4, 1
PATIENCE, LEAST_PATIENCE = 10, 20
MOST_SECONDS = 60  # of tests for one mutant; beyond, its verdict says what was not run
MOST_FILTER = 100_000  # characters of one argument
FIRST = "conformance_tests"  # the most tests for the time
START_SECONDS = 0.05  # of a program, to begin with
NARROW = 16  # of its tests, before the others
MOST_HINTS, HINT_SECONDS = 4, 0.05  # tests that saw neighbours, and how long one of them takes
LIMITS = ["prlimit", "--core=0", f"--data={4 << 30}", f"--fsize={256 << 20}"]
CANNOT_RUN = (126, 127)  # what prlimit says then
REACH_SECONDS = 300

KILLED, SURVIVED, UNREACHED, NOT_COMPILED = "killed", "survived", "unreached", "not compiled"
FAILED_TEST = re.compile(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", re.MULTILINE)
BEGUN_TEST = re.compile(r"^\[ RUN      \] (\S+)", re.MULTILINE)
KEY = ("file", "function", "text", "kind", "before", "after")


@dataclasses.dataclass
class Reached:
    """What the tests of a program reach."""

    program: mutantBuild.Program
    tests: dict  # name -> seconds
    width: dict  # name -> how many places it reaches
    numbers: dict  # number -> names of tests
    around: set  # numbers that are reached before the first and after the last
    unusable: set = dataclasses.field(default_factory=set)  # tests that fail or are skipped by themselves

    def meeting(self, names):
        return sum(self.tests[name] for name in names), self, names


def limited(command, folder, busy, seconds, **variables):
    """(exit code or None for a hang, output) of a program in a group of its own, for so many seconds
    of the processor and in all."""
    environment = {**os.environ, "TMPDIR": folder, **variables}
    with tempfile.TemporaryFile() as output:
        running = subprocess.Popen([*LIMITS, f"--cpu={int(busy)}", *map(str, command)], stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.STDOUT, cwd=folder, env=environment,
                                   process_group=0)
        try:
            code = running.wait(seconds)
        except subprocess.TimeoutExpired:
            code = None
        try:
            os.killpg(running.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        running.wait()
        output.seek(max(0, output.seek(0, 2) - 20_000))
        return code, output.read().decode(errors="replace")


@contextlib.contextmanager
def fresh_folder():
    """A folder for a program's files, which tests also see that become another user."""
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o755)
        yield folder


# Which test reaches what.

def reach(program):
    """Runs the program as it is, unless that is known since it was linked."""
    if not program.log.exists():
        program.log.parent.mkdir(parents=True, exist_ok=True)
        with fresh_folder() as folder:
            limited([program.path], folder, REACH_SECONDS, REACH_SECONDS,
                    OXDIAG_MUTANT_PLACES=str(program.log))
    return read_reached(program, program.log)


def read_reached(program, log):
    tests, width, numbers, around, unusable = {}, {}, collections.defaultdict(list), set(), set()
    for line in log.read_text().splitlines() if log.exists() else []:
        name, microseconds, *reached = line.split()
        if name in "-+":
            around.update(map(int, reached))
        elif name.startswith("!"):
            unusable.add(name[1:])
        else:
            tests[name] = int(microseconds) / 1e6
            width[name] = len(reached)
            for number in reached:
                numbers[int(number)].append(name)
    return Reached(program, tests, width, dict(numbers), around, unusable)


def filters(names, tests):
    """The names as gtest's filters, each no longer than an argument may be; of most tests, by the
    others, as gtest compares each test with each name."""
    others = set(tests) - set(names)
    if len(others) < len(names) and len(":".join(others)) < MOST_FILTER:
        return ["-" + ":".join(sorted(others))]
    parts, length = [[]], 0
    for name in names:
        if length + len(name) + 1 > MOST_FILTER:
            parts.append([])
            length = 0
        parts[-1].append(name)
        length += len(name) + 1
    return [":".join(part) for part in parts if part]


# One mutant.

def meetings(place, reached, hints):
    """(seconds, program, its tests) of what reaches the place: the tests that saw neighbours one by
    one, then whole programs, those first that are quick and reach little else. What is reached around
    the tests only, all of them may see."""
    first, found = [], []
    for each in reached:
        names = each.numbers.get(place) or (list(each.tests) if place in each.around else [])
        if not names:
            continue
        first += [each.meeting([name]) for program, name in hints
                  if program == each.program.name and name in names and each.tests[name] < HINT_SECONDS]
        narrow = sorted(names, key=lambda name: each.width[name])
        if each.program.name == FIRST:
            first += [each.meeting(narrow[:NARROW]), each.meeting(narrow[NARROW:])]
        else:
            found.append((each.width[narrow[0]], each.meeting(names)))
    found.sort(key=lambda meeting: meeting[0] * (meeting[1][0] + START_SECONDS))
    return [meeting for meeting in first + [meeting for _, meeting in found] if meeting[2]]


def meet(number, each, names, seconds, folder):
    """The test that sees the mutant and how, or None."""
    for names_filter in filters(names, {*each.tests, *each.unusable}):
        code, output = limited(
            [each.program.path, f"--gtest_filter={names_filter}", "--gtest_fail_fast"], folder,
            LEAST_BUSY + BUSY * seconds, LEAST_PATIENCE + PATIENCE * seconds, OXDIAG_MUTANT=str(number))
        if code in CANNOT_RUN and not BEGUN_TEST.search(output):
            raise workshop.Failure(f"{each.program.name} does not start\n{output}")
        if code != 0:
            is_hang = code in (None, -signal.SIGXCPU)
            return last_test(output), "hangs" if is_hang else "fails" if code > 0 else f"signal {-code}"
    return None


def judge(number, place, reached, hints, folder, is_quick=False):
    """(verdict, by whom or how many tests were run); a test that sees it becomes the first hint."""
    spent, met, left = 0.0, 0, 0
    for seconds, each, names in meetings(place, reached, list(hints)):
        is_first = each.program.name == FIRST
        if (spent + seconds > MOST_SECONDS and met) or (is_quick and not is_first):
            left += len(names)
            continue
        seen = meet(number, each, names, seconds, folder)
        if seen is not None:
            hint = (each.program.name, seen[0])
            hints[:] = [hint, *(other for other in hints if other != hint)][:MOST_HINTS]
            return KILLED, f"{hint[0]} {hint[1]} ({seen[1]})"
        spent += seconds
        met += len(names)
    if not met and not left:
        return UNREACHED, ""
    return SURVIVED, f"{met} tests" + (f", {left} not run" if left else "")


def last_test(output):
    """The test that failed, or the one within which the program died."""
    said = FAILED_TEST.findall(output) or BEGUN_TEST.findall(output)
    return said[-1] if said else ""


# What is known of a source.

class Verdicts:
    """Those of one source, kept as long as its text is the same."""

    def __init__(self, source):
        self.source, self.file = source, VERDICTS / f"{source.name}.json"
        self.digest = source.digest()
        known = json.loads(self.file.read_text()) if self.file.exists() else {}
        is_same = known.get("digest") == self.digest
        self.known = {int(number): verdict for number, verdict in known["verdicts"].items()} if is_same else {}
        self.hints = []
        self.mutants = source.mutants()
        for mutant in self.mutants:
            if not mutant["compiled"]:
                self.known[mutant["number"]] = (NOT_COMPILED, "")

    def save(self):
        self.file.parent.mkdir(parents=True, exist_ok=True)
        self.file.write_text(json.dumps({"digest": self.digest, "verdicts": self.known}))

    def key(self, mutant):
        return tuple(dict(mutant, file=self.source.name)[part] for part in KEY)


class Round:
    """Mutants at work, in as many threads as there are cores; progress on a line a minute."""

    def __init__(self, jobs, reached, is_quick=False):
        self.jobs, self.reached, self.is_quick = jobs, reached, is_quick
        self.lock = threading.Lock()
        self.done, self.killed = 0, 0
        self.start = self.said = time.monotonic()

    def run(self):
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            list(pool.map(self._one, self.jobs))

    def _one(self, job):
        verdicts, mutant = job
        base = verdicts.source.base
        with fresh_folder() as folder:
            verdict = judge(base + mutant["number"], base + mutant["place"], self.reached, verdicts.hints,
                            folder, self.is_quick)
        with self.lock:
            verdicts.known[mutant["number"]] = verdict
            verdicts.save()
            self.done += 1
            self.killed += verdict[0] == KILLED
            if time.monotonic() - self.said > 60:
                self.said = time.monotonic()
                print(f"  {self.said - self.start:.0f} s: {self.done} of {len(self.jobs)}, "
                      f"{self.killed} killed", flush=True)


# The list and the report.

def read_listed():
    """Key -> reason."""
    if not LISTED.exists():
        return {}
    return {tuple(entry[part] for part in KEY): entry["reason"] for entry in json.loads(LISTED.read_text())}


def folder_of(name):
    parts = name.split("/")
    return "/".join(parts[:3 if parts[0] == "platform" else 2])


def described(verdicts, mutant):
    verdict, more = verdicts.known[mutant["number"]]
    change = f"{mutant['before']} -> {mutant['after'] or '(nothing)'}"
    return (f"{verdicts.source.name}:{mutant['line']}: {mutant['function']}: {mutant['kind']}: {change}: "
            f"{verdict} {more}").rstrip()


def columns(all_verdicts, listed):
    """(verdicts, mutant, the column of the table that it counts in) of each mutant."""
    for verdicts in all_verdicts:
        for mutant in verdicts.mutants:
            name = verdicts.known.get(mutant["number"], ("not run", ""))[0]
            is_listed = name in (SURVIVED, UNREACHED) and verdicts.key(mutant) in listed
            yield verdicts, mutant, "listed" if is_listed else name


def report(all_verdicts):
    """The table, and what fails: open survivors, and what is listed and killed each time it occurs."""
    listed = read_listed()
    table = collections.defaultdict(collections.Counter)
    failed, killed, alive = [], set(), set()
    for verdicts, mutant, column in columns(all_verdicts, listed):
        table[folder_of(verdicts.source.name)].update(["all", column])
        (killed if column == KILLED else alive).add(verdicts.key(mutant))
        if column in (SURVIVED, UNREACHED):
            failed.append(described(verdicts, mutant))
    failed += [f"{key[0]}: {key[1]}: listed as unobservable, but killed: {key[4]} -> {key[5]}"
               for key in listed if key in killed - alive]
    passed = sum(row[column] for row in table.values() for column in (KILLED, "listed", NOT_COMPILED))
    return workshop.Outcome(passed, failed, tabled(table))


COLUMNS = ["all", NOT_COMPILED, "not run", KILLED, "listed", SURVIVED, UNREACHED]


def tabled(table):
    width = max(map(len, table), default=0)
    lines = [" " * width + "".join(f"{column:>14}" for column in COLUMNS)]
    total = collections.Counter()
    for folder, row in sorted(table.items()):
        lines.append(f"{folder:{width}}" + "".join(f"{row[column]:14}" for column in COLUMNS))
        total.update(row)
    lines.append(f"{'':{width}}" + "".join(f"{total[column]:14}" for column in COLUMNS))
    return "\n".join(lines)


def show(outcome):
    print("\n".join(outcome.failed))
    print(outcome.output)
    return 1 if outcome.failed else 0


# The verbs.

def chosen(all_verdicts, names):
    return [verdicts for verdicts in all_verdicts
            if not names or any(verdicts.source.name.startswith(name.rstrip("/")) for name in names)]


def prepare():
    mutantBuild.build()
    headers, users = mutantHeaders.make()
    sources, programs = mutantBuild.make(users)
    reached = workshop.in_parallel(reach, programs)
    empty = [each.program.name for each in reached if not each.tests]
    if empty:
        print("not used, as no test holds when nothing is mutated: " + " ".join(empty), flush=True)
    return [Verdicts(source) for source in [*sources, *headers]], [each for each in reached if each.tests]


def sample(count, seed):
    """Verdicts of so many, made anew; those that are not killed and not listed fail. Of the host's own
    platform 95 % are seen or listed, of all else every one: the sample is of that."""
    all_verdicts, reached = prepare()
    jobs = [(verdicts, mutant) for verdicts in all_verdicts for mutant in verdicts.mutants
            if mutant["compiled"] and not verdicts.source.name.startswith("platform/vexk/host/")]
    jobs = random.Random(seed).sample(jobs, min(count, len(jobs)))
    Round(jobs, reached).run()
    taken = collections.defaultdict(set)
    for verdicts, mutant in jobs:
        taken[verdicts.source.name].add(mutant["number"])
    for verdicts in all_verdicts:
        verdicts.mutants = [mutant for mutant in verdicts.mutants
                            if mutant["number"] in taken[verdicts.source.name]]
    print(f"seed {seed}", flush=True)
    return report([verdicts for verdicts in all_verdicts if verdicts.mutants])


def check():
    """The step of ./dev prove: another sample each time, its seed printed."""
    return sample(SAMPLE, random.SystemRandom().randrange(1 << 32))


def jobs_of(all_verdicts, again):
    """(verdicts, mutant) of what has no verdict, and of what is alive if it is run again."""
    jobs = []
    for verdicts in all_verdicts:
        for mutant in verdicts.mutants:
            known = verdicts.known.get(mutant["number"])
            if known is None or (again and known[0] in (SURVIVED, UNREACHED)):
                jobs.append((verdicts, mutant))
    return jobs


def run(names, again, is_quick):
    all_verdicts, reached = prepare()
    jobs = jobs_of(chosen(all_verdicts, names), again)
    print(f"{len(jobs)} mutants to run", flush=True)
    Round(jobs, reached, is_quick).run()
    return show(report(chosen(all_verdicts, names)))


def main(arguments):
    words = [word for word in arguments if word.startswith("-")]
    names = [word for word in arguments if not word.startswith("-")]
    if words not in ([], ["--again"], ["--quick"], ["--report"], ["--sample"]):
        print(__doc__, file=sys.stderr)
        return 2
    if words == ["--sample"]:
        return show(sample(int(names[0]), int(names[1]) if names[1:] else random.randrange(1 << 32)))
    if words == ["--report"]:
        sources = [*mutantBuild.sources(), *mutantHeaders.headers(mutantHeaders.users())]
        return show(report(chosen([Verdicts(source) for source in sources], names)))
    return run(names, words == ["--again"], words == ["--quick"])


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
