"""Tests of ./dev fuzz: the limits that a target gets, and how long it has run over many calls."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import fuzz  # noqa: E402
import fuzzLedger  # noqa: E402

GOOD = """#!/bin/sh
i=0; while [ $i -lt 60000 ]; do i=$((i + 1)); done
echo '#4 NEW    cov: 12 ft: 30 corp: 1/1b'
echo 'Done 7 runs in 1 second(s)'
"""
WAITING = """#!/bin/sh
sleep 0.4
echo 'Done 7 runs in 1 second(s)'
"""
BAD = """#!/bin/sh
echo '#4 NEW    cov: 12 ft: 30 corp: 1/1b'
echo 'finding: it holds'
echo '==1== ERROR: libFuzzer: deadly signal'
echo 'Test unit written to findings/crash-1'
exit 77
"""


class Folder(unittest.TestCase):
    def setUp(self):
        kept = tempfile.TemporaryDirectory()
        self.addCleanup(kept.cleanup)
        self.folder = pathlib.Path(kept.name)
        self.path = self.folder / "ledger.json"


class Ledgers(Folder):
    def test_time_adds_up_over_calls(self):
        for _ in range(2):
            fuzzLedger.Ledger(self.path).add("words", "one", 100, 7, 12, "")
        ledger = fuzzLedger.Ledger(self.path)
        self.assertEqual(ledger.entry("words", "one"), fuzzLedger.Entry("one", 200, 14, 12, ""))
        self.assertEqual(ledger.lacking("words", "one", 300), 100)
        self.assertEqual(ledger.lacking("words", "one", 150), 0)

    def test_calls_at_the_same_time_keep_what_the_others_write(self):
        one, other = fuzzLedger.Ledger(self.path), fuzzLedger.Ledger(self.path)
        one.add("words", "one", 100, 7, 12, "")
        other.add("texts", "two", 200, 8, 13, "")
        one.add("words", "one", 100, 7, 12, "")
        kept = fuzzLedger.Ledger(self.path)
        self.assertEqual([kept.entry("words", "one").seconds, kept.entry("texts", "two").seconds],
                         [200, 200])

    def test_a_program_of_other_sources_begins_again(self):
        ledger = fuzzLedger.Ledger(self.path)
        ledger.add("words", "one", 100, 7, 12, "crash")
        self.assertEqual(ledger.lacking("words", "two", 300), 300)
        ledger.add("words", "two", 10, 1, 2, "")
        self.assertEqual(ledger.entry("words", "two"), fuzzLedger.Entry("two", 10, 1, 2, ""))

    def test_behind_a_finding_a_target_does_not_go_on(self):
        ledger = fuzzLedger.Ledger(self.path)
        ledger.add("words", "one", 100, 7, 12, "crash")
        ledger.add("words", "one", 1, 1, 1, "")
        self.assertEqual(ledger.entry("words", "one").finding, "crash")
        self.assertEqual(ledger.lacking("words", "one", 300), 0)


class Campaigns(Folder):
    def setUp(self):
        super().setUp()
        self.enterContext(unittest.mock.patch.object(fuzz, "FOUND", self.folder))
        self.enterContext(unittest.mock.patch.object(
            fuzz, "program_of", lambda preset, name: self.folder / f"fuzz.{name}"))

    def written(self, text):
        program = self.folder / "fuzz.words"
        program.write_text(text)
        program.chmod(0o755)
        return program

    def campaign(self, text, seconds):
        self.written(text)
        campaign = fuzz.Campaign(fuzz.PRESET, ["words"], seconds)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            campaign.run("words")
            is_good = campaign.report()
        return is_good, campaign.ledger.entries["words"], printed.getvalue()

    def test_it_goes_on_until_the_time_is_had(self):
        is_good, entry, _ = self.campaign(GOOD, 1.3)
        self.assertTrue(is_good)
        self.assertGreater(entry.seconds, 0.3)
        self.assertEqual(entry.runs % 7, 0)
        self.assertEqual(self.campaign(GOOD, 1.3)[1].runs, entry.runs)
        self.assertGreater(self.campaign(GOOD, 1.6)[1].runs, entry.runs)

    def test_what_counts_is_the_time_of_a_processor(self):
        run = fuzz.Run(fuzz.PRESET, "words", 1, self.written(WAITING))
        with contextlib.redirect_stdout(io.StringIO()):
            run.work()
        self.assertGreaterEqual(run.passed, 0.4)
        self.assertGreater(run.busy, 0)
        self.assertLess(run.busy, 0.2)

    def test_it_ends_at_a_finding(self):
        is_good, entry, printed = self.campaign(BAD, 100)
        self.assertFalse(is_good)
        self.assertEqual(entry.finding, "findings/crash-1")
        self.assertIn("finding: it holds", printed)
        self.assertFalse(self.campaign(BAD, 100)[0])


class Limits(unittest.TestCase):
    def test_each_target_has_them_all(self):
        for name in [*fuzz.LIMITS, fuzz.GREEDY, "any"]:
            options = " ".join(fuzz.limit_options(fuzz.PRESET, name))
            self.assertRegex(options, r"-timeout=\d+ -rss_limit_mb=\d+ -malloc_limit_mb=\d+$")
            milliseconds = fuzz.environment(fuzz.PRESET, name)["OXDIAG_FUZZ_MILLISECONDS"]
            self.assertGreater(int(milliseconds), 0)

    def test_the_limits_of_a_target_are_for_one_that_is_there(self):
        names = {path.stem for path in (places.TOP / "tests/fuzz").glob("*.cpp")}
        self.assertLessEqual(set(fuzz.LIMITS), names)

    def test_the_thread_sanitizer_may_take_more(self):
        usual, thread = (fuzz.limits(preset, "any") for preset in (fuzz.PRESET, fuzz.THREAD_PRESET))
        self.assertGreater(thread.memory, usual.memory)
        self.assertGreater(thread.milliseconds, usual.milliseconds)
