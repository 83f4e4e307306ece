"""Builds the host test programs of a preset, runs them, and counts their tests."""

import json
import os
import pathlib
import re

import workshop

TIME_LIMIT = 600  # seconds for one program; the slowest takes a small part of it
SKIP = re.compile(r"^\S+: Skipped\n(.*?)\n\[  SKIPPED \] (\S+)", re.MULTILINE | re.DOTALL)
HELD = "held"
FAILED = "failed"


class Program:
    """A line of the list that the build writes: name, kind and path of one test program."""

    def __init__(self, line):
        self.name, self.kind, path = line.split(";")
        self.path = pathlib.Path(path)


def programs(preset, kind=None):
    listing = workshop.tree(preset) / "tests/host/programs.txt"
    found = [Program(line) for line in listing.read_text().splitlines()]
    return [program for program in found if kind in (None, program.kind)]


def environment():
    return dict(os.environ, UBSAN_OPTIONS="print_stacktrace=1",
                ASAN_OPTIONS="strict_string_checks=1:detect_stack_use_after_return=1")


def without_random_layout(preset):
    """The thread sanitizer of this compiler cannot live with every address layout."""
    has_thread_sanitizer = preset in ("host-tsan", "host-fuzz-thread")
    return ["setarch", "x86_64", "-R"] if has_thread_sanitizer else []


def run_program(preset, program):
    folder = workshop.tree(preset) / "runs" / program.name
    folder.mkdir(parents=True, exist_ok=True)
    report = folder / "report.json"
    report.unlink(missing_ok=True)
    command = [*without_random_layout(preset), program.path, f"--gtest_output=json:{report}"]
    code, output = workshop.run(["timeout", "-k", "5", TIME_LIMIT, *command], cwd=folder,
                                env=environment())
    return outcome_of(f"{preset} {program.name}", code, output, report)


def outcome_of(name, code, output, report):
    """A program counts its tests; one that ends badly on top of that is a failure of its own."""
    tests = read_report(report, reasons_of_skips(output))
    failed = [f"{name} {test}" for test, result in tests.items() if result == FAILED]
    skipped = [f"{name} {test}: {result}" for test, result in tests.items()
               if result not in (HELD, FAILED)]
    if not tests:
        failed.append(f"{name}: ran no test to its end, exit code {code}")
    elif code != 0 and not failed:
        failed.append(f"{name}: exit code {code} after its tests")
    passed = sum(result == HELD for result in tests.values())
    return workshop.Outcome(passed, failed, output if failed else "", skipped)


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


def check(preset, target, kind=None):
    workshop.build(preset, target)
    outcomes = workshop.in_parallel(lambda program: run_program(preset, program),
                                    programs(preset, kind))
    failed = [name for outcome in outcomes for name in outcome.failed]
    skipped = [name for outcome in outcomes for name in outcome.skipped]
    if not outcomes:
        failed.append(f"{preset}: no test program")
    return workshop.Outcome(sum(outcome.passed for outcome in outcomes), failed,
                            "\n".join(outcome.output for outcome in outcomes if outcome.output),
                            skipped)
