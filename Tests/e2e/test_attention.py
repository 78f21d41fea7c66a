"""The entry in the taskbar asks for attention when a long operation has ended behind the person's back."""

import subprocess
import time

import case
from device import ScriptedDevice
from waiting import stays, wait_for

LONG = 10  # seconds, from which on an operation is a long one
SEARCHING = "Searching for '127.0.0.1'"


class AttentionTest(case.Case):
    def setUp(self):
        super().setUp()
        self.device = self.enterContext(ScriptedDevice())
        self.device.held.add("welcome")
        self.window = self.window_of(self.start().program)

    def window_of(self, program):
        """What X calls the main window of a program."""
        def found():
            words = ["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid), "--name",
                     "^Quillbox$"]
            return subprocess.run(words, env=self.desktop.environment, check=False, timeout=20,
                                  stdout=subprocess.PIPE, text=True).stdout.split()
        return wait_for(found, "the main window")[0]

    def asks_for_attention(self):
        state = subprocess.run(["xprop", "-id", self.window, "_NET_WM_STATE"], env=self.desktop.environment,
                               check=True, timeout=20, stdout=subprocess.PIPE, text=True)
        return "_NET_WM_STATE_DEMANDS_ATTENTION" in state.stdout

    def work_elsewhere(self):
        """The window of another program, which has the keyboard from now on."""
        window = self.desktop.start_program().window("Quillbox")
        self.desktop.click(window.find("Status"))
        wait_for(lambda: window.has_state("active"), "the other window in front")
        return window

    def search_for(self, seconds):
        """Looks for a device that does not answer, and works elsewhere, until the connection is lost."""
        self.quillbox.start_connecting()
        self.quillbox.window(SEARCHING)
        began = time.monotonic()
        other = self.work_elsewhere()
        wait_for(lambda: time.monotonic() - began > seconds, "time to pass", seconds + 1)
        self.assertFalse(self.asks_for_attention())
        self.device.drop()
        self.quillbox.program.wait_until_closed(SEARCHING)
        return other

    def test_a_long_wait_asks_until_the_window_is_looked_at(self):
        other = self.search_for(LONG + 2)
        wait_for(self.asks_for_attention, "the entry in the taskbar that asks for attention")
        self.desktop.close_window(other)
        wait_for(lambda: not self.asks_for_attention(), "the end of that")

    def test_a_short_wait_does_not_ask(self):
        self.search_for(0)
        self.assertTrue(stays(lambda: not self.asks_for_attention(), 3))


if __name__ == "__main__":
    case.main()
