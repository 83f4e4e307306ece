"""Tests of ./dev prove: what has passed is not run again while the sources are the same."""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import check  # noqa: E402
import proofLedger  # noqa: E402
import workshop  # noqa: E402

GOOD = workshop.Outcome(7, [], "", ["one that needs root"])
BAD = workshop.Outcome(6, ["gdb: a view"], "what it saw")


class Folder(unittest.TestCase):
    def setUp(self):
        kept = tempfile.TemporaryDirectory()
        self.addCleanup(kept.cleanup)
        self.folder = pathlib.Path(kept.name)
        self.path = self.folder / "out/proof.json"


class Ledgers(Folder):
    def test_what_has_passed_is_known_to_the_next_run(self):
        proofLedger.ProofLedger("state", self.path).note("gdb", GOOD)
        ledger = proofLedger.ProofLedger("state", self.path)
        self.assertEqual(ledger.outcome("gdb"), GOOD)
        self.assertIsNone(ledger.outcome("tidy"))

    def test_what_has_failed_is_run_again(self):
        proofLedger.ProofLedger("state", self.path).note("gdb", BAD)
        self.assertIsNone(proofLedger.ProofLedger("state", self.path).outcome("gdb"))

    def test_other_sources_begin_anew(self):
        proofLedger.ProofLedger("state", self.path).note("gdb", GOOD)
        other = proofLedger.ProofLedger("other", self.path)
        self.assertIsNone(other.outcome("gdb"))
        other.note("tidy", GOOD)
        self.assertIsNone(proofLedger.ProofLedger("state", self.path).outcome("gdb"))


class States(Folder):
    def setUp(self):
        super().setUp()
        subprocess.run(["git", "init", "-q", self.folder], check=True)
        (self.folder / ".gitignore").write_text("out/\n")
        (self.folder / "a.cpp").write_text("int a;\n")
        self.before = proofLedger.state_of(self.folder)

    def test_a_byte_more_is_another_state(self):
        (self.folder / "a.cpp").write_text("int a;\n\n")
        self.assertNotEqual(proofLedger.state_of(self.folder), self.before)

    def test_a_new_file_and_one_less_are_other_states(self):
        (self.folder / "b.cpp").write_text("")
        self.assertNotEqual(proofLedger.state_of(self.folder), self.before)
        (self.folder / "b.cpp").unlink()
        self.assertEqual(proofLedger.state_of(self.folder), self.before)
        (self.folder / "a.cpp").unlink()
        self.assertNotEqual(proofLedger.state_of(self.folder), self.before)

    def test_what_is_built_is_no_source(self):
        (self.folder / "out").mkdir()
        (self.folder / "out/a.o").write_text("")
        self.assertEqual(proofLedger.state_of(self.folder), self.before)

    def test_a_commit_changes_nothing(self):
        subprocess.run(["git", "-C", self.folder, "add", "a.cpp"], check=True)
        self.assertEqual(proofLedger.state_of(self.folder), self.before)


class Proofs(Folder):
    def prove(self, *words):
        """The steps that were run, the exit code and what was printed."""
        ran, printed = [], io.StringIO()

        def run_steps(names, _, note):
            ran.extend(names)
            for name in names:
                note(name, BAD if name == "gdb" else GOOD)
            return [BAD if name == "gdb" else GOOD for name in names]

        with unittest.mock.patch.multiple(proofLedger, PATH=self.path), \
                unittest.mock.patch.object(proofLedger, "state_of", lambda top: "state"), \
                unittest.mock.patch.multiple(check, PROOF={"gdb", "tidy"}, run_steps=run_steps), \
                contextlib.redirect_stdout(printed):
            return ran, check.prove(list(words)), printed.getvalue()

    def test_only_what_failed_is_run_again(self):
        ran, code, _ = self.prove()
        self.assertEqual((sorted(ran), code), (["gdb", "tidy"], 1))
        ran, code, printed = self.prove()
        self.assertEqual((ran, code), (["gdb"], 1))
        self.assertIn("clang-tidy ... before, 7 passed, 0 failed, 1 skipped\n", printed)
        self.assertTrue(printed.endswith("13 passed, 1 failed, 1 skipped\n"), printed)

    def test_anew_is_all(self):
        self.prove()
        self.assertEqual(sorted(self.prove("--anew")[0]), ["gdb", "tidy"])

    def test_other_words_run_nothing(self):
        for word, wanted in (("--help", 0), ("tidy", 2)):
            ran, code, printed = self.prove(word)
            self.assertEqual((ran, code), ([], wanted))
            self.assertTrue(printed.startswith("usage: ./dev prove [--anew]\n"))
