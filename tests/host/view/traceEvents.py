"""Checks a file in the trace event format against the format's rules, and prints its slices.

Usage: traceEvents.py FILE

Each slice is a line: thread, begin, duration, depth, name and remark, as they begin."""

import json
import sys

NEEDED = {"M": {"name", "ph", "pid", "tid", "args"},
          "X": {"name", "ph", "pid", "tid", "ts", "dur", "cat", "args"},
          "i": {"name", "ph", "pid", "tid", "ts", "s", "cat", "args"}}


def check_members(event):
    assert set(event) == NEEDED[event["ph"]], event
    assert isinstance(event["name"], str) and isinstance(event["args"], dict), event
    assert isinstance(event["pid"], int) and isinstance(event["tid"], int), event
    for member in {"ts", "dur"} & set(event):
        assert event[member] >= 0, event
    assert event["ph"] != "i" or event["s"] in "gpt", event
    assert event["ph"] != "M" or (event["name"] == "thread_name" and event["args"]["name"]), event


def nested(slices):
    """Each slice with its depth; those of a thread lie within each other or behind each other."""
    open_until = []
    for one in slices:
        begin, end = round(one["ts"] * 1000), round((one["ts"] + one["dur"]) * 1000)
        while open_until and open_until[-1] <= begin and (open_until[-1] < end or one["dur"]):
            open_until.pop()
        assert not open_until or end <= open_until[-1], f"{one} goes beyond the slice around it"
        yield len(open_until), one
        open_until.append(end)


def main(path):
    with open(path, encoding="utf-8") as file:
        document = json.load(file)
    assert document["displayTimeUnit"] == "ns"
    events = document["traceEvents"]
    for event in events:
        check_members(event)
    named = [event["tid"] for event in events if event["ph"] == "M"]
    assert len(named) == len(set(named))
    assert {event["tid"] for event in events} == set(named), "each thread has one name"
    for thread in named:
        slices = [event for event in events if event["ph"] == "X" and event["tid"] == thread]
        slices.sort(key=lambda event: (event["ts"], -event["dur"]))
        for depth, one in nested(slices):
            remark = one["args"].get("remark", "-")
            print(f"{thread} {one['ts']:g} {one['dur']:g} {depth} {one['name']} {remark}")


main(sys.argv[1])
