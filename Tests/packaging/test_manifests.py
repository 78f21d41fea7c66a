"""What the package recipes ask for is what the build asks for."""

import pathlib
import re
import unittest

import yaml

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
# What every Debian package is built with, and what only makes builds shorter.
IMPLIED_IN_DEBIAN = {"g++", "ccache"}
ONLY_IN_DEBIAN = {"debhelper-compat (= 13)"}
# The names of the build for what Debian's packages bring.
DEBIAN_PACKAGES = {"tinyxml": "libtinyxml-dev", "sndfile": "libsndfile1-dev", "xcb": "libxcb1-dev", "cmark": "cmark"}
# What the Flatpak runtime brings.
IN_RUNTIME = {"sndfile", "xcb"}
SHA256 = re.compile(r"^[0-9a-f]{64}$")


def read(path):
    return (REPOSITORY / path).read_text(encoding="utf-8")


def needed_by_build():
    """The libraries and programs that CMake looks for, without Qt."""
    return {*re.findall(r"^pkg_check_modules\(\w+ REQUIRED IMPORTED_TARGET ([\w-]+)\)", read("CMakeLists.txt"),
                        re.MULTILINE),
            *re.findall(r"^find_program\(\w+ ([\w-]+) REQUIRED\)", read("docs/CMakeLists.txt"), re.MULTILINE)}


class DebianTest(unittest.TestCase):
    def setUp(self):
        self.needed = self.listed("Build-Depends")

    @staticmethod
    def listed(field):
        """What all of the fields of this name list."""
        found = re.findall(rf"^{field}:((?: .*\n)+|\n(?: .*\n)+)", read("Packaging/debian/control"), re.MULTILINE)
        return {name.strip() for names in found for name in names.split(",") if name.strip()}

    def test_needs_what_the_scripts_install_to_build_and_run(self):
        words = set(re.search(r'\[build\]="([^"]*)"', read("scripts/install-packages"))[1].split())
        names = {name.split()[0] for name in self.needed - ONLY_IN_DEBIAN}
        self.assertLessEqual(names, words)
        self.assertEqual(words - names - IMPLIED_IN_DEBIAN - self.listed("Depends") - self.listed("Recommends"), set())

    def test_needs_what_cmake_looks_for(self):
        needed = needed_by_build()
        self.assertEqual(set(DEBIAN_PACKAGES), needed)
        self.assertLessEqual({DEBIAN_PACKAGES[name] for name in needed}, self.needed)

    def test_has_the_qt_that_cmake_asks_for(self):
        version = re.search(r"^find_package\(Qt6 (\S+) ", read("CMakeLists.txt"), re.MULTILINE)[1]
        self.assertIn(f"qt6-base-dev (>= {version})", self.needed)


class FlatpakTest(unittest.TestCase):
    def setUp(self):
        self.manifest = yaml.safe_load(read("Packaging/flatpak/org.quillbox.quillbox.yml"))
        self.modules = {module["name"]: module for module in self.manifest["modules"]}

    def test_is_named_as_everywhere(self):
        self.assertTrue((REPOSITORY / f"Packaging/{self.manifest['id']}.metainfo.xml").is_file())
        self.assertTrue((REPOSITORY / "Packaging" / self.manifest["rename-desktop-file"]).is_file())
        self.assertTrue((REPOSITORY / f"Packaging/{self.manifest['rename-icon']}.svg").is_file())
        self.assertEqual(self.manifest["command"], "quillbox")

    def test_brings_what_the_build_needs(self):
        self.assertEqual(set(self.modules), needed_by_build() - IN_RUNTIME | {"quillbox"})
        self.assertEqual(list(self.modules)[-1], "quillbox")

    def test_runtime_has_the_qt_that_cmake_asks_for(self):
        self.assertEqual(self.manifest["runtime"], "org.kde.Platform")
        asked = re.search(r"^find_package\(Qt6 (\d+)\.(\d+) ", read("CMakeLists.txt"), re.MULTILINE)
        brought = re.fullmatch(r"(\d+)\.(\d+)", self.manifest["runtime-version"])
        self.assertGreaterEqual([int(part) for part in brought.groups()], [int(part) for part in asked.groups()])

    def test_foreign_sources_are_pinned(self):
        for name, module in self.modules.items():
            for source in module["sources"]:
                if source["type"] == "archive":
                    self.assertTrue(source["url"].startswith("https://"), name)
                    self.assertRegex(source["sha256"], SHA256, name)
                else:
                    self.assertIn(source["type"], ("dir", "inline"), name)

    def test_own_source_is_this_tree(self):
        folder = (REPOSITORY / "Packaging/flatpak" / self.modules["quillbox"]["sources"][0]["path"]).resolve()
        self.assertEqual(folder, REPOSITORY)

    def test_asks_for_what_the_program_uses(self):
        self.assertLessEqual({"--share=network", "--socket=x11", "--socket=wayland", "--filesystem=home"},
                             set(self.manifest["finish-args"]))


if __name__ == "__main__":
    unittest.main(verbosity=2)
