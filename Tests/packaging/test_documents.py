"""The documents that people read: their links lead somewhere, their pictures are there, and none is a burden."""

import html.parser
import os
import pathlib
import re
import struct
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUILLBOX_BUILD", REPOSITORY / "build/dev"))
DOCUMENTS = [*REPOSITORY.glob("*.md"), *(REPOSITORY / "docs").glob("*.md"), REPOSITORY / "Packaging/README.md"]
PICTURES = REPOSITORY / "docs/pictures"
LINK = re.compile(r"\]\(([^)#\s]*)(?:#([^)\s]*))?\)")
CODE = re.compile(r"^ *```.*?^ *```|`[^`\n]*`", re.MULTILINE | re.DOTALL)

LARGEST_PICTURE = 40_000
PALETTE = 3  # the colour type of a PNG file with few colours


def prose(path):
    return CODE.sub("", path.read_text(encoding="utf-8"))


def anchors(path):
    """The names by which a document's headings can be linked to."""
    titles = re.findall(r"^#+ (.*)$", prose(path), re.MULTILINE)
    return {re.sub(r"[^a-z0-9 -]", "", title.lower()).replace(" ", "-") for title in titles}


class Page(html.parser.HTMLParser):
    """What a built page refers to, what in it can be referred to, and its words."""

    def __init__(self, text):
        super().__init__()
        self.sources, self.links, self.ids, self.untold, self.words = [], [], [], [], ""
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        known = dict(attrs)
        self.ids += [known["id"]] if "id" in known else []
        self.links += [known["href"]] if tag == "a" else []
        if tag == "img":
            self.sources.append(known["src"])
            self.untold += [] if known.get("alt") else [known["src"]]

    def handle_data(self, data):
        if not self.cdata_elem:  # the style is for nobody to read
            self.words += data


class LinkTest(unittest.TestCase):
    def test_links_lead_to_files_and_headings_that_exist(self):
        self.assertGreater(len(DOCUMENTS), 8)
        for document in DOCUMENTS:
            for target, anchor in LINK.findall(prose(document)):
                if target.startswith("https://"):
                    continue
                path = document.parent / target if target else document
                self.assertTrue(path.exists(), f"{document.name}: {target}")
                if anchor:
                    self.assertIn(anchor, anchors(path), document.name)


class ArchitectureTest(unittest.TestCase):
    """The names of files and code on the page for newcomers."""

    ROOMS = ("Benchmarks", "Device", "Mac", "Packaging", "Shared", "Tests", "docs", "scripts")
    # Beginnings and ends of names, which the page explains.
    PARTS = {"FTS_", "_OSX", "mp", "zr", "zp"}

    def words(self):
        files = [path for room in self.ROOMS for path in (REPOSITORY / room).rglob("*")
                 if path.is_file() and path.suffix in (".cpp", ".h", ".py", ".ui", ".ts", ".md", ".txt", "")]
        code = [path for path in files if path.suffix in (".cpp", ".h")]
        names = {word for path in files for word in (path.name, path.stem, *path.relative_to(REPOSITORY).parts)}
        return names | {word for path in code for word in re.findall(r"\w+", path.read_text(encoding="utf-8"))}

    def test_they_exist(self):
        page = (REPOSITORY / "docs/architecture.md").read_text(encoding="utf-8")
        named = re.findall(r"`([^`\n]+)`", re.sub(r"```.*?```", "", page, flags=re.DOTALL))
        self.assertGreater(len(named), 150)
        known = self.words() | self.PARTS | set(os.listdir(REPOSITORY))
        for name in named:
            unknown = [word for word in re.findall(r"[A-Za-z_]\w*", name) if word not in known]
            self.assertTrue(name in known or not unknown or (REPOSITORY / name).exists(), name)


class PictureTest(unittest.TestCase):
    def setUp(self):
        self.pictures = sorted(PICTURES.iterdir())
        self.assertGreater(len(self.pictures), 5)

    def test_each_is_shown_somewhere(self):
        text = "".join(map(prose, DOCUMENTS))
        self.assertEqual([path.name for path in self.pictures if f"pictures/{path.name})" not in text], [])

    def test_each_is_small(self):
        for path in self.pictures:
            content = path.read_bytes()
            self.assertEqual(content[:8], b"\x89PNG\r\n\x1a\n", path.name)
            self.assertLess(len(content), LARGEST_PICTURE, path.name)
            self.assertEqual(content[25], PALETTE, path.name)

    def test_each_is_of_the_size_of_a_window(self):
        for path in self.pictures:
            width, height = struct.unpack(">II", path.read_bytes()[16:24])
            self.assertTrue(300 < width < 1000 and 200 < height < 900, f"{path.name}: {width} x {height}")

    def test_each_comes_from_the_tour(self):
        made = (REPOSITORY / "scripts/update-pictures").read_text(encoding="utf-8")
        for path in self.pictures:
            self.assertRegex(made, rf"(?<![\w-]){path.stem}(?![\w-])", path.name)


class GuideTest(unittest.TestCase):
    """The page that Help opens."""

    def setUp(self):
        folder = BUILD / "share/doc/quillbox"
        self.page = Page((folder / "user-guide.html").read_text(encoding="utf-8"))
        self.folder = folder

    def test_pictures_are_beside_it_and_told_in_words(self):
        self.assertGreater(len(self.page.sources), 5)
        self.assertEqual([source for source in self.page.sources if not (self.folder / source).is_file()], [])
        self.assertEqual(self.page.untold, [])

    def test_links_lead_to_its_chapters(self):
        self.assertGreater(len(self.page.links), 10)
        self.assertEqual(len(self.page.ids), len(set(self.page.ids)))
        self.assertEqual([link for link in self.page.links if link.removeprefix("#") not in self.page.ids], [])

    def test_every_chapter_is_in_its_list(self):
        chapters = re.findall(r"^## ", (REPOSITORY / "docs/user-guide.md").read_text(encoding="utf-8"), re.MULTILINE)
        self.assertEqual(len(self.page.ids), len(chapters))
        self.assertLessEqual({"#" + name for name in self.page.ids}, set(self.page.links))

    def test_its_table_is_there(self):
        cells = re.findall(r"<td>([^<]+)</td>", (REPOSITORY / "docs/user-guide.md").read_text(encoding="utf-8"))
        self.assertGreater(len(cells), 20)
        self.assertEqual([cell for cell in cells if cell not in self.page.words], [])

    def test_nothing_of_its_source_shows(self):
        for mark in ("**", "](", "|--", "| ", "```", "@"):
            self.assertNotIn(mark, self.page.words)


if __name__ == "__main__":
    unittest.main(verbosity=2)
