"""Windows and controls as assistive tools see them, by plain D-Bus calls.

Every call has a time-out of its own, so that a program that hangs fails a test instead of stopping it.
"""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

from waiting import PATIENCE, Gone, wait_for  # noqa: E402

CALL_LIMIT_MS = 3000
ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"
ACTION = "org.a11y.atspi.Action"
COMPONENT = "org.a11y.atspi.Component"
EDITABLE = "org.a11y.atspi.EditableText"
TABLE = "org.a11y.atspi.Table"
TEXT = "org.a11y.atspi.Text"
VALUE = "org.a11y.atspi.Value"
PROPERTIES = "org.freedesktop.DBus.Properties"

STATE_BITS = {"active": 1, "checked": 4, "enabled": 8, "focusable": 11, "focused": 12, "pressed": 20, "selected": 23,
              "showing": 25, "default": 39}

# Their items can be many; they are reached by row instead.
UNSEARCHED_ROLES = ("table", "list", "tree", "tree table", "menu bar")


class Bus:
    """A connection to the accessibility bus at an address."""

    def __init__(self, address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self._connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self._connection.set_exit_on_close(False)

    def call(self, name, path, interface, method, arguments=None):
        try:
            reply = self._connection.call_sync(name, path, interface, method, arguments, None,
                                               Gio.DBusCallFlags.NONE, CALL_LIMIT_MS, None)
        except GLib.Error as error:
            raise Gone(f"{method} of {path}: {error.message}") from None
        return reply.unpack()

    def application(self, pid):
        """The accessible root of the program with this process id; Gone while it has none."""
        for name, _ in self.call("org.a11y.atspi.Registry", ROOT, ACCESSIBLE, "GetChildren")[0]:
            try:
                owner = self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                  "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]
            except Gone:
                continue  # ended a moment ago
            if owner == pid:
                return Node(self, name, ROOT)
        raise Gone(f"process {pid} is not on the accessibility bus")

    def close(self):
        self._connection.close_sync(None)


class Node:
    """One window, control or table cell."""

    def __init__(self, bus, owner, path):
        self._bus = bus
        self._owner = owner
        self._path = path

    def __eq__(self, other):
        return isinstance(other, Node) and (self._owner, self._path) == (other._owner, other._path)

    def __hash__(self):
        return hash((self._owner, self._path))

    def __repr__(self):
        try:
            return f"{self.role} '{self.name}'"
        except Gone:
            return f"closed {self._path}"

    def call(self, interface, method, arguments=None):
        return self._bus.call(self._owner, self._path, interface, method, arguments)

    def interface_property(self, interface, name):
        return self.call(PROPERTIES, "Get", GLib.Variant("(ss)", (interface, name)))[0]

    def node(self, reference):
        return Node(self._bus, *reference)

    @property
    def name(self):
        return self.interface_property(ACCESSIBLE, "Name")

    @property
    def description(self):
        return self.interface_property(ACCESSIBLE, "Description")

    @property
    def role(self):
        return self.call(ACCESSIBLE, "GetRoleName")[0]

    def has_state(self, state):
        words = self.call(ACCESSIBLE, "GetState")[0]
        bit = STATE_BITS[state]
        return bool(words[bit // 32] >> (bit % 32) & 1)

    @property
    def enabled(self):
        return self.has_state("enabled")

    @property
    def showing(self):
        return self.has_state("showing")

    @property
    def words(self):
        """The text that the control shows: an edit's content, a label's words."""
        if TEXT in self.call(ACCESSIBLE, "GetInterfaces")[0]:
            return self.call(TEXT, "GetText", GLib.Variant("(ii)", (0, -1)))[0]
        return self.description

    @property
    def value(self):
        return self.interface_property(VALUE, "CurrentValue")

    def children(self):
        return [self.node(reference) for reference in self.call(ACCESSIBLE, "GetChildren")[0]]

    def extents(self):
        """Left, top, width and height on the screen."""
        return self.call(COMPONENT, "GetExtents", GLib.Variant("(u)", (0,)))[0]

    def press(self):
        """Does the control's main action as an assistive tool would; returns before its effect is seen.

        A disabled control has no action, so this waits until it is enabled.
        """
        wait_for(lambda: self.enabled, lambda: f"{self!r} enabled")
        self.call(ACTION, "DoAction", GLib.Variant("(i)", (0,)))

    def set_words(self, text):
        self.call(EDITABLE, "SetTextContents", GLib.Variant("(s)", (text,)))

    def descendants(self):
        """All controls below, outermost first; the items of tables, lists and menus are left out."""
        level = self.children()
        while level:
            yield from level
            searched = [node for node in level if node.role not in UNSEARCHED_ROLES]
            level = [child for node in searched for child in node.children()]

    def look_for(self, name, role=None):
        """A visible control below with this accessible name (and role); None when there is none now."""
        for node in self.descendants():
            if node.name == name and (role is None or node.role == role) and node.showing:
                return node
        return None

    def find(self, name, role=None, seconds=PATIENCE):
        def message():
            return f"{role or 'control'} '{name}' in {self!r}"
        return wait_for(lambda: self.look_for(name, role), message, seconds)

    def menu_entry(self, name):
        """The entry with this name in a menu bar, or in the menu that an entry opens; None when there is none."""
        menus = [self] if self.role == "menu bar" else self.children()
        return next((entry for menu in menus for entry in menu.children() if entry.name == name), None)

    def tree(self, depth=0):
        """What is visible below, one line each, for messages."""
        lines = [f"{'  ' * depth}{self!r} {self.description!r}"]
        if self.role not in UNSEARCHED_ROLES:
            lines += [child.tree(depth + 1) for child in self.children() if child.showing]
        return "\n".join(lines)


class Table:
    """A table or list control, by rows and columns from zero."""

    def __init__(self, node):
        self.node = node

    def row_count(self):
        return self.node.interface_property(TABLE, "NRows")

    def column_count(self):
        return self.node.interface_property(TABLE, "NColumns")

    def cell(self, row, column):
        place = GLib.Variant("(ii)", (row, column))
        return self.node.node(self.node.call(TABLE, "GetAccessibleAt", place)[0])

    def header(self, column):
        place = GLib.Variant("(i)", (column,))
        return self.node.node(self.node.call(TABLE, "GetColumnHeader", place)[0])

    def column_titles(self):
        return [self.header(column).name for column in range(self.column_count())]

    def column(self, column):
        """The texts of one column, top to bottom."""
        return [self.cell(row, column).name for row in range(self.row_count())]

    def rows(self):
        columns = range(self.column_count())
        return [tuple(self.cell(row, column).name for column in columns) for row in range(self.row_count())]

    def selected_rows(self):
        return sorted(self.node.call(TABLE, "GetSelectedRows")[0])

    def select_rows(self, rows):
        """Has exactly these rows selected."""
        for row in set(self.selected_rows()) - set(rows):
            self.node.call(TABLE, "RemoveRowSelection", GLib.Variant("(i)", (row,)))
        for row in rows:
            self.node.call(TABLE, "AddRowSelection", GLib.Variant("(i)", (row,)))
