#!/usr/bin/env python3
"""Reads the JSON of a benchmark run and puts the library beside its peers in the same run.

A benchmark named "NAME/ours" is put beside every "NAME/PEER": the hand-written floor first, then
others in the order of the run, a table for each peer. With repetitions the medians are compared.
Names that are in no such pair are listed below the tables.

usage: ratios.py [FILE]     the file, or standard input
"""

import json
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


def print_tables(times):
    peers = pairs(times)
    if not peers:
        sys.exit("ratios.py: the report holds no pair of NAME/ours and NAME/PEER")
    width = max(len(name) for names in peers.values() for name in names)
    for peer, names in peers.items():
        print_table(times, peer, names, width)
    shown = {f"{name}/{side}" for peer, names in peers.items() for name in names
             for side in ("ours", peer)}
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
