"""./dev test: every check there is, one line a step, one closing line for all."""

import contextlib
import json
import sys
import traceback

import workshop

sys.path.insert(0, str(workshop.TOP / "tests/compile"))
sys.path.insert(0, str(workshop.TOP / "tests/debugger"))

import besideKit  # noqa: E402
import browser  # noqa: E402
import budget  # noqa: E402
import commands  # noqa: E402
import compileChecks  # noqa: E402
import control  # noqa: E402
import coverage  # noqa: E402
import cppcheck  # noqa: E402
import demos  # noqa: E402
import dialect  # noqa: E402
import distribution  # noqa: E402
import faults  # noqa: E402
import fuzz  # noqa: E402
import gdbViews  # noqa: E402
import handbook  # noqa: E402
import images  # noqa: E402
import kernel  # noqa: E402
import lanes  # noqa: E402
import layers  # noqa: E402
import lint  # noqa: E402
import metal  # noqa: E402
import mutants  # noqa: E402
import natvisView  # noqa: E402
import packages  # noqa: E402
import pages  # noqa: E402
import programs  # noqa: E402
import proofLedger  # noqa: E402
import scheduleFaults  # noqa: E402
import scripts  # noqa: E402
import sleeps  # noqa: E402
import toolNames  # noqa: E402
import twins  # noqa: E402
import windowsGuide  # noqa: E402


def windows_build():
    """That the modules build here, and would in a folder of any name."""
    workshop.build("windows")
    wrong = toolNames.complaints("windows")
    failed = ["who calls Microsoft's tools"] if wrong else []
    guide = windowsGuide.check()
    return workshop.Outcome(guide.passed + 2 - len(failed), guide.failed + failed,
                            "\n".join([*wrong, guide.output]))


# In the order in which they begin: the longest first, with all the others beside it, and at the end
# those that wait for its build.
STEPS = {
    "host-clang": ("host tests, clang, address and undefined-behaviour sanitizers",
                   lambda: programs.check("host-clang", "host_tests")),
    "format": ("clang-format", lint.check_format),
    "layers": ("every include goes down the layers", layers.check),
    "dialect": ("public headers are for every compiler and declare nothing of the kernel",
                dialect.check),
    "headers": ("every public header alone, on Linux and Windows", compileChecks.check_headers),
    "kit": ("public headers beside the driver kit's, and for the vendor's compiler",
            besideKit.check),
    "kit-alone": ("each public header by itself beside the driver kit's", besideKit.check_alone),
    "sleeps": ("every sleep of a test says why", sleeps.check),
    "scripts": ("the readers of benchmarks and profiles", scripts.check),
    "documents": ("what pages and headers name is there", pages.check),
    "natvis": ("every expression of the views for WinDbg and Visual Studio", natvisView.check),
    "windows": ("Windows modules, warnings as errors", windows_build),
    "modules": ("the modules as files: imports, exports, guards, sections, PDB, version", images.check),
    "kernel": ("conformance tests in a driver under Wine", kernel.check),
    "control": ("oxdiagctl.exe, under Wine", control.check),
    "programs": ("the other programs for Windows, under Wine", control.check_programs),
    "demos": ("the demo traces the same on Linux and under Wine", demos.check),
    "metal": ("the serial destination on an emulated PC", metal.check),
    "packages": ("what is installed, in the hands of clients", packages.check),
    "packages-long": ("the quick start, a driver's tests and the Debian packages", packages.check_long),
    "clean-debian": ("the Debian packages in a system that has nothing else", packages.check_clean_debian),
    "commands": ("the commands of the pages, typed", commands.check),
    "host-bare": ("host tests of stacks and paged memory, g++, which sanitizers would hide",
                  lambda: programs.check("host-bare", "bare_tests", "bare")),
    "budget": ("the instructions of the library's paths", budget.check),
    "compile": ("what must compile and what must not", compileChecks.check_sources),
    "faults": ("conformance tests with calls that fail, and at raised levels", faults.check),
    "fuzz": ("fuzz targets over their corpora", fuzz.check_corpora),
    "host-plain": ("host tests, g++", lambda: programs.check("host-plain", "host_tests")),
    "host-tsan": ("thread tests, g++, thread sanitizer",
                  lambda: programs.check("host-tsan", "thread_tests")),
    "fuzz-runs": ("fuzz targets with coverage, a few seconds each", fuzz.check_runs),
    "twins": ("the same modules and packages from two clones at different paths", twins.check),
    "dist": ("the archive for Windows, unpacked", distribution.check),
    "gdb": ("the views for GDB, of programs by g++ and clang", gdbViews.check),
    "tidy": ("clang-tidy", lint.check_tidy),
    "cppcheck": ("cppcheck, of the product", cppcheck.check),
    "commands-long": ("the commands of the pages that take long, typed", commands.check_long),
    "handbook": ("the handbook as a site", handbook.check),
    "host-debug": ("host tests, g++, address and undefined-behaviour sanitizers",
                   lambda: programs.check("host-debug", "host_tests")),
    "faults-long": ("conformance tests with each call that fails, and with failures at random",
                    faults.check_long),
    "host-rounds": ("host tests, clang, sanitizers, random tests with all rounds",
                    lambda: programs.check("host-rounds", "host_tests")),
    "schedules": ("faults that the schedules of threads have to find", scheduleFaults.check),
    "coverage": ("lines and branches of the product, each reached by a test", coverage.check),
    "mutants": ("a sample of the mutants, each seen by a test", mutants.check),
    "browser": ("the page of a trace in a browser", browser.check),
}
# Each takes long and shows little that the others do not: `./dev prove` runs them.
PROOF = {"packages-long", "clean-debian", "programs", "dist", "gdb", "tidy", "handbook", "commands-long", "twins",
         "kit-alone", "faults-long", "fuzz-runs", "host-plain", "host-tsan", "host-debug",
         "host-rounds", "schedules", "coverage", "browser", "cppcheck"}
# A sample of the mutants nearly always has some that no test has been written for yet.
WHEN_NAMED = PROOF | {"mutants"}

# Most steps wait for one process after the other while they do not build; two of them keep two
# cores busy. What ./dev prove runs is beside nothing else, so that its limits of time mean something.
LANES = 2


def guarded(name, function):
    """A step that cannot even run is a failed check, and the others go on."""
    try:
        return function()
    except workshop.Failure as failure:
        return workshop.Outcome(0, [f"{name}: could not run"], str(failure))
    except Exception:  # a fault of the workshop itself must not hide what it was to show
        return workshop.Outcome(0, [f"{name}: the check itself broke"], traceback.format_exc())


def report_step(name):
    """One step, in a process of its own. Its outcome is all that goes to the standard output."""
    with contextlib.redirect_stdout(sys.stderr):
        outcome = guarded(name, STEPS[name][1])
    print(json.dumps(outcome))


def outcome_of(name, output):
    try:
        return workshop.Outcome(*json.loads(output))
    except ValueError:
        return workshop.Outcome(0, [f"{name}: its process ended"], output)


def run_steps(names, lane_count, note=lambda name, outcome: None):
    """The outcomes of the steps; each is shown and noted when it ends."""
    outcomes = []

    def show(name, seconds, output):
        outcome = outcome_of(name, output)
        outcomes.append(outcome)
        note(name, outcome)
        counted = workshop.counts(outcome.passed, len(outcome.failed), len(outcome.skipped))
        line = f"[{len(outcomes)}/{len(names)}] {STEPS[name][0]} ... {seconds:.1f} s, {counted}"
        return f"{line}\n{outcome.output}" if outcome.failed else line

    here = [sys.executable, __file__, "--report"]
    lanes.Lanes(lane_count, sys.stdout).run({name: [*here, name] for name in names}, show)
    return outcomes


def conclude(outcomes):
    """Names what failed and what was skipped, and ends with the counts."""
    failed = [name for outcome in outcomes for name in outcome.failed]
    skipped = [name for outcome in outcomes for name in outcome.skipped]
    for name in skipped:
        print(f"SKIPPED {name}")
    for name in failed:
        print(f"FAILED {name}")
    print(workshop.counts(sum(outcome.passed for outcome in outcomes), len(failed), len(skipped)))
    return 1 if failed else 0


def prove(words):
    """The steps that take long, but for those that have passed on these sources already."""
    if words not in ([], ["--anew"]):
        print("usage: ./dev prove [--anew]\n\n"
              "Runs the steps that ./dev test leaves out. Those that have passed before on the very same\n"
              "sources are not run again, but with --anew. The steps: "
              + " ".join(name for name in STEPS if name in PROOF))
        return 0 if words == ["--help"] else 2
    if words:
        proofLedger.PATH.unlink(missing_ok=True)
    ledger = proofLedger.ProofLedger(proofLedger.state_of(workshop.TOP))
    kept = {name: ledger.outcome(name) for name in STEPS if name in PROOF}
    before = [outcome for outcome in kept.values() if outcome]
    for name in kept:
        if kept[name]:
            counted = workshop.counts(kept[name].passed, 0, len(kept[name].skipped))
            print(f"{STEPS[name][0]} ... before, {counted}", flush=True)
    return conclude(before + run_steps([name for name in kept if not kept[name]], 1, ledger.note))


def main(names):
    if names[:1] == ["--long"]:
        return prove(names[1:])
    unknown = [name for name in names if name not in STEPS]
    if unknown:
        print("steps: " + " ".join(STEPS))
        if names == ["--list"]:
            return 0
        print(f"'{unknown[0]}' is no step", file=sys.stderr)
        return 2
    names = names or [name for name in STEPS if name not in WHEN_NAMED]
    return conclude(run_steps(names, LANES))


if __name__ == "__main__":
    if sys.argv[1:2] == ["--report"]:
        report_step(sys.argv[2])
    else:
        sys.exit(main(sys.argv[1:]))
