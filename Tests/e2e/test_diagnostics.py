"""What people can hand on when they ask for help, from the real program to another one."""

import platform

import case
from clipboard import pasted, reason_not_to_paste


class DiagnosticsTest(case.Case):
    def pasted(self):
        """The facts by name and the lines of the log, as another program pastes them."""
        facts, log = pasted(self.desktop).split("\n\n", 1)
        return dict(line.split(": ", 1) for line in facts.splitlines()), log.splitlines()

    def test_copied_by_keys_and_pasted_elsewhere(self):
        quillbox, _ = self.connect({"a.txt": b"confidential"})
        self.desktop.keys("alt+h", "d")
        self.assertIn("Paste them where you ask for help.", quillbox.dismiss_alert("Diagnostics copied"))
        facts, log = self.pasted()
        self.assertEqual(facts["Kernel"], f"linux {platform.release()}")
        self.assertEqual(facts["Qt platform"], "xcb")
        self.assertEqual(facts["Screen"], "1280 x 900, scale 1")
        self.assertEqual(log[0], "The last lines of the log:")
        self.assertIn("didConnectToHost: 127.0.0.1 port 10240", log)
        self.assertLessEqual(set(log[1:]), {*quillbox.log_lines(), ""})


if __name__ == "__main__":
    case.main(reason_not_to_paste)
