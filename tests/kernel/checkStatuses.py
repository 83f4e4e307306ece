#!/usr/bin/env python3
"""Compares the statuses that the driver saved with those that the host program saved.

The bytes have to be the same, except for what no two runs have in common:
  - the ten stack addresses of each status, but none may be missing;
  - the point in time in each description, but it has to be there.

usage: checkStatuses.py HOST KERNEL    files of statuses; exit code 1 when they differ
"""

import struct

import comparison

HEADER = b"QELM\1\0\0\0"
LOW_HALVES = 8 + 3 * 4 + 4 + 24 + 101 + 4  # behind header, code and flag, length, names, line
FLAG = LOW_HALVES + 10 * 4 + 4
OBJECT = FLAG + 2 * 4
TIME_CLASS = b"nOXDIAG100::tSSTimeAbsoluteReportable"
TIME = len(TIME_CLASS) + 2 * 4  # behind the length and the count
MASK = b"\xEE"


class Damaged(Exception):
    pass


def object_end(data, place):
    """Behind the object that begins there."""
    name_length, = struct.unpack_from("<H", data, place)
    place += 2 + name_length
    if name_length == 0:
        return place
    content_length, = struct.unpack_from("<I", data, place)
    return place + 4 + content_length


def masked(status):
    """One status without its stack addresses and times."""
    result = bytearray(status)
    if b"\0\0\0\0" == status[LOW_HALVES:LOW_HALVES + 4]:
        raise Damaged("a stack trace is empty")
    for place in (LOW_HALVES, len(status) - 10 * 4):
        result[place:place + 10 * 4] = MASK * 40
    time = status.find(TIME_CLASS)
    if struct.unpack_from("<I", status, FLAG)[0] and time < 0:
        raise Damaged("a description has no time")
    if time >= 0:
        result[time + TIME:time + TIME + 16] = MASK * 16
    return bytes(result)


def statuses(data):
    found, place = [], 0
    while place < len(data):
        if data[place:place + 8] != HEADER:
            raise Damaged(f"no status begins at byte {place}")
        end = place + OBJECT
        if struct.unpack_from("<I", data, place + FLAG)[0]:
            end = object_end(data, end)
        end += 10 * 4
        found.append(masked(data[place:end]))
        place = end
    return found


def find_differences(host, kernel):
    """A list of lines for a person; empty when both saved the same statuses."""
    try:
        host, kernel = statuses(host), statuses(kernel)
    except (Damaged, struct.error) as problem:
        return [str(problem)]
    if not host:
        return ["the host program saved no status"]
    if len(host) != len(kernel):
        return [f"the host program saved {len(host)} statuses, the driver {len(kernel)}"]
    return [f"status {number} differs: {ours.hex()} {theirs.hex()}"
            for number, (ours, theirs) in enumerate(zip(host, kernel), 1) if ours != theirs]


if __name__ == "__main__":
    comparison.main("checkStatuses.py", __doc__, find_differences)
