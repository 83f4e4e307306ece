"""Tests of what tools/dev/programs.py says of programs that several sources are joined in."""

import json
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import programs  # noqa: E402
import workshop  # noqa: E402

LISTED = """Running main() from gtest_main.cc
Lines.
  AreWhole
  AreSeveral
Sizes/Buffers.  # a note
  Hold/0  # GetParam() = 7
  Hold/1  # GetParam() = 9
"""
NAMES = {"Lines.AreWhole", "Lines.AreSeveral", "Sizes/Buffers.Hold/0", "Sizes/Buffers.Hold/1"}


class ListedTests(unittest.TestCase):
    def test_a_name_has_its_suite(self):
        self.assertEqual(programs.listed_tests(LISTED), NAMES)

    def test_a_program_without_tests_has_none(self):
        self.assertEqual(programs.listed_tests("Running main() from gtest_main.cc\n"), set())


class Forgotten(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.enterContext(unittest.mock.patch.object(workshop, "tree", lambda preset: self.folder))
        self.program = self.folder / "joined.trace"
        self.program.write_text(f"#!/bin/sh\ncat <<'END'\n{LISTED}END\n")
        self.program.chmod(0o755)

    def report(self, name, *tests):
        folder = self.folder / "runs" / name
        folder.mkdir(parents=True)
        suites = [{"name": suite, "testsuite": [{"name": test, "result": "COMPLETED"}]}
                  for suite, test in (full.split(".") for full in tests)]
        (folder / "report.json").write_text(json.dumps({"testsuites": suites}))

    def forgotten(self):
        return programs.forgotten("host-clang", str(self.program), ["trace.lines", "trace.sizes"])

    def test_nothing_is_when_each_source_ran_its_own(self):
        self.report("trace.lines", "Lines.AreWhole", "Lines.AreSeveral")
        self.report("trace.sizes", "Sizes/Buffers.Hold/0", "Sizes/Buffers.Hold/1")
        self.assertEqual(self.forgotten(), [])

    def test_a_test_that_no_filter_has_is_named(self):
        self.report("trace.lines", "Lines.AreWhole", "Lines.AreSeveral")
        self.report("trace.sizes", "Sizes/Buffers.Hold/0")
        self.assertEqual(self.forgotten(),
                         ["host-clang joined.trace Sizes/Buffers.Hold/1: no source's filter has it"])


if __name__ == "__main__":
    unittest.main()
