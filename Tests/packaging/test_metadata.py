"""What software centres, menus and packages are told: valid, and one and the same everywhere."""

import configparser
import os
import pathlib
import re
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PACKAGING = REPOSITORY / "Packaging"
DESKTOP_ENTRY = PACKAGING / "quillbox.desktop"
METADATA = PACKAGING / "org.quillbox.quillbox.metainfo.xml"
LANGUAGE = "{http://www.w3.org/XML/1998/namespace}lang"
TRANSLATIONS = {"de", "fr"}


def first_match(pattern, file):
    return re.search(pattern, (REPOSITORY / file).read_text(encoding="utf-8"), re.MULTILINE)


def project_version():
    return first_match(r"^project\(Quillbox VERSION (\S+)", "CMakeLists.txt")[1]


def run(*command):
    return subprocess.run(command, check=False, timeout=50, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          env={**os.environ, "LC_ALL": "C.UTF-8"}, text=True)


class MetadataTest(unittest.TestCase):
    def setUp(self):
        self.metadata = ElementTree.parse(METADATA).getroot()
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read(DESKTOP_ENTRY, encoding="utf-8")
        self.entry = parser["Desktop Entry"]

    def test_desktop_entry_is_valid(self):
        done = run("desktop-file-validate", DESKTOP_ENTRY)
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_metadata_are_valid(self):
        done = run("appstreamcli", "validate", "--no-net", "--pedantic", METADATA)
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertNotRegex(done.stdout, r"(?m)^[EWIP]: ")

    def test_metadata_belong_to_the_desktop_entry(self):
        self.assertEqual(self.metadata.findtext("launchable"), DESKTOP_ENTRY.name)
        self.assertEqual(self.metadata.findtext("id"), METADATA.name.removesuffix(".metainfo.xml"))
        self.assertEqual(self.metadata.findtext("name"), self.entry["Name"])
        self.assertEqual(self.metadata.findtext("provides/binary"), self.entry["Exec"])
        self.assertTrue((PACKAGING / f"{self.entry['Icon']}.svg").is_file())

    def test_the_window_names_the_desktop_entry(self):
        """By that a desktop knows the window's icon and name."""
        named = first_match(r'setDesktopFileName\("(.*)"\)', "Mac/main.cpp")[1]
        self.assertEqual(f"{named}.desktop", DESKTOP_ENTRY.name)

    def test_summaries_are_the_same_in_every_language(self):
        summaries = {node.get(LANGUAGE): node.text for node in self.metadata.iter("summary")}
        self.assertEqual(set(summaries), TRANSLATIONS | {None})
        for language, text in summaries.items():
            self.assertEqual(self.entry[f"Comment[{language}]" if language else "Comment"], text)

    def test_everything_is_translated(self):
        for key in ("GenericName", "Comment", "Keywords"):
            self.assertEqual({name for name in self.entry if name.startswith(f"{key}[")},
                             {f"{key}[{language}]" for language in TRANSLATIONS})
        description = self.metadata.find("description")
        for tag in ("p", "li"):
            languages = [node.get(LANGUAGE) for node in description.iter(tag)]
            self.assertGreater(languages.count(None), 1)
            for language in TRANSLATIONS:
                self.assertEqual(languages.count(language), languages.count(None), f"{tag} in {language}")

    def test_releases_are_those_of_the_changelog(self):
        headings = re.findall(r"^## (\S+)", (REPOSITORY / "CHANGELOG.md").read_text(encoding="utf-8"), re.MULTILINE)
        expected = [(project_version(), "development") if heading == "Unreleased" else (heading, "stable")
                    for heading in headings]
        releases = [(node.get("version"), node.get("type", "stable")) for node in self.metadata.iter("release")]
        self.assertTrue(releases)
        self.assertEqual(releases, expected)

    def test_package_has_the_version_of_the_project(self):
        version = first_match(r"^quillbox \((.+)-[^-]+\) ", "Packaging/debian/changelog")[1]
        self.assertEqual(version, project_version())

    def test_package_has_the_licence_of_the_project(self):
        licence = (REPOSITORY / "LICENSE").read_text(encoding="utf-8")
        copyright_file = (PACKAGING / "debian/copyright").read_text(encoding="utf-8")
        permission = licence[licence.index("Permission"):]
        self.assertIn(permission.split(), [part.replace("\n .\n", "\n").split()
                                           for part in copyright_file.split("License: Expat\n")[1:]])
        holders = re.search(r"^Copyright \(c\) (.*)$", licence, re.MULTILINE)[1]
        self.assertIn(f"\nCopyright: {holders}\n", copyright_file)


if __name__ == "__main__":
    unittest.main(verbosity=2)
