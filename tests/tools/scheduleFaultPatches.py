"""The patches of tests/host/schedules/faults, without building anything."""

import pathlib
import re
import tempfile
import unittest

import scheduleFaults
import workshop


class ScheduleFaultPatches(unittest.TestCase):
    def test_there_are_some(self):
        self.assertGreater(len(scheduleFaults.faults()), 20)

    def test_each_fits_its_source(self):
        for fault in scheduleFaults.faults():
            with self.subTest(fault.name), tempfile.TemporaryDirectory() as place:
                broken = scheduleFaults.broken_source(fault, pathlib.Path(place))
                self.assertNotEqual(broken.read_text(), (workshop.TOP / fault.source).read_text())

    def test_each_names_a_test_of_a_model(self):
        for fault in scheduleFaults.faults():
            folder, name = fault.program.split(".")
            text = (workshop.TOP / "tests/host" / folder / f"{name}.cpp").read_text()
            tests = [".".join(found) for found in re.findall(r"^TEST\((\w+), (\w+)\)", text, re.M)]
            self.assertIn(fault.test, tests, fault.name)

    def test_one_by_name(self):
        self.assertEqual([fault.name for fault in scheduleFaults.faults(["askedOnce"])],
                         ["askedOnce"])
