"""A complete session through the accessibility bus alone."""

import lancase
import session
from assistive import AssistiveTool
from restraint import accessibility_bus_only


class AccessibilitySessionTest(session.SessionCase):
    def test_from_finding_the_device_to_quitting(self):
        quillbox = self.start(self.home)
        with accessibility_bus_only():
            self.walk(AssistiveTool(quillbox))


if __name__ == "__main__":
    lancase.main()
