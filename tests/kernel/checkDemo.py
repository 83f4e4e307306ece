#!/usr/bin/env python3
"""Compares what the slot bus component traces in a driver with what it traces in the host program.

The component is one source, so its lines have to be the same on both: prefixes, indentation,
texts and failed statuses in full. Left out are the lines of the program and the driver around it,
and what the two compilers and machines make different:
  - the source line in a prefix: of a macro call over several lines one compiler takes the first,
    the other the last;
  - the addresses of stack traces, but there have to be as many, and the first has to be one;
  - the address of a status' description, but there has to be one on both or on neither.

usage: checkDemo.py HOST KERNEL    files with the two outputs; exit code 1 when they differ
"""

import difflib
import re

import comparison

PREFIX = re.compile(r"^\[slotbus--(?:\d+--)?(\w+\.cpp)-*\] ")
SURROUNDING_SOURCES = {"main.cpp", "driver.cpp", "tProgramRack.cpp", "tServiceRack.cpp"}
STATUS_HEAD = "tStatus2 Contents:"
STACK_ADDRESS = re.compile(r"^\t\t0x([0-9A-F]+)$")
DESCRIPTION = re.compile(r"^(\tAddress of Status Description = )0x0*[1-9A-F][0-9A-F]*$")
SUMMARY = re.compile(r"^\[.*\] +devices: [1-9]\d*, failures: (\d+), lines: [1-9]\d*$")


def belongs_to_status(line):
    return line == STATUS_HEAD or line.startswith("\t")


def component_lines(text):
    """The component's lines with shortened prefixes, each with the status that follows it."""
    kept, is_kept = [], False
    for line in text.replace("\r\n", "\n").split("\n"):
        prefix = PREFIX.match(line)
        if prefix:
            is_kept = prefix.group(1) not in SURROUNDING_SOURCES
            line = f"[{prefix.group(1)}] {line[prefix.end():]}"
        elif not belongs_to_status(line):
            is_kept = False
        if is_kept:
            kept.append(line)
    return kept


def without_addresses(lines):
    """Each stack address as a word; a first address that is missing stays what it is."""
    shown, is_first = [], False
    for line in lines:
        address = STACK_ADDRESS.match(line)
        if address and not (is_first and int(address.group(1), 16) == 0):
            shown.append("\t\t(address)")
        else:
            shown.append(DESCRIPTION.sub(r"\1(address)", line))
        is_first = line == "\tStack Trace ="
    return shown


def find_differences(host_text, kernel_text):
    """A list of lines for a person; empty when both runs traced the same whole rack."""
    host, kernel = (without_addresses(component_lines(text)) for text in (host_text, kernel_text))
    failures = [int(match.group(1)) for match in map(SUMMARY.match, host) if match]
    if not failures:
        return ["the host program traced no summary of a rack with devices"]
    if sum(failures) != host.count(STATUS_HEAD):
        return ["the host program traced not one status for each failure"]
    if any(line == "\t\t0x0" for line in host + kernel):
        return ["a stack trace is empty"]
    return list(difflib.unified_diff(host, kernel, "host", "kernel", lineterm=""))


def read(path):
    with open(path, encoding="utf-8", errors="replace", newline="") as file:
        return file.read()


if __name__ == "__main__":
    comparison.main("checkDemo.py", __doc__, find_differences, read)
