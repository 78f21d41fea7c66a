"""Devices that are slow, break their word or leave, and people who lose patience with them."""

import case
from device import ScriptedDevice
from waiting import wait_for

FILES = {"Set/one.dat": b"one", "Set/Deep/two.dat": b"two", "single.dat": b"single"}
LISTING = "Reading Folder Contents"
LARGEST = 1 << 30


class TroubleCase(case.Case):
    def setUp(self):
        super().setUp()
        self.device = self.enterContext(ScriptedDevice(FILES))
        self.target = self.desktop.folder("target")
        self.start().connect("Scripted")
        self.quillbox.wait_for_listing("/", ["Set", "single.dat"])

    def check_still_usable(self):
        """Connects anew, from whatever state, and downloads everything."""
        self.device.release()
        if self.quillbox.is_connected():
            self.quillbox.disconnect()
        self.quillbox.connect("Scripted")
        self.quillbox.wait_for_listing("/", ["Set", "single.dat"])
        self.quillbox.start_download(["Set", "single.dat"], self.target)
        self.quillbox.wait_for_end_of_transfer()
        self.assert_same_files(self.target, FILES)


class ImpatienceTest(TroubleCase):
    def test_cancel_of_a_listing(self):
        self.device.held.add("dir")
        self.quillbox.open_folder("Set")
        self.quillbox.press_in(LISTING, "Cancel")
        self.quillbox.wait_for_main_window_only()
        self.check_still_usable()

    def test_cancel_while_the_size_is_asked_for(self):
        self.device.held.add("dir_recurse")
        self.quillbox.start_download(["Set"], self.target)
        self.quillbox.press_in(LISTING, "Cancel")
        self.quillbox.wait_for_main_window_only()
        self.assertFalse(self.device.has_received("download"))
        self.check_still_usable()

    def test_cancel_while_a_folder_of_a_download_is_listed(self):
        self.device.held.add("dir")
        self.quillbox.start_download(["Set"], self.target)
        self.quillbox.press_in(f"Downloading to '{self.target}'", "Cancel")
        self.quillbox.wait_for_main_window_only()
        self.assertFalse(self.device.has_received("download"))
        self.check_still_usable()

    def test_cancel_of_a_stalled_file_comes_back_to_the_folder(self):
        self.device.body_limit = 1
        self.quillbox.open_folder("Set")
        self.quillbox.wait_for_listing("/Set", ["Deep", "one.dat"])
        self.quillbox.start_download(["one.dat"], self.target)
        self.quillbox.press_in(f"Downloading to '{self.target}'", "Cancel")
        wait_for(lambda: self.device.connection_count() == 2, "a new connection")
        self.quillbox.wait_for_main_window_only()
        self.quillbox.wait_for_listing("/Set", ["Deep", "one.dat"])
        self.assert_same_files(self.target, {})
        self.check_still_usable()


class BrokenWordTest(TroubleCase):
    def check_failure(self, text):
        """A download of one file fails with this text and leaves nothing."""
        self.quillbox.start_download(["single.dat"], self.target)
        self.assertEqual(self.quillbox.dismiss_alert("Download failed"), text)
        self.quillbox.wait_for_main_window_only()
        self.assert_same_files(self.target, {})
        self.check_explained_once(text)
        self.check_still_usable()

    def check_explained_once(self, text):
        """The next connection attempt ends with the text of the failure; only that one does."""
        self.quillbox.start_connecting()
        self.quillbox.program.wait_until_closed("Select Device")
        self.quillbox.wait_for_main_window_only()
        self.quillbox.wait_for_status(text)

    def test_more_than_announced(self):
        self.device.surplus = b"and more"
        self.check_failure("Device sent more data than announced")

    def test_too_large(self):
        self.device.announced = LARGEST + 1
        self.check_failure(f"{self.target}/single.dat too large to download")

    def test_names_that_are_no_file_names(self):
        self.device.files = {"Set/..": b"up", "Set/.": b"here", "Set/good.dat": b"good"}
        self.quillbox.start_download(["Set"], self.target)
        self.quillbox.wait_for_end_of_transfer()
        self.assert_same_files(self.target.parent, {"target/Set/good.dat": b"good"})


class DepartureTest(TroubleCase):
    def test_during_a_listing(self):
        self.device.held.add("dir")
        self.quillbox.open_folder("Set")
        self.quillbox.window(LISTING)
        self.device.drop()
        self.check_disconnected()

    def test_during_a_download(self):
        self.device.body_limit = 1
        self.quillbox.start_download(["single.dat"], self.target)
        self.quillbox.window(f"Downloading to '{self.target}'")
        self.device.drop()
        self.assertNotEqual(self.quillbox.dismiss_alert("Download failed"), "")
        self.assert_same_files(self.target, {})
        self.check_disconnected()

    def check_disconnected(self):
        wait_for(lambda: not self.quillbox.is_connected(), "the end of the connection")
        self.quillbox.wait_for_main_window_only()
        self.assertEqual(self.quillbox.names(), [])
        self.assertNotIn("Connected", self.quillbox.status)
        self.check_still_usable()


if __name__ == "__main__":
    case.main()
