"""A Wine prefix of the project's own: drivers are put in, started, stopped, and nothing stays."""

import contextlib
import fcntl
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys

import workshop

FOLDER = workshop.OUT / "wine"
PREFIX = FOLDER / "prefix"
DRIVE_C = PREFIX / "drive_c"
DRIVERS = DRIVE_C / "windows/system32/drivers"
DRIVERS_IN_WINDOWS = "C:\\windows\\system32\\drivers\\"
SERVICES = r"HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services"
BOOT = "oxdiagboot"
CONTROL_DRIVER = "oxdiagcontrol"
NAMES = [BOOT, CONTROL_DRIVER, f"{CONTROL_DRIVER}2", "oxdiagtest", "oxdiagpnp", "oxdiagbench", "slotbus", "slotbus2",
         "hello"]
CALL_LIMIT = 60  # seconds for one call of Wine
RUN_LIMIT = 300  # seconds for everything that starting a driver does

# The service manager gives a starting driver ten seconds, tests may take longer.
CONTROL = r"HKEY_LOCAL_MACHINE\System\CurrentControlSet\Control"
START_LIMIT = f'"ServicesPipeTimeout"="{RUN_LIMIT * 1000}"'

# A kernel driver that is started on demand.
DRIVER_VALUES = ['"Type"=dword:00000001', '"Start"=dword:00000003', '"ErrorControl"=dword:00000001']
REGISTRY_HEAD = ["Windows Registry Editor Version 5.00", ""]

# How Wine shows one call of the debugger print; the final newline of its text is lost.
PRINT = re.compile(r"^[0-9a-f]+:\w+:debugstr:vDbgPrintExWithPrefix [0-9a-f]{8}:[0-9a-f]{8}: (.*)$")
FULL_PIECE = 255  # a text of that length comes from a full line buffer: its line goes on


def environment():
    without = {"DISPLAY", "WAYLAND_DISPLAY"}
    clean = {name: value for name, value in os.environ.items() if name not in without}
    return dict(clean, WINEPREFIX=str(PREFIX), WINEARCH="win64", WINEDEBUG="-all,+debugstr",
                WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=")


def call(*command, errors=subprocess.DEVNULL, limit=CALL_LIMIT):
    """One program of Wine; returns its exit code, or None when it took too long."""
    try:
        return subprocess.run(command, env=environment(), stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=errors, timeout=limit).returncode
    except subprocess.TimeoutExpired:
        return None


def demand_call(*command, errors=subprocess.DEVNULL):
    code = call(*command, errors=errors)
    if code != 0:
        raise workshop.Failure(f"{' '.join(command)}: {'no end' if code is None else code}")


def stop_server():
    call("wineserver", "-k")
    call("wineserver", "-w")


def processes():
    """The processes that live in the prefix, by what their environment says."""
    mark = f"WINEPREFIX={PREFIX}\0".encode()
    found = []
    for path in pathlib.Path("/proc").glob("[0-9]*/environ"):
        with contextlib.suppress(OSError):
            if mark in path.read_bytes() and int(path.parent.name) != os.getpid():
                found.append(int(path.parent.name))
    return found


def image_path(name):
    return f"{DRIVERS_IN_WINDOWS}{name}.sys".replace("\\", "\\\\")


def prefix_registry():
    """The services, written into the registry: the service manager, which reads them when it starts,
    at times refuses to make them in a prefix that is a few seconds old."""
    lines = [*REGISTRY_HEAD, f"[{CONTROL}]", START_LIMIT, ""]
    for name in NAMES:
        lines += [f"[{SERVICES}\\{name}]", *DRIVER_VALUES, f'"ImagePath"="{image_path(name)}"', ""]
    return "\r\n".join(lines)


def create_prefix():
    """Made once; a prefix that was not finished, or has other drivers, is made anew."""
    stamp = FOLDER / "prefix.complete"
    drivers = " ".join(NAMES)
    if stamp.exists() and stamp.read_text() == drivers:
        return
    shutil.rmtree(PREFIX, ignore_errors=True)
    FOLDER.mkdir(parents=True, exist_ok=True)
    try:
        demand_call("wineboot", "-i")
        script = FOLDER / "prefix.reg"
        script.write_bytes(prefix_registry().encode("utf-16"))
        demand_call("wine", "reg", "import", str(script))
    finally:
        stop_server()
    stamp.write_text(drivers)


def registry_text(values):
    """A registry script that sets string values of services and removes those that are None."""
    lines = list(REGISTRY_HEAD)
    for service, settings in values.items():
        lines.append(f"[{SERVICES}\\{service}]")
        for name, value in settings.items():
            quoted = (value or "").replace("\\", "\\\\").replace('"', '\\"')
            lines.append(f'"{name}"=-' if value is None else f'"{name}"="{quoted}"')
        lines.append("")
    return "\r\n".join(lines)


def text_of_prints(raw):
    """The texts of the debugger print, one a call; what Wine itself says follows as it comes."""
    texts = []
    for line in raw.splitlines():
        match = PRINT.match(line)
        if match:
            texts.append(match.group(1))
        elif texts:
            texts[-1] += f"\n{line}"
        else:
            texts.append(line)
    return texts


def lines_of_texts(texts):
    """What a person at the debugger would see: pieces of a long line joined again."""
    lines, goes_on = [], False
    for text in texts:
        if goes_on:
            lines[-1] += text
        else:
            lines.append(text)
        goes_on = len(text) == FULL_PIECE
    return "\n".join(lines).split("\n")


class Run:
    """What one run of a driver gave."""

    def __init__(self):
        self.started = self.stopped = self.timed_out = False
        self.processes_seen = 0
        self.texts = []


def start_and_stop(run, log, limit):
    """The first call starts the prefix's server, whose error stream gets the debugger print."""
    script = FOLDER / "services.reg"
    demand_call("wine", "reg", "import", str(script), errors=log)
    code = call("wine", "sc", "start", BOOT, limit=limit)
    run.started, run.timed_out = code == 0, code is None
    run.processes_seen = len(processes())
    if run.started:
        run.stopped = call("wine", "sc", "stop", BOOT) == 0


@contextlib.contextmanager
def alone():
    """One run at a time in this prefix, begun without what a killed run may have left, and ended
    in order also when this program is told to end."""
    FOLDER.mkdir(parents=True, exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    with open(FOLDER / "lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if processes():
            stop_server()
        yield


def run_driver(name, files, services=None, has_rack=False, limit=RUN_LIMIT):
    """Copies files into the drivers folder and lets the boot driver load and unload `name`, with
    these values in the keys of services, and a rack plugged into the machine if asked for. `limit`:
    the seconds that its start may take, with all that it does."""
    run = Run()
    (FOLDER / "services.reg").write_bytes(registry_text({
        BOOT: {"Driver": rf"\Registry\Machine\System\CurrentControlSet\Services\{name}",
               "Rack": "1" if has_rack else None},
        **(services or {})}).encode("utf-16"))
    for target, source in files.items():
        shutil.copyfile(source, DRIVERS / target)
    print_log = FOLDER / f"{name}.log"
    try:
        with open(print_log, "wb") as log:
            start_and_stop(run, log, limit)
    finally:
        stop_server()
    run.texts = text_of_prints(print_log.read_text(errors="replace"))
    return run
