"""Large transfers: the biggest file, many files, little memory."""

import hashlib
import os

import case
from waiting import wait_for

MIB = 1 << 20
LARGEST = 1024 * MIB
MEMORY_LIMIT = 150 * MIB


def make_large_file(path, size=LARGEST):
    """A sparse file that differs in every mebibyte."""
    with open(path, "wb") as file:
        file.truncate(size)
        for offset in range(0, size, MIB):
            os.pwrite(file.fileno(), f"block {offset}".encode(), offset + offset // MIB)


def checksum(path):
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest()


class LargeDownloadTest(case.Case):
    time_limit = 100

    def connect_to_large_file(self):
        device, root = self.serve({"Big/small.txt": b"small"})
        make_large_file(root / "Big/large.bin")
        quillbox = self.start()
        quillbox.connect()
        quillbox.open_folder("Big")
        quillbox.wait_for_listing("/Big", ["large.bin", "small.txt"])
        return quillbox, device, root / "Big/large.bin"

    def start_download(self, target):
        """Starts the download and returns once bytes arrive."""
        self.quillbox.start_download(["large.bin"], target)
        partial = target / "large.bin.tmp"
        wait_for(lambda: partial.exists() and partial.stat().st_size > 0, "the first bytes")

    def test_largest_file(self):
        quillbox, _, source = self.connect_to_large_file()
        target = self.desktop.folder("target")
        self.start_download(target)
        progress = quillbox.window(f"Downloading to '{target}'")
        self.assertEqual(progress.find("Current item").words, "large.bin")
        bar = progress.find("Progress", "progress bar")
        wait_for(lambda: 0 < bar.value < 1000, "the progress bar between its ends")
        quillbox.wait_for_end_of_transfer(60)
        self.assertEqual([path.name for path in target.iterdir()], ["large.bin"])
        self.assertEqual(checksum(target / "large.bin"), checksum(source))
        if "QUILLBOX_SANITIZED" not in os.environ:  # a sanitizer's own memory would be measured
            self.assertLess(quillbox.program.process.peak_memory(), MEMORY_LIMIT)

    def test_cancel_keeps_the_old_file_and_the_connection(self):
        quillbox, _, _ = self.connect_to_large_file()
        target = self.desktop.folder("target")
        case.write_files(target, {"large.bin": b"older"})
        quillbox.start_download(["large.bin"], target)
        quillbox.press_in("Copy File", "Yes")
        wait_for((target / "large.bin.tmp").exists, "the download")
        quillbox.press_in(f"Downloading to '{target}'", "Cancel")
        quillbox.wait_for_main_window_only()
        quillbox.wait_for_listing("/Big", ["large.bin", "small.txt"])
        self.assert_same_files(target, {"large.bin": b"older"})
        self.assertEqual(quillbox.status, "Connected to 'Test device'")
        quillbox.start_download(["small.txt"], target)
        quillbox.wait_for_end_of_transfer()
        self.assert_same_files(target, {"large.bin": b"older", "small.txt": b"small"})

    def test_device_dies_in_the_middle(self):
        quillbox, device, _ = self.connect_to_large_file()
        target = self.desktop.folder("target")
        case.write_files(target, {"keep.txt": b"keep"})
        self.start_download(target)
        device.kill()
        self.assertNotEqual(quillbox.dismiss_alert("Download failed"), "")
        quillbox.wait_for_main_window_only()
        self.assert_same_files(target, {"keep.txt": b"keep"})
        self.assertEqual(quillbox.enabled_buttons(), {"Connect"})
        self.assertNotEqual(quillbox.status, "Connected to 'Test device'")
        device.start()
        quillbox.connect()
        quillbox.wait_for_listing("/", ["Big"])


class ManyFilesTest(case.Case):
    time_limit = 100

    def test_two_thousand_files(self):
        files = {f"Many/Folder {folder:02}/file {number:02}.bin": os.urandom(1 + 37 * number)
                 for folder in range(40) for number in range(50)}
        quillbox, _ = self.connect(files)
        target = self.desktop.folder("target")
        quillbox.start_download(["Many"], target)
        quillbox.wait_for_end_of_transfer(60)
        self.assert_same_files(target, files)


if __name__ == "__main__":
    case.main()
