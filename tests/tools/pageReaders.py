"""What the readers of pages and headers must find, and what they make of it."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools/dev"))

import commands  # noqa: E402
import doxygenFilter  # noqa: E402
import headerPages  # noqa: E402
import limits  # noqa: E402
import pages  # noqa: E402


class Filter(unittest.TestCase):
    def test_a_comment_documents_each_function_behind_it(self):
        made = doxygenFilter.filtered("// Both.\nvoid one();\nvoid two();\n\nvoid three();\n")
        self.assertEqual(made.count("/** Both."), 2)

    def test_the_first_comment_is_of_the_file(self):
        self.assertIn("@file", doxygenFilter.filtered("#pragma once\n\n// What it is.\n\nint a;\n"))

    def test_nothing_is_a_command(self):
        made = doxygenFilter.filtered("// Of <T> and @x, \\n, --on.\nvoid one();\n")
        self.assertIn("\\<T\\> and \\@x, \\\\n, \\--on", made)

    def test_indented_lines_are_shown_as_they_are(self):
        made = doxygenFilter.filtered("// So:\n//\n//     f(<a>);\n//\n// and on.\nvoid one();\n")
        self.assertIn("@verbatim\nf(<a>);\n@endverbatim", made)

    def test_a_list_is_no_sample(self):
        self.assertNotIn("@verbatim", doxygenFilter.filtered("// Two:\n//   - a\n//   - b\nint a;\n"))

    def test_a_comment_behind_a_member_is_its(self):
        self.assertIn("int a;  /**< of a */", doxygenFilter.filtered("struct t {\n  int a;  // of a\n};\n"))

    def test_a_class_is_documented_once(self):
        made = doxygenFilter.filtered("// A class.\nclass t {\n  void f();\n  void g();\n};\n")
        self.assertEqual(made.count("A class."), 1)


class Links(unittest.TestCase):
    def test_an_anchor_is_as_the_site_has_it(self):
        self.assertEqual(pages.anchor("What a `line` may not rely on"), "what-a-line-may-not-rely-on")

    def test_a_path_that_is_not_there_is_found(self):
        self.assertEqual(list(pages.name_complaints("see docs/nothing.md")), ["docs/nothing.md is not there"])
        self.assertEqual(list(pages.name_complaints("see docs/tracing.md.")), [])

    def test_a_header_that_is_not_there_is_found(self):
        self.assertEqual(list(pages.name_complaints('"oxdiagk/tNothing.h"')),
                         ["oxdiagk/tNothing.h is no header"])

    def test_a_header_without_a_page_is_found(self):
        self.assertEqual(headerPages.page_of("oxdiagk/made.h", {"tracing": ["oxdiagk/tTrace*.h"]}), "")


class Limits(unittest.TestCase):
    def test_a_constant_is_counted_with_its_parts(self):
        text = "constexpr u32 kSize = 0x100;\nconstexpr u32 kMost = kSize - 1;\n"
        self.assertEqual(limits.value_in(text, "kMost"), 255)


class Commands(unittest.TestCase):
    def test_what_is_about_a_command_is_none_of_it(self):
        self.assertEqual(commands.command_in("$ ./dev demo  # what it does"), "./dev demo")
        self.assertEqual(commands.command_in("./dev soak 20                20 s each"), "./dev soak 20")
        self.assertEqual(commands.command_in("int x = 1;"), "")

    def test_one_that_nobody_types_is_found(self):
        self.assertEqual(commands.owner_of("docs/tracing.md", "./dev nothing"), "")


if __name__ == "__main__":
    unittest.main()
