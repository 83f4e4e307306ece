#!/usr/bin/env python3
"""Reads the JSON of a benchmark run and puts the library beside the hand-written floor.

A benchmark named "NAME/ours" is put beside "NAME/floor" of the same run. With repetitions the
medians are compared. Names without such a pair are listed below the table.

usage: ratios.py [FILE]     the file, or standard input
"""

import json
import sys


def median_times(report):
    """CPU nanoseconds by benchmark name: the median of its repetitions, or its only run."""
    units = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    medians = {}
    single = {}
    for entry in report["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit(f"ratios.py: '{entry['name']}' failed: {entry.get('error_message', '')}")
        time = entry["cpu_time"] * units[entry["time_unit"]]
        if entry.get("run_type") != "aggregate":
            single[entry["run_name"]] = time
        elif entry["aggregate_name"] == "median":
            medians[entry["run_name"]] = time
    return single | medians


def print_table(times):
    names = [name.removesuffix("/ours") for name in times if name.endswith("/ours")]
    paired = [name for name in names if f"{name}/floor" in times]
    if not paired:
        sys.exit("ratios.py: the report holds no pair of NAME/ours and NAME/floor")
    width = max(len(name) for name in paired)
    print(f"{'':{width}}  {'ours':>10}  {'floor':>10}  {'ours / floor':>12}")
    for name in paired:
        ours, floor = times[f"{name}/ours"], times[f"{name}/floor"]
        print(f"{name:{width}}  {ours:7.1f} ns  {floor:7.1f} ns  {ours / floor:12.2f}")
    shown = {f"{name}/{side}" for name in paired for side in ("ours", "floor")}
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
    print_table(median_times(report))


if __name__ == "__main__":
    main()
