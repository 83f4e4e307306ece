"""Starts the image of the metal tests on an emulated PC, and reads what can be seen from outside."""

import contextlib
import os
import pathlib
import re
import subprocess
import time

import workshop

IMAGE = workshop.tree("metal") / "tests/metal/metal_tests"
TIME_LIMIT = 120  # seconds for one run; it takes a fraction of one, on a loaded machine a few
LOG_LIMIT = 100_000_000  # bytes; an image that polls for ever writes millions a second
HELD = 0x2A << 1 | 1  # what the emulator makes of kEndHeld (tests/metal/machine/report.h)

MACHINE = ["qemu-system-x86_64", "-M", "pc,hpet=on", "-bios", "qboot.rom", "-accel", "tcg",
           "-m", "16", "-nodefaults", "-no-user-config", "-display", "none", "-no-reboot",
           "-debugcon", "file:report.txt", "-device", "isa-debug-exit,iobase=0xf4,iosize=0x04",
           "-msg", "timestamp=on", "-trace", "serial_*", "-D", "registers.log",
           "-kernel", str(IMAGE)]

# What is at the serial port.
TO_FILE = ["-serial", "file:port.out"]  # CTS, DSR and DCD are set, and everything is taken at once
NEVER_READY = ["-chardev", "msmouse,id=port,logfile=port.out", "-serial", "chardev:port"]
TO_PIPE = ["-serial", "pipe:port"]  # takes bytes as long as somebody reads
ABSENT = ["-serial", "none"]

# By what the machine's time goes.
HOST_CLOCK = []
INSTRUCTIONS = ["-icount", "shift=3,sleep=off"]  # 8 ns each: every run is the same to the last poll

HOLD = 0.3  # seconds that a full pipe stays full once the log shows that the image waits for it
WAITING = 100_000  # bytes of log that only polling writes

ACCESS = re.compile(r"\d+@(\d+\.\d+):serial_(?:(write|read) \w+ addr 0x0(.) val 0x(..)"
                    r"|update_parameters baudrate=(\d+) parity='(.)' data=(.) stop=(.))$")
MARK = "W7="


class Section:
    """What happened at the port between two marks: the accesses, such as "W3=80" for a write to
    register 3 and "R6=b0" for a read of register 6, each with its time in seconds, and what the
    emulator then made of the line's settings, such as "9600 N 8 1"."""

    def __init__(self, start=0.0):
        self.start, self.accesses, self.times, self.settings = start, [], [], None


class Run:
    """The exit code (None: it never ended), the image's report, the bytes that left the port, and
    of a run that ended the sections of the register log by their marks; 0 is what comes before the
    first mark."""

    def __init__(self, code, folder, sent):
        self.code, self.sent = code, sent
        self.report = read(folder / "report.txt").decode(errors="replace").splitlines()
        log = b"" if code is None else read(folder / "registers.log")
        self.sections = sections(log.decode(errors="replace"))

    def numbers(self):
        """What the image reported with sayNumber, by name."""
        return {words[0]: int(words[1]) for words in map(str.split, self.report)
                if len(words) == 2 and words[1].isdecimal()}


def read(path):
    return path.read_bytes() if path.exists() else b""


def sections(log):
    found = {0: Section()}
    current = found[0]
    for line in log.splitlines():
        match = ACCESS.match(line)
        if not match:
            continue
        when, kind, register, value, *settings = match.groups()
        access = f"{kind[0].upper()}{register}={value}" if kind else ""
        if access.startswith(MARK):
            current = found[int(value, 16)] = Section(float(when))
        elif access:
            current.accesses.append(access)
            current.times.append(float(when))
        else:
            current.settings = " ".join(settings)
    return found


def fresh(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for path in folder.iterdir():
        path.unlink()


@contextlib.contextmanager
def started(folder, line, port, clock):
    """The emulator at work in a folder of its own; killed if it is still there at the end."""
    command = [*MACHINE, *port, "-serial", "none", *clock, "-append", line]
    with open(folder / "messages.txt", "wb") as messages:
        process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL,
                                   stdout=messages, stderr=messages)
    try:
        yield process
    finally:
        if process.poll() is None:
            process.kill()
            process.wait()


def size(path):
    return path.stat().st_size if path.exists() else 0


class Watch:
    """Looks after a run: it may last TIME_LIMIT and log LOG_LIMIT."""

    def __init__(self, process, folder):
        self.process, self.log = process, folder / "registers.log"
        self.deadline = time.monotonic() + TIME_LIMIT

    def goes_on(self):
        """Waits a little, then whether the run neither ended nor passed a limit."""
        with contextlib.suppress(subprocess.TimeoutExpired):
            self.process.wait(0.02)
        return (self.process.poll() is None and time.monotonic() < self.deadline
                and size(self.log) < LOG_LIMIT)


def run(folder, line, port, clock):
    fresh(folder)
    if port is TO_PIPE:
        return run_against_full_pipe(folder, line, clock)
    with started(folder, line, port, clock) as process:
        watch = Watch(process, folder)
        while watch.goes_on():
            pass
        code = process.poll()
    return Run(code, folder, read(folder / "port.out"))


def fill(pipe):
    """Writes until the pipe takes no more, and returns how much that was."""
    count = 0
    with contextlib.suppress(BlockingIOError):
        while True:
            count += os.write(pipe, b"." * 4096)
    with contextlib.suppress(BlockingIOError):
        while True:
            count += os.write(pipe, b".")
    return count


def drain(pipe):
    with contextlib.suppress(BlockingIOError):
        while taken := os.read(pipe, 65536):
            yield taken


def let_it_wait(watch):
    while watch.goes_on():
        if size(watch.log) > WAITING:
            time.sleep(HOLD)
            return


def run_against_full_pipe(folder, line, clock):
    """The port's pipe is full at first, and is emptied only after the image has waited for long."""
    for end in ("in", "out"):
        os.mkfifo(folder / f"port.{end}")
    pipe = os.open(folder / "port.out", os.O_RDWR | os.O_NONBLOCK)
    try:
        filler = fill(pipe)
        sent = b""
        with started(folder, line, TO_PIPE, clock) as process:
            watch = Watch(process, folder)
            let_it_wait(watch)
            while watch.goes_on():
                sent += b"".join(drain(pipe))
            code = process.poll()
        sent += b"".join(drain(pipe))
    finally:
        os.close(pipe)
    return Run(code, folder, sent[filler:])
