"""Builds the host test programs of a preset, has CTest run them, and counts their tests."""

import json
import os
import re
import xml.etree.ElementTree

import workshop

MOST_OUTPUT = 1 << 24  # bytes of one program that CTest keeps
ENDED_BADLY = re.compile(r"^\t *\d+ - (\S+) \((.+)\)$", re.MULTILINE)
SKIP = re.compile(r"^\S+: Skipped\n(.*?)\n\[  SKIPPED \] (\S+)", re.MULTILINE | re.DOTALL)
HELD = "held"
FAILED = "failed"


def environment():
    """For the programs that CTest does not run; its own have the same from tests/host, and a place
    for what they count (OXDIAG_COVERAGE)."""
    return dict(os.environ, UBSAN_OPTIONS="print_stacktrace=1", LLVM_PROFILE_FILE="/dev/null",
                ASAN_OPTIONS="strict_string_checks=1:detect_stack_use_after_return=1")


def without_random_layout(preset):
    """The thread sanitizer of this compiler cannot live with every address layout."""
    has_thread_sanitizer = preset in ("host-tsan", "host-fuzz-thread")
    return ["setarch", "x86_64", "-R"] if has_thread_sanitizer else []


class Run:
    """What CTest says of one program."""

    def __init__(self, case, causes):
        self.name = case.get("name")
        self.ended_well = case.get("status") == "run"
        self.cause = causes.get(self.name, case.get("status"))
        self.output = case.findtext("system-out") or ""


def run_programs(preset, labels):
    """The runs of the programs with the labels, whose reports are those of now."""
    runs = workshop.tree(preset) / "runs"
    for report in runs.glob("*/report.json"):
        report.unlink()
    summary = runs / "summary.xml"
    summary.unlink(missing_ok=True)
    _, output = workshop.run(["ctest", "--preset", preset, "-j", workshop.CORES + 2, *labels,
                              "--output-junit", summary,
                              "--test-output-size-passed", MOST_OUTPUT,
                              "--test-output-size-failed", MOST_OUTPUT], cwd=workshop.TOP)
    if not summary.exists():
        raise workshop.Failure(output)
    causes = dict(ENDED_BADLY.findall(output))
    cases = xml.etree.ElementTree.parse(summary).iter("testcase")
    return [Run(case, causes) for case in cases]


def outcome_of(preset, run):
    """A program counts its tests; one that ends badly on top of that is a failure of its own."""
    name = f"{preset} {run.name}"
    report = workshop.tree(preset) / "runs" / run.name / "report.json"
    tests = read_report(report, reasons_of_skips(run.output))
    failed = [f"{name} {test}" for test, result in tests.items() if result == FAILED]
    skipped = [f"{name} {test}: {result}" for test, result in tests.items()
               if result not in (HELD, FAILED)]
    if not tests:
        failed.append(f"{name}: ran no test to its end, {run.cause}")
    elif not run.ended_well and not failed:
        failed.append(f"{name}: {run.cause} after its tests")
    passed = sum(result == HELD for result in tests.values())
    return workshop.Outcome(passed, failed, run.output if failed else "", skipped)


def reasons_of_skips(output):
    """Test name -> the sentence with which it skipped itself; the report has only the fact."""
    return {name: " ".join(reason.split()) for reason, name in SKIP.findall(output)}


def result_of(test, reason):
    """HELD, FAILED, or the reason of a skipped test. One that gives no reason, or is disabled,
    failed: nothing is left out quietly."""
    if test["result"] == "SKIPPED" and not test.get("failures"):
        return reason or FAILED
    return HELD if test["result"] == "COMPLETED" and not test.get("failures") else FAILED


def read_report(report, reasons):
    """Test name -> what result_of says of it."""
    if not report.exists():
        return {}
    suites = json.loads(report.read_text())["testsuites"]
    tests = {f"{suite['name']}.{test['name']}": test
             for suite in suites for test in suite["testsuite"]}
    return {name: result_of(test, reasons.get(name)) for name, test in tests.items()}


def listed_tests(text):
    """The names in what a program says to --gtest_list_tests."""
    suite, names = "", set()
    for line in text.splitlines():
        words = line.split("#")[0].rstrip()
        if words.startswith("  "):
            names.add(suite + words.strip())
        elif words.endswith("."):
            suite = words
    return names


def joined_programs(preset):
    """Program -> the names in CTest of the sources that it is made of, each with its own filter."""
    _, output = workshop.run(["ctest", "--preset", preset, "--show-only=json-v1"], cwd=workshop.TOP)
    joined = {}
    for test in json.loads(output)["tests"]:
        if any(word.startswith("--gtest_filter=") for word in test["command"]):
            joined.setdefault(test["command"][0], []).append(test["name"])
    return joined


def forgotten(preset, program, names):
    """The tests of a joined program that are in none of the reports of its sources."""
    runs = workshop.tree(preset) / "runs"
    seen = set().union(*(read_report(runs / name / "report.json", {}) for name in names))
    _, output = workshop.run([program, "--gtest_list_tests"], env=environment())
    return [f"{preset} {os.path.basename(program)} {test}: no source's filter has it"
            for test in sorted(listed_tests(output) - seen)]


def check(preset, target, label=None):
    workshop.build(preset, target)
    labels = ["-L", f"^{label}$"] if label else []
    outcomes = [outcome_of(preset, run) for run in run_programs(preset, labels)]
    failed = [name for outcome in outcomes for name in outcome.failed]
    skipped = [name for outcome in outcomes for name in outcome.skipped]
    if not outcomes:
        failed.append(f"{preset}: no test program")
    if not label:
        for program, names in joined_programs(preset).items():
            failed += forgotten(preset, program, names)
    return workshop.Outcome(sum(outcome.passed for outcome in outcomes), failed,
                            "\n".join(outcome.output for outcome in outcomes if outcome.output),
                            skipped)
