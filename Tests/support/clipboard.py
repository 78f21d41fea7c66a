"""What is on the clipboard of a desktop."""

import pathlib

import gi

READER = pathlib.Path(__file__).with_name("clipboardtext.py")


def reason_not_to_paste():
    """What clipboardtext.py needs and does not find, in words; else None."""
    try:
        gi.require_version("Gtk", "3.0")
    except ValueError as missing:
        return str(missing)
    return None


def pasted(desktop):
    """The text on the clipboard, as another program pastes it."""
    reader = desktop.start(["/usr/bin/python3", READER])
    if reader.wait() != 0:
        raise RuntimeError(f"nothing could be pasted: {reader.output()}")
    return reader.output()
