"""The command line of what compares a file of the host program with one of the driver."""

import pathlib
import sys


def main(program, usage, find_differences, read=pathlib.Path.read_bytes):
    """Prints the differences, a line each; exit code 1 when there are any."""
    if len(sys.argv) != 3:
        sys.exit(usage)
    try:
        differences = find_differences(*(read(pathlib.Path(name)) for name in sys.argv[1:]))
    except OSError as problem:
        sys.exit(f"{program}: {problem}")
    for line in differences:
        print(line)
    sys.exit(1 if differences else 0)
