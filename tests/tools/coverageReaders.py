"""Tests of ./dev coverage: what it reads in an export of llvm-cov, and how it judges."""

import sys
import unittest

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import coverage  # noqa: E402

FILE = "source/rack.cpp"
TEXT = """int slots(int wanted) {
  if (wanted < 0 || wanted > 8) {
    return 0;
  }

  // all of them
  return wanted;
}
int unused() {
  return isFull(
      1) ? 1 : 2;
}
"""


CODE, SKIPPED, GAP = 0, 2, 3


def region(first, column, last, end, count, kind=CODE):
    return [first, column, last, end, count, 0, 0, kind]


def function(name, regions, *branches, file=FILE):
    return {"name": name, "filenames": [file], "regions": regions,
            "branches": [[*branch, 0, 0, 4] for branch in branches]}


SLOTS_REGIONS = [region(1, 23, 8, 2, 3), region(2, 7, 2, 17, 3), region(2, 21, 2, 31, 3),
                 region(2, 32, 2, 33, 0, GAP), region(2, 33, 4, 4, 0)]
UNUSED_REGIONS = [region(9, 14, 12, 2, 0)]
SLOTS = function("_Z5slotsi", SLOTS_REGIONS, (2, 7, 2, 17, 0, 3), (2, 21, 2, 31, 0, 3))
UNUSED = function(f"/top/{FILE}:_ZN4rack6unusedEv", UNUSED_REGIONS, (10, 10, 11, 9, 0, 0))


def read(*functions):
    return coverage.places(functions, lambda name: TEXT)


def missing(reached):
    return {place.key() for place, is_reached in reached.items() if not is_reached}


class Lines(unittest.TestCase):
    def test_a_line_has_the_most_of_what_begins_in_it_and_goes_on_in_it(self):
        counts = coverage.counts_of_lines(SLOTS_REGIONS)
        self.assertEqual([counts[line] for line in range(1, 9)], [3, 3, 0, 0, 3, 3, 3, 3])

    def test_what_is_left_out_by_the_preprocessor_is_no_line(self):
        counts = coverage.counts_of_lines([region(1, 1, 4, 1, 2), region(2, 1, 3, 9, 0, SKIPPED)])
        self.assertEqual(counts, {1: 2, 2: 2})

    def test_any_instance_of_a_template_reaches_it(self):
        lines, _ = read(UNUSED, function("_ZN4rack6unusedIiEEv", [region(9, 14, 12, 2, 1)]))
        self.assertEqual(missing(lines), set())

    def test_lone_brackets_are_no_line(self):
        lines, _ = read(SLOTS)
        self.assertNotIn(4, {place.line for place in lines})

    def test_a_function_is_of_the_file_that_no_macro_leads_to(self):
        use = [3, 5, 3, 9, 3, 1, 0, 1]  # in the test's file, of the macro in the product's
        test = dict(function("_Z4testv", [region(2, 1, 2, 9, 3), use, [1, 1, 9, 2, 3, 1, 0, CODE]]),
                    filenames=[FILE, "tests/rack.cpp"])
        self.assertEqual(coverage.counted([test]), [])

    def test_functions_of_other_files_and_mapped_paths(self):
        own = function("_Z5slotsi", SLOTS_REGIONS, file=f"{coverage.workshop.TOP}/{FILE}")
        mapped = function("_Z5slotsi", SLOTS_REGIONS, file=f"out/{coverage.PRESET}/{FILE}")
        test = function("_Z4testv", SLOTS_REGIONS, file=f"{coverage.workshop.TOP}/tests/rack.cpp")
        self.assertEqual([each["filenames"] for each in coverage.counted([own, mapped, test])],
                         [[FILE], [FILE]])

    def test_a_line_that_is_not_reached_is_known_by_its_function_and_text(self):
        lines, _ = read(SLOTS, UNUSED)
        self.assertIn((FILE, "slots", "return 0;", "line"), missing(lines))
        self.assertIn((FILE, "unused", "return isFull(", "line"), missing(lines))
        self.assertNotIn((FILE, "slots", "return wanted;", "line"), missing(lines))


class Outcomes(unittest.TestCase):
    def test_an_outcome_is_known_by_its_condition(self):
        _, outcomes = read(SLOTS)
        self.assertEqual(missing(outcomes), {(FILE, "slots", "wanted < 0", "true"),
                                             (FILE, "slots", "wanted > 8", "true")})

    def test_any_instance_of_a_template_reaches_it(self):
        other = function("_Z5slotsIiEi", SLOTS_REGIONS, (2, 7, 2, 17, 2, 0))
        _, outcomes = read(SLOTS, other)
        self.assertEqual(missing(outcomes), {(FILE, "slots", "wanted > 8", "true")})

    def test_a_condition_is_one_whatever_macros_are_in_it(self):
        cut = function("_Z5slotsi", SLOTS_REGIONS, (2, 7, 2, 13, 2, 0))
        _, outcomes = read(SLOTS, cut)
        self.assertEqual(missing(outcomes), {(FILE, "slots", "wanted > 8", "true")})

    def test_those_of_a_line_that_is_not_reached_are_left_to_the_line(self):
        _, outcomes = read(UNUSED)
        self.assertEqual(outcomes, {})

    def test_a_condition_of_several_lines_is_one_text(self):
        source = coverage.Source(FILE, TEXT)
        self.assertEqual(source.text(10, 10, 11, 9), "isFull( 1)")


class Names(unittest.TestCase):
    def test_a_function_is_named_without_scope_parameters_and_arguments_of_templates(self):
        names = ["_ZN4rack4slotIiEEvT_", "/top/a.cpp:_ZN12_GLOBAL__N_14slotEv"]
        self.assertEqual(list(coverage.demangled(names).values()), ["slot", "slot"])


class Judgements(unittest.TestCase):
    PLACE = coverage.Place(FILE, 3, 0, "slots", "return 0;", "line")

    def judge(self, reached, listed, files=()):
        return coverage.judge({self.PLACE: reached}, {}, list(files), listed)

    def test_what_is_not_reached_has_to_be_listed(self):
        self.assertEqual(len(self.judge(False, {}).failed), 1)
        self.assertEqual(self.judge(False, {self.PLACE.key(): "why"}).failed, [])

    def test_what_is_listed_and_reached_fails(self):
        outcome = self.judge(True, {self.PLACE.key(): "why"})
        self.assertIn("listed, but reached", outcome.failed[0])

    def test_what_is_listed_and_nowhere_fails(self):
        outcome = self.judge(True, {(FILE, "slots", "return 1;", "line"): "why"})
        self.assertIn("listed, but not there", outcome.failed[0])

    def test_a_source_that_is_not_compiled_has_to_be_listed(self):
        whole = coverage.Place("source/kernel.cpp", 0, 0, "", "", "file")
        listed = coverage.read_listed('[{"file": "source/kernel.cpp", "outcome": "file", "reason": "why"}]')
        self.assertEqual(len(self.judge(True, {}, [whole]).failed), 1)
        self.assertEqual(self.judge(True, listed, [whole]).failed, [])
        self.assertEqual(len(self.judge(True, listed).failed), 1)

    def test_a_function_may_be_listed_as_a_whole_if_nothing_of_it_is_reached(self):
        other = coverage.Place(FILE, 4, 0, "slots", "return 1;", "line")
        listed = {(FILE, "slots", "", "function"): "why"}
        none = coverage.judge({self.PLACE: False, other: False}, {}, [], listed)
        some = coverage.judge({self.PLACE: False, other: True}, {}, [], listed)
        self.assertEqual((none.failed, len(some.failed)), ([], 2))

    def test_an_entry_stands_for_every_such_line_until_all_are_reached(self):
        other = coverage.Place(FILE, 30, 0, "slots", "return 0;", "line")
        outcome = coverage.judge({self.PLACE: True, other: False}, {}, [], {self.PLACE.key(): "why"})
        self.assertEqual(outcome.failed, [])
