"""What a person does with the program, one operation each."""

from accessibility import Table
from desktop import settled_extents
from waiting import wait_for

MAIN_WINDOW = "Quillbox"
DESTINATION_DIALOG = "Choose file download destination folder"


class Quillbox:
    """The program, started on a desktop, with its main window in view."""

    def __init__(self, desktop, host=None):
        self.desktop = desktop
        self.program = desktop.start_program(host)
        self.main = self.program.window(MAIN_WINDOW)
        self._buttons = {}
        self._status = self.main.find("Status")
        self._directory = self.main.find("Directory")
        self.table = Table(self.main.find("Device folder", "table"))

    # What is on the screen.

    @property
    def status(self):
        return self._status.words

    @property
    def directory(self):
        return self._directory.words

    def button(self, name):
        """One of the buttons of the main window by its present name."""
        button = self._buttons.get(name)
        if button is None or button.name != name:
            button = self._buttons[name] = self.main.find(name, "push button")
        return button

    def enabled_buttons(self):
        names = ("Connect", "Disconnect", "Back", "Create Folder", "Delete", "Upload", "Download")
        return {name for name in names if (node := self.main.look_for(name, "push button")) and node.enabled}

    def wait_for_enabled_buttons(self, names):
        """Waits until these buttons are enabled and no others: the folder's rights come with its listing."""
        wait_for(lambda: self.enabled_buttons() == names,
                 lambda: f"{names} enabled, not {self.enabled_buttons()}")

    def click_button(self, name):
        wait_for(lambda: self.button(name).enabled, f"{name} enabled")
        self.desktop.click(self.button(name))

    def names(self):
        """The names in the table, top to bottom."""
        return self.table.column(0)

    def window(self, title, seconds=15.0):
        return self.program.window(title, seconds)

    def wait_for_status(self, text, seconds=15.0):
        wait_for(lambda: self.status == text, lambda: f"status '{text}', not '{self.status}'", seconds)

    def wait_for_listing(self, directory, names, seconds=15.0):
        """Waits until a device folder is shown, with these names in any order."""
        def shown():
            return self.directory == directory and sorted(self.names()) == sorted(names)
        wait_for(shown, lambda: f"'{directory}' with {names}, not '{self.directory}' with {self.names()}",
                 seconds)

    def log_lines(self):
        """What the program has written so far."""
        return self.program.process.output().splitlines()

    def wait_for_log(self, line, seconds=15.0):
        wait_for(lambda: line in self.log_lines(), lambda: f"'{line}' in {self.log_lines()}", seconds)

    def wait_for_main_window_only(self, seconds=15.0):
        wait_for(lambda: self.program.titles() == [MAIN_WINDOW],
                 lambda: f"the main window alone, not {self.program.titles()}", seconds)

    def wait_for_end_of_transfer(self, seconds=15.0):
        """Waits until the folder is listed anew, which is the last thing that a transfer does.

        The windows alone do not tell: a short transfer shows none.
        """
        def ended():
            nothing_selected = not self.button("Download").enabled
            return nothing_selected and self.program.titles() == [MAIN_WINDOW] and self.names()
        wait_for(ended, lambda: f"the end of a transfer with {self.program.titles()}", seconds)

    def menu_entry(self, *path):
        """An entry of the menu bar by the names on the way to it, whether its menu is open or not."""
        node = next(node for node in self.main.descendants() if node.role == "menu bar")
        for name in path:
            node = wait_for(lambda: node.menu_entry(name), f"the menu entry {' > '.join(path)}")
        return node

    # Connecting.

    def open_selection(self):
        self.button("Connect").press()
        return self.window("Select Device")

    def found_devices(self, dialog):
        """The table of found devices in the selection, ready for a choice."""
        refresh = dialog.find("Refresh", "push button")
        if not refresh.enabled:
            self.desktop.click(dialog.find("Use found device", "radio button"))
            wait_for(lambda: refresh.enabled, "the choice among found devices")
        return Table(dialog.find("Devices", "list"))

    def refresh_devices(self, dialog):
        """Presses Refresh and returns the names that are listed then."""
        devices = self.found_devices(dialog)
        refresh = dialog.find("Refresh", "push button")
        refresh.press()
        # Such a press holds the button down for a moment, and does its work as it lets go.
        wait_for(lambda: not refresh.has_state("pressed"), "the end of a press of Refresh")
        return devices.column(0)

    def wait_for_devices(self, dialog, names, seconds=15.0):
        """Presses Refresh until exactly these devices are listed, in any order; returns their table."""
        wait_for(lambda: sorted(self.refresh_devices(dialog)) == sorted(names),
                 lambda: f"devices {names}, not {self.refresh_devices(dialog)}", seconds)
        return self.found_devices(dialog)

    def choose_device(self, dialog, name):
        """Selects a listed device by a click."""
        devices = self.found_devices(dialog)
        row = devices.column(0).index(name)
        self.desktop.click_row(devices, row)
        wait_for(lambda: devices.selected_rows() == [row], f"'{name}' selected")

    def confirm_selection(self, dialog, name):
        """Presses OK and waits until the device of this name is connected."""
        dialog.find("OK", "push button").press()
        self.wait_for_status(f"Connected to '{name}'")
        self.wait_for_main_window_only()

    def type_address(self, dialog, address):
        """Types a dotted address as a person does, the dots leading from field to field."""
        first = self.choose_typed_address(dialog)
        self.desktop.click(first)
        wait_for(lambda: first.has_state("focused"), "the focus in the first octet")
        self.desktop.keys("ctrl+a")
        self.desktop.type(address)
        wait_for(lambda: self.typed_address(dialog) == address,
                 lambda: f"address {address}, not {self.typed_address(dialog)}")

    def choose_typed_address(self, dialog):
        """Makes the address fields of the selection take input and returns the first."""
        first = dialog.find("Address octet 1", "text")
        if not first.enabled:
            wait_for(lambda: dialog.has_state("active"), lambda: f"{dialog!r} in its place")
            self.desktop.click(dialog.find("Enter IP address", "radio button"))
            wait_for(lambda: first.enabled, "address fields that take input")
        return first

    def typed_address(self, dialog):
        return ".".join(dialog.find(f"Address octet {number}", "text").words for number in range(1, 5))

    def start_connecting(self, address="127.0.0.1"):
        dialog = self.open_selection()
        self.type_address(dialog, address)
        dialog.find("OK", "push button").press()

    def connect(self, name="Test device", address="127.0.0.1"):
        self.start_connecting(address)
        self.wait_for_status(f"Connected to '{name}'")
        self.wait_for_main_window_only()

    def is_connected(self):
        return self.main.look_for("Disconnect", "push button") is not None

    def disconnect(self):
        self.button("Disconnect").press()
        wait_for(lambda: not self.is_connected(), "the end of the connection")

    # Browsing and transfers.

    def row_of(self, name):
        """The row of an item, once it is listed."""
        wait_for(lambda: name in self.names(), f"'{name}' in the table")
        return self.names().index(name)

    def select(self, *names):
        for number, name in enumerate(names):
            self.desktop.click_row(self.table, self.row_of(name), extend=number > 0)
        rows = sorted(map(self.row_of, names))
        wait_for(lambda: self.table.selected_rows() == rows, f"{names} selected")

    def row_place(self, name):
        """A point of a row at which to take hold of it."""
        left, top, _, height = settled_extents(self.table.cell(self.row_of(name), 0))
        return left + 40, top + height // 2

    def table_place(self):
        """A point in the lower part of the table."""
        left, top, width, height = settled_extents(self.table.node)
        return left + width // 2, top + height - 40

    def open_folder(self, name):
        self.desktop.click_row(self.table, self.row_of(name), times=2)

    def open_context_menu(self, name):
        """Opens what a right click on a row offers; the accessibility bus does not show such menus."""
        self.desktop.click_at(*self.row_place(name), button=3)
        wait_for(lambda: len(self.desktop.windows_of(self.program.process)) == 2, "the context menu")

    def ask_for_download(self, names):
        """Selects rows and presses Download; returns the folder chooser."""
        self.select(*names)
        self.button("Download").press()
        return self.window(DESTINATION_DIALOG)

    def choose_destination(self, chooser, destination):
        fill_in(chooser.find("Directory:", "text"), str(destination))
        chooser.find("Choose", "push button").press()
        self.program.wait_until_closed(chooser.name)

    def start_download(self, names, destination):
        self.choose_destination(self.ask_for_download(names), destination)

    def ask_for_upload(self, title):
        """Presses Upload; returns the file chooser with this title."""
        self.button("Upload").press()
        return self.window(title)

    def choose_files(self, chooser, folder, names):
        """Chooses files of one folder, in this order, by typing their names as the chooser takes several."""
        fill_in(chooser.find("File name:", "text"), " ".join(f'"{folder / name}"' for name in names))
        chooser.find("Open", "push button").press()
        self.program.wait_until_closed(chooser.name)

    def start_upload(self, folder, names, title):
        self.choose_files(self.ask_for_upload(title), folder, names)

    def press_in(self, title, button):
        """Presses a button in the window with this title."""
        self.window(title).find(button, "push button").press()

    def dismiss_alert(self, title):
        """Waits for the alert with this first line, presses OK and returns its second text."""
        alert = self.program.alert(title)
        labels = [node.name for node in alert.descendants() if node.role == "label"]
        alert.find("OK", "push button").press()
        return "\n".join(text for text in labels if text not in ("", title))


def fill_in(edit, text):
    """Sets the text of a file dialog's edit, again where the dialog, still reading folders, changes it."""
    settled = []

    def holds():
        settled.append(edit.words == text)
        if not settled[-1]:
            edit.set_words(text)
        return settled[-3:] == [True] * 3
    wait_for(holds, f"'{text}' in the file dialog")
