"""Making folders and deleting in the real program."""

import case


class EditTest(case.Case):
    def setUp(self):
        super().setUp()
        self.device, self.served = self.serve({"a.txt": b"a", "b.txt": b"b", "Music/c.txt": b"c"})
        self.quillbox = self.start()
        self.quillbox.connect()
        self.quillbox.wait_for_listing("/", ["a.txt", "b.txt", "Music"])

    def confirm(self, text, button):
        alert = self.quillbox.program.alert("Delete files")
        self.assertIn(text, [node.name for node in alert.descendants()])
        alert.find(button, "push button").press()
        self.quillbox.wait_for_main_window_only()

    def test_create_by_key_and_open(self):
        self.quillbox.desktop.keys("ctrl+shift+n")
        prompt = self.quillbox.window("Create Folder")
        prompt.find("Folder name", "text").set_words("Ångström Recordings 2009 and later")
        self.quillbox.desktop.keys("Return")
        self.quillbox.wait_for_listing("/", ["a.txt", "b.txt", "Music", "Angstrom Recordings 2009"])
        self.assertTrue((self.served / "Angstrom Recordings 2009").is_dir())
        self.quillbox.open_folder("Angstrom Recordings 2009")
        self.quillbox.wait_for_listing("/Angstrom Recordings 2009", [])

    def test_taken_name(self):
        self.quillbox.button("Create Folder").press()
        prompt = self.quillbox.window("Create Folder")
        prompt.find("Folder name", "text").set_words("MUSIC")
        prompt.find("OK", "push button").press()
        self.assertEqual(self.quillbox.dismiss_alert("File already exists"),
                         "A file or folder called 'MUSIC' already exists.  Please try another name.")
        self.quillbox.wait_for_listing("/", ["a.txt", "b.txt", "Music"])

    def test_delete_by_button(self):
        self.quillbox.select("a.txt", "Music")
        self.quillbox.button("Delete").press()
        self.confirm("Are you sure you want to delete 2 files from 'Test device:/'?  "
                     "This operation cannot be undone.", "OK")
        self.quillbox.wait_for_listing("/", ["b.txt"])
        self.assertEqual([path.name for path in self.served.iterdir()], ["b.txt"])

    def test_delete_by_key_asks_first(self):
        self.quillbox.select("Music")
        self.quillbox.desktop.keys("Delete")
        self.confirm("Are you sure you want to delete this folder from 'Test device:/'?  "
                     "This operation cannot be undone.", "Cancel")
        self.assertTrue((self.served / "Music/c.txt").exists())

    def test_context_menu(self):
        self.quillbox.select("b.txt")
        self.quillbox.desktop.keys("Menu", "e")
        self.confirm("Are you sure you want to delete this file from 'Test device:/'?  "
                     "This operation cannot be undone.", "OK")
        self.quillbox.wait_for_listing("/", ["a.txt", "Music"])


if __name__ == "__main__":
    case.main()
