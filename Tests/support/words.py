"""The program's words in another language, turned back into the English ones by which the drivers know them."""

import pathlib
import re
import subprocess
import tempfile
import xml.etree.ElementTree as xml

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PLACEHOLDER = re.compile(r"(%s|%\d)")
TOOLKIT_CATALOGUES = pathlib.Path("/usr/share/qt6/translations")
CONVERTER = "/usr/lib/qt6/bin/lconvert"
# The toolkit's words that the drivers look for.
TOOLKIT_WORDS = {"Directory:", "File &name:", "&Choose", "&Open", "OK"}


class Words:
    """The catalogues of one language, read backwards."""

    def __init__(self, language):
        own = read_catalogue(REPOSITORY / f"Mac/Translations/quillbox_{language}.ts")
        toolkit = [pair for pair in read_toolkit_catalogue(language) if pair[0] in TOOLKIT_WORDS]
        self._whole = {}
        self._templates = []
        for english, foreign in own + toolkit:
            if PLACEHOLDER.search(foreign):
                self._templates.append((pattern_of(foreign), PLACEHOLDER.sub("{}", without_mnemonic(english))))
            else:
                self._whole.setdefault(without_mnemonic(foreign), without_mnemonic(english))

    def english(self, text):
        """The English source of a text; the text itself where it is none of the program's."""
        if text in self._whole:
            return self._whole[text]
        for pattern, template in self._templates:
            if match := pattern.fullmatch(text):
                return template.format(*match.groups())
        return text


def read_in_english(bus, words):
    """Turns everything that programs say on an accessibility bus into English before a driver sees it."""
    call = bus.call

    def call_in_english(*arguments):
        return tuple(words.english(value) if isinstance(value, str) else value for value in call(*arguments))
    bus.call = call_in_english


def pattern_of(template):
    parts = PLACEHOLDER.split(without_mnemonic(template))
    return re.compile("".join("(.*)" if PLACEHOLDER.fullmatch(part) else re.escape(part) for part in parts),
                      re.DOTALL)


def without_mnemonic(text):
    return text.replace("&&", "\0").replace("&", "").replace("\0", "&")


def read_catalogue(path):
    messages = xml.parse(path).getroot().iter("message")
    return [(message.findtext("source"), message.findtext("translation") or "") for message in messages]


def read_toolkit_catalogue(language):
    with tempfile.TemporaryDirectory() as folder:
        readable = pathlib.Path(folder) / "toolkit.ts"
        subprocess.run([CONVERTER, "-i", TOOLKIT_CATALOGUES / f"qtbase_{language}.qm", "-o", readable], check=True,
                       timeout=20, stdout=subprocess.DEVNULL)
        return read_catalogue(readable)
