"""The tests of the workshop's own programs, in tests/tools."""

import io
import sys
import unittest

import workshop


def names_of(results):
    return [test.id() for test, _ in results]


def check():
    folder = str(workshop.TOP / "tests/tools")
    sys.path.insert(0, folder)
    output = io.StringIO()
    suite = unittest.defaultTestLoader.discover(folder, pattern="*.py")
    result = unittest.TextTestRunner(output).run(suite)
    failed = names_of(result.failures + result.errors)
    return workshop.Outcome(result.testsRun - len(failed), failed, output.getvalue())
