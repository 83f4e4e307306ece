"""The page of a trace in a browser: made by the program, used as a person does.

usage: pageTest.py DEMO VIEWER FOLDER

FOLDER gets the traces, the pages and pictures of them.
"""

import pathlib
import re
import subprocess
import sys
import time
import unittest

import webDriver

FIELDS = "--timestamp --timedelta --threadid --verbosity --prefixwidth 110"
STAMP = re.compile(rb"(--0x[0-9A-F]+--)(\d+)")
TICKS = 5000            # between two lines
MOST_ROWS = 100         # that a page may have as elements, whatever the trace
MANY_LINES = 200_000
PATIENCE = 10           # seconds until something must be seen
LEAST_CONTRAST = 4.5    # of a text and what is behind it, as WCAG 2 has it

# What must be shown as it stands and do nothing.
NASTY = [
    b"</script><script>window.harmed = 1</script>",
    b"<!--<script>",
    b"<img src=x onerror='window.harmed = 2'>",
    b"<svg onload=window.harmed=3>",
    b"\"}],\"lines\":[]}",
    b"\\u003cimg\\",
    b"${window.harmed = 4} &lt;b&gt; `",
]
NOT_UTF8 = b"high \xff\xfe \xc0\xaf \xed\xa0\x80 \xf5 cut \xe2\x82"
CONTROLS = b"escape \x1b[31m bell \x07 nul \x00 delete \x7f"


def nasty_trace():
    prefix = b"[rack--7--a.cpp---------------------------------] "
    lines = [prefix + text for text in [*NASTY, NOT_UTF8, CONTROLS]]
    lines += [b"[<b>rack</b>--8--<i>.cpp-----------------------------] begin<u>; {",
              b"[<b>rack</b>--8--<i>.cpp-----------------------------] } begin<u>"]
    return b"\n".join(lines) + b"\n"


class Places:
    """Programs and files; set by main()."""

    demo = viewer = folder = None


def make_page(name, trace):
    """The page of a trace; its path."""
    source = Places.folder / f"{name}.txt"
    source.write_bytes(trace)
    page = Places.folder / f"{name}.html"
    subprocess.run([Places.viewer, source, "--html", page], check=True)
    return page


def at_even_times(lines):
    """The lines as if the same time had passed between all of them, whatever the machine was doing."""
    first = int(STAMP.search(lines[0])[2])
    return [STAMP.sub(lambda found: found[1] + str(first + number * TICKS).encode(), line, count=1)
            for number, line in enumerate(lines)]


def demo_trace():
    rack = pathlib.Path(__file__).resolve().parents[2] / "examples/slotbus/faulty.txt"
    done = subprocess.run([Places.demo, rack, "--filter", "verbosity>=60", "--trace", FIELDS],
                          stdout=subprocess.PIPE, check=False)
    lines = at_even_times(done.stdout.splitlines(keepends=True))
    # Another component, another thread, and both kinds of a mark.
    lines[5] = lines[5].replace(b"[slotbus--", b"[rack--", 1)
    lines[6] = re.sub(rb"0x[0-9A-F]+", b"0x7", lines[6], count=1)
    lines[8] = re.sub(rb"(\] +).*", rb"\1ASSERTION WARNING: the reply is late", lines[8])
    return b"".join(lines)


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.trace = demo_trace()
        cls.count = len(cls.trace.splitlines())
        cls.page = make_page("demo", cls.trace)
        cls.browser = webDriver.WebDriver()

    @classmethod
    def tearDownClass(cls):
        cls.browser.end()

    def setUp(self):
        self.browser.resize(1280, 800)
        self.browser.prefer("light")
        self.browser.open(self.page)

    def tearDown(self):
        self.assertEqual(self.browser.messages(), [])

    def await_(self, condition, sentence):
        end = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), end, sentence)
            time.sleep(0.02)  # between two looks

    def shown(self):
        """How many lines the list has now."""
        return int(self.browser.run(
            "return document.getElementById('list').getAttribute('aria-rowcount')")) - 1

    def rows(self):
        """The texts of the rows that are seen, from above."""
        return self.browser.run("""
            return [...document.querySelectorAll('.row:not([hidden])')]
                .sort((a, b) => a.ariaRowIndex - b.ariaRowIndex)
                .map(row => row.querySelector('.message').textContent)""")

    def selected(self):
        return self.browser.run("""
            const row = document.querySelector('.row.selected:not([hidden]) .message');
            return row ? row.textContent : ''""")

    def search(self, text):
        self.browser.clear("#find")
        self.browser.type("#find", text)
        self.await_(lambda: self.browser.text("#found") != "", "nothing is said of the search")


class Content(PageTest):
    def test_shows_every_line_with_its_fields(self):
        self.assertEqual(self.shown(), self.count)
        self.assertIn(f"{self.count} lines", self.browser.text("#facts"))
        self.assertIn("start; {", self.rows()[0])
        titles = self.browser.text("#columns")
        for title in ("Line", "Time", "Delta", "Thread", "Verb.", "Component", "Source", "Text"):
            self.assertIn(title, titles)

    def test_loads_nothing(self):
        seen = self.browser.run("return performance.getEntriesByType('resource').length")
        self.assertEqual(seen, 0)

    def test_every_control_has_a_name(self):
        self.browser.drag("#timeLine canvas", 0.1, 0.2)
        self.browser.run("""
            document.querySelectorAll('details').forEach(choice => { choice.open = true; });
            document.getElementById('keys').show()""")
        elements = self.browser.find_all("button, input, summary, [role=treegrid], #timeLine")
        self.assertGreater(len(elements), 12)
        for element in elements:
            with self.subTest(html=self.browser.run("return arguments[0].outerHTML",
                                                    {webDriver.ELEMENT: element})):
                self.assertNotEqual(self.browser.label(element), "")

    def test_counts_and_visits_the_marks(self):
        self.assertIn("7 failures", self.browser.text("#marks"))
        self.assertIn("1 warning", self.browser.text("#marks"))
        self.browser.click("#marks")
        self.assertIn("ASSERTION WARNING", self.selected())
        self.browser.click("#marks")
        self.assertIn("Error Code = -61007", self.selected())
        self.browser.keys("M")
        self.assertIn("ASSERTION WARNING", self.selected())

    def test_shows_the_whole_of_the_selected_line(self):
        self.browser.click("#marks")
        detail = self.browser.text("#detail")
        self.assertIn("ASSERTION WARNING: the reply is late", detail)
        self.assertIn("tRackReader.cpp", detail)


class Folding(PageTest):
    def test_a_click_folds_and_unfolds(self):
        self.browser.click(".row .twisty")
        self.assertLess(self.shown(), self.count)
        self.assertRegex(self.rows()[0], r"start; \{  \d+ lines")
        self.browser.click(".row .twisty")
        self.assertEqual(self.shown(), self.count)

    def test_all_blocks_fold_and_unfold(self):
        self.browser.click("#foldAll")
        folded = self.shown()
        self.assertLess(folded, 10)
        self.browser.shoot(Places.folder / "folded.png")
        self.browser.click("#unfoldAll")
        self.assertEqual(self.shown(), self.count)

    def test_keys_fold_and_unfold(self):
        self.browser.run("document.getElementById('list').focus()")
        self.browser.keys(webDriver.HOME + webDriver.LEFT)
        self.assertLess(self.shown(), self.count)
        self.browser.keys(webDriver.RIGHT)
        self.assertEqual(self.shown(), self.count)
        self.browser.keys(webDriver.DOWN + webDriver.LEFT)
        self.assertIn("start; {", self.selected())

    def test_a_find_in_a_folded_block_unfolds_it(self):
        self.browser.click("#foldAll")
        self.search("trigger matrix")
        self.browser.type("#find", webDriver.ENTER)
        self.assertIn("Rack controller with trigger matrix", self.selected())


class Searching(PageTest):
    def test_finds_and_goes_on(self):
        self.search("MULTIMETER")
        count = self.trace.decode(errors="replace").lower().count("multimeter")
        self.assertEqual(self.browser.text("#found"), f"1 of {count}")
        first = self.selected()
        self.browser.type("#find", webDriver.ENTER)
        self.assertEqual(self.browser.text("#found"), f"2 of {count}")
        self.assertNotEqual(self.selected(), first)
        self.browser.click("#findBack")
        self.assertEqual(self.selected(), first)
        self.assertIn("multimeter", self.browser.text("mark"))
        self.browser.shoot(Places.folder / "found.png")

    def test_what_is_not_there_is_said(self):
        self.search("no such text")
        self.assertEqual(self.browser.text("#found"), "none")

    def test_shows_only_what_is_found(self):
        self.search("hardware id")
        self.browser.click("#findOnly")
        self.assertTrue(all("hardware id" in row for row in self.rows()))
        self.assertEqual(self.shown(), self.trace.count(b"hardware id"))
        self.browser.click("#reset")
        self.assertEqual(self.shown(), self.count)

    def test_the_slash_key_leads_to_it_and_escape_back(self):
        self.browser.run("document.getElementById('list').focus()")
        self.browser.keys("/")
        self.assertEqual(self.focus(), "find")
        self.browser.keys(webDriver.ESCAPE)
        self.assertEqual(self.focus(), "list")

    def focus(self):
        return self.browser.run("return document.activeElement.id")


class Filtering(PageTest):
    def test_by_component(self):
        self.browser.click("#components summary")
        self.browser.click("#components label:nth-of-type(2) input")
        self.assertEqual(self.shown(), self.count - 1)
        self.browser.shoot(Places.folder / "components.png")

    def test_by_thread(self):
        self.browser.click("#threads summary")
        self.browser.click("#threads label:nth-of-type(1) input")
        self.assertEqual(self.shown(), 1)

    def test_by_verbosity(self):
        self.browser.type("#verbosity", "150")
        self.await_(lambda: self.shown() < 10, "the filter has no effect")
        self.assertTrue(any("devices: 27, failures: 7" in row for row in self.rows()))

    def test_by_marks(self):
        self.browser.click("#marksOnly")
        self.assertEqual(self.shown(), 8)

    def test_nothing_left_is_said(self):
        self.browser.type("#verbosity", "1000")
        self.await_(lambda: self.shown() == 0, "the filter has no effect")
        self.assertIn("No line is shown", self.browser.text("#nothing"))


class Zooming(PageTest):
    def test_a_drag_shows_what_was_then(self):
        self.browser.drag("#timeLine canvas", 0.1, 0.2)
        self.await_(lambda: self.shown() < self.count, "the drag has no effect")
        self.assertGreater(self.shown(), 0)
        self.browser.shoot(Places.folder / "zoomed.png")
        self.browser.click("#zoomOut")
        self.assertEqual(self.shown(), self.count)

    def test_a_click_goes_to_the_line(self):
        self.browser.drag("#timeLine canvas", 0.2, 0.2)
        self.assertNotEqual(self.selected(), "")
        self.assertEqual(self.shown(), self.count)

    def test_keys_zoom_move_and_end_it(self):
        self.browser.run("document.getElementById('timeLine').focus()")
        self.browser.keys("++")
        zoomed = self.shown()
        self.assertLess(zoomed, self.count)
        self.browser.keys(webDriver.LEFT)
        self.assertNotEqual(self.shown(), zoomed)
        self.browser.keys("0")
        self.assertEqual(self.shown(), self.count)


class Looks(PageTest):
    def contrast(self, text, back):
        return self.browser.run("""
            const style = getComputedStyle(document.documentElement);
            const light = name => {
              const hex = style.getPropertyValue(name).trim();
              const part = at => {
                const value = parseInt(hex.slice(at, at + 2), 16) / 255;
                return value <= 0.03928 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4;
              };
              return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5) + 0.05;
            };
            const [one, two] = [light(arguments[0]), light(arguments[1])];
            return Math.max(one, two) / Math.min(one, two)""", text, back)

    def test_texts_stand_out_in_light_and_dark(self):
        for scheme in ("light", "dark"):
            self.browser.prefer(scheme)
            self.browser.open(self.page)
            self.browser.click("#marks")
            self.browser.shoot(Places.folder / f"{scheme}.png")
            for text in ("--text", "--dim", "--accent", "--warning", "--failure"):
                for back in ("--back", "--raised", "--selected"):
                    with self.subTest(scheme=scheme, text=text, back=back):
                        self.assertGreaterEqual(self.contrast(text, back), LEAST_CONTRAST)
            self.assertGreaterEqual(self.contrast("--foundText", "--found"), LEAST_CONTRAST)

    def test_the_button_changes_the_colors(self):
        back = "return getComputedStyle(document.body).backgroundColor"
        light = self.browser.run(back)
        for _ in ("light", "dark"):
            self.browser.click("#theme")
        self.assertNotEqual(self.browser.run(back), light)

    def test_a_narrow_window_shows_the_lines(self):
        self.browser.resize(420, 800)
        self.browser.open(self.page)
        self.browser.click("#marks")
        self.browser.shoot(Places.folder / "narrow.png")
        self.assertIn("ASSERTION WARNING", self.selected())
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 420)
        self.assertGreater(self.browser.run("return page.list.view.clientHeight"), 200)


class Strangers(PageTest):
    """A trace is data, whatever stands in it."""

    def open(self, name, trace):
        self.browser.open(make_page(name, trace))

    def test_markup_in_lines_does_nothing(self):
        self.open("nasty", nasty_trace())
        rows = self.rows()
        for text, row in zip(NASTY, rows):
            self.assertEqual(row.strip(), text.decode())
        self.assertIsNone(self.browser.run("return window.harmed ?? null"))
        self.assertEqual(self.browser.find_all("main img, main svg, main script, main b, main u"), [])
        for line in range(len(rows)):
            self.browser.run("page.select(arguments[0])", line)
        self.assertIsNone(self.browser.run("return window.harmed ?? null"))
        self.assertEqual(self.browser.find_all("#detail img, #detail svg, #detail u"), [])

    def test_bytes_that_are_no_text_are_shown_as_such(self):
        self.open("nasty", nasty_trace())
        rows = self.rows()
        self.assertIn("high \ufffd\ufffd \ufffd\ufffd \ufffd\ufffd\ufffd \ufffd cut \ufffd\ufffd",
                      rows[len(NASTY)])
        self.assertIn("escape \u241b[31m bell \u2407 nul \u2400 delete \u2421", rows[len(NASTY) + 1])

    def test_an_empty_trace_says_so(self):
        self.open("empty", b"")
        self.assertEqual(self.browser.text("#nothing"), "The trace is empty.")
        self.browser.keys("nmNM[]" + webDriver.DOWN + webDriver.END)

    def test_without_times_the_time_line_counts_lines(self):
        self.open("plain", nasty_trace())
        count = len(nasty_trace().splitlines())
        label = self.browser.label(self.browser.find("#timeLine"))
        self.assertIn(f"from line 1 to line {count}", label)
        self.browser.drag("#timeLine canvas", 0.0, 0.4)
        self.await_(lambda: 0 < self.shown() < count, "the drag has no effect")

    def test_a_policy_keeps_other_scripts_out(self):
        self.browser.run("""
            const script = document.createElement('script');
            script.textContent = 'window.harmed = 5';
            document.body.append(script)""")
        self.assertIsNone(self.browser.run("return window.harmed ?? null"))
        self.assertTrue(any("Content Security Policy" in text for text in self.browser.messages()))


class Large(PageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.trace = cls.trace * (MANY_LINES // cls.count + 1)
        cls.count = len(cls.trace.splitlines())
        cls.page = make_page("large", cls.trace)

    def test_few_rows_are_elements(self):
        self.assertEqual(self.shown(), self.count)
        for share in (0, 0.3, 0.999, 1):
            self.browser.run("""
                const list = document.getElementById('list');
                list.scrollTop = list.scrollHeight * arguments[0];
                page.list.draw()""", share)
            self.assertLess(len(self.browser.find_all(".row")), MOST_ROWS)
            self.assertGreater(len(self.rows()), 10)

    def test_keys_reach_the_end(self):
        self.browser.run("document.getElementById('list').focus()")
        self.browser.keys(webDriver.END)
        self.assertIn("the bus stops", self.selected())
        self.browser.shoot(Places.folder / "large.png")

    def test_filter_and_search_work_on_all_of_it(self):
        self.browser.type("#verbosity", "150")
        self.await_(lambda: self.shown() < self.count // 50, "the filter has no effect")
        self.browser.click("#reset")
        self.search("oven controlled")
        self.assertRegex(self.browser.text("#found"), r"1 of \d+")

    def test_tells_how_long_it_takes(self):
        times = self.browser.run("""
            const time = work => {
              const begin = performance.now();
              work();
              return performance.now() - begin;
            };
            const list = document.getElementById('list');
            let drawn = 0;
            const draw = () => { list.scrollTop = ++drawn * 5000; page.list.draw(); };
            return [performance.getEntriesByType('navigation')[0].domComplete,
                    time(() => page.update()),
                    time(() => { for (let i = 0; i < 100; ++i) draw(); }) / 100]""")
        print("  {:,} lines: opened in {:.0f} ms, filtered in {:.0f} ms, drawn in {:.1f} ms"
              .format(self.count, *times))
        self.assertLess(times[2], 1000)


def main(demo, viewer, folder):
    Places.demo, Places.viewer, Places.folder = demo, viewer, pathlib.Path(folder).resolve()
    Places.folder.mkdir(parents=True, exist_ok=True)
    unittest.main(argv=sys.argv[:1], verbosity=2)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
