"""docs/security.md names the places where foreign things are let in, and the tests of each fault: all of them exist."""

import os
import pathlib
import re
import subprocess
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUILLBOX_BUILD", REPOSITORY / "build/dev"))
CTEST = os.environ.get("QUILLBOX_CTEST", "ctest")
ROOMS = ("Shared", "Mac")


def registered_tests():
    """The names of all tests of the build, without the label before and the instance behind them."""
    listing = subprocess.run([CTEST, "--test-dir", BUILD, "-N"], check=True, timeout=60, stdout=subprocess.PIPE,
                             text=True).stdout
    names = re.findall(r"^ *Test *#\d+: (\S+)", listing, re.MULTILINE)
    return set(names) | {part for name in names for part in name.split("/") if "." in part}


def words_of_the_code():
    sources = (path for room in ROOMS for path in (REPOSITORY / room).rglob("*") if path.suffix in (".cpp", ".h"))
    return {word for path in sources for word in (path.name, *re.findall(r"\w+", path.read_text()))}


class SecurityDocumentTest(unittest.TestCase):
    def setUp(self):
        text = (REPOSITORY / "docs/security.md").read_text()
        self.admissions, self.faults = text.split("## Faults of this computer")

    def test_names_tests_that_exist(self):
        rows = [line for line in self.faults.splitlines() if line.startswith("| ")][1:]
        self.assertGreater(len(rows), 30)
        known = registered_tests()
        for row in rows:
            named = re.findall(r"`([^`]+)`", row.rsplit("|", 2)[1])
            self.assertTrue(named, row)
            self.assertEqual([name for name in named if name not in known], [], row)

    def test_names_code_that_exists(self):
        rows = [line for line in self.admissions.splitlines() if line.startswith("| ")][1:]
        self.assertGreater(len(rows), 10)
        words = words_of_the_code()
        for row in rows:
            named = [name for name in re.findall(r"`([^`]+)`", row.split("|")[2]) if not name.endswith("/")]
            self.assertTrue(named or "/`" in row, row)
            self.assertEqual([name for name in named if name not in words], [], row)


if __name__ == "__main__":
    unittest.main()
