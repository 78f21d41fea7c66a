"""Prints the text on the clipboard, as another program would paste it.

    python3 clipboardtext.py
"""

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402

print(Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD).wait_for_text())
