"""File managers of other makers, each showing one folder in a window of its own."""

import os
import pathlib
import shutil

from accessibility import Table
from desktop import settled_extents
from waiting import Gone, wait_for

START_PATIENCE = 30.0


class FileManager:
    """The base of the drivers: a window at a given place, its items seen through the accessibility bus."""

    program = None
    # Where in an item's rectangle its icon or name is: this part of its width, this far below its top.
    grip_across = 0.5
    grip_down = 20

    @classmethod
    def reason_not_to_run(cls):
        return None if shutil.which(cls.program) else f"missing {cls.program}"

    def __init__(self, desktop, folder, place):
        """`place` is left, top, width and height of the window."""
        self.desktop = desktop
        self.folder = folder
        self.process = desktop.start(self._command())
        self.window = wait_for(self._look_for_window, lambda: f"{self.program}'s window: {self.process.output()}",
                               START_PATIENCE)
        desktop.place_window(self.process, *place)
        settled_extents(self.window)
        self._view = wait_for(self._look_for_view, f"{self.program}'s view of {folder}")
        self.wait_for_names(os.listdir(folder))

    def names(self):
        """The names that are on view, in any order."""
        return [self._name(item) for item in self._items()]

    def wait_for_names(self, names):
        wait_for(lambda: sorted(self.names()) == sorted(names), lambda: f"{names} on view, not {self.names()}")

    def grip(self, name):
        """The point at which to take hold of an item that is in sight."""
        left, top, width, _ = settled_extents(self._item(name))
        return left + int(width * self.grip_across), top + self.grip_down

    def empty_place(self):
        """A point of the view that belongs to the folder itself."""
        left, top, width, height = settled_extents(self._view)
        x, y = left + width - 30, top + height - 30
        if any(inside(item.extents(), x, y) for item in self._items()):
            raise RuntimeError(f"no empty place in {self.program}'s view of {self.folder}")
        return x, y

    def select(self, *names):
        """Selects these items and no others."""
        self.desktop.click_at(*self.empty_place())
        for name in names:
            self.desktop.click_in_addition(*self.grip(name))
        self._wait_for_selection(names)

    def select_all(self):
        self.desktop.keys("ctrl+a")
        self._wait_for_selection(self.names())

    def selected(self):
        return [self._name(item) for item in self._items() if item.has_state("selected")]

    def _wait_for_selection(self, names):
        wait_for(lambda: sorted(self.selected()) == sorted(names),
                 lambda: f"{names} selected, not {self.selected()}")

    def _command(self):
        return [self.program, self.folder]

    def _look_for_window(self):
        """The window, once it is ready for keys."""
        if not self.process.running:
            raise RuntimeError(f"{self.program} ended: {self.process.output()[-2000:]}")
        windows = self.desktop.bus.application(self.process.pid).children()
        return next((window for window in windows if window.role == "frame" and window.showing
                     and self.folder.name in window.name and window.has_state("active")), None)

    def _look_for_view(self):
        """The part of the window that holds the items; None while there is none."""
        raise NotImplementedError

    def _items(self):
        return self._view.children()

    def _name(self, item):
        return item.name

    def _item(self, name):
        for item in self._items():
            if self._name(item) == name:
                return item
        raise Gone(f"'{name}' in {self.program}")


class Thunar(FileManager):
    """Its view of icons does not tell its items, so this one shows a list."""

    program = "thunar"
    grip_across = 0.1
    grip_down = 12

    def _look_for_view(self):
        pane = self.window.look_for("Details view", "directory pane")
        if pane is None:
            self.desktop.keys("ctrl+2")
            return None
        return next(node for node in pane.children() if node.role == "table")

    def _items(self):
        table = Table(self._view)
        return [table.cell(row, 0).children()[-1] for row in range(table.row_count())]


class PCManFM(FileManager):
    """Its generation of its toolkit is on the accessibility bus only by means of a module."""

    program = "pcmanfm"

    @classmethod
    def reason_not_to_run(cls):
        if not any(pathlib.Path("/usr/lib").glob("*/gtk-2.0/modules/libatk-bridge.so")):
            return "missing libatk-adaptor"
        return super().reason_not_to_run()

    def _command(self):
        return ["env", "GTK_MODULES=gail:atk-bridge", *super()._command()]

    def _look_for_view(self):
        return next((node for node in self.window.descendants() if node.role == "layered pane" and node.showing),
                    None)

    def _name(self, item):
        return item.words


class Dolphin(FileManager):
    program = "dolphin"
    grip_down = 74  # by the name: without a theme of icons there is nothing above it

    def _look_for_view(self):
        return next((node for node in self.window.descendants() if node.role == "table" and node.showing), None)


def inside(extents, x, y):
    left, top, width, height = extents
    return left <= x < left + width and top <= y < top + height
