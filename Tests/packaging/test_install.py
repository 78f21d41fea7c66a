"""What `cmake --install` puts where: everything that people and their desktops look for, and nothing of other names."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUILLBOX_BUILD", REPOSITORY / "build/dev"))
CMAKE = os.environ.get("QUILLBOX_CMAKE", "cmake")

PROGRAMS = {"bin/quillbox", "bin/quillbox-device"}
GUIDE = (REPOSITORY / "docs/user-guide.md").read_text(encoding="utf-8")
FILES = PROGRAMS | {f"share/doc/quillbox/{picture}" for picture in re.findall(r"\]\((pictures/[^)]+)\)", GUIDE)} | {
    "share/applications/quillbox.desktop",
    "share/metainfo/org.quillbox.quillbox.metainfo.xml",
    "share/icons/hicolor/scalable/apps/quillbox.svg",
    "share/man/man1/quillbox.1",
    "share/man/man1/quillbox-device.1",
    "share/doc/quillbox/user-guide.html",
    "share/doc/quillbox/LICENSE",
    "share/doc/quillbox-device/protocol.md",
    "lib/firewalld/services/quillbox.xml",
}


class InstallTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        destination = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", "/usr"], check=True, timeout=50,
                       env={**os.environ, "DESTDIR": str(destination)}, stdout=subprocess.DEVNULL)
        cls.prefix = destination / "usr"
        cls.everything = [path for path in destination.rglob("*") if not path.is_dir()]

    def test_everything_is_in_its_place(self):
        for file in sorted(FILES):
            self.assertTrue((self.prefix / file).is_file(), file)

    def test_only_programs_can_be_run(self):
        runnable = {path for path in self.everything if os.access(path, os.X_OK)}
        self.assertEqual(runnable, {self.prefix / program for program in PROGRAMS})

    def test_everything_bears_the_name(self):
        """So that whoever meets one of these files knows where it comes from."""
        self.assertEqual([path for path in self.everything if "quillbox" not in str(path.relative_to(
            self.prefix.parent))], [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
