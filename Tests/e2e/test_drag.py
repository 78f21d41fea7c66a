"""Drags between the table and the file managers of other makers, in both directions."""

import os
import struct
import sys

import case
import gi
from desktop import REPOSITORY
from dragging import Dragging
from filemanager import Dolphin, PCManFM, Thunar
from waiting import stays, wait_for

# Left, top, width and height: the windows share the screen, and a strip of it stays bare.
MANAGER_PLACE = (0, 22, 1270, 380)
PROGRAM_PLACE = (10, 440, 900, 440)
SOURCE_PLACE = (950, 460, 150, 100)
BARE_DESKTOP = (1200, 800)

MIB = 1 << 20
SOURCE_SCRIPT = REPOSITORY / "Tests/support/dragsource.py"


class DragCase(case.Case):
    """A connected program with a file manager's window beside it."""

    time_limit = 90
    manager_class = Thunar

    def start_drag_case(self, local, served, **options):
        """Makes the files: `local` is what the manager shows, `served` what the device has."""
        self.local = self.desktop.folder("local")
        case.write_files(self.local, local)
        self.device, self.served = self.serve(served, **options)

    def show(self):
        """Opens both windows, once all files are there."""
        self.start().connect()
        self.desktop.place_window(self.quillbox.program.process, *PROGRAM_PLACE)
        self.quillbox.wait_for_listing("/", os.listdir(self.served))
        self.manager = self.manager_class(self.desktop, self.local, MANAGER_PLACE)
        self.hand = self.enterContext(Dragging(self.desktop, BARE_DESKTOP))

    def question_about(self, name):
        """The overwrite prompt, once it is about this file."""
        exists = f"A file with the name '{name}' already exists."

        def asked():
            prompt = self.quillbox.program.look_for_window("Copy File")
            return prompt and prompt.look_for("What exists").words == exists and prompt
        return wait_for(asked, f"the question about {name}")

    def answer(self, name, button):
        self.question_about(name).find(button, "push button").press()

    def wait_until_served(self, names, seconds=15.0):
        self.quillbox.wait_for_main_window_only(seconds)
        self.quillbox.wait_for_listing("/", names, seconds)

    def assert_nothing_happens(self):
        """Neither a window nor a change to any file follows, for a while."""
        before = case.read_files(self.desktop.root / "folders")
        self.assertTrue(stays(lambda: self.quillbox.program.titles() == ["Quillbox"], 1.0),
                        "another window appeared")
        self.assertEqual(case.read_files(self.desktop.root / "folders"), before)
        self.assertEqual(self.quillbox.status, "Connected to 'Test device'")


class DropIn:
    """What every file manager's drags onto the table must do."""

    def drop(self, *names, place=None):
        self.manager.select(*names)
        self.drop_selected(names[0], place or self.quillbox.table_place())

    def drop_selected(self, held, place):
        """Drags the selection, held by this item, to a place of the table."""
        self.hand.lift(self.manager.grip(held))
        self.hand.carry_where_it_is_taken(place)
        # The drag's source shows the pointer, and not every one gives names to its pictures.
        self.assertIn(self.hand.picture_name(), ("dnd-copy", ""))
        self.hand.let_go()

    def test_files_and_a_folder(self):
        contents = {"Größe 100% #1.dat": os.urandom(70_001), "it's & more.bin": os.urandom(300_000),
                    "Café.txt": b"coffee", "Tom & Åsa's #2 5%/a b.dat": os.urandom(5000),
                    "Tom & Åsa's #2 5%/Tief 1%/ü#.dat": b"deep"}
        self.start_drag_case(contents | {"not dragged.txt": b"x"}, {"old.txt": b"old"})
        self.show()
        self.drop(*case.top_names(contents))
        expected = {device_name(name): content for name, content in contents.items()} | {"old.txt": b"old"}
        self.wait_until_served(case.top_names(expected))
        self.assert_same_files(self.served, expected)

    def test_question_after_a_drop_on_a_folder(self):
        new = {"1.txt": b"new", "2.txt": b"new", "3.txt": b"new"}
        old = {"1.txt": b"old", "2.txt": b"old", "Folder/4.txt": b"old"}
        self.start_drag_case(new, old)
        self.show()
        self.drop("1.txt", "2.txt", "3.txt", place=self.quillbox.row_place("Folder"))
        self.answer("1.txt", "No")
        self.answer("2.txt", "Yes")
        self.wait_until_served(["1.txt", "2.txt", "3.txt", "Folder"])
        self.assert_same_files(self.served, old | new | {"1.txt": b"old"})

    def test_cancel(self):
        self.start_drag_case({"next.txt": b"next"}, {"old.txt": b"old"})
        write_long_sound(self.local / "long.wav")
        self.show()
        self.drop("long.wav")
        self.quillbox.press_in("Uploading files", "Cancel")
        self.wait_until_served(["old.txt"])
        self.assert_same_files(self.served, {"old.txt": b"old"})
        self.assertEqual(self.quillbox.status, "Connected to 'Test device'")
        self.drop("next.txt")
        self.wait_until_served(["next.txt", "old.txt"])

    def test_five_hundred_files(self):
        files = {f"{number:03}.dat": os.urandom(1 + 20 * number) for number in range(500)}
        self.start_drag_case(files, {})
        self.show()
        self.manager.select_all()
        self.drop_selected("000.dat", self.quillbox.table_place())
        wait_for(lambda: self.answers_while(lambda: len(os.listdir(self.served)) < 500), "all files", 60)
        self.wait_until_served(files, 30)
        self.assert_same_files(self.served, files)

    def answers_while(self, condition):
        """Asks the window for its status as long as a condition holds; an answer must come each time."""
        while condition():
            self.assertEqual(self.quillbox.status, "Connected to 'Test device'")
        return True


class DragOut:
    """What every file manager must get from drags out of the table."""

    def drag(self, *names):
        self.quillbox.select(*names)
        self.hand.drag(self.quillbox.row_place(names[0]), self.manager.empty_place())

    def test_files_and_a_folder(self):
        contents = {"Größe 100% #1.dat": os.urandom(70_001), "it's & more.bin": os.urandom(300_000),
                    "Åsa's #2 5%/a b.dat": os.urandom(5000), "Åsa's #2 5%/Tief 1%/ü#.dat": b"deep"}
        self.start_drag_case({"old.txt": b"old"}, contents | {"not dragged.txt": b"x"})
        self.show()
        self.drag(*case.top_names(contents))
        expected = contents | {"old.txt": b"old"}
        wait_for(lambda: case.read_files(self.local) == expected,
                 lambda: f"{sorted(expected)}, not {sorted(case.read_files(self.local))}")
        self.quillbox.wait_for_main_window_only()
        # On the way there it may have seen a ".tmp" come and not go; what it shows of that is its own affair.
        wait_for(lambda: set(case.top_names(expected)) <= set(self.manager.names()), "everything on view")

    def test_question(self):
        new = {"1.txt": b"new", "2.txt": b"new", "3.txt": b"new"}
        self.start_drag_case({"1.txt": b"old", "2.txt": b"old"}, new)
        self.show()
        self.drag("1.txt", "2.txt", "3.txt")
        self.answer(self.local / "1.txt", "No")
        self.answer(self.local / "2.txt", "Yes")
        wait_for((self.local / "3.txt").exists, "the last file")
        self.quillbox.wait_for_main_window_only()
        self.assert_same_files(self.local, new | {"1.txt": b"old"})

    def test_cancel(self):
        self.start_drag_case({}, {"small.txt": b"small"})
        with open(self.served / "large.bin", "wb") as file:
            file.truncate(1024 * MIB)
        self.show()
        self.drag("large.bin")
        self.quillbox.press_in(f"Downloading to '{self.local}'", "Cancel")
        self.quillbox.wait_for_main_window_only()
        self.assert_same_files(self.local, {})
        self.quillbox.wait_for_listing("/", ["large.bin", "small.txt"])
        self.drag("small.txt")
        wait_for(lambda: case.read_files(self.local) == {"small.txt": b"small"}, "the small file")

    def test_end_over_nothing(self):
        self.start_drag_case({}, {"1.txt": b"1", "2.txt": b"2"})
        self.show()
        self.quillbox.select("1.txt", "2.txt")
        self.hand.drag_nowhere(self.quillbox.row_place("1.txt"))
        self.assert_nothing_happens()
        self.assert_same_files(self.local, {})
        self.assertEqual(os.listdir(self.desktop.home), ["Documents"])
        # What was not dropped must not be in the way of the next drag, which takes an unselected row.
        self.desktop.click_at(*self.quillbox.table_place())
        self.hand.drag(self.quillbox.row_place("2.txt"), self.manager.empty_place())
        wait_for(lambda: case.read_files(self.local) == {"2.txt": b"2"}, "the second file alone")

    def test_two_hundred_files(self):
        files = {f"{number:03}.dat": os.urandom(1 + 20 * number) for number in range(200)}
        self.start_drag_case({}, files)
        self.show()
        self.quillbox.select("000.dat")
        self.desktop.keys("ctrl+a")
        wait_for(lambda: len(self.quillbox.table.selected_rows()) == 200, "all rows selected")
        self.hand.drag(self.quillbox.row_place("000.dat"), self.manager.empty_place())
        wait_for(lambda: case.read_files(self.local) == files, "all files", 40)
        self.quillbox.wait_for_main_window_only()


class ThunarDropTest(DropIn, DragCase):
    manager_class = Thunar


class PCManFMDropTest(DropIn, DragCase):
    manager_class = PCManFM


class DolphinDropTest(DropIn, DragCase):
    manager_class = Dolphin


class ThunarDragTest(DragOut, DragCase):
    manager_class = Thunar


class PCManFMDragTest(DragOut, DragCase):
    manager_class = PCManFM


class DolphinDragTest(DragOut, DragCase):
    manager_class = Dolphin


class RefusedDropTest(DragCase):
    def test_read_only_folder(self):
        self.start_drag_case({"a.txt": b"a"}, {"old.txt": b"old"}, rights="--r")
        self.show()
        self.manager.select("a.txt")
        self.hand.drag(self.manager.grip("a.txt"), self.quillbox.table_place())
        self.assertEqual(self.quillbox.dismiss_alert("File drop failed"), "This folder is read only.")
        self.quillbox.wait_for_main_window_only()
        self.assert_nothing_happens()
        self.assert_same_files(self.served, {"old.txt": b"old"})

    def test_no_local_file(self):
        self.start_drag_case({"a.txt": b"a"}, {"old.txt": b"old"})
        self.show()
        for mime_type, data in {"text/uri-list": "http://example.org/a.wav\r\n", "text/plain": "/etc/hostname",
                                "image/png": "\x89PNG"}.items():
            with self.subTest(mime_type):
                self.drop_from_source(mime_type, data)
                self.assert_nothing_happens()
        self.assert_same_files(self.served, {"old.txt": b"old"})
        # The same way with a local file: so the drops above were drops, and left nothing in the way.
        self.drop_from_source("text/uri-list", (self.local / "a.txt").as_uri() + "\r\n")
        self.wait_until_served(["a.txt", "old.txt"])

    def test_own_rows(self):
        self.start_drag_case({"c.txt": b"c"}, {"a.txt": b"a", "b.txt": b"b"})
        self.show()
        self.quillbox.wait_for_listing("/", ["a.txt", "b.txt"])
        self.quillbox.select("a.txt")
        self.hand.lift(self.quillbox.row_place("a.txt"))
        self.hand.carry_anywhere(self.quillbox.table_place())
        self.hand.let_go()
        self.quillbox.wait_for_log("writeRowsWithIndexes")
        self.assert_nothing_happens()
        self.assertNotIn("validate Drop", self.quillbox.log_lines())
        self.assert_same_files(self.served, {"a.txt": b"a", "b.txt": b"b"})

    def drop_from_source(self, mime_type, data):
        """Drags from a window that offers data of this kind onto the table and lets go there."""
        source = self.desktop.start([sys.executable, SOURCE_SCRIPT, "Source", mime_type, data])
        self.desktop.place_window(source, *SOURCE_PLACE)
        self.hand.lift((SOURCE_PLACE[0] + 75, SOURCE_PLACE[1] + 50))
        self.hand.carry_anywhere(self.quillbox.table_place())
        self.hand.let_go()


def device_name(path):
    """The form that these tests' names have on a device."""
    return path.translate(str.maketrans({"ö": "o", "ß": "ss", "é": "e", "Å": "A", "ü": "u"}))


def write_long_sound(path):
    """A sound that takes seconds to convert."""
    size = 255 * MIB
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I4s4sIHHIIHH4sI", size + 36, b"WAVE", b"fmt ", 16, 1, 2, 44100,
                                         176400, 4, 16, b"data", size))
        file.truncate(44 + size)


def what_is_missing():
    """What dragsource.py and the drivers of the file managers need and do not find, in words; else None."""
    try:
        gi.require_version("Gtk", "3.0")
    except ValueError as missing:
        return str(missing)
    reasons = [manager.reason_not_to_run() for manager in (Thunar, PCManFM, Dolphin)]
    return next(filter(None, reasons), None)


if __name__ == "__main__":
    case.main(what_is_missing)
