"""Tests of ./dev budget: what it reads in a profile, and how it judges."""

import sys
import unittest

import places

sys.path.insert(0, str(places.TOP / "tools/dev"))

import budget  # noqa: E402

PROFILE = """version: 1
desc: Trigger: Client Request: ten items, cloned x10
events: Ir
summary: 5000

fn=clone
12 700
cfn=ExAllocatePoolWithTag
calls=30 0
13 1500
cfn=helper
calls=10 0
14 100

fn=ExAllocatePoolWithTag
20 900
cfn=ExFreePoolWithTag
calls=5 0
21 600

fn=drop
cfn=ExFreePoolWithTag
calls=30 0
30 500
"""


class Profiles(unittest.TestCase):
    def test_the_pool_is_taken_off_and_its_blocks_are_counted(self):
        path, count = budget.read_profile(PROFILE)
        self.assertEqual(path, "ten items, cloned")
        self.assertEqual((count.instructions, count.blocks), (300, 3))

    def test_what_is_no_path_is_left_out(self):
        self.assertIsNone(budget.read_profile("desc: Trigger: Client Request: start\nsummary: 7\n"))


class Judgements(unittest.TestCase):
    BUDGET = budget.Count(1000, 2)

    def judge(self, instructions, blocks=2):
        return budget.judge(budget.Count(instructions, blocks), self.BUDGET)

    def test_three_percent_either_way_keep_it(self):
        self.assertEqual([self.judge(970), self.judge(1030)], ["", ""])

    def test_more_is_above(self):
        self.assertEqual(self.judge(1031), "ABOVE")

    def test_less_is_told_and_kept(self):
        self.assertTrue(budget.is_kept(self.judge(969)))
        self.assertNotEqual(self.judge(969), "")

    def test_one_block_more_is_above(self):
        self.assertEqual(self.judge(1000, 3), "ABOVE")

    def test_a_path_without_budget_and_a_budget_without_path_fail(self):
        found = budget.verdicts({"new": self.BUDGET}, {"old": self.BUDGET})
        self.assertFalse(any(budget.is_kept(verdict) for _, _, verdict in found.values()))
        self.assertEqual(set(found), {"new", "old"})
