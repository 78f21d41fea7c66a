"""One complete session with a found device, the same for every kind of user; see keyboard.py and assistive.py."""

import os

import case
import lancase
from waiting import wait_for

DEVICE = "Songs box"
TOP = f"Upload files to '{DEVICE}:/'"
FOLDER_TO_TOP = f"Upload a folder to '{DEVICE}:/'"


class SessionCase(lancase.LanCase):
    def setUp(self):
        super().setUp()
        self.files = {"notes.txt": b"notes", "song.wav": os.urandom(200_000), "Old/readme.txt": b"read me",
                      "Music/intro.wav": os.urandom(30_001), "Music/Live/solo.wav": os.urandom(300_000)}
        self.local_files = {"report.txt": b"report", "data.bin": os.urandom(100_000), "other.txt": b"stays here",
                            "Tour/dates.txt": b"dates", "Tour/Late/more.txt": b"more dates"}
        _, _, self.served = self.serve_folder_on_lan(DEVICE, self.files)
        self.serve_on_lan("Other box", {"wrong.txt": b"wrong"})
        self.local = self.desktop.folder("local")
        case.write_files(self.local, self.local_files)
        self.target = self.desktop.folder("target")

    def walk(self, user):
        """Has the user go through the session, and compares the files of both sides when it is over."""
        for step in (self.connect, self.browse, self.sort, self.download, self.replace, self.upload,
                     self.upload_folder, self.create_folder, self.delete, self.leave):
            step(user)
        self.assert_same_files(self.target, {"notes.txt": self.files["notes.txt"]} | self.below("song.wav", "Music/"))
        self.assert_same_files(self.local, self.local_files)
        sent = {name: self.local_files[name] for name in ("report.txt", "data.bin")}
        sent |= {name: content for name, content in self.local_files.items() if name.startswith("Tour/")}
        self.assert_same_files(self.served, self.below("song.wav", "Music/") | sent)
        self.assertEqual(sorted(path.name for path in self.served.iterdir()),
                         ["Music", "Rehearsals", "Tour", "data.bin", "report.txt", "song.wav"])

    def below(self, *starts):
        return {path: content for path, content in self.files.items() if path.startswith(starts)}

    def connect(self, user):
        user.connect(DEVICE, [DEVICE, "Other box"])
        self.expect("/", case.top_names(self.files))

    def browse(self, user):
        user.open_folder("Music")
        self.expect("/Music", ["Live", "intro.wav"])
        user.open_folder("Live")
        self.expect("/Music/Live", ["solo.wav"])
        user.back()
        self.expect("/Music", ["Live", "intro.wav"])
        user.back()
        self.expect("/", case.top_names(self.files))

    def sort(self, user):
        for names in (["Music", "notes.txt", "Old", "song.wav"], ["song.wav", "Old", "notes.txt", "Music"]):
            user.sort("Name")
            wait_for(lambda: self.quillbox.names() == names, lambda: f"{names}, not {self.quillbox.names()}")

    def download(self, user):
        user.download(["notes.txt", "song.wav"], self.target)
        self.quillbox.wait_for_end_of_transfer()
        user.download(["Music"], self.target)
        self.quillbox.wait_for_end_of_transfer()

    def replace(self, user):
        (self.target / "notes.txt").write_bytes(b"older notes")
        user.download(["notes.txt"], self.target)
        user.replace_all("Copy File")
        self.quillbox.wait_for_end_of_transfer()

    def upload(self, user):
        user.upload(self.local, ["report.txt", "data.bin"], TOP)
        self.expect("/", case.top_names(self.files) + ["data.bin", "report.txt"])

    def upload_folder(self, user):
        user.upload_folder(self.local / "Tour", FOLDER_TO_TOP)
        self.expect("/", case.top_names(self.files) + ["data.bin", "report.txt", "Tour"])

    def create_folder(self, user):
        user.create_folder("Rehearsals")
        self.expect("/", case.top_names(self.files) + ["data.bin", "report.txt", "Tour", "Rehearsals"])

    def delete(self, user):
        user.delete("Old", "notes.txt")
        self.expect("/", ["Music", "Rehearsals", "Tour", "data.bin", "report.txt", "song.wav"])

    def leave(self, user):
        user.disconnect()
        self.quillbox.wait_for_status("Press the 'Connect' button to begin")
        self.assertFalse(self.quillbox.is_connected())
        user.quit()
        self.assertEqual(self.quillbox.program.process.wait(), 0)

    def expect(self, directory, names):
        self.quillbox.wait_for_listing(directory, names)
        self.quillbox.wait_for_main_window_only()
