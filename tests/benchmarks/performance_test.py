"""The reader and the renderer behind script/bench, on a tiny run; and the page against the runs that are kept.

    performance_test.py SOURCE_DIR
"""

import glob
import os
import sys
import tempfile
import unittest

SOURCE_DIR = os.path.abspath(sys.argv.pop(1))
DATA = os.path.join(SOURCE_DIR, "tests/benchmarks/data")
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(SOURCE_DIR, "benchmarks"))

import performance  # noqa: E402


def text_of(path):
    with open(path) as file:
        return file.read()


def tiny_run():
    return performance.collect(f"{DATA}/facts.txt", f"{DATA}/bars.txt", f"{DATA}/jobs.json")


def bar(**changes):
    return {"path": "work", "case": "n = 1", "unit": "us", "bar": "none", "values": [1.0], **changes}


class CollectingTest(unittest.TestCase):
    def test_lines_of_a_row_are_gathered_in_the_order_of_the_first(self):
        rows = tiny_run()["bars"]

        self.assertEqual([row["path"] for row in rows],
                         ["factorisation, beside `dgetrf`", "local target", "merging, beside `std::sort`",
                          "rate, of the peak"])
        self.assertEqual(rows[0]["values"], [1.2, 1.0, 1.1])

    def test_a_line_with_every_value_gives_them_all(self):
        self.assertEqual(tiny_run()["bars"][1]["values"], [3, 4, 5])

    def test_a_line_without_them_gives_its_figure(self):
        self.assertEqual(tiny_run()["bars"][2]["values"], [0.5])

    def test_other_lines_are_passed_over(self):
        self.assertIsNone(performance.read_bar_line("BARometer | 1 | 2 | 3 x | none |"))

    def test_facts_keep_colons_in_their_text(self):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write("compiler: c++: 12\n")
            file.flush()

            self.assertEqual(performance.collect(file.name, os.devnull)["facts"], {"compiler": "c++: 12"})

    def test_a_kept_run_reads_back_as_it_was(self):
        with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
            file.write(performance.run_text(tiny_run()))
            file.flush()

            self.assertEqual(performance.load(file.name), tiny_run())


class FiguresTest(unittest.TestCase):
    def test_a_ratio_below_a_bar_becomes_its_reciprocal_above_one(self):
        row = performance.in_one_direction(bar(path="merging, beside sorting", unit="x", bar="<= 2", values=[0.5, 4]))

        self.assertEqual(row, {"path": "merging", "case": "n = 1", "unit": "times as fast as sorting", "bar": ">= 0.5",
                               "values": [2, 0.25]})

    def test_a_ratio_above_a_bar_stays(self):
        row = performance.in_one_direction(bar(unit="x", bar=">= 2", values=[3]))

        self.assertEqual((row["unit"], row["bar"], row["values"]), ("times as fast", ">= 2", [3]))

    def test_times_and_fractions_stay_as_they_are(self):
        for unit in ("us", "%", "of the peak"):
            row = bar(unit=unit, bar="<= 3")
            self.assertEqual(performance.in_one_direction(row), row)

    def test_the_spread_is_the_largest_less_the_smallest_over_the_median(self):
        self.assertEqual(performance.spread_text([5, 4, 3]), "50 %")

    def test_one_value_has_no_spread(self):
        self.assertEqual(performance.spread_text([5]), "-")

    def test_a_bar_that_is_met_exactly_is_met(self):
        self.assertEqual([performance.verdict(2, text) for text in (">= 2", "<= 2")], ["yes", "yes"])

    def test_a_bar_that_is_missed_says_so(self):
        self.assertEqual([performance.verdict(figure, text) for figure, text in ((1.99, ">= 2"), (2.01, "<= 2"))],
                         ["**no**", "**no**"])

    def test_no_bar_has_no_verdict(self):
        self.assertEqual(performance.verdict(2, "none"), "")


class PageTest(unittest.TestCase):
    def test_the_tiny_run_gives_the_expected_tables(self):
        page = performance.render([tiny_run()])

        self.assertEqual(page[len(performance.INTRODUCTION):], text_of(f"{DATA}/expected.md"))

    def test_the_newest_run_comes_first(self):
        older, newer = tiny_run(), tiny_run()
        older["facts"].update(processor="Older", date="2030-01-01")
        newer["facts"].update(processor="Newer", date="2030-01-03")

        page = performance.render([older, newer])

        self.assertLess(page.index("## Newer"), page.index("## Older"))

    def test_the_page_is_what_the_kept_runs_give(self):
        runs = [performance.load(path) for path in glob.glob(f"{SOURCE_DIR}/docs/performance/*.json")]

        self.assertEqual(text_of(f"{SOURCE_DIR}/docs/performance.md"), performance.render(runs),
                         "docs/performance.md is not what script/bench --render writes")


class CurveTest(unittest.TestCase):
    def test_every_way_is_a_block_in_the_order_of_n(self):
        self.assertEqual(performance.curve_text(tiny_run()["curve"]), text_of(f"{DATA}/expected_curve.txt"))


if __name__ == "__main__":
    unittest.main()
