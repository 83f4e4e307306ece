"""The page of a trace as the build puts it together: valid, whole, and nobody else's."""

import html.parser
import pathlib
import re
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tools/oxdiagview/page"))

import embedPage  # noqa: E402

VOID = {"meta", "input"}  # elements without an end


class Reader(html.parser.HTMLParser):
    """Elements that are not closed in order, and what the attributes say."""

    def __init__(self, page):
        super().__init__()
        self.open, self.faults, self.ids, self.attributes = [], [], [], []
        self.unnamed = []  # controls without a text, a label around or a name
        self.feed(page)

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.attributes += attributes
        self.ids += [attributes["id"]] if "id" in attributes else []
        if tag == "input" and "aria-label" not in attributes and "label" not in self.open:
            self.unnamed.append(self.get_starttag_text())
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append(f"</{tag}> at line {self.getpos()[0]}")


class TracePage(unittest.TestCase):
    def setUp(self):
        self.before, self.behind = embedPage.page_parts()
        self.page = self.before + "{}" + self.behind
        self.reader = Reader(self.page)

    def test_elements_are_closed_in_order(self):
        self.assertTrue(self.page.startswith("<!DOCTYPE html>\n<html lang=\"en\">"))
        self.assertEqual(self.reader.faults, [])
        self.assertEqual(self.reader.open, [])

    def test_ids_are_unique_and_those_of_the_scripts_are_there(self):
        self.assertEqual(len(self.reader.ids), len(set(self.reader.ids)))
        used = set(re.findall(r"\b(?:byId|onClick)\('(\w+)'", self.page))
        self.assertGreater(len(used), 15)
        self.assertEqual(used - set(self.reader.ids), set())

    def test_nothing_is_loaded_and_no_script_is_an_attribute(self):
        for attribute in self.reader.attributes:
            self.assertNotIn(attribute, ("src", "href", "action", "style"))
            self.assertFalse(attribute.startswith("on"), attribute)
        self.assertNotRegex(self.page, r"https?:|url\(|@import|\bfetch\(|innerHTML|\beval\(")

    def test_the_policy_names_the_scripts_and_styles_that_are_there(self):
        style = re.search(r"<style>(.*?)</style>", self.page, re.DOTALL)[1]
        script = re.search(r"<script>(.*?)</script>", self.page, re.DOTALL)[1]
        self.assertIn(embedPage.policy(style, script), self.page)

    def test_inputs_have_names(self):
        self.assertEqual(self.reader.unnamed, [])

    def test_a_source_for_the_compiler_has_the_page(self):
        pieces = re.findall(r'R"page\((.*?)\)page"', embedPage.literal(self.before), re.DOTALL)
        self.assertEqual("".join(pieces), self.before)


if __name__ == "__main__":
    unittest.main()
