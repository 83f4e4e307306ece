"""The demo on both targets: the component traces the same in the program and in the driver."""

import argparse
import sys

import kernel
import wine
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/kernel"))

import checkDemo  # noqa: E402

# What the driver is given: nothing, so that it finds the rack beside it, or all that its key can hold.
RUNS = [(None, None), (kernel.DEFAULT_RACK, "verbosity>=60")]


def host_text(expression):
    program = workshop.tree("host-debug") / "examples/slotbus/slotbus_demo"
    options = [] if expression is None else ["--filter", expression]
    _, output = workshop.run([program, kernel.DEFAULT_RACK, *options])
    return output


def kernel_text(rack, expression):
    run = kernel.run_demo(argparse.Namespace(file=rack, filter=expression))
    return "\n".join(wine.lines_of_texts(run.texts))


def compare(rack, expression):
    title = f"demo lines of program and driver, rack {rack and 'named' or 'beside the driver'}"
    return title, checkDemo.find_differences(host_text(expression), kernel_text(rack, expression))


def check():
    kernel.build()
    workshop.build("host-debug", "slotbus_demo")
    results = [compare(*run) for run in RUNS]
    failed = [title for title, differences in results if differences]
    output = "\n".join(line for _, differences in results for line in differences)
    return workshop.Outcome(len(results) - len(failed), failed, output)
