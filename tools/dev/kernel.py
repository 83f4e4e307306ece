"""./dev kernel build, demo, test and bench: the Windows modules, and drivers that use them under
Wine."""

import argparse
import pathlib
import re
import sys

import wine
import workshop

MODULES = workshop.tree("windows") / "modules"
LIBRARIES = ["vexk.dll", "qelmk.dll", "oxdiagk.dll"]
MARK = "[oxt] "
BOOT_MARK = "[boot] "
BENCH_MARK = "[oxb] "
UNLOADED = "[boot] unloaded"
OWN_RACK = "own-rack.txt"
WRONG_USAGE = 64
DEMO = workshop.tree("host-release") / "examples/slotbus/slotbus_demo"
DEFAULT_RACK = workshop.TOP / "examples/slotbus/rack.txt"
FAULTY_RACK = workshop.TOP / "examples/slotbus/faulty.txt"


def build():
    return workshop.build("windows")


def module_files(driver, modules=MODULES):
    names = [*LIBRARIES, f"{wine.BOOT}.sys", f"{wine.CONTROL_DRIVER}.sys", driver]
    return {name: modules / name for name in names}


def place_of_crash(texts):
    """Wine names the address of a fault, the boot driver and the test driver their images'."""
    text = "\n".join(texts)
    fault = re.search(r"at address ([0-9A-F]+)", text)
    images = [(int(base, 16), name)
              for name, base in re.findall(r"image (\S+) at ([0-9A-Fa-fx]+)", text)]
    if not fault:
        return ""
    address = int(fault.group(1), 16)
    below = [(base, name) for base, name in images if base <= address]
    if not below:
        return ""
    base, name = max(below)
    _, place = workshop.run(["llvm-symbolizer", f"--obj={MODULES / name}", "--relative-address",
                             "--pretty-print", hex(address - base)])
    return f"the fault is in {name}: {place.strip()}"


class TestLines:
    """The harness's own lines among everything that was printed."""

    def __init__(self, texts):
        lines = [line for text in texts for line in text.split("\n") if line.startswith(MARK)]
        words = [line.split() for line in lines]
        self.held = [line[2] for line in words if line[1] == "ok"]
        self.failed = list(dict.fromkeys(line[2] for line in words if line[1] == "FAILED"))
        self.complaints = [line for line in lines if line.startswith(f"{MARK}FAILED")]
        self.begun = [line[2] for line in words if line[1] == "run"]
        self.done = [line for line in lines if line.startswith(f"{MARK}done ")]

    def is_complete(self):
        counts = f"{MARK}done {len(self.held)} passed {len(self.failed)} failed"
        return self.done == [counts] and len(self.held) > 0


def run_checks(name, run, tests):
    """(title, held) for what holds of the run as a whole."""
    last = tests.begun[-1] if tests.begun and not tests.done else "none"
    return [
        (f"{name}: tests run to their end (unfinished: {last})", tests.is_complete()),
        (f"{name}: driver and modules unload cleanly", run.stopped and UNLOADED in run.texts),
        (f"{name}: processes of Wine were there to be ended", run.processes_seen > 0),
        (f"{name}: no process is left behind", not wine.processes()),
    ]


def outcome_of(name, run):
    tests = TestLines(run.texts)
    checks = run_checks(name, run, tests)
    failed = [f"kernel {test}" for test in tests.failed]
    failed += [f"kernel: {title}" for title, held in checks if not held]
    output = "\n".join(tests.complaints)
    if not all(held for _, held in checks):
        output = "\n".join([*run.texts[-60:], place_of_crash(run.texts)])
    return workshop.Outcome(len(tests.held) + sum(held for _, held in checks), failed, output)


def check_conformance(modules=MODULES, limit=wine.RUN_LIMIT):
    """The conformance tests in a driver, which may take so many seconds; with the driver of the control
    device as a second file."""
    files = module_files("oxdiagtest.sys", modules)
    files[f"{wine.CONTROL_DRIVER}2.sys"] = files[f"{wine.CONTROL_DRIVER}.sys"]
    return outcome_of("oxdiagtest", wine.run_driver("oxdiagtest", files, limit=limit))


def check_devices(modules=MODULES, limit=wine.RUN_LIMIT):
    """The slot bus and its devices, driven by Wine's PnP manager; once more as another driver, with
    a file and a service of its own."""
    files, services = demo_input(demo_options([str(FAULTY_RACK), "--filter", "verbosity>=200"]))
    files.update(module_files("slotbus.sys", modules))
    files["slotbus2.sys"] = files["slotbus.sys"]
    services["slotbus2"] = services["slotbus"]
    files.update(module_files("oxdiagpnp.sys", modules))
    return outcome_of("oxdiagpnp", wine.run_driver("oxdiagpnp", files, services, limit=limit))


def check():
    build()
    with wine.alone():
        wine.create_prefix()
        outcomes = [check_conformance(), check_devices()]
    return workshop.Outcome(sum(outcome.passed for outcome in outcomes),
                            [name for outcome in outcomes for name in outcome.failed],
                            "\n".join(outcome.output for outcome in outcomes if outcome.output))


def test():
    outcome = workshop.step("driver tests under Wine", check)
    if outcome.output:
        print(outcome.output)
    for name in outcome.failed:
        print(f"FAILED {name}")
    print(f"{outcome.passed} passed, {len(outcome.failed)} failed")
    return 1 if outcome.failed else 0


def run_bench():
    with wine.alone():
        wine.create_prefix()
        return wine.run_driver("oxdiagbench", module_files("oxdiagbench.sys"))


def bench():
    """Lines in a driver beside their floors, in ticks of the time stamp counter."""
    workshop.step("build the modules and the driver", workshop.build, "windows",
                  *(f"{pathlib.Path(name).stem}.module" for name in module_files("oxdiagbench.sys")))
    run = workshop.step("measure under Wine", run_bench)
    lines = [line.removeprefix(BENCH_MARK) for line in wine.lines_of_texts(run.texts)
             if line.startswith(BENCH_MARK)]
    rows = [line.split(maxsplit=3) for line in lines if line != "done"]
    print(f"{'ticks':24}  {'ours':>8}  {'floor':>8}  ours / floor")
    for _, ours, floor, name in rows:
        print(f"{name:24}  {ours:>8}  {floor:>8}  {float(ours) / float(floor):12.2f}")
    if run.stopped and lines[-1:] == ["done"] and all(row[0] == "ok" for row in rows):
        return 0
    print("\n".join([*run.texts[-30:], place_of_crash(run.texts)]), file=sys.stderr)
    return 1


def demo_parser():
    """What is not given is None, and so leaves its value in the service key unset."""
    parser = argparse.ArgumentParser(prog="./dev kernel demo", description="The slot bus as a driver.",
                                     epilog="./dev demo --help lists the option words.")
    parser.add_argument("file", nargs="?", type=pathlib.Path, metavar="FILE",
                        help="the rack to read; examples/slotbus/rack.txt if none is given")
    parser.add_argument("--filter", metavar="EXPR", help="which lines are shown")
    parser.add_argument("--trace", metavar="WORDS", help="option words of the trace")
    parser.add_argument("--assert", metavar="WORDS", dest="assertions",
                        help="option words of the assertions")
    parser.add_argument("--capture", action="store_const", const="1",
                        help="trace into a buffer, and print it at the end")
    parser.add_argument("--modules", action="store_const", const="1",
                        help="with --save: the modules on the call stacks too")
    parser.add_argument("--save", metavar="NAME",
                        help="a file on drive C: for the statuses of what is wrong")
    return parser


def demo_options(arguments):
    """A value that is itself an option word, as in --trace --off, is one for argparse only when it
    is written together with its option."""
    words = list(arguments)
    for name in ("--trace", "--assert", "--filter"):
        if name in words[:-1]:
            place = words.index(name)
            words[place:place + 2] = [f"{name}={words[place + 1]}"]
    return demo_parser().parse_args(words)


def check_options(options):
    """The host program tells what is wrong with option words; the driver passes over it."""
    workshop.step("build the host program, which checks the options",
                  workshop.build, "host-release", "slotbus_demo")
    given = {"--filter": options.filter, "--trace": options.trace, "--assert": options.assertions}
    words = [f"{name}={value}" for name, value in given.items() if value is not None]
    code, output = workshop.run([DEMO, "--check-only", *words])
    if code == 0 and names_destination(options, "serial"):
        code, output = WRONG_USAGE, "Wine has no ports: the serial port needs a kernel or ./dev demo.\n"
    print(output, end="", file=sys.stderr)
    return code


def names_destination(options, name):
    return re.search(rf"--destination\s+{name}\b", options.trace or "") is not None


def demo_input(options):
    """The files beside the driver and the values of its service key. The driver finds the default
    rack by itself; a rack of one's own is named in the key."""
    files = dict(module_files("slotbus.sys"), **{"rack.txt": DEFAULT_RACK})
    rack = None
    if options.file:
        files[OWN_RACK] = options.file
        rack = rf"\??\{wine.DRIVERS_IN_WINDOWS}{OWN_RACK}"
    return files, {"slotbus": {
        "RackFile": rack, "Filter": options.filter, "Trace": options.trace,
        "Assert": options.assertions, "Capture": options.capture,
        "Modules": options.modules,
        "Save": options.save and rf"C:\{options.save}"}}


def run_demo(options):
    with wine.alone():
        wine.create_prefix()
        return wine.run_driver("slotbus", *demo_input(options), has_rack=True)


def show_demo(run, options):
    """A person wants the component's lines; what the boot driver says counts when it went wrong."""
    held = run.stopped and UNLOADED in run.texts
    for line in wine.lines_of_texts(run.texts):
        if not (held and line.startswith(BOOT_MARK)):
            print(line)
    if names_destination(options, "file") or options.save:
        print(f"drive C: of the driver is {wine.DRIVE_C}", file=sys.stderr)
    if not held:
        print("slotbus.sys was not loaded and unloaded as it should be", file=sys.stderr)
    return 0 if held else 1


def demo(arguments):
    options = demo_options(arguments)
    try:
        (options.file or DEFAULT_RACK).read_bytes()
    except OSError as error:
        print(f"cannot read the rack file '{error.filename}': {error.strerror}", file=sys.stderr)
        return 2
    code = check_options(options)
    if code != 0:
        return code
    workshop.step("build the Windows modules", build)
    return show_demo(workshop.step("load, run and unload slotbus.sys under Wine", run_demo,
                                   options), options)


if __name__ == "__main__":
    verb, *rest = sys.argv[1:]
    if verb == "build":
        workshop.step("build the Windows modules", build)
        print(MODULES)
    else:
        sys.exit(demo(rest) if verb == "demo" else bench() if verb == "bench" else test())
