"""Every text for people is in the catalogues, translated, with its placeholders and with mnemonics that work."""

import collections
import ctypes
import errno
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from cpptexts import literals

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from words import CONVERTER, TOOLKIT_CATALOGUES  # noqa: E402

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
CATALOGUES = REPOSITORY / "Mac/Translations"
VIEWS = REPOSITORY / "Mac/Views"
LIST = REPOSITORY / "Mac/Platform/TranslatedTexts.cpp"
ERRORS = REPOSITORY / "Mac/AsyncSocketErrors.cpp"
LANGUAGES = ("de", "fr")
KINDS = "QAbstractFileIconProvider"  # the context of what the toolkit calls kinds of files

# Calls whose texts are for the log and for programmers.
NOT_FOR_PEOPLE = {"AddFact", "AddLine", "DebugPrint", "DebugPrintf", "LogSkipped", "LogFailure", "Require",
                  "static_assert", "Q_CLASSINFO", "AsyncSocketException", "AsyncUdpSocketException",
                  "QT_TRANSLATE_NOOP", "QT_TRANSLATE_NOOP3"}
# Readers of sounds: AudioConversion has words of its own for their refusals.
SILENT_READERS = {"AiffHeader.cpp", "InfoTags.cpp", "ReadAIFF.cpp", "ReadAIFFSamples.cpp", "WaveFile.cpp",
                  "WaveFileSamples.cpp"}
NOT_SHOWN = {
    "Quillbox",  # the program's name, and the context of its texts
    "CFStreamError (unlisted domain)",  # the domain of an error, beside its text
    "[mClientSockets count] == 1", "[mClientSockets count] == 0",  # assertions
    "Invalid parameter 'address': %@", "Invalid parameter 'group': %@",  # discovery's, which go to the log
    "Unable to join IPv4 multicast group", "Unable to join IPv6 multicast group",
    "%s:%u: failed assertion `%s'\n",
    "XdndSelection",  # a name of the X protocol
}

Message = collections.namedtuple("Message", "context source words state form")


def messages(language):
    """The texts of a catalogue; those with a number once for each form that the language has, singular first."""
    root = ElementTree.parse(CATALOGUES / f"quillbox_{language}.ts").getroot()
    for context in root.iter("context"):
        for message in context.iter("message"):
            translation = message.find("translation")
            for form, words in enumerate(translation.findall("numerusform") or [translation]):
                yield Message(context.findtext("name"), message.findtext("source"), words.text or "",
                              translation.get("type"), form)


def words_of(language):
    """The words of a language by context and source."""
    return {(message.context, message.source): message.words for message in messages(language)}


def sources():
    return {message.source for message in messages(LANGUAGES[0])}


def code(room):
    return sorted(path for path in (REPOSITORY / room).rglob("*") if path.suffix in (".cpp", ".h") and path != LIST)


def reads_like_words(text):
    return re.search(r"[A-Za-z'] +[A-Za-z']", text) and not text.startswith("<cmd ")


def is_one_word(text):
    return re.fullmatch(r"[A-Z&][A-Za-z&]+", text)


def texts_for_people():
    """The literals of the code that people may come to read, with the files that hold them."""
    for path in code("Mac") + code("Shared"):
        has_widgets = path.parent.name in ("Classes", "Platform")
        for literal in literals(path.read_text(encoding="utf-8")):
            shown = reads_like_words(literal.text) or (has_widgets and is_one_word(literal.text))
            silent = literal.call in NOT_FOR_PEOPLE or path.name in SILENT_READERS or literal.text in NOT_SHOWN
            if shown and not silent:
                yield path.name, literal.text


def listed_texts():
    """The texts of the list by their contexts."""
    found = [literal.text for literal in literals(LIST.read_text(encoding="utf-8"))]
    listed = collections.defaultdict(set)
    for context, text in zip(found[::2], found[1::2], strict=True):
        listed[context].add(text)
    return listed


def toolkit_kinds():
    """The toolkit's words for kinds of files, all of which its German catalogue knows."""
    with tempfile.TemporaryDirectory() as folder:
        readable = pathlib.Path(folder) / "toolkit.ts"
        subprocess.run([CONVERTER, "-i", TOOLKIT_CATALOGUES / "qtbase_de.qm", "-o", readable], check=True, timeout=20,
                       stdout=subprocess.DEVNULL)
        return {message.findtext("source") for context in ElementTree.parse(readable).iter("context")
                if context.findtext("name") == KINDS for message in context.iter("message")}


def system_texts():
    """What the C library says of the errors for which there is a reason, in English."""
    source = ERRORS.read_text(encoding="utf-8")
    explain = ctypes.CDLL(None).gai_strerror
    explain.restype = ctypes.c_char_p
    codes = re.findall(r"kPosixErrorDomain, (E\w+)", source)
    resolver = re.findall(r"kNetDBErrorDomain, (EAI_\w+)", source)
    return {os.strerror(getattr(errno, code)) for code in codes} | {
        explain(getattr(socket, code)).decode() for code in resolver}


def placeholders(text):
    """Those in the order of their arguments, which is theirs in the text, and those with numbers."""
    return re.findall(r"%[a-z]", text), sorted(re.findall(r"%\d", text))


def mnemonic(text):
    found = re.search(r"&(\w)", text)
    return found and found[1].lower()


def view(name):
    return ElementTree.parse(VIEWS / name).getroot()


def property_text(node, name):
    return node.findtext(f"property[@name='{name}']/string") or ""


def menus(window):
    """The texts of each menu that opens by itself: those of the menu bar, and the table's."""
    texts = {action.get("name"): property_text(action, "text") for action in window.iter("action")}
    listed = [[action.get("name") for action in menu.findall("addaction")]
              for menu in window.iter("widget") if menu.get("class") == "QMenu"]
    table = re.search(r"addActions\(\{(.*?)\}\)", (REPOSITORY / "Mac/Classes/MainWindow.cpp").read_text(), re.DOTALL)
    listed.append(re.findall(r"mpUi->(\w+)", table[1]))
    return [[texts[name] for name in menu if name in texts] for menu in listed]


def mnemonic_groups():
    """Texts that are on the screen together and share the Alt key, as (context, text)."""
    for path in sorted(VIEWS.glob("*.ui")):
        root = view(path.name)
        shown = [property_text(widget, name) for widget in root.iter("widget") for name in ("text", "title")]
        yield [(root.findtext("class"), text) for text in shown if "&" in text]
        for menu in menus(root) if path.stem == "MainWindow" else ():
            yield [("MainWindow", text) for text in menu]


def with_other_connect(group):
    """The same while connected, where the button has other words, which the code gives it."""
    return [("Quillbox", "Dis&connect") if text == "&Connect" else (context, text) for context, text in group]


def for_each_language(test):
    def run(self):
        for language in LANGUAGES:
            with self.subTest(language=language):
                test(self, language)
    return run


class TranslationsTest(unittest.TestCase):
    @for_each_language
    def test_the_catalogue_has_every_text_and_no_other(self, language):
        name = f"quillbox_{language}.ts"
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(CATALOGUES / name, folder)
            subprocess.run([REPOSITORY / "scripts/update-translations", folder], check=True, timeout=50)
            updated = (pathlib.Path(folder) / name).read_text(encoding="utf-8").splitlines()
        self.assertEqual(updated, (CATALOGUES / name).read_text(encoding="utf-8").splitlines())

    @for_each_language
    def test_every_text_is_translated(self, language):
        found = list(messages(language))
        self.assertGreater(len(found), 150)
        self.assertEqual([message for message in found if not message.words or message.state], [])

    @for_each_language
    def test_every_text_with_a_number_has_a_singular_and_a_plural(self, language):
        forms = collections.defaultdict(list)
        for message in messages(language):
            if "%n" in message.source:
                forms[message.source].append(message.words)
        self.assertGreater(len(forms), 2)
        for source, words in forms.items():
            self.assertEqual(len(set(words)), 2, source)

    def test_every_text_of_the_code_is_known(self):
        known = sources()
        frames = {message.source for message in messages("de") if message.source.count("%s") == 1}

        def is_known(text):
            return text in known or any(text in (frame.split("%s")[0], frame.split("%s")[1]) for frame in frames)
        found = list(texts_for_people())
        self.assertGreater(len(found), 100)
        self.assertEqual([entry for entry in found if not is_known(entry[1])], [])

    def test_every_listed_text_is_in_the_code(self):
        listed = listed_texts()["Quillbox"]
        written = {literal.text for room in ("Mac", "Shared") for path in code(room)
                   for literal in literals(path.read_text(encoding="utf-8"))}
        stale = [text for text in listed - written - system_texts()
                 if text.count("%s") != 1 or not {part for part in text.split("%s") if part not in ("", "'")} <= written]
        self.assertEqual(stale, [])

    def test_every_word_lent_to_the_toolkit_is_one_of_its_own(self):
        listed = listed_texts()
        self.assertEqual(listed.keys(), {"Quillbox", KINDS})
        self.assertEqual(listed[KINDS] - toolkit_kinds(), set())

    def test_every_text_of_the_system_is_known(self):
        self.assertGreater(len(system_texts()), 15)
        self.assertEqual(system_texts() - sources(), set())

    def test_views_hide_no_text_from_translation(self):
        hidden = {text.text for path in VIEWS.glob("*.ui") for text in view(path.name).iter("string")
                  if text.get("notr") == "true"}
        self.assertEqual({text for text in hidden if text.strip(".")}, {"Quillbox"})

    @for_each_language
    def test_placeholders_are_kept(self, language):
        for message in messages(language):
            self.assertEqual(placeholders(message.words), placeholders(message.source), message)

    @for_each_language
    def test_blanks_and_ends_are_kept(self, language):
        for message in messages(language):
            self.assertEqual(message.words.strip(), message.words, message)
            for mark in ".:?":
                self.assertEqual(message.words.endswith(mark), message.source.endswith(mark), message)
            self.assertEqual(message.words.count("\n"), message.source.count("\n"), message)

    @for_each_language
    def test_marks_are_typographic(self, language):
        opening, closing = {"de": "„“", "fr": "«»"}[language]
        unusual = "[\"']|  |" + {"de": "[«»”]", "fr": "«(?!\u202f)|(?<!\u202f)»|(?<!\u202f)[?!;]"}[language]
        for message in messages(language):
            self.assertEqual(message.words.count(opening), message.words.count(closing), message)
            self.assertNotRegex(message.words, unusual, message)

    @for_each_language
    def test_one_text_has_the_same_words_everywhere(self, language):
        found = {}
        for message in messages(language):
            self.assertEqual(found.setdefault((message.source, message.form), message.words), message.words)

    @for_each_language
    def test_quoted_controls_exist(self, language):
        controls = {words.replace("&", "") for words in words_of(language).values()}
        for message in messages(language):
            for name in re.findall("„([^%“]+)“|«\u202f([^%»]+)\u202f»", message.words):
                self.assertIn("".join(name), controls, message)

    @for_each_language
    def test_mnemonics_are_kept(self, language):
        for message in messages(language):
            self.assertEqual(message.words.count("&"), message.source.count("&"), message)
            self.assertEqual(bool(mnemonic(message.words)), bool(mnemonic(message.source)), message)

    @for_each_language
    def test_mnemonics_are_unique_where_they_meet(self, language):
        words = words_of(language)
        groups = [group for group in mnemonic_groups() if group]
        self.assertGreater(len(groups), 6)
        for group in groups + [with_other_connect(group) for group in groups]:
            self.assert_unique([text for _, text in group])
            self.assert_unique([words[entry] for entry in group])

    def assert_unique(self, texts):
        letters = collections.Counter(filter(None, map(mnemonic, texts)))
        self.assertEqual([letter for letter, count in letters.items() if count > 1], [], texts)


if __name__ == "__main__":
    unittest.main(verbosity=2)
