"""The table, on a terminal and as Markdown."""

import unittest

import table
from figures import Row, Verdict

ROWS = [Row("one download", "disk", "1.00 s", [Verdict("0.90 of the floor's rate", True),
                                               Verdict("0.50 times curl's rate", False)],
            "0.90 s", "curl 0.50 s", "ours 20.0 MiB"),
        Row("idle", "", "", [Verdict("1.00 times lftp's rate")])]


class MarkdownTest(unittest.TestCase):
    def setUp(self):
        self.lines = table.markdown(ROWS).splitlines()

    def test_it_has_a_line_for_each_row_below_its_head(self):
        self.assertEqual(len(self.lines), 4)
        self.assertEqual(self.lines[1], "| --- | --- | --- | --- | --- | --- | --- |")

    def test_all_lines_have_as_many_cells(self):
        self.assertEqual({line.count("|") for line in self.lines}, {8})

    def test_ratios_stand_before_times(self):
        self.assertLess(self.lines[0].index("Ratios"), self.lines[0].index("Ours"))
        self.assertLess(self.lines[2].index("0.90 of"), self.lines[2].index("1.00 s"))

    def test_what_is_not_met_cannot_be_overlooked(self):
        self.assertIn("0.90 of the floor's rate: met<br>0.50 times curl's rate: **not met**", self.lines[2])

    def test_a_bar_in_a_text_does_not_end_its_cell(self):
        self.assertIn("a\\|b", table.markdown([Row("a|b", "", "", [])]))


class TerminalTest(unittest.TestCase):
    def test_columns_stand_below_each_other(self):
        lines = table.terminal(ROWS).splitlines()
        bars = [[place for place, letter in enumerate(line) if letter in "|+"] for line in lines if line]
        self.assertTrue(all(places == bars[0][:len(places)] for places in bars))

    def test_no_line_is_longer_than_the_columns(self):
        long = Row("word " * 40, "disk", "1 s", [Verdict("ratio " * 30, True)], peers="peer " * 40)
        width = sum(table.WIDTHS) + 3 * (len(table.WIDTHS) - 1)
        self.assertLessEqual(max(map(len, table.terminal([long]).splitlines())), width)

    def test_each_verdict_begins_a_line(self):
        text = table.terminal(ROWS)
        self.assertRegex(text, r"\| 0\.90 of the floor's rate: met +\|")
        self.assertRegex(text, r"\| 0\.50 times curl's rate: NOT MET +\|")


class SummaryTest(unittest.TestCase):
    def test_only_what_is_required_counts(self):
        self.assertEqual(table.summary(ROWS), "1 of 2 required figures met")


if __name__ == "__main__":
    unittest.main()
