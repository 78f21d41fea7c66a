"""A desktop of its own for one run: display, window manager, accessibility bus, home and temporary folder.

    with Desktop() as desktop:
        program = desktop.start_program()
        program.window("Quillbox").find("Connect", "push button").press()

Enter a private namespace first (see namespace.py). Everything started here ends with the block.
"""

import atexit
import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile

import namespace
from accessibility import Bus
from processes import Process
from waiting import PATIENCE, Gone, wait_for

TOOLS = ("Xvfb", "openbox", "xdotool", "xprop", "import", "dbus-daemon", "ip", "setpriv")
FAR_OUTSIDE = 100_000
ACCESSIBILITY_LAUNCHER = pathlib.Path("/usr/libexec/at-spi-bus-launcher")
ALERT = "alert message"
SCREEN = (1280, 900)
REPOSITORY = pathlib.Path(__file__).resolve().parents[2]

# A bus that starts no services: what the program finds on it is what this driver put there.
BUS_CONFIGURATION = """<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
"""

# The close button stands at the left end of the title bar, where a click finds it whatever the title.
WINDOW_MANAGER_CONFIGURATION = """<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <theme><name>Clearlooks</name><titleLayout>CL</titleLayout><animateIconify>no</animateIconify></theme>
  <desktops><number>1</number><popupTime>0</popupTime></desktops>
  <keyboard/>
  <mouse>
    <context name="Close">
      <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
    </context>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
  </mouse>
</openbox_config>
"""


def reason_not_to_run():
    """What this machine lacks for a desktop of ours, in words; None when it lacks nothing."""
    namespace.prepare()
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    if not ACCESSIBILITY_LAUNCHER.exists():
        missing.append("at-spi2-core")
    if missing:
        return "missing " + ", ".join(missing)
    return None if namespace.available() else "no user, network and mount namespaces here"


def program_folder():
    """Where the built programs are: the environment's QUILLBOX_BIN, else the development build's folder."""
    return pathlib.Path(os.environ.get("QUILLBOX_BIN", REPOSITORY / "build/dev/bin"))


class Desktop:
    def __init__(self, programs=None, scale=1):
        """Places and sizes are in points, of which each has `scale` pixels both ways."""
        self.programs = pathlib.Path(programs or program_folder())
        self._scale = scale
        self.root = None
        self.home = None
        self.environment = {}
        self._end = None
        self._count = 0

    def __enter__(self):
        with contextlib.ExitStack() as stack:
            self.root = pathlib.Path(tempfile.mkdtemp(prefix="quillbox-desktop-"))
            stack.callback(shutil.rmtree, self.root, ignore_errors=True)
            self._end = stack
            self._make_folders()
            self._start_display()
            self._start_session_bus()
            self.bus = self._start_accessibility()
            stack.callback(self.bus.close)
            self._end = stack.pop_all()
        atexit.register(self._end.close)  # for an interruption that skips the end of the block
        return self

    def __exit__(self, *_):
        atexit.unregister(self._end.close)
        self._end.close()

    def folder(self, name):
        """A fresh folder below the run's own one."""
        self._count += 1
        path = self.root / "folders" / f"{self._count}" / name
        path.mkdir(parents=True)
        return path

    def start(self, argv, death_signal="KILL", host=None):
        """Starts any command on this desktop; it ends with the desktop at the latest.

        `host` is the machine of a Lan whose network it uses.
        """
        self._count += 1
        log = self.root / f"{self._count}-{pathlib.Path(str(argv[0])).name}.log"
        prefix = host.prefix if host else []
        process = Process([*prefix, *argv], self.environment, log, death_signal)
        self._end.callback(process.end)
        return process

    def start_program(self, host=None):
        return Program(self, host)

    def picture(self, path):
        """Saves what the screen shows as a picture, without the empty desktop around it."""
        path = pathlib.Path(path)
        path.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["import", "-window", "root", "-trim", "+repage", str(path)], env=self.environment,
                       check=True, timeout=20)

    def pixels(self, node):
        """The colours of a control on the screen, as bytes."""
        left, top, width, height = settled_extents(node)
        place = f"{width}x{height}+{left}+{top}"
        return subprocess.run(["import", "-window", "root", "-crop", place, "-depth", "8", "rgb:-"],
                              env=self.environment, check=True, timeout=20, stdout=subprocess.PIPE).stdout

    # Pointer and keys.

    def send_input(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True, timeout=20,
                              stdout=subprocess.PIPE, text=True).stdout

    def _pixels(self, *points):
        return [length * self._scale for length in points]

    def move_pointer(self, x, y):
        self.send_input("mousemove", *self._pixels(x, y))

    def hold_button(self):
        self.send_input("mousedown", 1)

    def release_button(self):
        self.send_input("mouseup", 1)

    def click_at(self, x, y, times=1, button=1):
        self.send_input("mousemove", *self._pixels(x, y), "click", "--repeat", times, "--delay", 40, button)

    def click(self, node, across=0.5):
        """Clicks a control with the pointer, this far across its width, once it has come to rest."""
        left, top, width, height = settled_extents(node)
        self.click_at(left + int(width * across), top + height // 2)

    def click_row(self, table, row, times=1, extend=False):
        """Clicks a table row near the left end of its first cell; `extend` adds it to the selection."""
        left, top, width, height = settled_extents(table.cell(row, 0))
        x, y = left + min(40, width // 2), top + height // 2
        if extend:
            self.click_in_addition(x, y)
        else:
            self.click_at(x, y, times)

    def click_in_addition(self, x, y):
        """Clicks as people do who add to a selection."""
        self.send_input("keydown", "ctrl")
        self.click_at(x, y)
        self.send_input("keyup", "ctrl")

    def keys(self, *names):
        """Presses keys, such as "Return" or "ctrl+q", in the window that has the focus."""
        self.send_input("key", "--delay", 15, *names)

    def type(self, text):
        self.send_input("type", "--delay", 15, text)

    def place_window(self, process, left, top, width, height):
        """Gives the one window that a process shows this place and size, its frame not counted."""
        window = wait_for(lambda: self.windows_of(process), f"a window of {process.argv[0]}")[0]
        self.send_input("windowsize", window, *self._pixels(width, height),
                      "windowmove", window, *self._pixels(left, top))

    def windows_of(self, process):
        """What X calls the visible windows of a process, menus included."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(process.pid)],
                               env=self.environment, check=False, timeout=20, stdout=subprocess.PIPE)
        return [int(number) for number in found.stdout.split()]

    def window_property(self, window, name):
        """A property as xprop prints it."""
        return subprocess.run(["xprop", "-id", str(window), name], env=self.environment, check=True, timeout=20,
                              stdout=subprocess.PIPE, text=True).stdout

    def close_window(self, node):
        """Closes a window by the button in its title bar."""
        left, top, _, _ = settled_extents(node)
        self.click_at(left + 8, top - 10)

    def _make_folders(self):
        self.home = self.root / "home"
        for name in ("home/Documents", "tmp", "run", "config/openbox", "cache", "data"):
            (self.root / name).mkdir(parents=True)
        (self.root / "run").chmod(0o700)
        (self.root / "config/openbox/rc.xml").write_text(WINDOW_MANAGER_CONFIGURATION)
        (self.root / "bus.conf").write_text(BUS_CONFIGURATION.format(folder=self.root / "run"))
        self.environment = {
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "HOME": str(self.home),
            "TMPDIR": str(self.root / "tmp"),
            "XDG_RUNTIME_DIR": str(self.root / "run"),
            "XDG_CONFIG_HOME": str(self.root / "config"),
            "XDG_CACHE_HOME": str(self.root / "cache"),
            "XDG_DATA_HOME": str(self.root / "data"),
            "GSETTINGS_BACKEND": "memory",
            "QT_QPA_PLATFORM": "xcb",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]

    def _start_display(self):
        width, height = self._pixels(*SCREEN)
        server = self.start(["Xvfb", "-displayfd", "1", "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp",
                             "-noreset"])
        server.wait_for_output("\n")
        number = [line for line in server.output().splitlines() if line.strip().isdigit()][-1]
        self.environment["DISPLAY"] = f":{number.strip()}"
        self.start(["openbox", "--config-file", self.root / "config/openbox/rc.xml"])
        wait_for(lambda: "window id" in self._root_property("_NET_SUPPORTING_WM_CHECK"), "the window manager")

    def _root_property(self, name):
        return subprocess.run(["xprop", "-root", name], env=self.environment, timeout=20,
                              stdout=subprocess.PIPE, text=True).stdout

    def _start_session_bus(self):
        # The daemon prints its address once it listens; its socket file is there a moment before that.
        bus = self.start(["dbus-daemon", "--nofork", "--print-address", f"--config-file={self.root}/bus.conf"])
        bus.wait_for_output("\n")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.root}/run/bus"

    def _start_accessibility(self):
        # Told politely, the launcher ends the bus that it started.
        self.start([ACCESSIBILITY_LAUNCHER, "--launch-immediately", "--a11y=1"], death_signal="TERM")
        session = Bus(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        try:
            question = ("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
            return Bus(wait_for(lambda: session.call(*question)[0], "the accessibility bus"))
        finally:
            session.close()


class Program:
    """The running program, seen through its windows."""

    def __init__(self, desktop, host=None):
        self._bus = desktop.bus
        self.process = desktop.start([desktop.programs / "quillbox"], host=host)

    @property
    def running(self):
        return self.process.running

    def root(self):
        return self._bus.application(self.process.pid)

    def windows(self):
        """The visible windows."""
        return [window for window in self.root().children() if window.showing]

    def look_for_window(self, title):
        """The visible window with this title; alerts, which all bear the program's name, are not meant."""
        return next((window for window in self.windows()
                     if window.name == title and window.role != ALERT), None)

    def look_for_alert(self, title):
        """The visible message box whose first line this is."""
        return next((window for window in self.windows()
                     if window.role == ALERT and window.look_for(title, "label")), None)

    def window(self, title, seconds=PATIENCE):
        return self._wait_for_window(lambda: self.look_for_window(title), title, seconds)

    def alert(self, title, seconds=PATIENCE):
        return self._wait_for_window(lambda: self.look_for_alert(title), title, seconds)

    def wait_until_closed(self, title, seconds=PATIENCE):
        wait_for(lambda: self.look_for_window(title) is None, f"'{title}' to close", seconds)

    def _wait_for_window(self, look, title, seconds):
        def seen():
            if not self.running:
                raise RuntimeError(f"the program ended: {self.process.output()[-2000:]}")
            return look()
        return wait_for(seen, lambda: f"window '{title}' among {self.titles()}", seconds)

    def titles(self):
        try:
            return [window.name for window in self.windows()]
        except Gone:
            return []


def settled_extents(node):
    """A control's place on the screen, once two readings agree (the window manager moves new windows).

    What is not laid out yet has a place far outside.
    """
    last = [None]

    def agreed():
        previous, last[0] = last[0], node.extents()
        return last[0] == previous and last[0][2] > 0 and min(last[0][:2]) > -FAR_OUTSIDE and last[0]
    return wait_for(agreed, f"a place on the screen for {node!r}")
