"""A complete session by keyboard alone."""

import lancase
import session
from keyboard import KeyboardUser
from restraint import keyboard_only


class KeyboardSessionTest(session.SessionCase):
    def test_from_finding_the_device_to_quitting(self):
        quillbox = self.start(self.home)
        with keyboard_only():
            self.walk(KeyboardUser(quillbox))


if __name__ == "__main__":
    lancase.main()
