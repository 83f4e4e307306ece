"""./dev fuzz: the fuzz targets, each for a time, under the address and undefined-behaviour or the
thread sanitizer; and their corpora replayed, for the tests."""

import re
import shutil
import subprocess
import sys
import threading
import time

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
INPUT_TIME_LIMIT = 20  # seconds for one input; a usual one takes a thousandth of one
MEMORY_LIMIT = 2048  # MiB for the program, whatever the input
ALLOCATION_LIMIT = 256  # MiB for one allocation
LIMITS = [f"-timeout={INPUT_TIME_LIMIT}", f"-rss_limit_mb={MEMORY_LIMIT}",
          f"-malloc_limit_mb={ALLOCATION_LIMIT}"]
REPLAY_TIME_LIMIT = 300
RUNS_OF_A_CHECK = 20000

USAGE = """usage: ./dev fuzz [--thread] [TARGET | all] [SECONDS]
       ./dev fuzz --list

--thread: built with the thread sanitizer, not with those for addresses and undefined behaviour"""

PULSE = re.compile(r"#(\d+)\s.*\bcov: (\d+)")
REPRODUCER = re.compile(r"Test unit written to (\S+)")
DEMAND = re.compile(r"^finding: .*?(?=^==)", re.MULTILINE | re.DOTALL)
SAID = re.compile(r"^.*(ERROR: |WARNING: Thread|runtime error: |ntos: )", re.MULTILINE)
LINES_SHOWN = 25


def targets(preset):
    """The names, as the build lists them."""
    workshop.configure(preset)
    return (workshop.tree(preset) / "tests/fuzz/targets.txt").read_text().split()


def environment():
    """The first data race ends the program, so that the fuzzer keeps the input."""
    return dict(programs.environment(), TSAN_OPTIONS="halt_on_error=1")


def call(preset, target, *options):
    """The command that starts a target, with its dictionary if it has one."""
    program = workshop.tree(preset) / "tests/fuzz/bin" / f"fuzz.{target}"
    command = [*programs.without_random_layout(preset), program, *options]
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

    def __init__(self, preset, target, seconds):
        self.preset, self.target, self.seconds = preset, target, seconds
        self.inputs, self.findings = FOUND / target / "inputs", FOUND / target / "findings"
        self.runs = self.coverage = 0
        self.output = []

    def say(self, text):
        with Run.printing:
            print(f"{self.target}: {text}", flush=True)

    def state(self):
        passed = max(time.monotonic() - self.start, 0.1)
        return (f"{passed:.0f} s, {self.runs:,} runs, {self.runs / passed:,.0f} a second, "
                f"coverage {self.coverage}")

    def command(self):
        for folder in (self.inputs, self.findings):
            folder.mkdir(parents=True, exist_ok=True)
        return call(self.preset, self.target, f"-max_total_time={self.seconds}", *LIMITS,
                    f"-artifact_prefix={self.findings}/", self.inputs, CORPORA / self.target)

    def listen(self, lines):
        spoken = self.start
        for line in lines:
            self.output.append(line)
            if pulse := PULSE.match(line):
                self.runs, self.coverage = int(pulse[1]), int(pulse[2])
            if time.monotonic() - spoken >= SECONDS_BETWEEN_LINES:
                spoken = time.monotonic()
                self.say(self.state())

    def work(self):
        """True when nothing was found."""
        self.start = time.monotonic()
        self.say(f"{self.seconds} s from now")
        with subprocess.Popen(self.command(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace", env=environment()) as process:
            self.listen(process.stdout)
        if process.returncode == 0:
            self.say(f"{self.state()}, no finding")
        else:
            self.report("".join(self.output), process.returncode)
        return process.returncode == 0

    def report(self, output, code):
        reproducer = REPRODUCER.search(output)
        path = reproducer[1] if reproducer else ""
        again = " ".join(call(self.preset, self.target, path))
        self.say(f"{self.state()}, FINDING, exit code {code}\n{told(output)}\n"
                 f"reproducer: {path or 'none was written'}\n"
                 f"again with:  {again}")


def fuzz(preset, names, seconds):
    workshop.step("build the fuzz targets", workshop.build, preset,
                  *(f"fuzz.{name}" for name in names))
    held = workshop.in_parallel(lambda name: Run(preset, name, seconds).work(), names)
    findings = held.count(False)
    print(f"{len(names) - findings} of {len(names)} targets without a finding, {seconds} s each")
    return 1 if findings else 0


def main(arguments):
    preset = THREAD_PRESET if arguments[:1] == ["--thread"] else PRESET
    arguments = arguments[1:] if preset == THREAD_PRESET else arguments
    known = targets(preset)
    if arguments == ["--list"]:
        print("\n".join(known))
        return 0
    name, seconds = (arguments + ["all", str(DEFAULT_SECONDS)][len(arguments):])[:2]
    is_usable = len(arguments) <= 2 and seconds.isdecimal() and int(seconds) > 0
    if not is_usable or name not in ["all", *known]:
        print(f"{USAGE}\ntargets: {' '.join(known)}", file=sys.stderr)
        return 2
    return fuzz(preset, known if name == "all" else [name], int(seconds))


def run_for_check(preset, target, inputs_of):
    """What is wrong with a target over the inputs, if anything is."""
    corpus = sorted((CORPORA / target).glob("*"))
    folder = workshop.tree(preset) / "runs" / f"fuzz.{target}"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    limit = ["timeout", "-k", "5", REPLAY_TIME_LIMIT]
    options = [*LIMITS, f"-artifact_prefix={folder}/", *inputs_of(corpus, folder, target)]
    code, output = workshop.run([*limit, *call(preset, target, *options)], env=environment())
    if code != 0 or not corpus:
        return f"{target}: exit code {code}, {len(corpus)} inputs\n{told(output)}"
    return ""


def check_targets(preset, inputs_of):
    workshop.build(preset, "fuzz_targets")
    names = targets(preset)
    complaints = workshop.in_parallel(lambda name: run_for_check(preset, name, inputs_of), names)
    failed = [f"fuzz {name}" for name, complaint in zip(names, complaints) if complaint]
    return workshop.Outcome(len(names) - len(failed), failed or ([] if names else ["fuzz: none"]),
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
