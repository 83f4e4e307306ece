"""./dev fuzz: the fuzz targets, each for a time, under the address and undefined-behaviour or the
thread sanitizer; and their corpora replayed, for the tests."""

import argparse
import collections
import concurrent.futures
import functools
import os
import re
import shutil
import subprocess
import sys
import threading
import time

import fuzzLedger
import programs
import workshop

PRESET = "host-fuzz"
THREAD_PRESET = "host-fuzz-thread"
REPLAY_PRESET = "host-clang"
CORPORA = workshop.TOP / "tests/fuzz/corpus"
DICTIONARIES = workshop.TOP / "tests/fuzz/words"
FOUND = workshop.OUT / "fuzz"

DEFAULT_SECONDS = 60
SECONDS_BETWEEN_LINES = 10
SLICE_SECONDS = 300  # what is lost at most of a run of all targets that somebody ends
REPLAY_TIME_LIMIT = 300
RUNS_OF_A_CHECK = 20000
MOST_LINES_KEPT = 5000
INTERRUPTED = 72  # the fuzzer's exit code

# What one input may take: milliseconds of a processor, whatever else the machine does; seconds by
# the clock, for one that waits or never ends; MiB in one allocation. And MiB that the program may
# have in all, with what the sanitizer holds back and the inputs that are kept.
Limits = collections.namedtuple("Limits", "milliseconds patience allocation memory")
USUAL = Limits(500, 20, 1, 384)
LIMITS = {
    # Its dumps have up to 256 KiB, and its recorders up to 20.
    "dumpRings": USUAL._replace(milliseconds=1000, allocation=2),
    # Each of its inputs is run by four threads.
    "pnpThreads": USUAL._replace(milliseconds=2000),
    # Its files have two portions of 1 MiB and more.
    "symbolFiles": USUAL._replace(milliseconds=1000, allocation=8),
    # The control tool takes as much memory as the other side says it needs, up to 16 MiB; here 1.
    "toldSettings": USUAL._replace(allocation=4),
    # The longest text that the tunnel copies has 1 MiB.
    "tunnelRequests": USUAL._replace(allocation=4),
}
GREEDY_LIMITS = Limits(20, 10, 16, 300)  # of the target that shows that they are kept
SLOWER = {REPLAY_PRESET: 4, THREAD_PRESET: 4}  # for want of optimisation, or by its sanitizer
LARGER = {THREAD_PRESET: 4}

# The target that takes what its input says, and what is said of each.
GREEDY = "greedy"
GREEDY_INPUTS = workshop.TOP / "tests/fuzz/limits/inputs"
SAID_OF_GREED = {"processor": "milliseconds of a processor", "waiting": "timeout after",
                 "allocation": "out-of-memory (malloc(", "memory": "out-of-memory (used:",
                 "nothing": ""}

PULSE = re.compile(r"#(\d+)\s.*\bcov: (\d+)")
DONE = re.compile(r"Done (\d+) runs")
REPRODUCER = re.compile(r"Test unit written to (\S+)")
DEMAND = re.compile(r"^finding: .*?(?=^==)", re.MULTILINE | re.DOTALL)
SAID = re.compile(r"^.*(ERROR: |WARNING: Thread|runtime error: |ntos: )", re.MULTILINE)
LINES_SHOWN = 25


def targets(preset):
    """The names, as the build lists them."""
    workshop.configure(preset)
    return (workshop.tree(preset) / "tests/fuzz/targets.txt").read_text().split()


def limits(preset, target):
    most = GREEDY_LIMITS if target == GREEDY else LIMITS.get(target, USUAL)
    return most._replace(milliseconds=most.milliseconds * SLOWER.get(preset, 1),
                         memory=most.memory * LARGER.get(preset, 1))


def limit_options(preset, target):
    most = limits(preset, target)
    return [f"-timeout={most.patience}", f"-rss_limit_mb={most.memory}",
            f"-malloc_limit_mb={most.allocation}"]


def environment(preset, target):
    """The first data race ends the program, so that the fuzzer keeps the input. What is freed and
    held back counts as memory of the program, so that is not much."""
    usual = programs.environment()
    return dict(usual, TSAN_OPTIONS="halt_on_error=1",
                ASAN_OPTIONS=usual["ASAN_OPTIONS"] + ":quarantine_size_mb=64",
                OXDIAG_FUZZ_MILLISECONDS=str(limits(preset, target).milliseconds))


def program_of(preset, target):
    return workshop.tree(preset) / "tests/fuzz/bin" / f"fuzz.{target}"


def call(preset, target, *options, program=None):
    """The command that starts a target, or a copy of it, with its dictionary if it has one."""
    command = [*programs.without_random_layout(preset), program or program_of(preset, target),
               *options]
    dictionary = DICTIONARIES / f"{target}.txt"
    if dictionary.exists():
        command.append(f"-dict={dictionary}")
    return [str(part) for part in command]


def told(output):
    """What a target said of its finding: a demand says all, a sanitizer needs its call stack."""
    if demand := DEMAND.search(output):
        return demand[0].rstrip()
    said = SAID.search(output)
    return "\n".join(output[said.start() if said else 0:].splitlines()[:LINES_SHOWN])


class Run:
    """One target at work: its progress is printed from time to time, its end in any case."""

    printing = threading.Lock()

    def __init__(self, preset, target, seconds, program=None):
        self.preset, self.target, self.seconds = preset, target, round(seconds)
        self.program = program
        self.inputs, self.findings = FOUND / target / "inputs", FOUND / target / "findings"
        self.runs = self.coverage = 0
        self.passed, self.busy, self.finding = 0.1, 0.0, ""
        self.output = collections.deque(maxlen=MOST_LINES_KEPT)

    def say(self, text):
        with Run.printing:
            print(f"{self.target}: {text}", flush=True)

    def state(self):
        return (f"{self.passed:.0f} s, {self.runs:,} runs, {self.runs / self.passed:,.0f} a second, "
                f"coverage {self.coverage}")

    def command(self):
        for folder in (self.inputs, self.findings):
            folder.mkdir(parents=True, exist_ok=True)
        return call(self.preset, self.target, f"-max_total_time={self.seconds}",
                    *limit_options(self.preset, self.target),
                    f"-artifact_prefix={self.findings}/", self.inputs, CORPORA / self.target,
                    program=self.program)

    def listen(self, lines, start):
        spoken = start
        for line in lines:
            self.output.append(line)
            if pulse := PULSE.match(line):
                self.runs, self.coverage = int(pulse[1]), int(pulse[2])
            if done := DONE.match(line):
                self.runs = int(done[1])
            self.passed = max(time.monotonic() - start, 0.1)
            if time.monotonic() - spoken >= SECONDS_BETWEEN_LINES:
                spoken = time.monotonic()
                self.say(self.state())

    def await_end(self, process):
        """Notes for how long a processor was its, but no longer than the clock says."""
        _, state, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(state)
        self.busy = min(self.passed, usage.ru_utime + usage.ru_stime)

    def work(self):
        """True when nothing was found."""
        self.say(f"{self.seconds} s from now")
        start = time.monotonic()
        with subprocess.Popen(self.command(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace",
                              env=environment(self.preset, self.target)) as process:
            self.listen(process.stdout, start)
            self.await_end(process)
        if process.returncode == INTERRUPTED:
            raise KeyboardInterrupt
        if process.returncode == 0:
            self.say(f"{self.state()}, no finding")
        else:
            self.report("".join(self.output), process.returncode)
        return process.returncode == 0

    def report(self, output, code):
        reproducer = REPRODUCER.search(output)
        path = reproducer[1] if reproducer else ""
        self.finding = path or f"exit code {code}"
        again = " ".join(call(self.preset, self.target, path))
        self.say(f"{self.state()}, FINDING, exit code {code}\n{told(output)}\n"
                 f"reproducer: {path or 'none was written'}\n"
                 f"again with:  {again}")


def build(preset, names):
    workshop.step("build the fuzz targets", workshop.build, preset,
                  *(f"fuzz.{name}" for name in names))


def fuzz(preset, names, seconds):
    build(preset, names)
    held = workshop.in_parallel(lambda name: Run(preset, name, seconds).work(), names)
    findings = held.count(False)
    print(f"{len(names) - findings} of {len(names)} targets without a finding, {seconds:g} s each")
    return 1 if findings else 0


class Campaign:
    """All targets for so many seconds of a processor each, as often as it takes: what is done is in
    the ledger. A machine that has other work makes it longer, not less.
    The programs are copies, so that meanwhile others can be built."""

    def __init__(self, preset, names, seconds):
        self.preset, self.seconds = preset, seconds
        suffix = "-thread" if preset == THREAD_PRESET else ""
        self.ledger = fuzzLedger.Ledger(FOUND / f"ledger{suffix}.json")
        self.programs = {name: fuzzLedger.state_of(program_of(preset, name)) for name in names}
        self.copies = FOUND / "programs" / preset
        self.copies.mkdir(parents=True, exist_ok=True)
        for name in names:
            shutil.copy(program_of(preset, name), self.copies / name)

    def lacking(self, name):
        return self.ledger.lacking(name, self.programs[name], self.seconds)

    def run(self, name):
        while (lacking := self.lacking(name)) >= 1:
            run = Run(self.preset, name, min(lacking, SLICE_SECONDS), self.copies / name)
            try:
                run.work()
            finally:
                self.ledger.add(name, self.programs[name], run.busy, run.runs, run.coverage,
                                run.finding)

    def report(self):
        """The table; true when every target has had its time without a finding."""
        for name, program in self.programs.items():
            entry = self.ledger.entry(name, program)
            state = f"FINDING {entry.finding}" if entry.finding else (
                f"{self.lacking(name) / 60:.0f} minutes are left" if self.lacking(name) >= 1 else "")
            print(f"{name:20} {entry.seconds / 60:5.1f} minutes {entry.runs:12,} runs "
                  f"{entry.coverage:6} edges  {state}".rstrip())
        return not any(self.lacking(name) >= 1 or self.ledger.entry(name, program).finding
                       for name, program in self.programs.items())


def fuzz_each(preset, names, seconds):
    build(preset, names)
    campaign = Campaign(preset, names, seconds)
    pool = concurrent.futures.ThreadPoolExecutor(workshop.CORES)
    try:
        list(pool.map(campaign.run, names))
    except KeyboardInterrupt:
        pool.shutdown(cancel_futures=True)
    return 0 if campaign.report() else 1


def positive(text):
    number = float(text)
    if not 0 < number < float("inf"):
        raise ValueError
    return number


def words_of(arguments):
    parser = argparse.ArgumentParser(prog="./dev fuzz", description=__doc__)
    parser.add_argument("target", nargs="?", default="all", help="one of --list, or all")
    parser.add_argument("seconds", nargs="?", type=positive, default=DEFAULT_SECONDS,
                        help=f"for each target, {DEFAULT_SECONDS} by default")
    parser.add_argument("--minutes", type=positive, help="in place of seconds")
    parser.add_argument("--each", action="store_true",
                        help="go on until each target has had its time, over as many calls as it takes")
    parser.add_argument("--thread", action="store_true",
                        help="under the thread sanitizer, not those for addresses and undefined behaviour")
    parser.add_argument("--list", action="store_true", help="the names of the targets")
    words = parser.parse_args(arguments)
    words.seconds = words.minutes * 60 if words.minutes else words.seconds
    return parser, words


def main(arguments):
    parser, words = words_of(arguments)
    preset = THREAD_PRESET if words.thread else PRESET
    known = targets(preset)
    if words.list:
        print("\n".join(known))
        return 0
    if words.target not in ["all", *known]:
        parser.error(f"'{words.target}' is no target: {' '.join(known)}")
    names = known if words.target == "all" else [words.target]
    return (fuzz_each if words.each else fuzz)(preset, names, words.seconds)


def run_limited(preset, target, name, options_in):
    """Exit code and output of a target with the options and inputs that `options_in` gives for a
    fresh folder of that name."""
    folder = workshop.tree(preset) / "runs" / f"fuzz.{name}"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    limit = ["timeout", "-k", "5", REPLAY_TIME_LIMIT]
    options = [*limit_options(preset, target), f"-artifact_prefix={folder}/", *options_in(folder)]
    return workshop.run([*limit, *call(preset, target, *options)],
                        env=environment(preset, target))


def run_for_check(preset, target, inputs_of):
    """What is wrong with a target over the inputs, if anything is."""
    corpus = sorted((CORPORA / target).glob("*"))
    code, output = run_limited(preset, target, target,
                               lambda folder: inputs_of(corpus, folder, target))
    if code != 0 or not corpus:
        return f"{target}: exit code {code}, {len(corpus)} inputs\n{told(output)}"
    return ""


def greed_complaint(preset, name):
    """What is wrong with how a limit is kept, by the input that takes more of it."""
    code, output = run_limited(preset, GREEDY, f"{GREEDY}.{name}",
                               lambda folder: [GREEDY_INPUTS / name])
    said = SAID_OF_GREED[name]
    if (code == 0) == (name == "nothing") and said in output:
        return ""
    return f"an input that takes too much, {name}: exit code {code}, not said: '{said}'\n{output}"


def check_targets(preset, inputs_of):
    workshop.build(preset, "fuzz_targets", f"fuzz.{GREEDY}")
    names = targets(preset)
    checks = {f"fuzz limits: {name}": functools.partial(greed_complaint, preset, name)
              for name in SAID_OF_GREED}
    checks |= {f"fuzz {name}": functools.partial(run_for_check, preset, name, inputs_of)
               for name in names}
    complaints = workshop.in_parallel(lambda check: check(), checks.values())
    failed = [check for check, complaint in zip(checks, complaints) if complaint]
    return workshop.Outcome(len(checks) - len(failed), failed or ([] if names else ["fuzz: none"]),
                            "\n".join(filter(None, complaints)))


def check_corpora():
    """Every committed input, in the tree that the tests have anyway: that needs no coverage."""
    return check_targets(REPLAY_PRESET, lambda corpus, folder, target: corpus)


def check_runs():
    """A fixed number of inputs that are made from the committed ones."""
    return check_targets(PRESET, lambda corpus, folder, target: [
        f"-runs={RUNS_OF_A_CHECK}", "-seed=1", folder, CORPORA / target])


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except workshop.Failure as failure:
        sys.exit(str(failure))
    except KeyboardInterrupt:
        sys.exit(130)
