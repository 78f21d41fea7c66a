"""The installed programs are hardened as cmake/Hardening.cmake asks for: read from the built files themselves."""

import functools
import os
import pathlib
import re
import subprocess
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUILLBOX_BUILD", REPOSITORY / "build/dev"))
# What the build could ask for, as CMake found out. Absent means that the compiler or the sanitizer rules it out.
HARDENED_WITH = os.environ.get("QUILLBOX_HARDENED_WITH", "fortify control-flow shadow-stack").split()
PROGRAMS = ("quillbox", "quillbox-device")
# A fortified build calls the checking twin of each of these, whatever is known of the buffers.
ALWAYS_FORTIFIED = {"printf", "fprintf", "vprintf", "vfprintf", "snprintf", "vsnprintf", "sprintf", "vsprintf"}


def readelf(*arguments):
    environment = {**os.environ, "LC_ALL": "C"}
    return subprocess.run(["readelf", "-W", *arguments], env=environment, check=True, timeout=60,
                          stdout=subprocess.PIPE, text=True).stdout


def imported(program):
    """The names of the functions that a program takes from its libraries, without their versions."""
    lines = readelf("--dyn-syms", BUILD / "bin" / program).splitlines()
    return {line.split()[7].partition("@")[0] for line in lines if " UND " in line and len(line.split()) > 7}


def features(notes):
    """The control-flow marks in the text of notes, those of each file or archive member apart."""
    return [set(marks.split(", ")) for marks in re.findall(r"x86 feature: ([A-Z, ]*[A-Z])", notes)]


def for_each_program(test):
    @functools.wraps(test)
    def run(self):
        for program in PROGRAMS:
            with self.subTest(program=program):
                test(self, program)
    return run


class HardeningTest(unittest.TestCase):
    @for_each_program
    def test_position_independent(self, program):
        self.assertRegex(readelf("-h", BUILD / "bin" / program), r"Type: +DYN ")
        self.assertRegex(readelf("-d", BUILD / "bin" / program), r"\(FLAGS_1\) .*\bPIE\b")

    @for_each_program
    def test_relocations_are_read_only_from_the_start(self, program):
        self.assertRegex(readelf("-l", BUILD / "bin" / program), r"(?m)^ *GNU_RELRO ")
        dynamic = readelf("-d", BUILD / "bin" / program)
        self.assertRegex(dynamic, r"\(FLAGS\) .*\bBIND_NOW\b")
        self.assertRegex(dynamic, r"\(FLAGS_1\) .*\bNOW\b")
        self.assertNotIn("(TEXTREL)", dynamic)

    @for_each_program
    def test_no_memory_is_writable_and_executable(self, program):
        headers = readelf("-l", BUILD / "bin" / program)
        stack = re.search(r"(?m)^ *GNU_STACK( +0x[0-9a-f]+){5} +(\S.*?) +0x", headers)
        self.assertEqual(stack and stack[2].strip(), "RW")
        loaded = re.findall(r"(?m)^ *LOAD(?: +0x[0-9a-f]+){5} ([RWE ]{3}) 0x", headers)
        self.assertGreater(len(loaded), 1)
        self.assertFalse([flags for flags in loaded if "W" in flags and "E" in flags])

    @for_each_program
    def test_stack_protector(self, program):
        self.assertIn("__stack_chk_fail", imported(program))

    def test_fortified_calls(self):
        twins = {f"__{name}_chk" for name in ALWAYS_FORTIFIED}
        if "fortify" not in HARDENED_WITH:
            # Stated, so that a build that lost the option by mistake does not look like one that may lack it.
            self.assertFalse(imported("quillbox") & twins)
            return
        self.assertTrue(imported("quillbox") & twins)
        for program in PROGRAMS:
            self.assertFalse(imported(program) & ALWAYS_FORTIFIED, program)

    def test_every_object_has_the_control_flow_marks(self):
        expected = {"IBT", "SHSTK"} if "control-flow" in HARDENED_WITH else set()
        for archive in sorted(BUILD.glob("[SMD]*/**/libquillbox_*.a")):
            with self.subTest(archive=archive.name):
                notes = readelf("-n", archive)
                members = notes.split("\nFile: ")[1:]
                self.assertTrue(members)
                for member in members:
                    found = features(member)
                    self.assertEqual(found[0] if found else set(), expected, member.splitlines()[0])

    @for_each_program
    def test_programs_have_the_shadow_stack_mark(self, program):
        found = features(readelf("-n", BUILD / "bin" / program))
        self.assertEqual(any("SHSTK" in marks for marks in found), "shadow-stack" in HARDENED_WITH)


if __name__ == "__main__":
    unittest.main(verbosity=2)
