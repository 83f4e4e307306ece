#!/usr/bin/env python3
"""Reads the JSON of a benchmark run and puts the library beside its peers in the same run.

A benchmark named "NAME/ours" is put beside every "NAME/PEER": the hand-written floor first, then
others in the order of the run, a table for each peer. With repetitions the shortest are compared.
Names that end with a number, "NAME/4", "NAME/16" ..., are a table of growth: the times beside the
fewest and the most, their ratio, and the power of the number that this is (0 for what does not
grow, 1 for what grows as the number does, 2 for its square). All other names are listed below the
tables.

usage: ratios.py [FILE]     the file, or standard input
"""

import math
import sys

import results


def by_peer(times):
    """Peer -> names that have a benchmark of ours and one of the peer's; the floor is first."""
    found = {"floor": []}
    for base, names in results.peers(times).items():
        for peer in names:
            found.setdefault(peer, []).append(base)
    return {peer: names for peer, names in found.items() if names}


def peer_table(times, peer, names, width):
    lines = [f"{'':{width}}  {'ours':>10}  {peer:>10}  {f'ours / {peer}':>15}"]
    for name in names:
        ours, theirs = times[f"{name}/ours"], times[f"{name}/{peer}"]
        lines.append(f"{name:{width}}  {ours:7.1f} ns  {theirs:7.1f} ns  {ours / theirs:15.2f}")
    return lines


def power(times, name, numbers):
    """The power of the number that the time grows with, from the fewest to the most."""
    ratio = times[f"{name}/{numbers[-1]}"] / times[f"{name}/{numbers[0]}"]
    return math.log(ratio) / math.log(numbers[-1] / numbers[0])


def growth_table(times, found, width):
    lines = [f"{'growth':{width}}  {'fewest':>20}  {'most':>23}  {'ratio':>8}  power"]
    for name, numbers in found.items():
        fewest, most = numbers[0], numbers[-1]
        first, last = times[f"{name}/{fewest}"], times[f"{name}/{most}"]
        lines.append(f"{name:{width}}  {fewest:6}: {first:9.1f} ns  {most:6}: {last:12.1f} ns  "
                     f"{last / first:8.2f}  {power(times, name, numbers):5.2f}")
    return lines


def tables(times):
    peers = by_peer(times)
    grown = results.growths(times)
    width = max((len(name) for names in [*peers.values(), grown] for name in names), default=0)
    lines = []
    for peer, names in peers.items():
        lines += [*peer_table(times, peer, names, width), ""]
    if grown:
        lines += [*growth_table(times, grown, width), ""]
    shown = {f"{name}/{side}" for peer, names in peers.items() for name in names
             for side in ("ours", peer)}
    shown |= {f"{name}/{number}" for name, numbers in grown.items() for number in numbers}
    lines += [f"{name:{width}}  {time:7.1f} ns" for name, time in times.items()
              if name not in shown]
    return "\n".join(lines)


if __name__ == "__main__":
    print(tables(results.load(sys.argv[1:], "ratios.py", __doc__)))
