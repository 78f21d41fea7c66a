"""The guided tour: walking through the device's folders, and changing what is in them."""

from tourstage import FOLDER, check, names_in
from waiting import wait_for

NEW_FOLDER = "Rehearsals"
NEW_RECORDING = "Rain.wav"


def context_menu(stage):
    stage.quillbox.open_context_menu(FOLDER)
    stage.done("context-menu", "The context menu", "A right click offers what can be done. Open comes first.",
               of=stage.quillbox.main)
    stage.desktop.keys("Down", "Return")
    stage.wait_for_listing(f"/{FOLDER}")
    go_back(stage)


def browse(stage):
    stage.quillbox.open_folder(FOLDER)
    stage.wait_for_listing(f"/{FOLDER}")
    stage.done("browse", "Walk through folders", f"A double click has opened '{FOLDER}'; Back leads up again.",
               of=stage.quillbox.main)


def sort(stage):
    """By name, then the other way round: two clicks in different places, which are no double click."""
    quillbox = stage.quillbox
    upwards = sorted(quillbox.names(), key=str.casefold)
    for across, order in ((0.3, upwards), (0.6, upwards[::-1])):
        stage.desktop.click(quillbox.table.header(0), across)
        wait_for(lambda: quillbox.names() == order, lambda: f"the order {order}, not {quillbox.names()}")
    stage.done("sort", "Sort", "A click on a heading sorts by that column, another one turns the order round.",
               of=quillbox.main)
    go_back(stage)


def refresh(stage):
    """The device records something that the table does not show yet."""
    (stage.served / NEW_RECORDING).write_bytes((stage.served / FOLDER / "Birdsong.wav").read_bytes())
    check(NEW_RECORDING not in stage.quillbox.names(), f"'{NEW_RECORDING}' is not listed before F5")
    stage.wait_for_keyboard()
    stage.desktop.keys("F5")
    stage.wait_for_listing("/")
    stage.quillbox.select(NEW_RECORDING)
    stage.done("refresh", "List again", f"The device has recorded '{NEW_RECORDING}' meanwhile; F5 shows it.",
               of=stage.quillbox.main)


def create_folder(stage):
    prompt = ask_for_folder(stage)
    stage.done("create-folder", "Create a folder", "Create Folder asks for its name.", of=prompt)
    prompt.find("OK", "push button").press()
    stage.quillbox.wait_for_listing("/", {*names_in(stage.served), NEW_FOLDER})
    check((stage.served / NEW_FOLDER).is_dir(), f"the device has made '{NEW_FOLDER}'")


def empty_folder(stage):
    stage.quillbox.open_folder(NEW_FOLDER)
    stage.wait_for_listing(f"/{NEW_FOLDER}")
    stage.done("empty", "An empty folder", "The new folder is on the device. The table says that nothing is in it.",
               of=stage.quillbox.main)
    go_back(stage)


def taken_name(stage):
    before = names_in(stage.served)
    ask_for_folder(stage).find("OK", "push button").press()
    alert = stage.quillbox.program.alert("File already exists")
    stage.done("taken-name", "A name that is taken", "The same name once more: a message says why that cannot be.",
               of=alert)
    alert.find("OK", "push button").press()
    stage.quillbox.wait_for_listing("/", before)


def delete(stage):
    stage.quillbox.select(NEW_FOLDER)
    stage.quillbox.button("Delete").press()
    alert = stage.quillbox.program.alert("Delete files")
    stage.done("delete", "Delete", "Delete asks before it deletes.", of=alert)
    alert.find("OK", "push button").press()
    stage.quillbox.wait_for_listing("/", set(names_in(stage.served)) - {NEW_FOLDER})
    check(not (stage.served / NEW_FOLDER).exists(), f"the device has deleted '{NEW_FOLDER}'")
    stage.done("deleted", "Deleted", "The folder is gone from the device.", of=stage.quillbox.main)


def transparency(stage):
    """Without a compositor the pictures do not show it, so this asks for what the window tells one."""
    slider = stage.quillbox.main.find("Transparency", "slider")
    window = stage.desktop.windows_of(stage.quillbox.program.process)[0]
    stage.desktop.click(slider, 0.4)
    wait_for(lambda: slider.value < 1, "a window that lets something show through")
    wait_for(lambda: " = " in stage.desktop.window_property(window, "_NET_WM_WINDOW_OPACITY"), "its opacity")
    stage.done("transparency", "Transparency", "The slider lets what is behind the window show through.",
               [f"{slider.value:.0%} opaque, where the desktop can do that"], of=stage.quillbox.main)
    stage.desktop.keys("End")
    wait_for(lambda: slider.value == 1, "an opaque window")


def go_back(stage):
    stage.quillbox.click_button("Back")
    stage.wait_for_listing("/")


def ask_for_folder(stage):
    """The prompt for a new folder with the name typed in."""
    stage.quillbox.button("Create Folder").press()
    prompt = stage.quillbox.window("Create Folder")
    prompt.find("Folder name", "text").set_words(NEW_FOLDER)
    return prompt
