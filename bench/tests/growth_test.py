"""Tests growth and the picture with recorded measurements; measures nothing."""

import json
import os
import re
import sys
import unittest
from xml.etree import ElementTree

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(HERE))

import growth  # noqa: E402
import picture  # noqa: E402
import report  # noqa: E402

MACHINE = {"cores": 2, "processor": "P <fast>", "kernel": "6", "date": "2024-01-01"}


def full_report():
    with open(os.path.join(HERE, "recorded.json"), encoding="ascii") as file:
        return report.report(json.load(file), 3, MACHINE)


class GrowthTest(unittest.TestCase):
    def setUp(self):
        self.full = full_report()
        self.series = {one["name"]: one for one in self.full["growth"]}

    def test_exponents_of_known_laws(self):
        sizes = [10, 100, 1000]
        self.assertEqual(growth.exponent(sizes, [7 * size for size in sizes]), 1)
        self.assertEqual(growth.exponent(sizes, [size * size for size in sizes]), 2)
        self.assertEqual(growth.exponent(sizes, [3, 3, 3]), 0)

    def test_least_disturbed_round_counts_and_sizes_ascend_as_numbers(self):
        parse = self.series["growth-parse"]
        self.assertEqual(parse["sizes"], [500, 5000, 50000])
        self.assertEqual(parse["ours"], [50000, 490000, 4900000])
        self.assertEqual(self.series["growth-calls"]["ours"], [80000, 81000])
        self.assertAlmostEqual(parse["exponent"], 0.996, places=3)
        self.assertEqual(parse["limit_exponent"], 1)

    def test_what_hardly_grows_has_a_small_exponent(self):
        self.assertAlmostEqual(self.series["growth-lookup"]["exponent"], 0.15, places=2)

    def test_more_answers_a_second_cost_less_each(self):
        calls = self.series["growth-calls"]
        self.assertAlmostEqual(-0.003, calls["exponent"], places=3)
        self.assertLess(calls["limit_exponent"], 0)

    def test_what_was_not_measured_of_both_is_left_out(self):
        self.assertNotIn("growth-start", self.series)
        self.assertNotIn("growth-models", self.series)

    def test_growth_is_no_row(self):
        self.assertFalse([row for row in self.full["rows"] if row["name"].startswith("growth")])

    def test_table_has_a_line_a_series(self):
        line = next(line for line in report.table(self.full).splitlines() if "50,000" in line)
        self.assertRegex(line, r"500 to 50,000 items +50 us +4\.9 ms +1\.00 +1\.00$")


class PictureTest(unittest.TestCase):
    def setUp(self):
        self.full = full_report()
        self.svg = picture.picture(self.full)
        self.root = ElementTree.fromstring(self.svg)
        self.texts = ["".join(text.itertext()) for text in self.root.iter()
                      if text.tag.endswith("}text")]

    def test_everything_has_its_words(self):
        for words in ("Reading a project file", "slow 40", "slower 50", "10", "bus 4.2",
                      "reading a project file, 500 to 50,000 items"):
            self.assertIn(words, self.texts)

    def test_rates_are_drawn_as_costs(self):
        self.assertIn("bus 5", self.texts)
        self.assertIn("rpc 10", self.texts)

    def test_everything_lies_within(self):
        height = float(self.root.get("height"))
        for element in self.root.iter():
            for name, most in (("x", picture.WIDTH), ("x1", picture.WIDTH), ("cx", picture.WIDTH),
                               ("y", height), ("y1", height), ("cy", height)):
                self.assertTrue(0 <= float(element.get(name, 0)) <= most, element.attrib)

    def test_has_colours_for_both_themes(self):
        self.assertIn("prefers-color-scheme:dark", self.svg)
        classes = {colour[0] for colour in picture.COLOURS}
        for used in re.findall(r'class="([^"]*)"', self.svg):
            for one in used.split():
                self.assertIn(one, classes | {"small", "head", "bold", "stroke"})

    def test_every_series_has_a_line(self):
        self.assertEqual(set(picture.LINES), {series.family for series in growth.SERIES})

    def test_rows_that_are_drawn_exist(self):
        drawn = {row.name: row for row in report.ROWS if row.name in picture.ROWS}
        self.assertEqual(set(drawn), set(picture.ROWS))
        self.assertFalse([name for name, row in drawn.items() if row.goal is None])

    def test_either_panel_alone_is_a_picture(self):
        for left_out in ("rows", "growth"):
            ElementTree.fromstring(picture.picture({**self.full, left_out: []}))

    def test_words_lie_apart(self):
        labels = [(100, "first 1"), (104, "second 2"), (300, "far away 3")]
        self.assertEqual([lane for _, _, lane in picture.lanes(labels)], [0, 1, 0])
        self.assertEqual(picture.apart([100, 100, 130], 38, 60, 136), [60, 98, 136])


if __name__ == "__main__":
    unittest.main()
