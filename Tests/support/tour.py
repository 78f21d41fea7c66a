"""The guided tour: the real program on a virtual display, its steps printed, its windows saved as pictures.

    python3 tour.py --bin FOLDER --sample FOLDER --pictures FOLDER

Ends with status 0 only when every step was seen to work.
"""

import argparse
import pathlib
import shutil
import sys
import wave

import namespace
from desktop import REPOSITORY, Desktop, reason_not_to_run
from device import Device
from quillbox import Quillbox
from waiting import Gone

ADDRESS = "127.0.0.1"
DEVICE_NAME = "Sample device"
FOLDER = "Field recordings"
NEW_FOLDER = "Rehearsals"
SOUNDS_ON_DEVICE = {"Harbour.wav": "Harbour.aiff", "Birdsong.wav": "Birdsong.wav"}
SOUNDS = list(SOUNDS_ON_DEVICE.values())
PROBLEMS = (RuntimeError, TimeoutError, Gone)


class Tour:
    """One walk through the program, beside a device that serves a copy of the sample folder."""

    def __init__(self, desktop, sample, pictures):
        self._desktop = desktop
        self._pictures = pictures
        self._served = desktop.folder("device") / "sample"
        shutil.copytree(sample, self._served)
        self._target = desktop.folder("Downloads")
        self._step = 0
        self._device = Device(desktop, self._served, name=DEVICE_NAME, announce=["--announce-to", ADDRESS])
        self._quillbox = Quillbox(desktop)

    def walk(self):
        for step in (self.start, self.choose, self.connect, self.browse, self.download, self.upload,
                     self.create_folder, self.delete, self.quit):
            step()

    def start(self):
        self._done("start", "The program has started; a device serves the sample folder.")

    def choose(self):
        dialog = self._quillbox.open_selection()
        self._quillbox.wait_for_devices(dialog, [DEVICE_NAME])
        self._quillbox.choose_device(dialog, DEVICE_NAME)
        self._done("choose", f"Connect asks for the device; '{DEVICE_NAME}' has been found and is selected.")

    def connect(self):
        self._quillbox.press_in("Select Device", "OK")
        self._quillbox.wait_for_status(f"Connected to '{DEVICE_NAME}'")
        self._quillbox.wait_for_listing("/", names_in(self._served))
        self._done("connect", f"Connected to '{DEVICE_NAME}'; its top folder is listed.")

    def browse(self):
        self._quillbox.open_folder(FOLDER)
        self._quillbox.wait_for_listing(f"/{FOLDER}", names_in(self._served / FOLDER))
        self._done("browse", f"A double click opens the folder '{FOLDER}'.")
        self._quillbox.click_button("Back")
        self._quillbox.wait_for_listing("/", names_in(self._served))

    def download(self):
        chooser = self._quillbox.ask_for_download([FOLDER])
        self._done("destination", "Download asks for the folder that is to receive it.")
        self._quillbox.choose_destination(chooser, self._target)
        self._quillbox.wait_for_end_of_transfer()
        fetched, served = contents(self._target), contents(self._served / FOLDER)
        check({f"{FOLDER}/{name}": content for name, content in served.items()} == fetched,
              f"the files in {sorted(fetched)} equal the device's {sorted(served)}")
        self._done("download", f"'{FOLDER}' is downloaded; its {len(fetched)} files are equal byte for byte.")

    def upload(self):
        """Sends two of the downloaded sounds, of other formats than the device plays, to the top folder."""
        expected = {*names_in(self._served), *SOUNDS_ON_DEVICE}
        chooser = self._quillbox.ask_for_upload(f"Upload files to '{DEVICE_NAME}:/'")
        self._done("files", "Upload asks for the files that are to be sent.")
        self._quillbox.choose_files(chooser, self._target / FOLDER, SOUNDS)
        self._quillbox.wait_for_listing("/", expected)
        for name, source in SOUNDS_ON_DEVICE.items():
            check(format_of(self._served / name) == "16-bit WAV", f"'{name}' is a 16-bit WAV file")
            print(f"   {source} -> {name}, a 16-bit WAV file")
        self._done("upload", "Two sounds are uploaded and converted; the device's top folder now holds:")
        for path in sorted(self._served.iterdir()):
            print(f"   {path.stat().st_size if path.is_file() else 'folder':>10}  {path.name}")

    def create_folder(self):
        self._quillbox.button("Create Folder").press()
        prompt = self._quillbox.window("Create Folder")
        prompt.find("Folder name", "text").set_words(NEW_FOLDER)
        self._done("name", "Create Folder asks for a name.")
        prompt.find("OK", "push button").press()
        self._quillbox.wait_for_listing("/", names_in(self._served) + [NEW_FOLDER])
        check((self._served / NEW_FOLDER).is_dir(), f"the device has made '{NEW_FOLDER}'")

    def delete(self):
        self._quillbox.select(NEW_FOLDER)
        self._quillbox.button("Delete").press()
        alert = self._quillbox.program.alert("Delete files")
        self._done("delete", "Delete asks before it deletes the new folder again.")
        alert.find("OK", "push button").press()
        self._quillbox.wait_for_listing("/", set(names_in(self._served)) - {NEW_FOLDER})
        check(not (self._served / NEW_FOLDER).exists(), f"the device has deleted '{NEW_FOLDER}'")

    def quit(self):
        self._desktop.close_window(self._quillbox.main)
        check(self._quillbox.program.process.wait() == 0, "the program ends with status 0")
        self._done(None, "Closing the window ends the program.")

    def _done(self, picture, text):
        self._step += 1
        print(f"{self._step}. {text}")
        if picture:
            path = self._pictures / f"{self._step}-{picture}.png"
            self._desktop.picture(path)
            print(f"   {path}")
        sys.stdout.flush()


def names_in(folder):
    return [path.name for path in folder.iterdir()]


def contents(folder):
    """Contents by path, without the empty files, of which a device sends nothing."""
    files = {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
    return {name: content for name, content in files.items() if content}


def format_of(path):
    """A word for what a sound file holds."""
    with wave.open(str(path)) as sound:
        return f"{8 * sound.getsampwidth()}-bit WAV"


def check(condition, statement):
    if not condition:
        raise RuntimeError(f"not so: {statement}")


def arguments():
    release = REPOSITORY / "build/release"
    parser = argparse.ArgumentParser(description="Takes the guided tour through the program.")
    parser.add_argument("--bin", type=pathlib.Path, default=release / "bin", help="where the programs are")
    parser.add_argument("--sample", type=pathlib.Path, default=release / "share/quillbox/sample",
                        help="the folder that the device serves a copy of")
    parser.add_argument("--pictures", type=pathlib.Path, default=REPOSITORY / "build/tour",
                        help="where the pictures go")
    return parser.parse_args()


def main():
    chosen = arguments()
    reason = reason_not_to_run()
    if reason:
        sys.exit(f"The tour cannot be taken: {reason}")
    namespace.enter()
    with Desktop(chosen.bin.resolve()) as desktop:
        try:
            Tour(desktop, chosen.sample, chosen.pictures).walk()
        except PROBLEMS as problem:
            failure = chosen.pictures / "failed.png"
            desktop.picture(failure)
            sys.exit(f"The tour stopped: {problem}\n{failure} shows the screen at that moment.")
    print("The tour is complete.")


if __name__ == "__main__":
    main()
