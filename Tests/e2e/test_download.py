"""Downloads with the real folder chooser and the overwrite prompt."""

import os
import random
import signal
import time

import case
from device import ScriptedDevice
from waiting import stays, wait_for

SET = {f"Set/{number}.dat": f"new {number}".encode() for number in range(1, 5)}
QUESTION = "Do you want to replace it?"


class DownloadTest(case.Case):
    def download(self, names, destination):
        """Downloads to its end, without questions expected."""
        self.quillbox.start_download(names, destination)
        self.quillbox.wait_for_end_of_transfer()

    def test_folder_tree_arrives_whole(self):
        files = {"Tree/a.wav": os.urandom(300_000), "Tree/Deep/Deeper/b.bin": os.urandom(70_001),
                 "Tree/Deep/gämma #1 50%.txt": b"x", "Tree/one": b"1", "other.txt": b"not chosen"}
        quillbox, _ = self.connect(files)
        target = self.desktop.folder("target")
        self.download(["Tree"], target)
        del files["other.txt"]
        self.assert_same_files(target, files)
        self.assertEqual(quillbox.directory, "/")
        self.assertEqual(sorted(quillbox.names()), ["Tree", "other.txt"])

    def test_selected_files_only(self):
        files = {"a.txt": b"a", "b.txt": b"b", "c.txt": b"c"}
        self.connect(files)
        target = self.desktop.folder("target")
        self.download(["a.txt", "c.txt"], target)
        self.assert_same_files(target, {"a.txt": b"a", "c.txt": b"c"})

    def test_destination_is_offered_again(self):
        quillbox, _ = self.connect({"a.txt": b"a"})
        target = self.desktop.folder("target")
        self.download(["a.txt"], target)
        (target / "a.txt").unlink()
        chooser = quillbox.ask_for_download(["a.txt"])
        chooser.find(str(target), "combo box")
        chooser.find("Cancel", "push button").press()
        quillbox.wait_for_main_window_only()
        self.assert_same_files(target, {})

    def test_device_without_totals(self):
        files = {"Set/1.dat": b"one", "Set/Sub/2.dat": b"two"}
        with ScriptedDevice(files, version="1.09") as device:
            quillbox = self.start()
            quillbox.connect("Scripted")
            target = self.desktop.folder("target")
            self.download(["Set"], target)
            self.assert_same_files(target, files)
            self.assertFalse(device.has_received("dir_recurse"))


class OverwriteTest(case.Case):
    def setUp(self):
        super().setUp()
        self.target = self.desktop.folder("target")
        self.old = {name: b"old" for name in SET}
        case.write_files(self.target, self.old)
        self.connect(SET)
        self.quillbox.start_download(["Set"], self.target)

    def wait_for_question(self, name):
        """The prompt, once it is about this file."""
        exists = f"A file with the name '{self.target}/{name}' already exists."

        def asked():
            prompt = self.quillbox.program.look_for_window("Copy File")
            return prompt and prompt.look_for("What exists").words == exists and prompt
        return wait_for(asked, f"the question about {name}")

    def answer(self, name, button):
        prompt = self.wait_for_question(name)
        self.assertEqual(prompt.find("Question").words, QUESTION)
        prompt.find(button, "push button").press()

    def expect_replaced(self, *names):
        """The download ends with these files new and the others old."""
        self.quillbox.wait_for_end_of_transfer()
        self.assert_same_files(self.target, self.old | {name: SET[name] for name in names})

    def test_yes_and_no_count_for_one_file(self):
        self.answer("Set/1.dat", "No")
        self.answer("Set/2.dat", "Yes")
        self.answer("Set/3.dat", "No")
        self.answer("Set/4.dat", "Yes")
        self.expect_replaced("Set/2.dat", "Set/4.dat")

    def test_yes_to_all(self):
        self.answer("Set/1.dat", "No")
        self.answer("Set/2.dat", "Yes to all")
        self.expect_replaced("Set/2.dat", "Set/3.dat", "Set/4.dat")

    def test_cancel(self):
        self.answer("Set/1.dat", "Yes")
        self.answer("Set/2.dat", "Cancel")
        self.expect_replaced("Set/1.dat")
        self.quillbox.wait_for_status("Connected to 'Test device'")

    def test_prompt_keeps_the_focus(self):
        prompt = self.wait_for_question("Set/1.dat")
        wait_for(lambda: prompt.has_state("active"), "the prompt to have the focus")
        # Meanwhile the progress window of the download becomes due.
        self.assertTrue(stays(lambda: prompt.has_state("active"), 1.0), "another window came in front")
        self.answer("Set/1.dat", "Cancel")
        self.expect_replaced()

    def test_escape_is_cancel(self):
        self.answer("Set/1.dat", "Yes")
        prompt = self.wait_for_question("Set/2.dat")
        wait_for(lambda: prompt.has_state("active"), "the prompt to have the focus")
        self.desktop.keys("Escape")
        self.expect_replaced("Set/1.dat")


class KilledTest(case.Case):
    """The program is killed while a file is on its way; then the next one downloads it."""
    OLD = b"the old one " * 4_000_000
    NEW = b"the new one, which is longer " * 2_000_000
    LONGEST_LIFE = 0.2  # seconds, in which the file can arrive

    def start_replacing(self, target):
        """Begins to replace the file, and what another program left of it."""
        quillbox = self.start()
        quillbox.connect()
        quillbox.start_download(["a.wav"], target)
        for name in ("a.wav", "a.wav.tmp"):
            if (target / name).exists():
                exists = f"A file with the name '{target}/{name}' already exists."
                wait_for(lambda: quillbox.window("Copy File").look_for("What exists").words == exists, exists)
                quillbox.window("Copy File").find("Yes", "push button").press()
        return quillbox

    def test_leaves_the_old_file_or_the_new_one(self):
        self.serve({"a.wav": self.NEW})
        target = self.desktop.folder("target")
        (target / "a.wav").write_bytes(self.OLD)
        moments = random.Random(1)
        for _ in range(6):
            quillbox = self.start_replacing(target)
            time.sleep(moments.uniform(0, self.LONGEST_LIFE))
            quillbox.program.process.signal(signal.SIGKILL)
            quillbox.program.process.wait()
            self.assertTrue((target / "a.wav").read_bytes() in (self.OLD, self.NEW), "the file is mixed")
        self.start_replacing(target).wait_for_end_of_transfer()
        self.assert_same_files(target, {"a.wav": self.NEW})


if __name__ == "__main__":
    case.main()
