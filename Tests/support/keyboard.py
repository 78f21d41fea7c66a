"""What a person does with the program who has no pointer: keys only.

The accessibility bus serves as the eyes; nothing is done through it.
"""

from accessibility import Table
from waiting import becomes, stays, wait_for

LONGEST_WAY = 40  # in presses of Tab


class KeyboardUser:
    """Uses a running program by its keys."""

    def __init__(self, quillbox):
        self.quillbox = quillbox
        self.press = quillbox.desktop.keys
        self.type = quillbox.desktop.type

    def connect(self, name, found):
        """Chooses the device of this name, once all the devices of `found` are listed."""
        self.press("alt+c")
        dialog = self.window("Select Device")
        devices = Table(dialog.find("Devices", "list"))
        if not devices.node.enabled:
            self.press("alt+u")
            wait_for(lambda: devices.node.enabled, "the choice among found devices")

        def listed():
            self.press("alt+r")
            return sorted(devices.column(0)) == sorted(found)
        wait_for(listed, lambda: f"devices {found}, not {devices.column(0)}")
        self.press("alt+u")
        self.wait_for_focus(devices.node)
        self.choose(devices, devices.column(0).index(name))
        self.press("Return")
        self.quillbox.wait_for_status(f"Connected to '{name}'")
        self.quillbox.wait_for_main_window_only()

    def open_folder(self, name):
        self.select(name)
        self.press("Return")

    def back(self):
        self.press("BackSpace")

    def download(self, names, destination):
        self.select(*names)
        self.press("ctrl+d")
        chooser = self.window("Choose file download destination folder")
        self.fill_in(chooser.find("Directory:", "text"), str(destination))
        self.press("Return")

    def upload(self, folder, names, title):
        self.press("ctrl+u")
        chooser = self.window(title)
        self.fill_in(chooser.find("File name:", "text"), " ".join(f'"{folder / name}"' for name in names))
        self.press("Return")

    def upload_folder(self, folder, title):
        self.press("ctrl+shift+u")
        chooser = self.window(title)
        self.fill_in(chooser.find("Directory:", "text"), str(folder))
        self.press("Return")

    def sort(self, column):
        self.press("alt+v", column[0].lower())

    def replace_all(self, title):
        self.window(title)
        self.press("alt+a")

    def create_folder(self, name):
        # The way through the menu: Alt and the letters that are underlined in it.
        self.press("alt+f", "l")
        prompt = self.window("Create Folder")
        self.fill_in(prompt.find("Folder name", "text"), name)
        self.press("Return")

    def delete(self, *names):
        self.select(*names)
        self.press("Delete")
        alert = self.quillbox.program.alert("Delete files")
        self.wait_for_keyboard(alert)
        self.press("Return")

    def disconnect(self):
        self.press("alt+c")

    def quit(self):
        self.press("ctrl+q")

    # Focus.

    def window(self, title):
        """The window with this title, once keys go to it."""
        window = self.quillbox.window(title)
        self.wait_for_keyboard(window)
        return window

    @staticmethod
    def wait_for_keyboard(window):
        wait_for(lambda: window.has_state("active"), lambda: f"the keyboard in {window!r}")

    @staticmethod
    def wait_for_focus(node):
        wait_for(lambda: node.has_state("focused"), lambda: f"the focus on {node!r}")

    @staticmethod
    def focus(window):
        """The control in a window that has the focus; its boxes say that they have it as well."""
        nodes = [node for node in window.descendants() if node.showing and node.has_state("focused")]
        return nodes[-1] if nodes else None

    def tab_stops(self, window, key="Tab"):
        """Goes once around with a key; returns where it stops, beginning with what has the focus."""
        stops = [wait_for(lambda: self.focus(window), "a focus")]
        while len(stops) < LONGEST_WAY:
            self.wait_for_keyboard(window)  # which a window that appears beside it may take for a moment
            self.press(key)
            if len(stops) == 1 and self.has_one_stop(window):
                return stops
            stop = wait_for(lambda: (node := self.focus(window)) != stops[-1] and node, f"a focus after {stops[-1]!r}")
            if stop == stops[0]:
                return stops
            stops.append(stop)
        raise TimeoutError(f"{key} does not come back to {stops[0]!r}: {stops}")

    @staticmethod
    def has_one_stop(window):
        """Whether there is but one control for the focus to be on."""
        return sum(node.showing and node.enabled and node.has_state("focusable") for node in window.descendants()) == 1

    def fill_in(self, edit, text):
        """Types into an edit that has the focus when its window opens.

        A file dialog that still reads folders may change what is typed; then it is typed again.
        """
        def typed():
            self.press("ctrl+a")
            self.type(text)
            return becomes(lambda: edit.words == text, 2.0) and stays(lambda: edit.words == text, 0.2)
        self.wait_for_focus(edit)
        wait_for(typed, lambda: f"'{text}', not '{edit.words}'")

    # Rows.

    def select(self, *names):
        """Goes to the first of these rows, and from there to the others, which it adds."""
        quillbox = self.quillbox
        rows = [quillbox.row_of(name) for name in names]
        self.wait_for_focus(quillbox.table.node)
        self.go_to(quillbox.table, rows[0])
        for row in rows[1:]:
            self.go_to(quillbox.table, row, "ctrl+")
            self.press("ctrl+space")
        wait_for(lambda: quillbox.table.selected_rows() == sorted(rows), lambda: f"{names} selected")

    def choose(self, devices, row):
        """Selects a device, again where a press of Refresh takes effect only now and has its own choice."""
        def chosen():
            self.go_to(devices, row)
            return stays(lambda: devices.selected_rows() == [row], 0.3)
        wait_for(chosen, lambda: f"device {row} selected, not {devices.selected_rows()}")

    def go_to(self, table, row, modifier=""):
        """Makes a row the current one by arrow keys; without a modifier that selects it alone."""
        if self.current_row(table) == row and not modifier:
            self.press("space")
        while (at := self.current_row(table)) != row:
            self.press(modifier + ("Down" if at is None or at < row else "Up"))
            wait_for(lambda: self.current_row(table) != at, f"another row than {at}")

    @staticmethod
    def current_row(table):
        """The row that keys act on; None while there is none."""
        rows = range(table.row_count())
        return next((row for row in rows if table.cell(row, 0).has_state("focused")), None)
