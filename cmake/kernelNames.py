#!/usr/bin/env python3
"""The names of the kernel's numbers, from the driver kit's headers.

usage: kernelNames.py KIT FILE    KIT: the folder of ntstatus.h and ddk/wdm.h

Writes a C++ header for source/trace/tNumberByName.cpp, unless the file says the same already.

Where several names stand for one number, the one that the header defines first is taken, so 0 is
STATUS_SUCCESS. Of the interrupt request levels those of x64 in LEVELS are taken.
"""

import pathlib
import re
import sys

LEVELS = ("PASSIVE_LEVEL", "APC_LEVEL", "DISPATCH_LEVEL", "CLOCK_LEVEL", "IPI_LEVEL", "HIGH_LEVEL")

# The first minor code of each major code, in the order of the header.
MINORS = {"IRP_MN_SCSI_CLASS": 0x0F, "IRP_MN_START_DEVICE": 0x1B, "IRP_MN_WAIT_WAKE": 0x16,
          "IRP_MN_QUERY_ALL_DATA": 0x17}

HEAD = """#pragma once

// Names of the kernel's numbers, each table sorted by number. Made by cmake/kernelNames.py; a minor
// code has its major code in the second byte.

// clang-format off
"""


def first_names(pairs):
    """Rows (number, name), sorted, with the first name of each number."""
    names = {}
    for number, name in pairs:
        names.setdefault(number, name)
    return sorted(names.items())


def statuses(header):
    found = re.findall(r"^#define\s+(\w+)\s+\(\(NTSTATUS\)\(?(0x[0-9A-Fa-f]+)L?\)?\)", header, re.M)
    return first_names((int(number, 16), name) for name, number in found)


def majors(header):
    found = re.findall(r"^#define\s+(IRP_MJ_\w+)\s+(0x[0-9A-Fa-f]+)", header, re.M)
    return first_names((int(number, 16), name) for name, number in found)


def minors(header):
    major = None
    pairs = []
    for name, number in re.findall(r"^#define\s+(IRP_MN_\w+)\s+(0x[0-9A-Fa-f]+)", header, re.M):
        major = MINORS.get(name, major)
        pairs.append((major << 8 | int(number, 16), name))
    return first_names(pairs)


def levels(header):
    """The header has a section of levels for each processor; that of x64 has a DRS_LEVEL first."""
    section = next(part for part in header.split("#define PASSIVE_LEVEL")[1:] if "DRS_LEVEL" in part)
    found = dict(re.findall(r"^#define\s+(\w+_LEVEL)\s+(\d+)", "#define PASSIVE_LEVEL" + section, re.M))
    return [(int(found[name]), name) for name in LEVELS]


def states(header, tag):
    """The members of an enumeration that counts from 0, without its end."""
    body = re.search(r"typedef enum " + tag + r" \{(.*?)\}", header, re.S).group(1)
    names = re.findall(r"^\s*(\w+)", body, re.M)
    return [(number, name) for number, name in enumerate(names) if not name.endswith("Maximum")]


def table(name, rows, digits):
    lines = [f"  X(0x{number:0{digits}X}, {text})" for number, text in rows]
    return f"\n#define OXDIAG_{name}(X) \\\n" + " \\\n".join(lines) + "\n"


def make_text(kit):
    status_header = (kit / "ntstatus.h").read_text()
    kernel_header = (kit / "ddk/wdm.h").read_text()
    return HEAD + "".join([
        table("STATUS_NAMES", statuses(status_header), 8),
        table("IRP_MAJOR_NAMES", majors(kernel_header), 2),
        table("IRP_MINOR_NAMES", minors(kernel_header), 4),
        table("IRQL_NAMES", levels(kernel_header), 1),
        table("DEVICE_POWER_NAMES", states(kernel_header, "_DEVICE_POWER_STATE"), 1),
        table("SYSTEM_POWER_NAMES", states(kernel_header, "_SYSTEM_POWER_STATE"), 1),
    ])


def write(text, file):
    if not file.exists() or file.read_text() != text:
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)


if __name__ == "__main__":
    write(make_text(pathlib.Path(sys.argv[1])), pathlib.Path(sys.argv[2]))
