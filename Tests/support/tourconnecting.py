"""The guided tour: the start, the Help menu, the ways to a device, and the end."""

import pathlib
import platform
import re
import urllib.parse

from clipboard import pasted
from desktop import REPOSITORY
from tourstage import ADDRESS, DEVICE_NAME, TEXT_FILE, check
from waiting import wait_for


def start(stage):
    stage.done("start", "Quillbox has started", "While nothing is connected, the table says what to do.",
               of=stage.quillbox.main)


def about(stage):
    open_help_menu(stage)
    stage.done("help", "The Help menu", "The user guide (F1), what helpers ask for, and which version this is.",
               of=stage.quillbox.main)
    stage.desktop.click(help_menu(stage).look_for("About Quillbox"))
    alert = stage.quillbox.program.alert(version())
    stage.done("about", "About Quillbox", "The name, the version and what it is for.", of=alert)
    close(stage, alert)


def guide(stage):
    stage.wait_for_keyboard()
    stage.desktop.keys("F1")
    shown = stage.desktop.root / "run/shown"
    url = wait_for(lambda: shown.exists() and shown.read_text().strip(), "the user guide to be opened")
    page = pathlib.Path(urllib.parse.unquote(urllib.parse.urlparse(url).path))
    check(page.name == "user-guide.html" and page.is_file(), f"'{url}' is the user guide")
    stage.done("guide", "The user guide", "F1 opens it in the web browser.", [page.name])


def diagnostics(stage):
    open_help_menu(stage)
    stage.desktop.click(help_menu(stage).look_for("Copy Diagnostics"))
    alert = stage.quillbox.program.alert("Diagnostics copied")
    lines = pasted(stage.desktop).splitlines()
    check(f"Kernel: linux {platform.release()}" in lines, f"the system is named in {lines}")
    names = [line.partition(":")[0] for line in lines[:lines.index("")]]
    stage.done("diagnostics", "Copy Diagnostics", "What helpers ask for is on the clipboard.",
               [", ".join(names) + ", and the last lines of the log"], of=alert)
    close(stage, alert)


def address(stage):
    dialog = stage.quillbox.open_selection()
    stage.quillbox.type_address(dialog, ADDRESS)
    stage.done("address", "Connect by address", "Connect asks for the device. Its address can be typed.", of=dialog)
    stage.quillbox.confirm_selection(dialog, DEVICE_NAME)


def connected(stage):
    stage.wait_for_listing("/")
    stage.done("connected", "Connected", "The table shows the device's top folder.", [stage.quillbox.status],
               of=stage.quillbox.main)


def disconnected(stage):
    disconnect(stage)
    stage.done("disconnected", "Disconnected", "Disconnect ends the connection.", of=stage.quillbox.main)


def choose(stage):
    dialog = stage.quillbox.open_selection()
    stage.quillbox.wait_for_devices(dialog, [DEVICE_NAME])
    stage.quillbox.choose_device(dialog, DEVICE_NAME)
    stage.done("choose", "Find a device", f"'{DEVICE_NAME}' has announced itself on the network and is selected.",
               of=dialog)


def connect(stage):
    stage.quillbox.press_in("Select Device", "OK")
    stage.quillbox.wait_for_status(f"Connected to '{DEVICE_NAME}'")
    stage.wait_for_listing("/")
    stage.quillbox.select(TEXT_FILE, "Straßenmusik")
    stage.done("connect", "Connected to the found device", "What is selected can be downloaded.",
               of=stage.quillbox.main)


def leave(stage):
    disconnect(stage)
    stage.done("end", "Disconnected again", "The table is empty, and the buttons that need a device are grey.",
               of=stage.quillbox.main)
    stage.desktop.keys("ctrl+q")
    check(stage.quillbox.program.process.wait() == 0, "the program ends with status 0")
    stage.done("quit", "Quit", "Ctrl+Q ends the program.")


def disconnect(stage):
    stage.quillbox.click_button("Disconnect")
    wait_for(lambda: not stage.quillbox.is_connected(), "the end of the connection")


def help_menu(stage):
    return next(node for node in stage.quillbox.main.descendants() if node.role == "menu bar").children()[-1]


def open_help_menu(stage):
    stage.desktop.click(help_menu(stage))
    wait_for(lambda: help_menu(stage).look_for("About Quillbox"), "the Help menu")


def close(stage, alert):
    alert.find("OK", "push button").press()
    stage.quillbox.wait_for_main_window_only()


def version():
    return "Quillbox " + re.search(r"^project\(Quillbox VERSION (\S+)", (REPOSITORY / "CMakeLists.txt").read_text(),
                                   re.MULTILINE)[1]
