"""What the workshop's programs share: places, builds, and steps shown with their duration."""

import collections
import concurrent.futures
import contextlib
import fcntl
import os
import pathlib
import subprocess
import sys
import threading
import time

TOP = pathlib.Path(__file__).resolve().parents[2]
OUT = TOP / "out"
CORES = len(os.sched_getaffinity(0))

# What a step found: how many checks held, the names of those that did not, what to show then, and
# which could not be made, each with its reason.
Outcome = collections.namedtuple("Outcome", "passed failed output skipped", defaults=[()])


def counts(passed, failed, skipped):
    """The words that end a step and a run."""
    return f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else "")


class Failure(Exception):
    """A command that had to succeed did not; the text is its output."""


def run(command, **options):
    """Runs a command and returns (exit code, output with errors mixed in)."""
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", **options)
    return done.returncode, done.stdout


def demand(command, **options):
    code, output = run(command, **options)
    if code != 0:
        raise Failure(f"{' '.join(str(part) for part in command)}\n{output}")
    return output


def in_parallel(function, items):
    """Maps in as many threads as there are cores, results in the order of the items."""
    with concurrent.futures.ThreadPoolExecutor(CORES) as pool:
        return list(pool.map(function, items))


# The preset whose demo and tools the steps of ./dev test run: that of the tests, with sanitizers.
PROGRAMS = "host-clang"


def tree(preset):
    return OUT / preset


@contextlib.contextmanager
def building(preset):
    """One build in a tree at a time, also of several processes."""
    tree(preset).mkdir(parents=True, exist_ok=True)
    with open(tree(preset) / "building", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield


def generate(preset):
    return demand(["cmake", "--preset", preset], cwd=TOP)


def configure(preset):
    with building(preset):
        return generate(preset)


def build(preset, *targets):
    command = ["cmake", "--build", tree(preset), "-j", CORES]
    if targets:
        command += ["--target", *targets]
    with building(preset):
        generate(preset)
        return demand(command, cwd=TOP)


class Progress:
    """One line for a step: its title at once, its duration at the end, seconds between on a tty."""

    def __init__(self, title, stream):
        self.title, self.stream = title, stream
        self.ended = threading.Event()

    def __enter__(self):
        self.start = time.monotonic()
        self.stream.write(f"{self.title} ... ")
        self.stream.flush()
        if self.stream.isatty():
            threading.Thread(target=self._tick, daemon=True).start()
        return self

    def _tick(self):
        while not self.ended.wait(1):
            self.stream.write(f"\r{self.title} ... {time.monotonic() - self.start:.0f} s ")
            self.stream.flush()

    def end(self, result):
        self.ended.set()
        back = f"\r{self.title} ... " if self.stream.isatty() else ""
        self.stream.write(f"{back}{time.monotonic() - self.start:.1f} s, {result}\n")
        self.stream.flush()

    def __exit__(self, kind, value, trace):
        if kind is not None:
            self.end("failed")


def step(title, function, *arguments):
    """For the verbs that do one thing: shows the step on stderr, ends the program if it fails."""
    try:
        with Progress(title, sys.stderr) as progress:
            result = function(*arguments)
            progress.end("done")
        return result
    except Failure as failure:
        sys.stderr.write(f"{failure}\n")
        sys.exit(1)
