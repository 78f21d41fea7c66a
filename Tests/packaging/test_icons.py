"""Every icon that the code names is drawn, as a picture that scales, and no drawing is left over."""

import pathlib
import re
import unittest
import xml.etree.ElementTree as ElementTree

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
SIDES = {"quillbox": 64}  # of the others it is 16
SVG = "{http://www.w3.org/2000/svg}"


def drawings():
    files = [*(REPOSITORY / "Mac/Platform/icons").iterdir(), REPOSITORY / "Packaging/quillbox.svg"]
    return {file.stem: file for file in files}


def names_in_code():
    """What is asked of ThemeIcon, and what the table asks of it by way of its rows."""
    texts = [path.read_text(encoding="utf-8") for path in (REPOSITORY / "Mac").rglob("*.cpp")]
    asked = [call for text in texts for call in re.findall(r"(?:ThemeIcon|ShowIcon)\(([^;]*)\)", text)]
    asked += [row for text in texts for row in re.findall(r"sAlertKind\{([^}]*)\}", text)]
    rows = [body for text in texts for body in re.findall(r"\n\S+ .*IconName\w+\([^;{}]*\{\n(.*?)\n\}", text, re.DOTALL)]
    quoted = re.findall(r'"([a-z-]+)"', "\n".join([*asked, *rows]))
    return {name for name in quoted if "-" in name or name in ("folder", "quillbox")}


class IconsTest(unittest.TestCase):
    def test_each_name_has_its_drawing_and_each_drawing_its_name(self):
        names = names_in_code()
        self.assertGreater(len(names), 15)
        self.assertEqual(sorted(drawings()), sorted(names))

    def test_drawings_are_square_and_stand_alone(self):
        for name, file in drawings().items():
            with self.subTest(name):
                root = ElementTree.parse(file).getroot()
                side = str(SIDES.get(name, 16))
                self.assertEqual((root.tag, root.get("width"), root.get("height"), root.get("viewBox")),
                                 (f"{SVG}svg", side, side, f"0 0 {side} {side}"))
                self.assertLessEqual({child.tag.removeprefix(SVG) for child in root.iter()},
                                     {"svg", "g", "path", "circle", "ellipse", "rect"})

    def test_every_drawing_is_built_in(self):
        built = (REPOSITORY / "Mac/Platform/CMakeLists.txt").read_text(encoding="utf-8")
        self.assertEqual(sorted(re.findall(r"(\S+)\.svg\b(?! PROP)", built.replace("icons/", "").replace(
            "${PROJECT_SOURCE_DIR}/Packaging/", "").split("qt_add_resources")[-1])), sorted(drawings()))


if __name__ == "__main__":
    unittest.main(verbosity=2)
