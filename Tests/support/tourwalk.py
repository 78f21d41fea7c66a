"""The steps of the guided tour, each of which looks at what it has done."""

import math
import os
import pathlib
import re
import shutil
import struct
import sys
import urllib.parse
import wave

from desktop import REPOSITORY, settled_extents
from device import DEVICE_PORT, Device
from dragging import Dragging
from filemanager import Thunar
from quillbox import Quillbox
from slowlink import SlowLink
from tourreport import Report
from waiting import wait_for

ADDRESS = "127.0.0.1"
PORT_BEHIND_THE_LINK = 10250
DEVICE_NAME = "Sample device"
FOLDER = "Field recordings"
NEW_FOLDER = "Rehearsals"
LONG_SOUND = "Evening by the lake.wav"
LONG_SOUND_SECONDS = 120
DATE_OF_SOUND = 1715106600  # 7 May 2024, in the evening
RATE = 2_500_000  # bytes per second: a handheld device on a wireless network
SOUNDS_ON_DEVICE = {"Harbour.wav": "Harbour.aiff", "Evening by the lake.wav": LONG_SOUND}
DROPPED = {"Autumn tour/Programme.txt": "1. Overture\n2. Interlude\n",
           "Autumn tour/Travel/Trains.txt": "Tuesday, 8:04\n"}

# Left, top, width and height: the windows share the screen for the drop, and a strip of it stays bare.
PROGRAM_PLACE = (200, 140, 860, 560)
PROGRAM_PLACE_BESIDE = (10, 395, 860, 450)
MANAGER_PLACE = (10, 30, 860, 310)
BARE_DESKTOP = (1200, 860)


class Tour:
    """One walk through the program, beside a device that serves a copy of the sample folder."""

    def __init__(self, desktop, sample, home, pictures, look):
        self._desktop = desktop
        self._home = home
        self._pictures = pictures
        self.report = Report(pictures, look)
        self._served = desktop.folder("device") / "sample"
        shutil.copytree(sample, self._served)
        write_sound(self._served / FOLDER / LONG_SOUND, LONG_SOUND_SECONDS)
        self._target = home / "Music"
        self._target.mkdir()
        self._step = 0
        Device(desktop, self._served, name=DEVICE_NAME, announce=["--announce-to", ADDRESS],
               port=PORT_BEHIND_THE_LINK)
        self._link = SlowLink((ADDRESS, DEVICE_PORT), (ADDRESS, PORT_BEHIND_THE_LINK))
        self._quillbox = Quillbox(desktop)
        self._place_program(PROGRAM_PLACE)

    def walk(self):
        for step in (self.start, self.about, self.guide, self.address, self.connected, self.disconnect, self.choose,
                     self.connect, self.browse, self.sort, self.destination, self.download, self.overwrite,
                     self.choose_files, self.upload, self.create_folder, self.drop, self.delete, self.leave):
            step()

    def start(self):
        self._done("start", "Quillbox has started", "While nothing is connected, the table says what to do.",
                   of=self._quillbox.main)

    def about(self):
        self._open_help_menu()
        self._done("help", "The Help menu", "It has the user guide (F1) and says which version this is.",
                   of=self._quillbox.main)
        self._desktop.click(self._help_menu().look_for("About Quillbox"))
        about = self._quillbox.program.alert(self._version())
        self._done("about", "About Quillbox", "The name, the version and what it is for.", of=about)
        about.find("OK", "push button").press()
        self._quillbox.wait_for_main_window_only()

    def guide(self):
        wait_for(lambda: self._quillbox.main.has_state("active"), "the focus in the main window")
        self._desktop.keys("F1")
        shown = self._desktop.root / "run/shown"
        url = wait_for(lambda: shown.exists() and shown.read_text().strip(), "the user guide to be opened")
        page = pathlib.Path(urllib.parse.unquote(urllib.parse.urlparse(url).path))
        check(page.name == "user-guide.html" and page.is_file(), f"'{url}' is the user guide")
        self._done("guide", "The user guide", "F1 opens it in the web browser.", [page.name])

    def address(self):
        dialog = self._quillbox.open_selection()
        self._quillbox.type_address(dialog, ADDRESS)
        self._done("address", "Connect by address", "Connect asks for the device. Its address can be typed.",
                   of=dialog)
        self._quillbox.confirm_selection(dialog, DEVICE_NAME)

    def connected(self):
        self._quillbox.wait_for_listing("/", names_in(self._served))
        self._done("connected", "Connected", "The table shows the device's top folder.", [self._quillbox.status],
                   of=self._quillbox.main)

    def disconnect(self):
        self._disconnect()
        self._done("disconnected", "Disconnected", "Disconnect ends the connection.", of=self._quillbox.main)

    def choose(self):
        dialog = self._quillbox.open_selection()
        self._quillbox.wait_for_devices(dialog, [DEVICE_NAME])
        self._quillbox.choose_device(dialog, DEVICE_NAME)
        self._done("choose", "Find a device", f"'{DEVICE_NAME}' has announced itself on the network and is selected.",
                   of=dialog)

    def connect(self):
        self._quillbox.press_in("Select Device", "OK")
        self._quillbox.wait_for_status(f"Connected to '{DEVICE_NAME}'")
        self._wait_for_listing("/")
        self._quillbox.select("Read me first.txt", "Straßenmusik")
        self._done("connect", "Connected to the found device", "What is selected can be downloaded.",
                   of=self._quillbox.main)

    def browse(self):
        self._quillbox.open_folder(FOLDER)
        self._wait_for_listing(f"/{FOLDER}")
        self._done("browse", "Walk through folders", f"A double click has opened '{FOLDER}'; Back leads up again.",
                   of=self._quillbox.main)

    def sort(self):
        """By name, then the other way round: two clicks in different places, which are no double click."""
        upwards = sorted(self._quillbox.names(), key=str.casefold)
        for across, order in ((0.3, upwards), (0.6, upwards[::-1])):
            self._desktop.click(self._quillbox.table.header(0), across)
            wait_for(lambda: self._quillbox.names() == order,
                     lambda: f"the order {order}, not {self._quillbox.names()}")
        self._done("sort", "Sort", "A click on a heading sorts by that column, another one turns the order round.",
                   of=self._quillbox.main)
        self._quillbox.click_button("Back")
        self._wait_for_listing("/")

    def destination(self):
        chooser = self._quillbox.ask_for_download([FOLDER])
        self._done("destination", "Choose where downloads go", "Download asks for the folder that is to receive it.",
                   of=chooser)
        self._link.rate = RATE
        self._quillbox.choose_destination(chooser, self._target)

    def download(self):
        self._show_progress(f"Downloading to '{self._target}'", "download-progress", "Download",
                            "How far a folder has come, with everything that is in it.")
        self._quillbox.wait_for_end_of_transfer()
        fetched, served = contents(self._target), contents(self._served / FOLDER)
        check({f"{FOLDER}/{name}": content for name, content in served.items()} == fetched,
              f"the files in {sorted(fetched)} equal the device's {sorted(served)}")
        self._done("downloaded", "Downloaded", f"All {len(fetched)} files are equal to the device's, byte for byte.",
                   sorted(fetched))

    def overwrite(self):
        """Downloads the same again."""
        self._quillbox.start_download([FOLDER], self._target)
        prompt = self._quillbox.window("Copy File")
        self._done("overwrite", "Nothing is replaced unasked", "The same folder once more: its files exist already.",
                   of=prompt)
        prompt.find("Yes to all", "push button").press()
        self._quillbox.wait_for_end_of_transfer()

    def choose_files(self):
        chooser = self._quillbox.ask_for_upload(f"Upload files to '{DEVICE_NAME}:/'")
        self._done("files", "Choose what to upload", "Upload asks for the files that are to be sent.", of=chooser)
        self._link.rate = RATE
        self._quillbox.choose_files(chooser, self._target / FOLDER, SOUNDS_ON_DEVICE.values())

    def upload(self):
        """Sends sounds of other formats than the device plays."""
        expected = {*names_in(self._served), *SOUNDS_ON_DEVICE}
        self._show_progress("Uploading files", "upload-progress", "Upload", "Sounds are converted on their way.")
        self._quillbox.wait_for_listing("/", expected)
        notes = [f"{source} → {name}, {format_of(self._served / name)}" for name, source in SOUNDS_ON_DEVICE.items()]
        check(all(note.endswith("16-bit WAV") for note in notes), f"{notes} are 16-bit WAV files")
        self._done("uploaded", "Uploaded and converted", "The device's folder shows what has arrived.", notes,
                   of=self._quillbox.main)

    def create_folder(self):
        self._quillbox.button("Create Folder").press()
        prompt = self._quillbox.window("Create Folder")
        prompt.find("Folder name", "text").set_words(NEW_FOLDER)
        self._done("create-folder", "Create a folder", "Create Folder asks for its name.", of=prompt)
        prompt.find("OK", "push button").press()
        self._quillbox.wait_for_listing("/", {*names_in(self._served), NEW_FOLDER})
        check((self._served / NEW_FOLDER).is_dir(), f"the device has made '{NEW_FOLDER}'")

    def drop(self):
        """Drags a folder from a file manager's window onto the table."""
        source = self._home / "Programmes"
        write_texts(source, DROPPED)
        self._place_program(PROGRAM_PLACE_BESIDE)
        manager = Thunar(self._desktop, source, MANAGER_PLACE)
        manager.select("Autumn tour")
        left, top, width, height = settled_extents(self._quillbox.table.node)
        with Dragging(self._desktop, BARE_DESKTOP) as hand:
            hand.lift(manager.grip("Autumn tour"))
            hand.carry_where_it_is_taken((left + width // 2, top + height - 40))
            self._done("drag", "Drag files and folders in", "A folder of the file manager hangs on the pointer.",
                       of=manager.window)
            hand.let_go()
        self._quillbox.wait_for_listing("/", {*names_in(self._served), "Autumn tour"})
        self._quillbox.wait_for_main_window_only()
        arrived = contents(self._served / "Autumn tour")
        check({f"Autumn tour/{name}": content.decode() for name, content in arrived.items()} == DROPPED,
              f"{sorted(arrived)} is what was dropped")
        manager.process.end()
        self._place_program(PROGRAM_PLACE)
        self._done("dropped", "Dropped", "The folder is on the device, with everything in it.", sorted(DROPPED),
                   of=self._quillbox.main)

    def delete(self):
        self._quillbox.select(NEW_FOLDER)
        self._quillbox.button("Delete").press()
        alert = self._quillbox.program.alert("Delete files")
        self._done("delete", "Delete", "Delete asks before it deletes.", of=alert)
        alert.find("OK", "push button").press()
        self._quillbox.wait_for_listing("/", set(names_in(self._served)) - {NEW_FOLDER})
        check(not (self._served / NEW_FOLDER).exists(), f"the device has deleted '{NEW_FOLDER}'")
        self._done("deleted", "Deleted", "The folder is gone from the device.", of=self._quillbox.main)

    def leave(self):
        self._disconnect()
        self._done("end", "Disconnected again", "The table is empty, and the buttons that need a device are grey.",
                   of=self._quillbox.main)
        self._desktop.keys("ctrl+q")
        check(self._quillbox.program.process.wait() == 0, "the program ends with status 0")
        self._done("quit", "Quit", "Ctrl+Q ends the program.")

    def _disconnect(self):
        self._quillbox.click_button("Disconnect")
        wait_for(lambda: not self._quillbox.is_connected(), "the end of the connection")

    def _show_progress(self, title, *step):
        """Takes a picture of a transfer on its way; its rest goes as fast as it can."""
        progress = self._quillbox.window(title)
        details = progress.find("Details", "label")
        wait_for(lambda: details.description.count(" · ") == 2,
                 lambda: f"rate and time left in '{title}', not '{details.description}'")
        self._done(*step, of=progress)
        self._link.rate = None

    def _help_menu(self):
        return next(node for node in self._quillbox.main.descendants() if node.role == "menu bar").children()[-1]

    def _open_help_menu(self):
        self._desktop.click(self._help_menu())
        wait_for(lambda: self._help_menu().look_for("About Quillbox"), "the Help menu")

    def _version(self):
        return "Quillbox " + re.search(r"^project\(Quillbox VERSION (\S+)", (REPOSITORY / "CMakeLists.txt").read_text(),
                                       re.MULTILINE)[1]

    def _wait_for_listing(self, folder):
        self._quillbox.wait_for_listing(folder, names_in(self._served / folder.lstrip("/")))

    def _place_program(self, place):
        self._desktop.place_window(self._quillbox.program.process, *place)
        settled_extents(self._quillbox.main)

    def _done(self, name, title, text, notes=(), of=None):
        """Reports a step, with a picture when it is `of` a window, which has to have the focus."""
        self._step += 1
        path = self._pictures / f"{self._step:02}-{name}.png" if of else None
        print(f"{self._step}. {title}. {text}", *notes, sep="\n   ")
        if path:
            wait_for(lambda: of.has_state("active"), f"the focus in {of!r}")
            self._desktop.picture(path)
            print(f"   {path}")
        self.report.add(name, title, text, notes, path)
        sys.stdout.flush()


def names_in(folder):
    """What a device lists of a folder."""
    return [path.name for path in folder.iterdir() if not path.name.startswith(".quillbox-upload-")]


def contents(folder):
    """Contents by path, without the empty files, of which a device sends nothing."""
    files = {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
    return {name: content for name, content in files.items() if content}


def write_texts(folder, texts):
    for name, text in texts.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_text(text)


def write_sound(path, seconds):
    """A stereo sound of 24 bits a sample: a tone that repeats with every second."""
    frames = 44100
    tone = (round(2 ** 21 * math.sin(2 * math.pi * 220 * place / frames)) for place in range(frames))
    second = b"".join(2 * struct.pack("<i", value)[:3] for value in tone)
    with wave.open(str(path), "wb") as sound:
        sound.setparams((2, 3, frames, 0, "NONE", "not compressed"))
        for _ in range(seconds):
            sound.writeframesraw(second)
    os.utime(path, (DATE_OF_SOUND, DATE_OF_SOUND))


def format_of(path):
    """A word for what a sound file holds."""
    with wave.open(str(path)) as sound:
        return f"{8 * sound.getsampwidth()}-bit WAV"


def check(condition, statement):
    if not condition:
        raise RuntimeError(f"not so: {statement}")
