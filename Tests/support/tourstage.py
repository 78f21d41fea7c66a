"""What the steps of the guided tour act on, and how each of them is reported."""

import shutil
import sys

from desktop import settled_extents
from device import DEVICE_PORT, Device
from quillbox import Quillbox
from slowlink import SlowLink
from tourreport import Report
from toursounds import write_sound
from waiting import wait_for

ADDRESS = "127.0.0.1"
PORT_BEHIND_THE_LINK = 10250
DEVICE_NAME = "Sample device"
FOLDER = "Field recordings"
TEXT_FILE = "Read me first.txt"
LONG_SOUND = "Evening by the lake.wav"
LONG_SOUND_SECONDS = 120
RATE = 2_500_000  # bytes per second: a handheld device on a wireless network
PROGRAM_PLACE = (200, 140, 860, 560)  # left, top, width and height


class Stage:
    """The program, beside a device that serves a copy of the sample folder."""

    def __init__(self, desktop, sample, home, pictures, look):
        self.desktop = desktop
        self.home = home
        self.report = Report(pictures, look)
        self._pictures = pictures
        self._step = 0
        self.served = desktop.folder("device") / "sample"
        shutil.copytree(sample, self.served)
        write_sound(self.served / FOLDER / LONG_SOUND, LONG_SOUND_SECONDS)
        Device(desktop, self.served, name=DEVICE_NAME, announce=["--announce-to", ADDRESS],
               port=PORT_BEHIND_THE_LINK)
        self._link = SlowLink((ADDRESS, DEVICE_PORT), (ADDRESS, PORT_BEHIND_THE_LINK))
        self.quillbox = Quillbox(desktop)
        self.place_program()

    def place_program(self, place=PROGRAM_PLACE):
        self.desktop.place_window(self.quillbox.program.process, *place)
        settled_extents(self.quillbox.main)

    def slow_down(self):
        """Makes the next transfer last long enough to be looked at."""
        self._link.rate = RATE

    def hurry(self):
        self._link.rate = None

    def wait_for_keyboard(self):
        """Waits until the main window has the keyboard."""
        wait_for(lambda: self.quillbox.main.has_state("active"), "the focus in the main window")

    def wait_for_listing(self, folder):
        """Waits until a folder of the device is shown as it is."""
        self.quillbox.wait_for_listing(folder, names_in(self.served / folder.lstrip("/")))

    def done(self, name, title, text, notes=(), of=None):
        """Reports a step, with a picture when it is `of` a window, which has to have the focus."""
        self._step += 1
        path = self._pictures / f"{self._step:02}-{name}.png" if of else None
        print(f"{self._step}. {title}. {text}", *notes, sep="\n   ")
        if path:
            wait_for(lambda: of.has_state("active"), f"the focus in {of!r}")
            self.desktop.picture(path)
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


def check(condition, statement):
    if not condition:
        raise RuntimeError(f"not so: {statement}")
