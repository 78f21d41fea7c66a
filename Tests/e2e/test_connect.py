"""Connecting to a device by its typed address, and what happens when that fails."""

import case
from device import ScriptedDevice
from waiting import stays, wait_for

PROMPT = "Press the 'Connect' button to begin"
SEARCHING = "Searching for '127.0.0.1'"
SOCKET_ERROR = r"^.+ \(.*\)$"
FILES = {"song.wav": b"song", "notes.txt": b"notes", "Music/live.wav": b"live"}


class ConnectTest(case.Case):
    def test_starts_disconnected(self):
        quillbox = self.start()
        quillbox.wait_for_enabled_buttons({"Connect"})
        self.assertEqual(quillbox.directory, "/")
        self.assertEqual(quillbox.names(), [])
        self.assertEqual(quillbox.status, PROMPT)

    def test_typed_address(self):
        quillbox, _ = self.connect(FILES, name="Blue box")
        self.assertEqual(quillbox.status, "Connected to 'Blue box'")
        quillbox.wait_for_enabled_buttons({"Disconnect", "Create Folder", "Upload"})

    def test_device_without_a_name_is_called_by_its_address(self):
        with ScriptedDevice({"a.txt": b"a"}, name="", address="127.0.0.2"):
            quillbox = self.start()
            quillbox.connect("127.0.0.2", address="127.0.0.2")
            quillbox.wait_for_listing("/", ["a.txt"])

    def test_disconnect_and_connect_elsewhere(self):
        quillbox, _ = self.connect(FILES)
        quillbox.disconnect()
        quillbox.wait_for_status(PROMPT)
        self.assertEqual(quillbox.names(), [])
        quillbox.wait_for_enabled_buttons({"Connect"})
        self.serve({"other.txt": b"other"}, name="Other", address="127.0.0.2")
        quillbox.connect("Other", address="127.0.0.2")
        quillbox.wait_for_listing("/", ["other.txt"])

    def test_cancel_of_the_selection_connects_nothing(self):
        with ScriptedDevice(FILES) as device:
            quillbox = self.start()
            quillbox.open_selection().find("Cancel", "push button").press()
            quillbox.wait_for_main_window_only()
            quillbox.wait_for_enabled_buttons({"Connect"})
            self.assertEqual(device.connection_count(), 0)

    def test_the_last_address_is_offered_again(self):
        quillbox, _ = self.connect(FILES)
        quillbox.desktop.close_window(quillbox.main)
        self.assertEqual(quillbox.program.process.wait(), 0)
        again = self.start()
        self.assertEqual(again.typed_address(again.open_selection()), "127.0.0.1")


class RefusedConnectionTest(case.Case):
    def test_refused_address(self):
        quillbox = self.start()
        quillbox.start_connecting()
        wait_for(lambda: quillbox.status != PROMPT, "another status line")
        self.assertRegex(quillbox.status, SOCKET_ERROR)
        self.assertIn("Connection refused", quillbox.status)
        quillbox.wait_for_main_window_only()
        quillbox.wait_for_enabled_buttons({"Connect"})

    def test_connects_after_a_refusal(self):
        quillbox = self.start()
        quillbox.start_connecting()
        wait_for(lambda: quillbox.status != PROMPT, "another status line")
        self.serve(FILES)
        quillbox.connect()
        quillbox.wait_for_listing("/", case.top_names(FILES))

    def test_address_without_octets(self):
        quillbox = self.start()
        dialog = quillbox.open_selection()
        quillbox.choose_typed_address(dialog)
        self.assertEqual(quillbox.typed_address(dialog), "...")
        dialog.find("OK", "push button").press()
        wait_for(lambda: quillbox.status != PROMPT, "another status line")
        self.assertRegex(quillbox.status, SOCKET_ERROR)
        quillbox.wait_for_main_window_only()
        self.serve(FILES)
        quillbox.connect()

    def test_silent_device_is_waited_for_until_cancel(self):
        with ScriptedDevice(FILES) as device:
            device.held.add("welcome")
            quillbox = self.start()
            quillbox.start_connecting()
            progress = quillbox.window(SEARCHING)
            wait_for(lambda: device.connection_count() == 1, "a connection")
            self.assertTrue(stays(lambda: progress.showing, 1.5), "the progress window left by itself")
            progress.find("Cancel", "push button").press()
            quillbox.wait_for_main_window_only()
            quillbox.wait_for_status(PROMPT)
            device.held.clear()
            quillbox.connect("Scripted")

    def test_leaving_device_is_noticed(self):
        quillbox, device = self.connect(FILES)
        device.stop()
        wait_for(lambda: not quillbox.is_connected(), "the end of the connection")
        self.assertEqual(quillbox.names(), [])
        device.start()
        quillbox.connect()


if __name__ == "__main__":
    case.main()
