"""What decides whether a job was done, and what is read from the system."""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "Tests/support"))

import growth  # noqa: E402
import material  # noqa: E402
import runner  # noqa: E402
import transfers  # noqa: E402
import windows  # noqa: E402


class CheckTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        for side in ("source", "result"):
            for name in ("a/one", "a/two", "b/three"):
                path = self.folder / side / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(name)

    def check(self, name="", thoroughly=True):
        transfers.check(self.folder / "source" / name, self.folder / "result" / name, thoroughly, "somebody")

    def test_the_same_files_pass(self):
        self.check()
        self.check("a/one")

    def test_a_missing_file_is_seen(self):
        (self.folder / "result/b/three").unlink()
        for name in ("", "b/three"):
            with self.assertRaises(RuntimeError):
                self.check(name)

    def test_a_file_too_many_is_seen(self):
        (self.folder / "result/b/four").touch()
        with self.assertRaises(RuntimeError):
            self.check()

    def test_a_short_file_is_seen_even_at_a_glance(self):
        (self.folder / "result/a/one").write_text("a/")
        for name in ("", "a/one"):
            with self.assertRaises(RuntimeError):
                self.check(name, thoroughly=False)

    def test_other_bytes_are_seen_when_it_is_looked_for(self):
        (self.folder / "result/a/one").write_text("a/eno")
        self.check(thoroughly=False)
        for name in ("", "a/one"):
            with self.assertRaises(RuntimeError):
                self.check(name)


class MaterialTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name) / "tree"

    def tree(self, files, folders):
        material.write_tree(self.folder, files, folders, 10)
        sizes = material.sizes(self.folder)
        self.assertEqual(set(sizes.values()), {10})
        return len(sizes), len([path for path in self.folder.iterdir() if path.is_dir()])

    def test_files_are_spread_over_folders(self):
        self.assertEqual(self.tree(10, 4), (10, 4))

    def test_one_folder_is_the_tree_itself(self):
        self.assertEqual(self.tree(10, 1), (10, 0))

    def test_a_file_larger_than_a_block_has_its_size(self):
        material.write_file(self.folder / "large", material.BLOCK + 1)
        self.assertEqual(material.sizes(self.folder), {"large": material.BLOCK + 1})


class WindowTest(unittest.TestCase):
    def test_mapped_files_are_those_with_a_path(self):
        maps = ("7f00-7f01 r-xp 00000000 fe:00 123    /usr/lib/libone.so.1\n"
                "7f01-7f02 r--p 00001000 fe:00 123    /usr/lib/libone.so.1\n"
                "7f03-7f04 r--p 00000000 fe:00 124    /usr/share/two words\n"
                "7f05-7f06 rw-p 00000000 00:00 0 \n7f07-7f08 rw-p 00000000 00:00 0    [heap]\n")
        self.assertEqual(windows.mapped_files(maps),
                         {pathlib.Path("/usr/lib/libone.so.1"), pathlib.Path("/usr/share/two words")})

    def test_announcements_alone_are_idle(self):
        self.assertEqual([verdict.met for verdict in windows.idle_figures(10, 0, 20.0).verdicts], [True, True])

    def test_a_tick_of_a_timer_is_not_idle(self):
        self.assertEqual([verdict.met for verdict in windows.idle_figures(200, 3, 20.0).verdicts], [False, False])

    def test_activity_of_this_process_grows(self):
        before = windows.activity("self")
        while windows.activity("self")[1] == before[1]:
            sum(range(100_000))
        self.assertGreater(windows.activity("self")[1], before[1])


class TurnTest(unittest.TestCase):
    def test_each_round_begins_with_another_and_has_all(self):
        self.assertEqual([runner.rotated(["a", "b", "c"], number) for number in range(4)],
                         [["a", "b", "c"], ["b", "c", "a"], ["c", "a", "b"], ["a", "b", "c"]])


class GrowthTest(unittest.TestCase):
    def test_lines_are_told_apart_by_who(self):
        lines = {}
        growth.add(lines, 1, {"ours, down": 1.0, "floor, down": 0.5})
        growth.add(lines, 10, {"ours, down": 9.0})
        self.assertEqual(growth.lines_of("ours", lines), {"down": [(1, 1.0), (10, 9.0)]})
        self.assertEqual(growth.lines_of("floor", lines), {"down": [(1, 0.5)]})


if __name__ == "__main__":
    unittest.main()
