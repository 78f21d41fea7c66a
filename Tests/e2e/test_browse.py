"""Walking through a device's folders and sorting the table."""

import case
from waiting import wait_for

FILES = {
    "b.wav": b"b",
    "A.txt": b"a",
    "c.mp3": b"c",
    "Music/Live/solo.wav": b"solo",
    "Music/intro.wav": b"intro",
    "Docs/readme.txt": b"readme",
    "plain": b"plain",
}
TOP = case.top_names(FILES)


class BrowseTest(case.Case):
    def test_columns_and_types(self):
        quillbox, _ = self.connect(FILES)
        self.assertEqual(quillbox.table.column_titles(), ["Name", "Type", "Date Modified", "Waveform"])
        kinds = {name: (kind, bool(date), waveform) for name, kind, date, waveform in quillbox.table.rows()}
        self.assertEqual(kinds, {
            "b.wav": ("wav file", True, ""), "A.txt": ("txt file", True, ""), "c.mp3": ("mp3 file", True, ""),
            "Music": ("Folder", False, ""), "Docs": ("Folder", False, ""), "plain": (" file", True, "")})

    def test_in_by_double_click_and_out_by_back(self):
        quillbox, _ = self.connect(FILES)
        quillbox.open_folder("Music")
        quillbox.wait_for_listing("/Music", ["Live", "intro.wav"])
        quillbox.open_folder("Live")
        quillbox.wait_for_listing("/Music/Live", ["solo.wav"])
        quillbox.click_button("Back")
        quillbox.wait_for_listing("/Music", ["Live", "intro.wav"])
        quillbox.click_button("Back")
        quillbox.wait_for_listing("/", TOP)
        wait_for(lambda: not quillbox.button("Back").enabled, "Back disabled")

    def test_in_by_return_and_out_by_keys(self):
        quillbox, _ = self.connect(FILES)
        for way_out in ("BackSpace", "alt+Up"):
            with self.subTest(way_out):
                quillbox.select("Docs")
                quillbox.desktop.keys("Return")
                quillbox.wait_for_listing("/Docs", ["readme.txt"])
                quillbox.select("readme.txt")
                quillbox.desktop.keys(way_out)
                quillbox.wait_for_listing("/", TOP)

    def test_double_click_on_a_file_does_nothing(self):
        quillbox, _ = self.connect(FILES)
        quillbox.open_folder("b.wav")
        wait_for(lambda: quillbox.table.selected_rows() == [quillbox.row_of("b.wav")], "the file selected")
        quillbox.open_folder("Docs")
        quillbox.wait_for_listing("/Docs", ["readme.txt"])

    def test_sorted_by_a_click_on_a_header(self):
        quillbox, _ = self.connect(FILES)
        ascending = ["A.txt", "b.wav", "c.mp3", "Docs", "Music", "plain"]
        self.assertEqual(sorted(quillbox.table.column(1), key=str.lower), quillbox.table.column(1))
        quillbox.desktop.click(quillbox.table.header(0))
        wait_for(lambda: quillbox.names() in (ascending, ascending[::-1]),
                 lambda: f"sorted names, not {quillbox.names()}")
        first = quillbox.names()
        # Elsewhere in the header, so that the two clicks are no double click.
        quillbox.desktop.click(quillbox.table.header(0), across=0.2)
        wait_for(lambda: quillbox.names() == first[::-1], "the other way round")
        quillbox.open_folder("Music")
        quillbox.wait_for_listing("/Music", ["Live", "intro.wav"])

    def test_buttons_follow_the_selection(self):
        quillbox, _ = self.connect(FILES)
        connected = {"Disconnect", "Create Folder", "Upload"}
        quillbox.wait_for_enabled_buttons(connected)
        quillbox.select("b.wav", "c.mp3")
        quillbox.wait_for_enabled_buttons(connected | {"Delete", "Download"})

    def test_new_files_are_seen_after_refresh(self):
        device, root = self.serve({"old.txt": b"old"})
        quillbox = self.start()
        quillbox.connect()
        quillbox.wait_for_listing("/", ["old.txt"])
        case.write_files(root, {"new.txt": b"new"})
        quillbox.desktop.keys("F5")
        quillbox.wait_for_listing("/", ["new.txt", "old.txt"])

    def test_read_only_device_takes_no_uploads(self):
        quillbox, _ = self.connect(FILES, rights="--r")
        quillbox.select("b.wav")
        wait_for(lambda: quillbox.enabled_buttons() == {"Disconnect", "Download"}, "only Download")


if __name__ == "__main__":
    case.main()
