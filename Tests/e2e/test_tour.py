"""The guided tour of ./run, with the pictures and the page that it leaves."""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest

SUPPORT = pathlib.Path(__file__).resolve().parents[1] / "support"
SKIPPED = 77  # known to CTest

sys.path.insert(0, str(SUPPORT))

try:
    from clipboard import reason_not_to_paste
    from desktop import program_folder, reason_not_to_run
    from filemanager import Thunar
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(SKIPPED)

PROGRAMS = program_folder()
PICTURE = b"\x89PNG\r\n\x1a\n"
TIME_LIMIT = 240


class TourTest(unittest.TestCase):
    def take(self, *look):
        """Takes the tour; returns what it printed, its page, and its pictures by name."""
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        tour = subprocess.Popen([sys.executable, SUPPORT / "tour.py", "--bin", PROGRAMS, "--sample",
                                 PROGRAMS.parent / "share/quillbox/sample", "--pictures", folder, *look],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.addCleanup(tour.wait)
        self.addCleanup(tour.send_signal, signal.SIGTERM)
        said = tour.communicate(timeout=TIME_LIMIT)[0]
        self.assertEqual(tour.returncode, 0, said)
        pictures = {path.name: path.read_bytes() for path in folder.glob("*.png")}
        return said, (folder / "index.html").read_text(encoding="utf-8"), pictures

    def check(self, said, page, pictures):
        self.assertGreater(len(set(pictures.values())), 30)
        self.assertEqual(set(re.findall(r'<img src="([^"]+)"', page)), set(pictures))
        self.assertTrue(all(picture.startswith(PICTURE) for picture in pictures.values()))
        steps = re.findall(r"^(\d+)\. ", said, re.MULTILINE)
        self.assertEqual(steps, re.findall(r'<span class="number">(\d+)</span>', page))
        self.assertEqual(steps, [str(number) for number in range(1, len(steps) + 1)])
        self.assertIn("The tour is complete", page)

    def test_as_it_is_taken_without_a_display(self):
        self.check(*self.take())

    def test_in_another_language_on_a_dark_desktop_at_twice_the_size(self):
        self.check(*self.take("--dark", "--scale", "2", "--language", "de"))


if __name__ == "__main__":
    REASON = reason_not_to_run() or Thunar.reason_not_to_run() or reason_not_to_paste()
    if REASON:
        print(f"skipped: {REASON}")
        sys.exit(SKIPPED)
    os.environ.pop("DISPLAY", None)
    unittest.main(verbosity=2)
