"""Tests of ./dev mutants: where a source is mutated, what is woven, what the compiler's errors drop,
and which tests a mutant meets."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import mutantBuild  # noqa: E402
import mutantHeaders  # noqa: E402
import mutants  # noqa: E402
import mutantWindows  # noqa: E402
import workshop  # noqa: E402

SOURCE = """#define BOTH(a, b) ((a) < (b))
constexpr int kMost = 7;
constexpr int twice(int value) { return value * 2; }
int calls = 0;
void call() { ++calls; }
int limit(int value, bool isOpen) {
  char text[kMost] = {};
  static int const fixed = 3;
  if (value > kMost && isOpen) {
    calls = value - 1;
  } else {
    call();
  }
  if (BOTH(value, 5)) call();
  return value + text[0] + fixed;
}
"""
MAIN = """
#include <cstdlib>
int oxdiagMutantChosen = 0;
unsigned char reached[1000];
unsigned char* oxdiagMutantReached = reached;
int main(int, char** words) {
  oxdiagMutantChosen = std::atoi(words[1]);
  int const above = limit(8, true);
  int const set = calls;
  int const most = limit(7, true);
  return above == 11 && set == 7 && most == 10 && calls == 8 ? 0 : 1;
}
"""


def weave(text, dropped=""):
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "source.cpp"
        file.write_text(text)
        done = subprocess.run([mutantBuild.PYTHON, places.TOP / "tools/dev/mutantPlaces.py", file, dropped,
                               "-std=c++20"], capture_output=True, text=True, check=True)
        return json.loads(done.stdout)


def found(weaving):
    return [(mutant["kind"], mutant["before"], mutant["after"])
            for place in weaving["places"] for mutant in place]


class Weaving(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.weaving = weave(SOURCE)
        cls.found = found(cls.weaving)

    def test_each_kind_has_its_mutants(self):
        for expected in [("store", "++calls", ""), ("call", "call()", ""),
                         ("condition", "value > kMost && isOpen", "true"),
                         ("condition", "value > kMost && isOpen", "!(value > kMost && isOpen)"),
                         ("condition", "isOpen", "true"), ("boundary", "value > kMost", "value >= kMost"),
                         ("store", "calls = value - 1", ""), ("operator", "value - 1", "value + 1"),
                         ("constant", "1", "0"), ("constant", "0", "0 + 1"),
                         ("condition", "BOTH(value, 5)", "false"),
                         ("return", "value + text[0] + fixed", "0")]:
            self.assertIn(expected, self.found)

    def test_what_the_compiler_computes_is_left_alone(self):
        befores = {before for _, before, _ in self.found}
        self.assertNotIn("value * 2", befores)
        self.assertNotIn("3", befores)
        self.assertNotIn("7", befores)
        self.assertNotIn("5", befores)
        self.assertIn("char text[kMost] = {}", self.weaving["text"])

    def test_lines_stay_where_they_are(self):
        woven = self.weaving["text"].splitlines()[1:]
        self.assertEqual(len(woven), len(SOURCE.splitlines()))
        for place in self.weaving["places"]:
            for mutant in place:
                self.assertEqual(SOURCE.splitlines()[mutant["line"] - 1].strip(), mutant["text"])

    def test_a_dropped_place_is_not_woven_and_keeps_its_numbers(self):
        other = weave(SOURCE, "0")
        self.assertEqual(found(other), self.found)
        self.assertIn("OXDIAG_MUTANT_BASE + 0", self.weaving["text"])
        self.assertNotIn("OXDIAG_MUTANT_BASE + 0,", other["text"])
        self.assertNotIn("OXDIAG_MUTANT_BASE + 0)", other["text"])

    def test_what_an_error_is_within_is_dropped_the_innermost_alone(self):
        spans = {order: (tuple(start), tuple(end)) for order, (start, end) in self.weaving["spans"]}
        order = next(number for number, place in enumerate(self.weaving["places"])
                     if place[0]["before"] == "value - 1")
        line, column = spans[order][0]
        error = f"source.cpp:{line}:{column + 1}: error: no\nother.cpp:{line}:{column}: error: no\n"
        self.assertEqual(mutantBuild.objected(pathlib.Path("source.cpp"), error, spans), {order})

    def test_an_error_beside_all_places_drops_those_of_its_line(self):
        spans = {order: (tuple(start), tuple(end)) for order, (start, end) in self.weaving["spans"]}
        line = SOURCE.splitlines().index("    calls = value - 1;") + 1
        on_line = {order for order, (start, _) in spans.items() if start[0] == line}
        for kind, dropped in [("error", on_line), ("warning", set())]:
            said = f"source.cpp:{line}:1: {kind}: no\n"
            self.assertEqual(mutantBuild.objected(pathlib.Path("source.cpp"), said, spans), dropped)
        self.assertTrue(on_line)

    def test_the_chosen_mutant_alone_changes_the_program(self):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder) / "program"
            source = program.with_suffix(".cpp")
            source.write_text(self.weaving["text"] + MAIN)
            subprocess.run(["g++", "-std=c++20", "-DOXDIAG_MUTANT_BASE=1", "-include",
                            mutantBuild.KIT / "mutant.h", source, "-o", program], check=True)
            self.assertEqual(subprocess.run([program, "0"]).returncode, 0)
            for expected, seen in [(("operator", "value - 1", "value + 1"), 1),
                                   (("boundary", "value > kMost", "value >= kMost"), 1),
                                   (("condition", "isOpen", "true"), 0)]:
                number = self.found.index(expected) + 1
                self.assertEqual(subprocess.run([program, str(number)]).returncode, seen, expected)


HEADER = """#pragma once
namespace _STL {
template <class T>
struct most {
  T value = T();
  bool take(T other) noexcept {
    if (other > value) value = other;
    return value == other;
  }
  static constexpr int size() { return 3 + 4; }
};
}
"""
USER = """#include <cstdlib>

#include "stl/most.h"
int oxdiagMutantChosen = 0;
unsigned char reached[1 << 20];
unsigned char* oxdiagMutantReached = reached;
int main(int, char** words) {
  oxdiagMutantChosen = std::atoi(words[1]);
  _STL::most<int> most;
  return most.take(5) && !most.take(4) && most.size() == 7 ? 0 : 1;
}
"""


class Headers(unittest.TestCase):
    """A template is woven, and whoever includes it has its mutants."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "include/stl/most.h"
        self.file.parent.mkdir(parents=True)
        self.file.write_text(HEADER)
        for name, value in [("FOLDER", self.folder / "include"), ("HERE", self.folder / "woven")]:
            patch = unittest.mock.patch.object(mutantHeaders, name, value)
            patch.start()
            self.addCleanup(patch.stop)

    def test_of_a_template_each_use_has_the_chosen_mutant(self):
        with unittest.mock.patch.object(workshop, "TOP", self.folder), \
                unittest.mock.patch.object(mutantHeaders.Header, "weave", self.weave):
            header = mutantHeaders.Header(self.file, 3, ["g++", "-std=c++20"])
            header.write()
        program = self.folder / "program"
        source = program.with_suffix(".cpp")
        source.write_text(USER)
        subprocess.run(["g++", "-std=c++20", f"-I{self.folder}/woven", "-include", mutantBuild.KIT / "mutant.h",
                        source, "-o", program], check=True)
        base = 1 + 3 * mutantBuild.NUMBERS_OF_A_FILE
        seen = {change: subprocess.run([program, str(base + number)]).returncode
                for number, change in enumerate(found(header.weaving))}
        self.assertEqual(subprocess.run([program, "0"]).returncode, 0)
        self.assertEqual(seen["condition", "other > value", "false"], 1)
        self.assertEqual(seen["store", "value = other", ""], 1)
        self.assertEqual(seen["boundary", "other > value", "other >= value"], 0)
        self.assertFalse([change for change in seen if "3" in change[1]])

    @staticmethod
    def weave(header, dropped):
        done = subprocess.run([mutantBuild.PYTHON, places.TOP / "tools/dev/mutantPlaces.py", header.file, "",
                               "-std=c++20", "-xc++"], capture_output=True, text=True, check=True)
        return json.loads(done.stdout)


def image_with(*sections):
    """The head of a PE image with these sections, each with its place in the file."""
    head, optional = 0x80, 0xF0
    image = bytearray(0x400)
    image[0x3C:0x40] = head.to_bytes(4, "little")
    image[head + 6:head + 8] = len(sections).to_bytes(2, "little")
    image[head + 20:head + 22] = optional.to_bytes(2, "little")
    for number, (name, place) in enumerate(sections):
        entry = head + 24 + optional + 40 * number
        image[entry:entry + len(name)] = name
        image[entry + 20:entry + 24] = place.to_bytes(4, "little")
    return image


class Windows(unittest.TestCase):
    def test_the_number_is_where_its_section_says(self):
        image = image_with((b".text", 0x200), (b".mutant", 0x320), (b".rsrc", 0x340))
        self.assertEqual(mutantWindows.place_of_choice(image), 0x320)
        self.assertIsNone(mutantWindows.place_of_choice(image_with((b".text", 0x200), (b".mutants", 0x320))))

    def test_the_number_alone_is_written(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "woven").mkdir()
            before = image_with((b".mutant", 0x320))
            (folder / "woven/vexk.dll").write_bytes(before)
            with unittest.mock.patch.multiple(mutantWindows, WOVEN=folder / "woven", CHANGED=folder / "changed",
                                              MODULES=["vexk.dll"]):
                mutantWindows.choose(0x1234)
            after = (folder / "changed/vexk.dll").read_bytes()
        self.assertEqual(after[0x320:0x324], b"\x34\x12\0\0")
        self.assertEqual(after[:0x320] + after[0x324:], bytes(before[:0x320] + before[0x324:]))

    def verdict(self, *outcomes):
        """Of runs that fail in these tests, one after the other, and then in none."""
        left = list(outcomes)

        def check(*_):
            return workshop.Outcome(1, left.pop(0) if left else [], "")

        with unittest.mock.patch.multiple(mutantWindows, choose=lambda number: None, CHECKS=(check, check)):
            return mutantWindows.judge(1)

    def test_what_fails_twice_kills(self):
        self.assertEqual(self.verdict(["A.a"], ["A.a"]), (mutants.KILLED, "A.a"))
        self.assertEqual(self.verdict([], ["B.b"], ["B.b"]), (mutants.KILLED, "B.b"))

    def test_what_fails_once_does_not(self):
        self.assertEqual(self.verdict(["A.a"], [])[0], mutants.SURVIVED)
        self.assertEqual(self.verdict()[0], mutants.SURVIVED)


class Program:
    def __init__(self, name):
        self.name = self.path = name


class Meeting(unittest.TestCase):
    @staticmethod
    def reached(name, tests, numbers, around=()):
        return mutants.Reached(Program(name), tests, {test: 1 for test in tests}, numbers, set(around))

    def test_only_what_reaches_the_place_is_met_the_conformance_tests_first(self):
        slow = self.reached("slow", {"A.a": 3.0}, {5: ["A.a"]})
        quick = self.reached("quick", {"B.b": 1.0, "B.c": 1.0}, {5: ["B.c"]})
        other = self.reached("other", {"C.c": 1.0}, {6: ["C.c"]})
        first = self.reached("conformance_tests", {"D.d": 9.0}, {5: ["D.d"]})
        met = [(each.program.name, names) for _, each, names in
               mutants.meetings(5, [slow, quick, other, first], [])]
        self.assertEqual(met, [("conformance_tests", ["D.d"]), ("quick", ["B.c"]), ("slow", ["A.a"])])

    def test_what_is_reached_around_the_tests_is_met_by_all_of_them(self):
        each = self.reached("each", {"A.a": 1.0, "A.b": 1.0}, {}, around=[5])
        self.assertEqual([names for _, _, names in mutants.meetings(5, [each], [])], [["A.a", "A.b"]])

    def test_a_test_that_saw_a_neighbour_is_met_first(self):
        each = self.reached("each", {"A.a": 0.01, "A.b": 0.01}, {5: ["A.a", "A.b"]})
        met = [names for _, _, names in mutants.meetings(5, [each], [("each", "A.b"), ("each", "A.c")])]
        self.assertEqual(met, [["A.b"], ["A.a", "A.b"]])

    def test_most_tests_are_chosen_by_the_others(self):
        tests = {"A.a": 1, "A.b": 1, "A.c": 1}
        self.assertEqual(mutants.filters(["A.a"], tests), ["A.a"])
        self.assertEqual(mutants.filters(["A.a", "A.b"], tests), ["-A.c"])

    def test_a_test_that_fails_by_itself_sees_no_mutant(self):
        with tempfile.TemporaryDirectory() as folder:
            log = pathlib.Path(folder) / "log"
            log.write_text("- 0 1\nA.a 100 2 3\n!A.b 100 2\nA.c 100 4\nA.d 100 2\n+ 0 5\n")
            each = mutants.read_reached(Program("each"), log)
        self.assertEqual(each.numbers[2], ["A.a", "A.d"])
        self.assertEqual(each.unusable, {"A.b"})
        with unittest.mock.patch.object(mutants, "limited", return_value=(0, "")) as called:
            mutants.meet(2, each, ["A.a", "A.d"], 0, "/")
        self.assertIn("--gtest_filter=A.a:A.d", called.call_args.args[0])

    def test_the_test_that_failed_or_died_is_named(self):
        self.assertEqual(mutants.last_test("[ RUN      ] A.a\n[  FAILED  ] A.a (0 ms)\n"), "A.a")
        self.assertEqual(mutants.last_test("[ RUN      ] A.a\n[ RUN      ] A.b\n"), "A.b")
        self.assertEqual(mutants.last_test(""), "")


class Source:
    name, base = "source/a/b.cpp", 1

    def digest(self):
        return "none"

    def mutants(self):
        shared = {"function": "f", "text": "g();", "kind": "call", "after": "", "line": 3, "place": 0}
        return [dict(shared, number=number, before=before, compiled=number < 3)
                for number, before in enumerate(["seen()", "listed()", "open()", "wrong()"])]


class Reporting(unittest.TestCase):
    def outcome(self, verdicts, listed):
        with tempfile.TemporaryDirectory() as folder:
            kept = mutants.VERDICTS, mutants.LISTED
            mutants.VERDICTS, mutants.LISTED = pathlib.Path(folder), pathlib.Path(folder) / "listed.json"
            mutants.LISTED.write_text(json.dumps(
                [{"file": Source.name, "function": "f", "text": "g();", "kind": "call", "before": before,
                  "after": "", "reason": "none"} for before in listed]))
            try:
                known = mutants.Verdicts(Source())
                known.known.update(verdicts)
                return mutants.report([known])
            finally:
                mutants.VERDICTS, mutants.LISTED = kept

    def test_a_survivor_fails_unless_it_is_listed(self):
        verdicts = {0: (mutants.KILLED, "t"), 1: (mutants.SURVIVED, "9 tests"), 2: (mutants.UNREACHED, "")}
        outcome = self.outcome(verdicts, ["listed()"])
        self.assertEqual(outcome.passed, 3)
        self.assertEqual(outcome.failed, ["source/a/b.cpp:3: f: call: open() -> (nothing): unreached"])

    def test_a_listed_one_that_is_killed_fails(self):
        outcome = self.outcome({0: (mutants.KILLED, "t")}, ["seen()"])
        self.assertEqual(outcome.failed, ["source/a/b.cpp: f: listed as unobservable, but killed: seen() -> "])


if __name__ == "__main__":
    unittest.main()
