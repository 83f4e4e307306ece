"""Tests of what runs the steps of ./dev test side by side."""

import io
import os
import signal
import subprocess
import sys
import tempfile
import unittest

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import check  # noqa: E402
import lanes  # noqa: E402

WORKSHOP = f"import sys; sys.path.insert(0, {str(places.TOP / 'tools/dev')!r}); import lanes\n"


def python(code):
    return [sys.executable, "-c", code]


def run(count, **codes):
    """What each was shown with, by name, and all that was written."""
    shown, stream = {}, io.StringIO()

    def show(name, seconds, output):
        shown[name] = output
        return f"{name} ended"

    before = [signal.getsignal(number) for number in (signal.SIGINT, signal.SIGTERM)]
    lanes.Lanes(count, stream).run({name: python(code) for name, code in codes.items()}, show)
    for number, handler in zip((signal.SIGINT, signal.SIGTERM), before):
        signal.signal(number, handler)
    return shown, stream.getvalue()


class SideBySide(unittest.TestCase):
    def test_each_is_shown_with_what_it_printed(self):
        shown, text = run(2, one="print(1)", two="print(2)", three="print(3)")
        self.assertEqual(shown, {"one": "1\n", "two": "2\n", "three": "3\n"})
        self.assertEqual(sorted(text.splitlines()), ["one ended", "three ended", "two ended"])

    def test_two_lanes_run_two_at_once(self):
        meet = ("import os, time\nopen({0!r}, 'w').close()\nend = time.monotonic() + 30\n"
                "while not os.path.exists({1!r}) and time.monotonic() < end: time.sleep(0.01)\n"
                "print(os.path.exists({1!r}))")
        with tempfile.TemporaryDirectory() as folder:
            here, there = f"{folder}/here", f"{folder}/there"
            shown, _ = run(2, one=meet.format(here, there), two=meet.format(there, here))
        self.assertEqual(shown, {"one": "True\n", "two": "True\n"})

    def test_one_lane_keeps_the_order(self):
        _, text = run(1, one="import time; time.sleep(0.2)", two="pass", three="pass")
        self.assertEqual(text, "one ended\ntwo ended\nthree ended\n")

    def test_who_is_told_to_end_begins_nothing_more(self):
        code = WORKSHOP + "\n".join([
            "commands = {'long': [sys.executable, '-c', 'print(1, flush=True); import time; time.sleep(600)'],",
            "            'next': ['touch', sys.argv[1]]}",
            "import os, signal, threading",
            "threading.Timer(1, os.kill, [os.getpid(), signal.SIGTERM]).start()",
            "lanes.Lanes(1, sys.stdout).run(commands, lambda *_: '')"])
        with tempfile.TemporaryDirectory() as folder:
            ended = subprocess.run([*python(code), f"{folder}/begun"], timeout=60)
            self.assertEqual(os.listdir(folder), [])
        self.assertEqual(ended.returncode, 128 + signal.SIGTERM)


class Outcomes(unittest.TestCase):
    def test_a_step_that_ends_without_an_outcome_has_failed(self):
        for output in ("", "Killed\n", "[1, 2"):
            self.assertEqual(check.outcome_of("budget", output).failed, ["budget: its process ended"])

    def test_an_outcome_is_what_the_step_has_found(self):
        outcome = check.outcome_of("budget", '[3, ["a"], "text", ["b"]]')
        self.assertEqual(outcome, (3, ["a"], "text", ["b"]))
