"""Tests of the step that asks each sleep of a test for its reason."""

import sys
import unittest

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import sleeps  # noqa: E402


class Sleeps(unittest.TestCase):
    def test_one_with_its_reason_may_stay(self):
        for text in ("usleep(100);  // between two looks", "// Until it waits.\nusleep(100);",
                     "// Looks now and then.\nfor (;;) {\n  usleep(100);", "time.sleep(1)  # a while"):
            self.assertEqual(sleeps.unexplained(text.splitlines()), [], text)

    def test_one_without_is_found_with_its_line(self):
        for text in ("int a;\nusleep(100);", "\nstd::this_thread::sleep_for(kLong);",
                     "\n            time.sleep(0.02)", "\n  tWorker::sleep(20);"):
            self.assertEqual(sleeps.unexplained(text.splitlines()), [2], text)

    def test_a_reason_far_above_is_of_something_else(self):
        self.assertEqual(sleeps.unexplained("// A test.\n\n\nusleep(100);".splitlines()), [4])

    def test_giving_the_processor_away_is_none(self):
        self.assertEqual(sleeps.unexplained(["tWorker::sleep(0);"]), [])
