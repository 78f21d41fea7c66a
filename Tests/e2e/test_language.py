"""The language of the real program, which is the person's as the system knows it."""

import unittest.mock

import case
from waiting import wait_for

ENGLISH, GERMAN, FRENCH = "Connect", "Verbinden", "Connecter"


class LanguageTest(case.Case):
    def connect_button_with(self, **variables):
        """The word on the first button of a program that is started with these variables of the environment."""
        with unittest.mock.patch.dict(self.desktop.environment, variables):
            program = self.desktop.start_program()
        window = program.window("Quillbox")
        buttons = [node.name for node in window.descendants() if node.role == "push button"]
        wait_for(lambda: window.has_state("active"), "the window in its place")
        self.desktop.close_window(window)
        self.assertEqual(program.process.wait(), 0)
        return buttons[0]

    def test_language_of_the_locale(self):
        for locale, word in (("C.UTF-8", ENGLISH), ("de_DE.UTF-8", GERMAN), ("fr_CA.UTF-8", FRENCH),
                             ("it_IT.UTF-8", ENGLISH), ("en_GB.UTF-8", ENGLISH)):
            with self.subTest(locale=locale):
                self.assertEqual(self.connect_button_with(LANG=locale), word)

    def test_languages_in_the_order_of_preference(self):
        for languages, word in (("en:de", ENGLISH), ("it:fr:de", FRENCH)):
            with self.subTest(languages=languages):
                self.assertEqual(self.connect_button_with(LANG="de_DE.UTF-8", LANGUAGE=languages), word)

    def test_the_c_locale_is_english(self):
        self.assertEqual(self.connect_button_with(LANG="de_DE.UTF-8", LC_ALL="C", LANGUAGE="de"), ENGLISH)


if __name__ == "__main__":
    case.main()
