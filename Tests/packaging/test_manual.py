"""The manual pages: without a warning of their formatter, and with the options that the programs have."""

import os
import pathlib
import re
import subprocess
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUILLBOX_BUILD", REPOSITORY / "build/dev"))
PAGES = {program: REPOSITORY / f"Packaging/{program}.1" for program in ("quillbox", "quillbox-device")}


def formatted(page):
    """What man makes of a page, and what it complains of."""
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "MANROFFSEQ": "", "MANWIDTH": "80"}
    done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page], env=environment, check=True,
                          timeout=50, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    return done.stdout, done.stderr


def options_of_program():
    """Each option with the name of its value, as the device's help lists them."""
    text = subprocess.run([BUILD / "bin/quillbox-device", "--help"], check=True, timeout=50, stdout=subprocess.PIPE,
                          text=True).stdout
    return re.findall(r"^ +(?:-\w, )?--([\w-]+)(?: <(\w+)>)?", text, re.MULTILINE)


def options_of_page(section, beginning):
    """The same, of the lines of a section that begin like this."""
    text = PAGES["quillbox-device"].read_text(encoding="utf-8")
    lines = re.search(rf"^\.Sh {section}\n(.*?)^\.Sh ", text, re.MULTILINE | re.DOTALL)[1]
    return re.findall(rf"^\.{beginning}Fl -([\w-]+)(?: Ar (\w+))?$", lines, re.MULTILINE)


class ManualTest(unittest.TestCase):
    def test_formats_without_warnings(self):
        for program, page in PAGES.items():
            with self.subTest(program):
                text, complaints = formatted(page)
                self.assertEqual(complaints, "")
                self.assertIn("DESCRIPTION", text)

    def test_describes_every_option_and_no_other(self):
        options = options_of_program()
        self.assertGreater(len(options), 8)
        self.assertEqual(sorted(options_of_page("DESCRIPTION", r"It (?:Fl \w , )?")), sorted(options))

    def test_synopsis_has_every_option(self):
        self.assertEqual(sorted(options_of_page("SYNOPSIS", "(?:Op )?")), sorted(options_of_program()))


if __name__ == "__main__":
    unittest.main(verbosity=2)
