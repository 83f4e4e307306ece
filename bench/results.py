"""The report of a benchmark run: what each benchmark took at best.

Repetitions differ by what else the machine does, which only ever makes them longer; so the shortest
counts. Times are those of the processor, or of the clock for what waits for another process."""

import json
import sys

WAITING = "/real_time"  # ends the name of what waits for another process
UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


class Failed(Exception):
    """A benchmark did not do its work."""


def place(entry):
    """Where a benchmark stands in the program, whatever the order of the run."""
    return entry.get("family_index", 0), entry.get("per_family_instance_index", 0)


def best_times(report):
    """Nanoseconds by benchmark name, in the order of the program: the shortest repetition."""
    best = {}
    for entry in sorted(report["benchmarks"], key=place):
        if entry.get("error_occurred"):
            raise Failed(f"'{entry['name']}' failed: {entry.get('error_message', '')}")
        if entry.get("run_type") == "aggregate":
            continue
        name = entry["run_name"].removesuffix(WAITING)
        kind = "cpu_time" if name == entry["run_name"] else "real_time"
        time = entry[kind] * UNITS[entry["time_unit"]]
        best[name] = min(time, best.get(name, time))
    return best


def best_of(runs):
    """The shorter ones of several runs of the same benchmarks."""
    best = {}
    for times in runs:
        for name, time in times.items():
            best[name] = min(time, best.get(name, time))
    return best


def growths(times):
    """Name -> the numbers that it was measured with, for names with more than one."""
    found = {}
    for name in times:
        base, _, number = name.rpartition("/")
        if number.isdecimal():
            found.setdefault(base, []).append(int(number))
    return {name: sorted(numbers) for name, numbers in found.items() if len(numbers) > 1}


def peers(times):
    """Name -> the names of those beside whom ours was measured, the floor first."""
    found = {}
    for name in times:
        base, _, peer = name.rpartition("/")
        if peer != "ours" and f"{base}/ours" in times:
            found.setdefault(base, []).append(peer)
    return {base: sorted(names, key=lambda peer: peer != "floor") for base, names in found.items()}


def load(arguments, program, usage):
    """The times of the report that a program is given: the file, or standard input."""
    if len(arguments) > 1 or arguments[:1] in (["-h"], ["--help"]):
        sys.exit(usage)
    try:
        with open(arguments[0], encoding="utf-8") if arguments else sys.stdin as file:
            return best_times(json.load(file))
    except (OSError, ValueError, Failed) as problem:
        sys.exit(f"{program}: {problem}")
