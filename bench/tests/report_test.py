"""Tests the table with recorded measurements; measures nothing."""

import json
import os
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(HERE))

import report  # noqa: E402
import run  # noqa: E402

MACHINE = {"cores": 2, "processor": "P", "kernel": "6", "date": "2024-01-01"}


def recorded():
    with open(os.path.join(HERE, "recorded.json"), encoding="ascii") as file:
        return json.load(file)


class ReportTest(unittest.TestCase):
    def setUp(self):
        self.full = report.report(recorded(), 3, MACHINE)
        self.rows = {row["name"]: row for row in self.full["rows"]}

    def test_survives_json(self):
        self.assertEqual(json.loads(json.dumps(self.full)), self.full)

    def test_every_row_says_what_was_reached(self):
        for row in self.full["rows"]:
            for key in ("name", "ratio", "goal", "reached", "noise", "peers"):
                self.assertIn(key, row)
            self.assertEqual(row["goal"] is None, row["reached"] is None)

    def test_ratio_is_the_median_of_the_rounds(self):
        # 10, 10.5 and 9: not 273000 over 28100.
        self.assertEqual(self.rows["parse-5000"]["ratio"], 10)
        self.assertFalse(self.rows["parse-5000"]["reached"])

    def test_more_may_be_better(self):
        # 0.92, 0.91 and 0.94; 0.9, 0.92 and 0.95
        self.assertEqual(self.rows["calls-4"]["ratio"], 0.92)
        self.assertFalse(self.rows["calls-4"]["reached"])
        self.assertEqual(self.rows["calls-16"]["ratio"], 0.92)
        self.assertTrue(self.rows["calls-16"]["reached"])
        self.assertFalse(self.rows["call"]["reached"])

    def test_peers_stand_beside_the_row(self):
        self.assertEqual(self.rows["parse-5000"]["peers"], {"slow": 40, "slower": 50})
        self.assertEqual(self.rows["call"]["peers"], {"bus": 4.2})
        self.assertEqual(self.rows["lookup-5000"]["peers"], {})
        self.assertEqual(self.rows["calls-4"]["peers"], {"bus": 0.2, "rpc": 0.1})
        self.assertEqual(self.rows["calls-16"]["peers"], {"bus": 0.2})
        self.assertEqual(self.rows["calls-16"]["unit"], "/s")

    def test_product_is_compared_with_the_best_peer(self):
        row = self.rows["parse-5000-peers"]
        self.assertEqual(row["ratio"], 4)
        self.assertEqual(row["goal"], 2)
        self.assertEqual(row["peers"], {"slow": 4})
        self.assertTrue(row["reached"])

    def test_row_without_a_goal_is_neither_reached_nor_not(self):
        row = self.rows["update-5000"]
        self.assertEqual(row["ratio"], 8)
        self.assertIsNone(row["reached"])
        line = next(line for line in report.table(self.full).splitlines() if "order not" in line)
        self.assertRegex(line, r" 8\.00 +28\.1 us +\d+ %$")

    def test_reparse_is_compared_with_the_first_parse(self):
        self.assertAlmostEqual(self.rows["reparse-5000"]["ratio"], 280000 / 295050, places=2)
        self.assertTrue(self.rows["reparse-5000"]["reached"])

    def test_what_was_not_measured_is_left_out(self):
        for name in ("parse-100000", "parse-100000-peers", "start-5000"):
            self.assertNotIn(name, self.rows)

    def test_noise_is_that_of_the_limit(self):
        self.assertEqual(self.rows["resident-5000"]["noise"], 0)
        self.assertAlmostEqual(self.rows["calls-4"]["noise"], (199000 - 174000) / 198000, places=3)

    def test_table_has_a_line_a_row(self):
        lines = report.table(self.full).splitlines()
        for row in self.full["rows"]:
            here = [line for line in lines if line.startswith(row["title"] + " ") and " % " in line + " "]
            self.assertEqual(len(here), 1, row["title"])
        call = next(line for line in lines if "p50" in line)
        self.assertRegex(call, r" 1\.30 +<= 1 +NO +8\.7 us +\d+ %  bus 4\.20$")

    def test_names_of_rows_differ(self):
        names = [row.name for row in report.ROWS]
        self.assertEqual(len(names), len(set(names)))


class RunTest(unittest.TestCase):
    def test_what_the_library_appends_is_gone(self):
        self.assertEqual(run.name_of("parse/ours/5000/iterations:40"), "parse/ours/5000")
        self.assertEqual(run.name_of("call/ours/1/iterations:20/manual_time"), "call/ours/1")
        self.assertEqual(run.name_of("call/ours/1"), "call/ours/1")

    def test_growth_is_measured_in_some_rounds(self):
        names = ["parse/ours/5000/iterations:40", "growth-parse/ours/500/iterations:9"]
        self.assertEqual([run.chosen(names, ".", number) for number in range(1, 6)],
                         [names, names[:1], names[:1], names[:1], names])

    def test_filter_sees_names_without_what_the_library_appends(self):
        names = ["parse/ours/5000/iterations:40", "call/ours/1/iterations:4000"]
        self.assertEqual(run.chosen(names, "5000$", 1), names[:1])
        self.assertEqual(run.chosen(names, "^call/", 1), names[1:])

    def test_names_are_taken_literally(self):
        exactly = run.exactly(["call/sd-bus+daemon/1/iterations:4000", "parse/ours/5"])
        self.assertRegex("call/sd-bus+daemon/1/iterations:4000", exactly)
        self.assertRegex("parse/ours/5", exactly)
        self.assertNotRegex("parse/ours/5000", exactly)


if __name__ == "__main__":
    unittest.main()
