"""The demo on both targets: the component traces and saves the same in the program and in the
driver, and the report tool reads what both saved."""

import collections
import json
import pathlib
import re
import sys
import tempfile

import kernel
import wine
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/kernel"))

import checkDemo  # noqa: E402
import checkStatuses  # noqa: E402

TRACED_FILE = "oxdiag-demo.out"
SAVED_FILE = "oxdiag-demo.statuses"

WORDS = str(workshop.TOP / "examples/slotbus/words/english.words")

FAULTY = str(kernel.FAULTY_RACK)
DEMO = workshop.tree(workshop.PROGRAMS) / "examples/slotbus/slotbus_demo"

Run = collections.namedtuple("Run", "title arguments file", defaults=[None])

# What the driver is given: nothing, so that it finds the good rack beside it, or all that its key
# can hold; where the lines go. The faulty rack shows that statuses are the same as well.
RUNS = [
    Run("the rack beside the driver", []),
    Run("a faulty rack, with details",
        [FAULTY, "--filter", "verbosity>=60",
         "--assert", "--category default --break off --category mine --terminate"]),
    Run("another prefix",
        [FAULTY, "--trace", "--timestamp off --linenumber off --prefixwidth 30 --indent off"]),
    Run("a file", [FAULTY, "--trace", f"--destination file C:/{TRACED_FILE} overwrite"],
        TRACED_FILE),
    Run("a capture", [FAULTY, "--capture", "--filter", "&& verbosity!=100"]),
]


def read(path):
    return path.read_bytes().decode(errors="replace") if path.exists() else ""


def host_text(run, folder):
    arguments = run.arguments
    if FAULTY not in arguments:
        arguments = [kernel.DEFAULT_RACK, *arguments]
    _, output = workshop.run([DEMO, "--drive-c", folder, *arguments])
    return read(folder / run.file) if run.file else output


def kernel_text(run):
    if run.file:
        (wine.DRIVE_C / run.file).unlink(missing_ok=True)
    done = kernel.run_demo(kernel.demo_options(run.arguments))
    return read(wine.DRIVE_C / run.file) if run.file else "\n".join(wine.lines_of_texts(done.texts))


def compare(run):
    with tempfile.TemporaryDirectory() as folder:
        host = host_text(run, pathlib.Path(folder))
    return f"demo lines of program and driver, {run.title}", \
        checkDemo.find_differences(host, kernel_text(run))


def save_on_host(path, *more):
    workshop.run([DEMO, FAULTY, "--save", path, *more])


def save_in_kernel(*more):
    path = wine.DRIVE_C / SAVED_FILE
    path.unlink(missing_ok=True)
    kernel.run_demo(kernel.demo_options([FAULTY, "--save", SAVED_FILE, *more]))
    return path


def report(path):
    """What the tool prints, without the lines that differ from run to run."""
    program = workshop.tree(workshop.PROGRAMS) / "tools/oxdiagreport/oxdiagreport"
    code, output = workshop.run([program, "--words", WORDS, path])
    lines = [line for line in output.splitlines() if not line.startswith("  Time: ")]
    return lines if code == 0 and lines else [f"oxdiagreport ended with {code}", path.name, output]


def compare_saved():
    with tempfile.TemporaryDirectory() as folder:
        host, driver = pathlib.Path(folder) / "host", save_in_kernel()
        save_on_host(host)
        if not host.exists() or not driver.exists():
            return "statuses saved by program and driver", ["a file is missing"]
        differences = checkStatuses.find_differences(host.read_bytes(), driver.read_bytes())
        ours, theirs = report(host), report(driver)
    if ours != theirs or not ours[0].startswith("Status 1: "):
        differences += ["the reports differ:", *ours, "", *theirs]
    return "statuses saved by program and driver", differences


def function_around(lines, line):
    """The name of the function in whose definition the line is, and the lines of that."""
    first = max(number for number, text in enumerate(lines[:line], 1)
                if re.match(r"\w.*\w\(.*\{$", text))
    last = lines.index("}", line) + 1
    return re.match(r".*?(\w+)\(", lines[first - 1])[1], range(first, last + 1)


def places_of(status):
    """Function, file and line of the call that set the status, as the report tells them."""
    return [(place["function"].split("(")[0].split("::")[-1], place["file"].replace("\\", "/"),
             place["line"]) for place in status["origin"]["frames"][1]["places"]]


def wrong_symbols(statuses):
    """Of several calls at the end of one function the compiler may make one, with any line of it.
    Most lines are those that the statuses themselves tell."""
    wrong, exact = [], 0
    for status in statuses:
        file, line = status["origin"]["file"], status["origin"]["line"]
        name, body = function_around((workshop.TOP / file).read_text().splitlines(), line)
        found = [place[2] for place in places_of(status)
                 if place[0] == name and place[1].endswith(file) and place[2] in body]
        exact += line in found
        if not found:
            wrong.append(f"{name} in {file}:{line} is told as {places_of(status)}")
    if exact * 2 <= len(statuses):
        wrong.append(f"only {exact} of {len(statuses)} lines are right")
    return wrong


def compare_symbols():
    """Function, file and line of the driver's failures, by its PDB."""
    title = "symbols of the statuses saved by the driver"
    program = workshop.tree(workshop.PROGRAMS) / "tools/oxdiagreport/oxdiagreport"
    code, output = workshop.run([program, "--format", "json", "--symbols",
                                 workshop.tree("windows") / "modules", save_in_kernel("--modules")])
    if code != 0:
        return title, [f"oxdiagreport ended with {code}", output]
    return title, wrong_symbols(json.loads(output))


def check():
    kernel.build()
    workshop.build(workshop.PROGRAMS, "slotbus_demo", "oxdiagreport")
    results = [*map(compare, RUNS), compare_saved(), compare_symbols()]
    failed = [title for title, differences in results if differences]
    output = "\n".join(line for _, differences in results for line in differences)
    return workshop.Outcome(len(results) - len(failed), failed, output)
