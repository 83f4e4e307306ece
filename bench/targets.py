#!/usr/bin/env python3
"""Reads the JSON of a benchmark run and holds the library against its targets.

targets.json names for each work what ours may be of the floor's time, or of a peer's, in the same
run. The table shows both, and of the peers the best one.

usage: targets.py [FILE]     the file, or standard input
"""

import json
import pathlib
import sys

import results

TARGETS = pathlib.Path(__file__).with_name("targets.json")
HEADINGS = ["work", "ours", "floor", "best peer", "of floor", "of peer", "target", "met"]


def read_targets():
    return json.loads(TARGETS.read_text())


def best_peer(times, work, wanted):
    """The peer that a target names, else the fastest; None without one."""
    others = [peer for peer in results.peers(times).get(work, []) if peer != "floor"]
    named = [peer for peer in others if peer in wanted]
    return min(named or others, key=lambda peer: times[f"{work}/{peer}"], default=None)


def nanoseconds(time):
    return "" if time is None else f"{time:.1f} ns"


def row(times, work, wanted):
    """The cells of one work; None when the run did not measure what its targets name."""
    if any(f"{work}/{side}" not in times for side in ("ours", *wanted)):
        return None
    ours = times[f"{work}/ours"]
    floor = times.get(f"{work}/floor")
    peer = best_peer(times, work, wanted)
    theirs = times.get(f"{work}/{peer}")
    is_met = all(ours <= limit * times[f"{work}/{side}"] for side, limit in wanted.items())
    return [work, nanoseconds(ours), nanoseconds(floor),
            "" if peer is None else f"{peer} {nanoseconds(theirs)}",
            "" if floor is None else f"{ours / floor:.2f}",
            "" if peer is None else f"{ours / theirs:.2f}",
            ", ".join(f"{limit:g} x {side}" for side, limit in wanted.items()),
            "yes" if is_met else "NO"]


def rows(times, targets):
    """(the rows of what was measured, the works that were not)."""
    found = {work: row(times, work, wanted) for work, wanted in targets.items()}
    return ([cells for cells in found.values() if cells],
            [work for work, cells in found.items() if cells is None])


def as_text(cells):
    lines = [HEADINGS, *cells]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    aligned = [[text.ljust(width) if column in (0, 3, 6) else text.rjust(width)
                for column, (text, width) in enumerate(zip(line, widths))] for line in lines]
    return "\n".join("  ".join(line).rstrip() for line in aligned)


def as_markdown(cells):
    rule = ["---" if column in (0, 3, 6) else "---:" for column in range(len(HEADINGS))]
    return "\n".join("| " + " | ".join(line) + " |" for line in [HEADINGS, rule, *cells])


def summary(cells):
    met = sum(line[-1] == "yes" for line in cells)
    return f"{met} of {len(cells)} targets met"


def tables(times):
    cells, missing = rows(times, read_targets())
    lines = [as_text(cells), summary(cells)] if cells else []
    return "\n".join(lines + [f"not measured: {work}" for work in missing])


if __name__ == "__main__":
    print(tables(results.load(sys.argv[1:], "targets.py", __doc__)))
