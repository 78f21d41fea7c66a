"""Ending the program, however and whenever: it ends with status 0 and leaves nothing half done."""

import signal

import case
from device import ScriptedDevice
from waiting import wait_for

BODY = bytes(1_000_000)
FILES = {"Folder/a.txt": b"a", "large.bin": BODY}


def by_close_button(quillbox):
    quillbox.desktop.close_window(quillbox.main)


def by_key(quillbox):
    wait_for(lambda: any(window.has_state("active") for window in quillbox.program.windows()), "the focus")
    quillbox.desktop.keys("ctrl+q")


def by_signal(quillbox):
    quillbox.program.process.signal(signal.SIGTERM)


WAYS = (by_close_button, by_key, by_signal)


class QuitTest(case.Case):
    def setUp(self):
        super().setUp()
        self.device = self.enterContext(ScriptedDevice(FILES))
        self.target = self.desktop.folder("target")

    def check_each_way(self, prepare, windows):
        for way in WAYS:
            with self.subTest(way.__name__):
                self.device.release()
                quillbox = self.start()
                prepare(quillbox)
                for title in windows:
                    quillbox.window(title)
                way(quillbox)
                self.assertEqual(quillbox.program.process.wait(), 0)
                self.assertEqual(list(self.target.glob("**/*.tmp")), [])

    def connect(self, quillbox):
        quillbox.connect("Scripted")
        quillbox.wait_for_listing("/", ["Folder", "large.bin"])

    def test_disconnected(self):
        self.check_each_way(lambda quillbox: None, [])

    def test_connected(self):
        self.check_each_way(self.connect, [])

    def test_choosing_a_device(self):
        self.check_each_way(lambda quillbox: quillbox.open_selection(), ["Select Device"])

    def test_connecting(self):
        def prepare(quillbox):
            self.device.held.add("welcome")
            quillbox.start_connecting()
        self.check_each_way(prepare, ["Searching for '127.0.0.1'"])

    def test_listing(self):
        def prepare(quillbox):
            self.connect(quillbox)
            self.device.held.add("dir")
            quillbox.open_folder("Folder")
        self.check_each_way(prepare, ["Reading Folder Contents"])

    def test_downloading(self):
        def prepare(quillbox):
            self.connect(quillbox)
            self.device.body_limit = len(BODY) // 2
            quillbox.start_download(["large.bin"], self.target)
            wait_for((self.target / "large.bin.tmp").exists, "the download")
        self.check_each_way(prepare, [f"Downloading to '{self.target}'"])
        self.assert_same_files(self.target, {})

    def test_asked_about_overwriting(self):
        case.write_files(self.target, {"large.bin": b"old"})

        def prepare(quillbox):
            self.connect(quillbox)
            quillbox.start_download(["large.bin"], self.target)
        self.check_each_way(prepare, ["Copy File"])
        self.assert_same_files(self.target, {"large.bin": b"old"})

    def test_reading_an_alert(self):
        (self.target / "large.bin").mkdir()

        def prepare(quillbox):
            self.connect(quillbox)
            quillbox.start_download(["large.bin"], self.target)
            quillbox.program.alert("Download failed")
        self.check_each_way(prepare, [])


if __name__ == "__main__":
    case.main()
