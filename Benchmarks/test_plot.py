"""The plots: well-formed, labelled, and true to their figures."""

import pathlib
import re
import sys
import unittest
import xml.etree.ElementTree as ElementTree

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "Tests/support"))

import plot  # noqa: E402
from contenders import all_contenders  # noqa: E402

SVG = "{http://www.w3.org/2000/svg}"
LINES = {"ours": [(1, 0.001), (10, 0.01), (1000, 1.0)], "a < b": [(1, 0.01), (1000, 0.1)]}


def drawn(**options):
    return ElementTree.fromstring(plot.plot("Title & more", "files", "seconds", LINES, **options))


def points(drawing):
    return [[tuple(map(float, point.split(","))) for point in line.get("points").split()]
            for line in drawing.iter(f"{SVG}polyline")]


class PlotTest(unittest.TestCase):
    def test_it_names_title_axes_and_lines(self):
        words = [text.text for text in drawn().iter(f"{SVG}text")]
        for word in ("Title & more", "files", "seconds", "ours", "a < b"):
            self.assertIn(word, words)

    def test_each_line_has_all_its_points(self):
        self.assertEqual([len(line) for line in points(drawn())], [3, 2])

    def test_a_straight_cost_is_a_straight_line(self):
        (x1, y1), (x2, y2), (x3, y3) = points(drawn())[0]
        self.assertAlmostEqual((y2 - y1) / (x2 - x1), (y3 - y2) / (x3 - x2), places=1)

    def test_more_is_to_the_right_and_longer_is_higher(self):
        first, second, _ = points(drawn())[0]
        self.assertGreater(second[0], first[0])
        self.assertLess(second[1], first[1])

    def test_everything_is_inside_the_frame(self):
        for x, y in sum(points(drawn()), []):
            self.assertTrue(plot.LEFT <= x <= plot.WIDTH - plot.RIGHT and plot.TOP <= y <= plot.HEIGHT - plot.BOTTOM)

    def test_sizes_have_binary_units(self):
        drawing = plot.plot("t", "x", "y", {"ours": [(4096, 1.0), (1 << 30, 2.0)]}, sizes=True)
        for tick in (">64 KiB<", ">1 MiB<", ">16 MiB<", ">256 MiB<"):
            self.assertIn(tick, drawing)

    def test_dark_pages_have_colours_of_their_own(self):
        style = next(drawn().iter(f"{SVG}style")).text
        light, dark = style.split("prefers-color-scheme: dark")
        for kind in ("text", "line0", "dot1"):
            pattern = rf"{kind} {{[^}}]*(?:fill|stroke): (#\w+)"
            self.assertNotEqual(re.search(pattern, light)[1], re.search(pattern, dark)[1])

    def test_as_many_lines_as_take_part_have_colours_of_their_own(self):
        names = [contender.name for contender in all_contenders(pathlib.Path("bin"), "key")]
        drawing = plot.plot("t", "x", "y", {name: [(1, 1.0)] for name in names})
        self.assertEqual(len(set(re.findall(r'polyline class="(\w+)"', drawing))), len(names))

    def test_nothing_to_draw_and_nothing_above_zero_are_refused(self):
        for lines in ({}, {"ours": []}, {"ours": [(0, 1.0)]}, {"ours": [(1, 0.0)]}):
            with self.assertRaises(ValueError):
                plot.plot("t", "x", "y", lines)

    def test_a_single_point_is_drawn(self):
        self.assertEqual(len(points(ElementTree.fromstring(plot.plot("t", "x", "y", {"a": [(5, 5.0)]})))[0]), 1)


class TickTextTest(unittest.TestCase):
    def test_texts(self):
        self.assertEqual([plot.byte_text(4096), plot.byte_text(1 << 30), plot.byte_text(16)],
                         ["4 KiB", "1 GiB", "16 B"])
        self.assertEqual([plot.time_text(10.0), plot.time_text(0.001), plot.time_text(1e-5)],
                         ["10 s", "1 ms", "10 µs"])
        self.assertEqual(plot.count_text(20000.0), "20,000")


if __name__ == "__main__":
    unittest.main()
