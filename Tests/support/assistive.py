"""What assistive technology does with the program: the interfaces of the accessibility bus only."""

from waiting import wait_for


class AssistiveTool:
    """Uses a running program through the accessibility bus."""

    def __init__(self, quillbox):
        self.quillbox = quillbox

    def connect(self, name, found):
        """Chooses the device of this name, once all the devices of `found` are listed."""
        quillbox = self.quillbox
        dialog = quillbox.open_selection()
        refresh = dialog.find("Refresh", "push button")
        if not refresh.enabled:
            dialog.find("Use found device", "radio button").press()
            wait_for(lambda: refresh.enabled, "the choice among found devices")
        devices = quillbox.wait_for_devices(dialog, found)
        devices.select_rows([devices.column(0).index(name)])
        quillbox.confirm_selection(dialog, name)

    def open_folder(self, name):
        self.select(name)
        self.choose("File", "Open")

    def back(self):
        self.quillbox.button("Back").press()

    def download(self, names, destination):
        self.select(*names)
        self.quillbox.button("Download").press()
        chooser = self.quillbox.window("Choose file download destination folder")
        self.quillbox.choose_destination(chooser, destination)

    def upload(self, folder, names, title):
        self.quillbox.choose_files(self.quillbox.ask_for_upload(title), folder, names)

    def upload_folder(self, folder, title):
        self.choose("File", "Upload Folder")
        self.quillbox.choose_destination(self.quillbox.window(title), folder)

    def sort(self, column):
        self.choose("View", f"Sort by {column}")

    def replace_all(self, title):
        self.quillbox.press_in(title, "Yes to all")

    def create_folder(self, name):
        self.quillbox.button("Create Folder").press()
        prompt = self.quillbox.window("Create Folder")
        prompt.find("Folder name", "text").set_words(name)
        prompt.find("OK", "push button").press()

    def delete(self, *names):
        self.select(*names)
        self.quillbox.button("Delete").press()
        self.quillbox.dismiss_alert("Delete files")

    def disconnect(self):
        self.quillbox.button("Disconnect").press()

    def quit(self):
        self.choose("File", "Quit")

    def select(self, *names):
        """Selects these rows and no others."""
        table = self.quillbox.table
        rows = sorted(map(self.quillbox.row_of, names))
        table.select_rows(rows)
        wait_for(lambda: table.selected_rows() == rows, f"{names} selected")

    def choose(self, *path):
        """Does what an entry of the menu bar stands for, without opening the menu."""
        self.quillbox.menu_entry(*path).press()
