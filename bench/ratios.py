#!/usr/bin/env python3
"""Reads the JSON of a benchmark run and puts the library beside its peers in the same run.

A benchmark named "NAME/ours" is put beside every "NAME/PEER": the hand-written floor first, then
others in the order of the run, a table for each peer. With repetitions the medians are compared.
Names that end with a number, "NAME/4", "NAME/16" ..., are a table of growth: the times beside the
fewest and the most, their ratio, and the power of the number that this is (0 for what does not
grow, 1 for what grows as the number does, 2 for its square). All other names are listed below the
tables.

usage: ratios.py [FILE]     the file, or standard input
"""

import json
import math
import sys


WAITING = "/real_time"  # ends the name of what waits for another process


def median_times(report):
    """Nanoseconds by benchmark name: the median of its repetitions, or its only run. They are those
    of the processor, or of the clock for what waits."""
    units = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    medians = {}
    single = {}
    for entry in report["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit(f"ratios.py: '{entry['name']}' failed: {entry.get('error_message', '')}")
        name = entry["run_name"].removesuffix(WAITING)
        kind = "cpu_time" if name == entry["run_name"] else "real_time"
        time = entry[kind] * units[entry["time_unit"]]
        if entry.get("run_type") != "aggregate":
            single[name] = time
        elif entry["aggregate_name"] == "median":
            medians[name] = time
    return single | medians


def pairs(times):
    """Peer -> names that have a benchmark of ours and one of the peer's; the floor is first."""
    found = {"floor": []}
    for name in times:
        base, _, peer = name.rpartition("/")
        if peer != "ours" and f"{base}/ours" in times:
            found.setdefault(peer, []).append(base)
    return {peer: names for peer, names in found.items() if names}


def print_table(times, peer, names, width):
    print(f"{'':{width}}  {'ours':>10}  {peer:>10}  {f'ours / {peer}':>15}")
    for name in names:
        ours, theirs = times[f"{name}/ours"], times[f"{name}/{peer}"]
        print(f"{name:{width}}  {ours:7.1f} ns  {theirs:7.1f} ns  {ours / theirs:15.2f}")
    print()


def growths(times):
    """Name -> the numbers that it was measured with, for names with more than one."""
    found = {}
    for name in times:
        base, _, number = name.rpartition("/")
        if number.isdecimal():
            found.setdefault(base, []).append(int(number))
    return {name: sorted(numbers) for name, numbers in found.items() if len(numbers) > 1}


def print_growths(times, found, width):
    print(f"{'growth':{width}}  {'fewest':>20}  {'most':>23}  {'ratio':>8}  power")
    for name, numbers in found.items():
        fewest, most = numbers[0], numbers[-1]
        first, last = times[f"{name}/{fewest}"], times[f"{name}/{most}"]
        power = math.log(last / first) / math.log(most / fewest)
        print(f"{name:{width}}  {fewest:6}: {first:9.1f} ns  {most:6}: {last:12.1f} ns  "
              f"{last / first:8.2f}  {power:5.2f}")
    print()


def print_tables(times):
    peers = pairs(times)
    grown = growths(times)
    if not peers and not grown:
        sys.exit("ratios.py: the report holds neither a pair of NAME/ours and NAME/PEER nor a growth")
    width = max(len(name) for names in [*peers.values(), grown] for name in names)
    for peer, names in peers.items():
        print_table(times, peer, names, width)
    if grown:
        print_growths(times, grown, width)
    shown = {f"{name}/{side}" for peer, names in peers.items() for name in names
             for side in ("ours", peer)}
    shown |= {f"{name}/{number}" for name, numbers in grown.items() for number in numbers}
    for name, time in times.items():
        if name not in shown:
            print(f"{name:{width}}  {time:7.1f} ns")


def main():
    if len(sys.argv) > 2 or sys.argv[1:2] in (["-h"], ["--help"]):
        sys.exit(__doc__)
    try:
        with open(sys.argv[1], encoding="utf-8") if len(sys.argv) == 2 else sys.stdin as file:
            report = json.load(file)
    except (OSError, ValueError) as problem:
        sys.exit(f"ratios.py: cannot read the report: {problem}")
    print_tables(median_times(report))


if __name__ == "__main__":
    main()
