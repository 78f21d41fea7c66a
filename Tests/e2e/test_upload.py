"""Uploads with the real file chooser, the overwrite prompt and the conversion of sounds."""

import os
import struct
import wave

import case
from waiting import wait_for

LARGEST = 268_435_455
TRANSFER = "Uploading files"


def aiff(frames, rate=44100):
    """An AIFF file of 24-bit stereo frames, each a pair of numbers from -2^23 to 2^23 - 1."""
    exponent = rate.bit_length() - 1
    extended = struct.pack(">HQ", 16383 + exponent, rate << (63 - exponent))
    common = struct.pack(">hIh", 2, len(frames), 24) + extended
    samples = b"".join(sample.to_bytes(3, "big", signed=True) for frame in frames for sample in frame)
    chunks = b"AIFF" + chunk(b"COMM", common) + chunk(b"SSND", bytes(8) + samples)
    return chunk(b"FORM", chunks)


def chunk(name, data):
    return name + struct.pack(">I", len(data)) + data + bytes(len(data) % 2)


def read_wav(path):
    """The parameters (channels, bytes in a sample, rate) and the frames of a WAV file."""
    with wave.open(str(path)) as sound:
        samples = struct.unpack(f"<{2 * sound.getnframes()}h", sound.readframes(sound.getnframes()))
        return tuple(sound.getparams()[:3]), list(zip(samples[::2], samples[1::2]))


def write_sparse(path, size):
    with open(path, "wb") as file:
        file.truncate(size)


class UploadCase(case.Case):
    """A connected program, the folder that its device serves, and local files."""

    def start_upload_case(self, local, served=None):
        self.device, self.served = self.serve(served or {})
        self.local = self.desktop.folder("local")
        case.write_files(self.local, local)
        self.start().connect()

    def choose(self, *names):
        self.quillbox.start_upload(self.local, names, "Upload files to 'Test device:/'")

    def wait_until_served(self, names):
        self.quillbox.wait_for_main_window_only(60)
        self.quillbox.wait_for_listing("/", names)

    def assert_nothing_temporary(self):
        folder = self.desktop.root / "tmp" / "Quillbox"
        self.assertEqual(list(folder.iterdir()) if folder.exists() else [], [])


class UploadTest(UploadCase):
    time_limit = 90

    def test_several_files_sounds_as_wav(self):
        frames = [(0x400000, -0x400000), (0x7FFFFF, 0), (256, -256)] * 20000
        self.start_upload_case({"Take 1.aiff": aiff(frames), "Größe.txt": b"notes",
                                "data.bin": os.urandom(300_000), "not chosen.txt": b"x"})
        self.choose("Take 1.aiff", "Größe.txt", "data.bin")
        self.wait_until_served(["Take 1.wav", "Grosse.txt", "data.bin"])
        parameters, received = read_wav(self.served / "Take 1.wav")
        self.assertEqual(parameters, (2, 2, 44100))
        self.assertEqual(received, [(16383, -16383), (32766, 0), (0, 0)] * 20000)
        self.assertEqual((self.served / "Grosse.txt").read_bytes(), b"notes")
        self.assertEqual((self.served / "data.bin").read_bytes(), (self.local / "data.bin").read_bytes())
        self.assert_nothing_temporary()

    def test_key_opens_the_chooser_where_the_last_upload_came_from(self):
        self.start_upload_case({"a.txt": b"a"})
        self.choose("a.txt")
        self.wait_until_served(["a.txt"])
        self.desktop.keys("ctrl+u")
        chooser = self.quillbox.window("Upload files to 'Test device:/'")
        chooser.find(str(self.local), "combo box")
        chooser.find("Cancel", "push button").press()
        self.quillbox.wait_for_main_window_only()
        self.assert_same_files(self.served, {"a.txt": b"a"})

    def test_limits(self):
        self.start_upload_case({"empty.txt": b"", "last.txt": b"last"})
        write_sparse(self.local / "largest.bin", LARGEST)
        write_sparse(self.local / "larger.bin", LARGEST + 1)
        self.choose("empty.txt", "larger.bin", "largest.bin", "last.txt")
        self.wait_until_served(["largest.bin", "last.txt"])
        self.assertEqual((self.served / "largest.bin").stat().st_size, LARGEST)
        self.assertEqual((self.served / "last.txt").read_bytes(), b"last")


class UploadQuestionTest(UploadCase):
    def setUp(self):
        super().setUp()
        old = {"1.txt": b"old", "2.txt": b"old"}
        self.start_upload_case({"1.txt": b"new", "2.txt": b"new", "3.txt": b"new"}, old)
        self.quillbox.wait_for_listing("/", ["1.txt", "2.txt"])
        self.choose("1.txt", "2.txt", "3.txt")

    def answer(self, name, button):
        def asked():
            prompt = self.quillbox.program.look_for_window("Copy File")
            exists = f"A file with the name '{name}' already exists."
            return prompt and prompt.look_for("What exists").words == exists and prompt
        wait_for(asked, f"the question about {name}").find(button, "push button").press()

    def test_yes_and_no_count_for_one_file(self):
        self.answer("1.txt", "No")
        self.answer("2.txt", "Yes")
        self.wait_until_served(["1.txt", "2.txt", "3.txt"])
        self.assert_same_files(self.served, {"1.txt": b"old", "2.txt": b"new", "3.txt": b"new"})

    def test_yes_to_all(self):
        self.answer("1.txt", "Yes to all")
        self.wait_until_served(["1.txt", "2.txt", "3.txt"])
        self.assert_same_files(self.served, {"1.txt": b"new", "2.txt": b"new", "3.txt": b"new"})

    def test_cancel_sends_nothing(self):
        self.answer("1.txt", "Yes")
        self.answer("2.txt", "Cancel")
        self.wait_until_served(["1.txt", "2.txt"])
        self.assert_same_files(self.served, {"1.txt": b"old", "2.txt": b"old"})
        self.assertEqual(self.quillbox.status, "Connected to 'Test device'")


class UploadCancelTest(UploadCase):
    time_limit = 90

    def start_long_upload(self):
        """A sound that takes seconds to convert, between two small files; returns the progress window."""
        self.start_upload_case({"a.txt": b"first", "z.txt": b"last"})
        size = LARGEST - 100
        header = b"RIFF" + struct.pack("<I4s4sIHHIIHH4sI", size + 36, b"WAVE", b"fmt ", 16, 1, 2, 44100,
                                       176400, 4, 16, b"data", size)
        write_sparse(self.local / "long.wav", len(header) + size)
        with open(self.local / "long.wav", "r+b") as file:
            file.write(header)
        self.choose("a.txt", "long.wav", "z.txt")
        progress = self.quillbox.window(TRANSFER)
        wait_for(lambda: progress.find("Current item").words == "long.wav", "the long sound")
        return progress

    def test_cancel(self):
        progress = self.start_long_upload()
        progress.find("Cancel", "push button").press()
        self.wait_until_served(["a.txt"])
        self.assert_same_files(self.served, {"a.txt": b"first"})
        self.assertEqual(self.quillbox.status, "Connected to 'Test device'")
        self.assert_nothing_temporary()
        self.choose("z.txt")
        self.wait_until_served(["a.txt", "z.txt"])

    def test_quit(self):
        self.start_long_upload()
        self.desktop.close_window(self.quillbox.main)
        self.assertEqual(self.quillbox.program.process.wait(), 0)
        self.assert_same_files(self.served, {"a.txt": b"first"})
        self.assert_nothing_temporary()


if __name__ == "__main__":
    case.main()
