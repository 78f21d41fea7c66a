"""The guided tour: files and folders go by hand between the table and a file manager's window."""

from dragging import Dragging
from filemanager import Thunar
from tourstage import TEXT_FILE, check, contents, names_in, write_texts
from waiting import wait_for

# Left, top, width and height: the windows share the screen for the drops, and a strip of it stays bare.
PROGRAM_PLACE = (10, 395, 860, 450)
MANAGER_PLACE = (10, 30, 860, 310)
BARE_DESKTOP = (1200, 860)
WELL_INSIDE = 330  # points from the edge of the manager's view, where a picture shows the whole of what is dragged

DRAGGED_IN = "Autumn tour"
DRAGGED_OUT = ["Straßenmusik", TEXT_FILE]
TEXTS = {"Autumn tour/Programme.txt": "1. Overture\n2. Interlude\n",
         "Autumn tour/Travel/Trains.txt": "Tuesday, 8:04\n"}
CHANGE = {"Autumn tour/Programme.txt": "1. Overture\n2. Interlude\n3. Finale\n"}


def drags(stage):
    folder = stage.home / "Programmes"
    write_texts(folder, TEXTS)
    stage.place_program(PROGRAM_PLACE)
    manager = Thunar(stage.desktop, folder, MANAGER_PLACE)
    with Dragging(stage.desktop, BARE_DESKTOP) as hand:
        for step in (drag_in, replace_folder, drag_out):
            step(stage, manager, hand)
    manager.process.end()
    stage.place_program()


def drag_in(stage, manager, hand):
    carry_in(stage, manager, hand)
    stage.done("drag", "Drag files and folders in", "A folder of the file manager hangs on the pointer.",
               of=manager.window)
    hand.let_go()
    stage.quillbox.wait_for_listing("/", {*names_in(stage.served), DRAGGED_IN})
    stage.quillbox.wait_for_main_window_only()
    check_served(stage, TEXTS)
    stage.done("dropped", "Dropped", "The folder is on the device, with everything in it.", sorted(TEXTS),
               of=manager.window)


def replace_folder(stage, manager, hand):
    """Drops it again; the selection, which a new listing clears, tells the end of that."""
    write_texts(manager.folder, CHANGE)
    stage.quillbox.select(DRAGGED_IN)
    carry_in(stage, manager, hand)
    hand.let_go()
    prompt = stage.quillbox.window("Copy Folder")
    stage.done("copy-folder", "A folder that exists", "One file of it has changed. Quillbox asks before it replaces "
               "what the device has of that folder.", of=prompt)
    prompt.find("Yes", "push button").press()
    stage.quillbox.wait_for_end_of_transfer()
    check_served(stage, TEXTS | CHANGE)


def drag_out(stage, manager, hand):
    stage.quillbox.select(*DRAGGED_OUT)
    hand.lift(stage.quillbox.row_place(TEXT_FILE))
    x, y = manager.empty_place()
    hand.carry_where_it_is_taken((x - WELL_INSIDE, y))
    stage.done("drag-out", "Drag files and folders out", "What is selected in the table hangs on the pointer.",
               of=stage.quillbox.main)
    served = contents(stage.served)
    dragged = {path: served[path] for path in served if path.startswith(tuple(DRAGGED_OUT))}
    expected = contents(manager.folder) | dragged
    hand.let_go()
    wait_for(lambda: contents(manager.folder) == expected, f"{sorted(expected)} in the folder")
    stage.quillbox.wait_for_end_of_transfer()
    manager.wait_for_names([DRAGGED_IN, *DRAGGED_OUT])
    stage.done("dragged-out", "Downloaded by hand", "The file manager's folder has them, equal to the device's.",
               sorted(dragged), of=stage.quillbox.main)


def carry_in(stage, manager, hand):
    manager.select(DRAGGED_IN)
    hand.lift(manager.grip(DRAGGED_IN))
    hand.carry_where_it_is_taken(stage.quillbox.table_place())


def check_served(stage, texts):
    arrived = contents(stage.served / DRAGGED_IN)
    check({f"{DRAGGED_IN}/{name}": content.decode() for name, content in arrived.items()} == texts,
          f"{sorted(arrived)} is what was dropped")
