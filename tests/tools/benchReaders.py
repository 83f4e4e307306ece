"""Tests of the readers of a benchmark run: best times, tables, targets, growth curves."""

import sys
import unittest
import xml.etree.ElementTree

import places

sys.path.insert(0, str(places.TOP / "bench"))

import growthCurves  # noqa: E402
import ratios  # noqa: E402
import results  # noqa: E402
import targets  # noqa: E402


def entry(name, time, **more):
    return {"name": name, "run_name": name, "run_type": "iteration", "cpu_time": time,
            "real_time": 10 * time, "time_unit": "ns", **more}


def best(*entries):
    return results.best_times({"benchmarks": list(entries)})


class BestTimes(unittest.TestCase):
    def test_the_shortest_repetition_counts(self):
        self.assertEqual(best(entry("a", 3), entry("a", 2), entry("a", 5)), {"a": 2})

    def test_aggregates_do_not_count(self):
        self.assertEqual(best(entry("a", 3), entry("a", 0.1, run_type="aggregate")), {"a": 3})

    def test_what_waits_takes_the_time_of_the_clock(self):
        self.assertEqual(best(entry("a/ours/real_time", 3)), {"a/ours": 30})

    def test_units_become_nanoseconds(self):
        self.assertEqual(best(entry("a", 3, time_unit="us")), {"a": 3000})

    def test_names_stand_in_the_order_of_the_program(self):
        times = best(entry("b", 1, family_index=1), entry("a", 1, family_index=0))
        self.assertEqual(list(times), ["a", "b"])

    def test_the_shorter_one_of_several_runs_counts(self):
        self.assertEqual(results.best_of([{"a": 3, "b": 1}, {"a": 2, "b": 5}]), {"a": 2, "b": 1})

    def test_a_failed_benchmark_is_named(self):
        with self.assertRaisesRegex(results.Failed, "'a' failed: lines went astray"):
            best(entry("a", 1, error_occurred=True, error_message="lines went astray"))


class Tables(unittest.TestCase):
    def test_the_floor_comes_before_the_peers(self):
        times = {"a/ours": 6, "a/fmt": 2, "a/floor": 3, "b/fmt": 1}
        self.assertEqual(results.peers(times), {"a": ["floor", "fmt"]})

    def test_a_pair_shows_its_ratio(self):
        self.assertIn("2.50", ratios.tables({"a/ours": 5, "a/floor": 2}))

    def test_what_has_no_peer_is_listed(self):
        self.assertIn("alone", ratios.tables({"alone": 5}))

    def test_growth_is_told_as_a_power(self):
        times = {"a/4": 10, "a/16": 160}
        self.assertAlmostEqual(ratios.power(times, "a", [4, 16]), 2)


class Targets(unittest.TestCase):
    TIMES = {"a/ours": 6, "a/floor": 5, "a/fmt": 4, "a/spdlog": 12}

    def cells(self, wanted):
        return dict(zip(targets.HEADINGS, targets.row(self.TIMES, "a", wanted)))

    def test_met_at_the_limit_and_not_above(self):
        self.assertEqual(self.cells({"floor": 1.2})["met"], "yes")
        self.assertEqual(self.cells({"floor": 1.19})["met"], "NO")

    def test_every_part_must_be_met(self):
        self.assertEqual(self.cells({"floor": 2, "spdlog": 0.4})["met"], "NO")

    def test_a_peer_that_is_named_is_shown_though_another_is_faster(self):
        self.assertEqual(self.cells({"spdlog": 1})["best peer"], "spdlog 12.0 ns")
        self.assertEqual(self.cells({"floor": 1})["best peer"], "fmt 4.0 ns")

    def test_what_the_run_lacks_is_said(self):
        cells, missing = targets.rows(self.TIMES, {"a": {"floor": 2}, "b": {"floor": 1}})
        self.assertEqual((len(cells), missing), (1, ["b"]))

    def test_every_target_is_a_number_beside_a_name(self):
        for work, wanted in targets.read_targets().items():
            self.assertTrue(wanted, work)
            for limit in wanted.values():
                self.assertGreater(limit, 0, work)


class Curves(unittest.TestCase):
    TIMES = {"a <b>/4": 10.0, "a <b>/16": 20.0, "a <b>/64": 40.0, "c/1": 5.0, "c/10": 5.0}

    def test_each_growth_has_a_panel(self):
        picture = xml.etree.ElementTree.fromstring(growthCurves.draw(self.TIMES))
        panels = picture.findall("{http://www.w3.org/2000/svg}g")
        self.assertEqual(len(panels), 2)

    def test_a_longer_time_lies_higher(self):
        panel = growthCurves.Panel("a", [(4, 10.0), (64, 40.0)])
        self.assertLess(panel.place(64, 40.0)[1], panel.place(4, 10.0)[1])

    def test_what_grows_as_the_number_does_lies_on_the_line(self):
        panel = growthCurves.Panel("a", [(1, 10.0), (100, 1000.0)])
        for seen, wanted in zip(panel.place(100, 1000.0), panel.linear()):
            self.assertAlmostEqual(seen, wanted)
