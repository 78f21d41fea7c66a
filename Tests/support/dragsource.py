"""A small window; whatever is dragged out of it carries data of one kind.

    python3 dragsource.py TITLE MIME-TYPE DATA
"""

import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def main(title, mime_type, data):
    window = Gtk.Window(title=title)
    window.connect("destroy", Gtk.main_quit)
    targets = [Gtk.TargetEntry.new(mime_type, 0, 0)]
    window.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, targets, Gdk.DragAction.COPY)

    def give(_window, _context, selection, *_):
        selection.set(selection.get_target(), 8, data.encode())
    window.connect("drag-data-get", give)
    window.show_all()
    Gtk.main()


main(*sys.argv[1:])
