"""What assistive tools and the keyboard find in each window: names, roles and descriptions, the way of Tab, and
a focus that people see.
"""

import case
from accessibility import VALUE
from device import ScriptedDevice
from keyboard import KeyboardUser
from look import Look, contrast
from waiting import wait_for

FILES = {"song.wav": b"song", "notes.txt": b"notes", "Music/live.wav": b"live"}
CONNECTED = {"Disconnect": "push button", "Back": "push button", "Create Folder": "push button",
             "Delete": "push button", "Upload": "push button", "Download": "push button", "Directory": "text",
             "Device folder": "table", "Status": "text", "Transparency": "slider"}
OCTETS = {f"Address octet {number}": "text" for number in range(1, 5)}
SELECTION = OCTETS | {"Devices": "list", "Use found device": "radio button", "Enter IP address": "radio button",
                      "Refresh": "push button", "OK": "push button", "Cancel": "push button", "Help": "push button"}
PROGRESS = {"Progress": "progress bar", "Current item": "label", "Details": "label", "Cancel": "push button"}
PROMPT = {"What exists": "label", "Question": "label", "Yes": "push button", "Yes to all": "push button",
          "No": "push button", "Cancel": "push button"}
NEW_FOLDER = {"Folder name": "text", "OK": "push button", "Cancel": "push button"}
LEAST_CONTRAST = 3.0  # of drawings, by the guidelines for accessible content
ALERT = {"OK": "push button", "Cancel": "push button"}


class WindowsCase(case.Case):
    time_limit = 90

    def open_selection(self):
        """The selection with one found device in it."""
        self.serve(FILES, announce=["--announce-to", "127.0.0.1"])
        dialog = self.start().open_selection()
        self.quillbox.wait_for_devices(dialog, ["Test device"])
        return dialog

    def open_prompt(self):
        target = self.desktop.folder("target")
        case.write_files(target, {"song.wav": b"old"})
        self.connect(FILES)
        self.quillbox.start_download(["song.wav"], target)
        return self.quillbox.window("Copy File")

    def open_progress(self):
        """The window of a download that goes no further."""
        device = self.enterContext(ScriptedDevice({"large.bin": bytes(1_000_000)}))
        device.body_limit = 500_000
        self.start().connect("Scripted")
        target = self.desktop.folder("target")
        self.quillbox.start_download(["large.bin"], target)
        return self.quillbox.window(f"Downloading to '{target}'")

    def open_new_folder(self):
        self.connect(FILES)
        self.quillbox.button("Create Folder").press()
        return self.quillbox.window("Create Folder")

    def open_alert(self):
        self.connect(FILES)
        self.quillbox.select("song.wav")
        self.quillbox.button("Delete").press()
        return self.quillbox.program.alert("Delete files")


class ContractTest(WindowsCase):
    """Every control has its name and role, and says what it is for or what it shows."""

    def check(self, window, contract):
        for name, role in contract.items():
            wait_for(lambda: window.find(name, role).description, f"a description of {role} '{name}'")
        stops = [node for node in window.descendants() if node.showing and node.has_state("focusable")]
        expected = {name for name, role in contract.items() if role not in ("label", "progress bar")}
        titles = {node.name for node in stops if node.role == "label"}  # an alert's, to be copied from
        self.assertEqual({node.name for node in stops} - titles, expected)

    def test_main_window(self):
        quillbox = self.start()
        disconnected = CONNECTED | {"Connect": "push button"}
        del disconnected["Disconnect"]
        self.check(quillbox.main, disconnected)
        connect = quillbox.button("Connect").description
        self.serve(FILES)
        quillbox.connect()
        quillbox.wait_for_listing("/", case.top_names(FILES))
        self.check(quillbox.main, CONNECTED)
        self.assertNotEqual(quillbox.button("Disconnect").description, connect)

    def test_range_of_transparency(self):
        slider = self.start().main.find("Transparency", "slider")
        self.assertEqual((slider.interface_property(VALUE, "MinimumValue"), slider.value), (0.2, 1.0))
        self.assertEqual(slider.interface_property(VALUE, "MaximumValue"), 1.0)

    def test_selection(self):
        self.check(self.open_selection(), SELECTION)

    def test_progress(self):
        self.check(self.open_progress(), PROGRESS)

    def test_overwrite_prompt(self):
        self.check(self.open_prompt(), PROMPT)

    def test_new_folder(self):
        self.check(self.open_new_folder(), NEW_FOLDER)

    def test_alert(self):
        alert = self.open_alert()
        self.check(alert, ALERT)
        self.assertIn("This operation cannot be undone.", alert.find("OK", "push button").description)

    def test_rows(self):
        """A row says its name, its kind and its date, cell by cell."""
        quillbox, _ = self.connect(FILES)
        for row in range(quillbox.table.row_count()):
            for column in (0, 1):
                cell = quillbox.table.cell(row, column)
                self.assertNotEqual(cell.name, "")
                self.assertEqual(cell.description, cell.name)


class TabOrderTest(WindowsCase):
    """Tab leads through each window in the order in which people read it, and Shift+Tab back."""

    def check(self, window, expected):
        user = KeyboardUser(self.quillbox)
        user.wait_for_keyboard(window)
        self.assertEqual([node.name for node in user.tab_stops(window)], expected)
        backwards = [node.name for node in user.tab_stops(window, "shift+Tab")]
        self.assertEqual(backwards, expected[:1] + expected[:0:-1])

    def test_main_window(self):
        self.start()
        self.check(self.quillbox.main, ["Connect", "Status", "Transparency"])

    def test_main_window_while_connected(self):
        quillbox, _ = self.connect(FILES)
        quillbox.open_folder("Music")
        quillbox.wait_for_listing("/Music", ["live.wav"])
        quillbox.select("live.wav")
        quillbox.wait_for_enabled_buttons({"Disconnect", "Back", "Create Folder", "Delete", "Upload", "Download"})
        self.check(quillbox.main, ["Device folder", "Status", "Transparency", "Disconnect", "Back", "Create Folder",
                                   "Delete", "Upload", "Download", "Directory"])

    def test_selection_of_a_found_device(self):
        self.check(self.open_selection(), ["Devices", "Refresh", "OK", "Cancel", "Help", "Use found device"])

    def test_selection_of_an_address(self):
        dialog = self.start().open_selection()
        self.quillbox.choose_typed_address(dialog)
        self.check(dialog, [*OCTETS, "OK", "Cancel", "Help", "Enter IP address"])

    def test_overwrite_prompt(self):
        self.check(self.open_prompt(), ["No", "Yes", "Yes to all", "Cancel"])

    def test_progress(self):
        self.check(self.open_progress(), ["Cancel"])

    def test_new_folder(self):
        self.check(self.open_new_folder(), ["Folder name", "OK", "Cancel"])

    def test_alert(self):
        self.check(self.open_alert(), ["OK", "Cancel"])

    def test_folder_chooser(self):
        """The toolkit's own; what is needed to answer it must be on the way."""
        quillbox, _ = self.connect(FILES)
        chooser = quillbox.ask_for_download(["song.wav"])
        user = KeyboardUser(quillbox)
        user.wait_for_keyboard(chooser)
        stops = {node.name for node in user.tab_stops(chooser)}
        self.assertLessEqual({"Directory:", "Choose", "Cancel", "Files", "Sidebar"}, stops)


class VisibleFocusTest(WindowsCase):
    """Where the keyboard is can be seen, and where it is not looks as it did before."""

    def check(self, window):
        user = KeyboardUser(self.quillbox)
        user.wait_for_keyboard(window)
        self.desktop.move_pointer(1, 1)  # nothing lights up under it
        stops = user.tab_stops(window)
        before = {stops[0]: self.look_without_focus(user, stops)}
        for node, following in zip(stops, stops[1:] + stops[:1]):
            user.wait_for_focus(node)
            before[following] = self.settled_look(following)
            is_default = following.has_state("default")
            user.press("Tab")
            user.wait_for_focus(following)
            if is_default:
                # The toolkit sets it off from the start; what sets it off now is that nothing else is.
                wait_for(lambda: self.desktop.pixels(node) == before[node], f"no focus to be seen on {node!r}")
                continue
            self.wait_for_look(following, lambda look: look != before[following])
            user.press("shift+Tab")
            self.wait_for_look(following, lambda look: look == before[following])
            user.press("Tab")

    def check_contrast(self, window, node):
        """What shows that the keyboard is on a control differs by as much as people need to see it."""
        user = KeyboardUser(self.quillbox)
        user.wait_for_keyboard(window)
        self.desktop.move_pointer(1, 1)
        user.wait_for_focus(node)
        focused = self.settled_look(node)
        user.press("Tab")
        self.wait_for_look(node, lambda look: look != focused)
        changes = set(zip(colours(focused), colours(self.settled_look(node))))
        self.assertGreaterEqual(max(contrast(*change) for change in changes), LEAST_CONTRAST)

    def look_without_focus(self, user, stops):
        """The look of the first stop while the focus is on the second."""
        user.press("Tab")
        user.wait_for_focus(stops[1])
        look = self.settled_look(stops[0])
        user.press("shift+Tab")
        return look

    def settled_look(self, node):
        """What it looks like once what has just happened to it has been drawn."""
        looks = [self.desktop.pixels(node)]

        def agree():
            looks.append(self.desktop.pixels(node))
            return len(set(looks[-3:])) == 1 and len(looks) > 2 and looks[-1]
        return wait_for(agree, f"a steady look of {node!r}")

    def wait_for_look(self, node, condition):
        wait_for(lambda: condition(self.desktop.pixels(node)), f"another look of {node!r}")

    def test_main_window(self):
        quillbox, _ = self.connect(FILES)
        quillbox.open_folder("Music")
        quillbox.wait_for_listing("/Music", ["live.wav"])
        self.check(quillbox.main)

    def test_first_row_of_a_folder(self):
        """A folder that has just been opened shows where the arrow keys begin."""
        quillbox, _ = self.connect(FILES)
        user = KeyboardUser(quillbox)
        user.open_folder("Music")
        quillbox.wait_for_listing("/Music", ["live.wav"])
        wait_for(lambda: user.current_row(quillbox.table) == 0, "the keyboard at the first row")
        self.assertEqual(quillbox.table.selected_rows(), [])

    def test_first_row_stands_out(self):
        quillbox, _ = self.connect(FILES)
        self.check_contrast(quillbox.main, quillbox.table.node)

    def test_empty_folder(self):
        quillbox = self.open_empty_folder()
        self.check(quillbox.main)

    def test_empty_folder_stands_out(self):
        quillbox = self.open_empty_folder()
        self.check_contrast(quillbox.main, quillbox.table.node)

    def open_empty_folder(self):
        self.serve({})
        quillbox = self.start()
        quillbox.connect()
        quillbox.wait_for_listing("/", [])
        return quillbox

    def test_selection_of_a_found_device(self):
        self.check(self.open_selection())

    def test_selection_without_devices(self):
        self.check(self.open_empty_selection())

    def test_list_without_devices_stands_out(self):
        dialog = self.open_empty_selection()
        self.check_contrast(dialog, dialog.find("Devices", "list"))

    def open_empty_selection(self):
        dialog = self.start().open_selection()
        self.quillbox.found_devices(dialog)
        return dialog

    def test_selection_of_an_address(self):
        dialog = self.start().open_selection()
        self.quillbox.choose_typed_address(dialog)
        self.check(dialog)

    def test_overwrite_prompt(self):
        self.check(self.open_prompt())

    def test_new_folder(self):
        self.check(self.open_new_folder())

    def test_alert(self):
        self.check(self.open_alert())


class VisibleFocusInTheDarkTest(VisibleFocusTest):
    """The same on a dark desktop."""

    def setUp(self):
        super().setUp()
        Look(dark=True).put_on(self.desktop)


def colours(pixels):
    """The colours of a picture, a triple for each pixel."""
    return zip(*[iter(pixels)] * 3)


if __name__ == "__main__":
    case.main()
