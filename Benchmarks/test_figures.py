"""Medians, ratios and verdicts."""

import unittest

from figures import (Row, Timings, Verdict, ahead_of, below, beside, duration, of_the_floor, straightness,
                     timed_row, times_of)


def timings(**seconds):
    made = Timings()
    for name, values in seconds.items():
        for value in values:
            made.add(name, value, 2048)
    return made


class TimingsTest(unittest.TestCase):
    def test_the_median_is_the_middle_one_whatever_the_order(self):
        self.assertEqual(timings(ours=[9.0, 1.0, 2.0]).median("ours"), 2.0)

    def test_the_median_of_an_even_number_is_between_the_middle_ones(self):
        self.assertEqual(timings(ours=[4.0, 1.0, 2.0, 100.0]).median("ours"), 3.0)

    def test_the_peak_is_the_highest(self):
        made = timings(ours=[1.0])
        made.add("ours", 1.0, 4096)
        made.add("ours", 1.0, 1024)
        self.assertEqual(made.peak("ours"), 4096)

    def test_the_session_is_taken_off_those_who_have_one(self):
        made = timings(ours=[1.0], sftp=[1.5])
        made.session = {"sftp": 0.25}
        self.assertEqual(made.job_alone("sftp"), 1.25)
        self.assertEqual(made.job_alone("ours"), 1.0)

    def test_a_job_shorter_than_its_session_is_not_compared(self):
        made = timings(ours=[0.1], sftp=[0.1])
        made.session = {"sftp": 0.2}
        for verdict in (ahead_of(made, "sftp"), times_of(made, "sftp", 1.3)):
            self.assertEqual(str(verdict), "sftp: lost in its start and login: NOT MET")
        self.assertEqual(str(beside(made, "sftp")), "sftp: lost in its start and login")

    def test_peers_are_all_but_ours_and_the_floor(self):
        self.assertEqual(timings(ours=[1.0], floor=[1.0], curl=[1.0], scp=[1.0]).peers(), ["curl", "scp"])


class VerdictTest(unittest.TestCase):
    def test_the_rate_is_the_inverse_of_the_time(self):
        verdict = of_the_floor(timings(ours=[2.0], floor=[1.0]), 0.85)
        self.assertEqual(str(verdict), "0.50 of the floor's rate (at least 0.85): NOT MET")

    def test_exactly_the_required_rate_is_enough(self):
        self.assertTrue(of_the_floor(timings(ours=[2.0], floor=[1.0]), 0.5).met)

    def test_ahead_is_faster_and_not_as_fast(self):
        self.assertTrue(ahead_of(timings(ours=[1.0], curl=[1.1]), "curl").met)
        self.assertFalse(ahead_of(timings(ours=[1.0], curl=[1.0]), "curl").met)

    def test_ahead_counts_the_other_without_its_session(self):
        made = timings(ours=[1.0], scp=[1.1])
        made.session = {"scp": 0.3}
        self.assertEqual(str(ahead_of(made, "scp")), "0.80 times scp's rate (ahead): NOT MET")

    def test_times_of(self):
        self.assertEqual(str(times_of(timings(ours=[1.2], curl=[1.0]), "curl", 1.3)),
                         "1.20 of curl's time (at most 1.3): met")
        self.assertFalse(times_of(timings(ours=[1.4], curl=[1.0]), "curl", 1.3).met)

    def test_what_nothing_is_required_of_is_neither_met_nor_not(self):
        verdict = beside(timings(ours=[1.0], lftp=[2.0]), "lftp")
        self.assertIsNone(verdict.met)
        self.assertEqual(str(verdict), "2.00 times lftp's rate (nothing required)")

    def test_below_is_below(self):
        self.assertTrue(below(0.0029, 0.003).met)
        self.assertFalse(below(0.003, 0.003).met)


class StraightnessTest(unittest.TestCase):
    def test_a_straight_line(self):
        self.assertEqual(str(straightness([(10, 1.0), (100, 10.0), (400, 40.0)])),
                         "1.00 of the cost per unit at 100 (at most 1.25): met")

    def test_a_cost_that_grows_with_the_square(self):
        verdict = straightness([(10, 1.0), (40, 16.0)])
        self.assertFalse(verdict.met)
        self.assertTrue(verdict.text.startswith("4.00 "))

    def test_neighbours_closer_than_four_times_are_passed_over(self):
        self.assertIn("at 10 ", straightness([(10, 1.0), (30, 99.0), (40, 4.0)]).text)

    def test_one_point_is_no_line(self):
        with self.assertRaises(ValueError):
            straightness([(10, 1.0)])


class TextTest(unittest.TestCase):
    def test_durations(self):
        for seconds, text in ((123.4, "123 s"), (12.34, "12.3 s"), (1.234, "1.23 s"), (0.0123, "12.3 ms"),
                              (0.000012, "12.0 µs")):
            self.assertEqual(duration(seconds), text)

    def test_a_row_tells_everybody(self):
        made = timings(ours=[1.0], floor=[0.5], curl=[2.0], scp=[3.0])
        self.assertEqual(timed_row("job", "disk", made, [Verdict("v")]),
                         Row("job", "disk", "1.00 s", [Verdict("v")], "500 ms", "curl 2.00 s, scp 3.00 s",
                             "ours 2.0 MiB, floor 2.0 MiB, curl 2.0 MiB, scp 2.0 MiB"))


if __name__ == "__main__":
    unittest.main()
