"""Drags by hand: the pointer takes hold of something, carries it and lets go.

    with Dragging(desktop, nowhere) as hand:
        hand.drag(start, end)

The pointer's picture tells how a drag stands, whatever programs take part in it. Of the pictures themselves
nothing is expected but that the one over a place that takes the drop differs from the one over a place that
does not.
"""

from cursor import Cursor
from waiting import stays, wait_for

STEP = 40
REST = 0.4
BESIDE = 7  # so far from a click at the same point that the two are no double click


class Dragging:
    """`nowhere` is a point of the screen where a drop is refused: the bare desktop, say."""

    def __init__(self, desktop, nowhere):
        self._desktop = desktop
        self._nowhere = nowhere
        self._place = None
        self._cursor = None

    def __enter__(self):
        self._cursor = Cursor(self._desktop.environment["DISPLAY"])
        return self

    def __exit__(self, *_):
        self._cursor.close()

    def drag(self, start, end):
        """Drags what is at one point to another one that takes it."""
        self.lift(start)
        self.carry_where_it_is_taken(end)
        self.let_go()

    def drag_nowhere(self, start):
        """Drags what is at a point to where nothing takes it."""
        self.lift(start)
        self.carry_nowhere()
        self.let_go()

    def lift(self, start):
        """Takes hold of what is at a point; returns once it hangs on the pointer."""
        self._go((start[0] + BESIDE, start[1]))
        self._wait_for_rest()
        before = self._cursor.picture()
        self._desktop.hold_button()
        self._shake(lambda: self._cursor.picture() != before, "something to hang on the pointer", reach=16)

    def carry_nowhere(self):
        self.carry_anywhere(self._nowhere)

    def carry_anywhere(self, end):
        """Carries the drag to a point, whatever the pointer then shows."""
        self._travel(end)
        self._wait_for_rest()

    def carry_where_it_is_taken(self, end):
        """Carries the drag to a point; returns once the pointer shows that it would be taken there."""
        self.carry_nowhere()
        refused = self._cursor.picture()
        self._travel(end)
        self._shake(lambda: self._cursor.picture() != refused, f"a drop to be possible at {end}")

    def let_go(self):
        self._desktop.release_button()

    def picture_name(self):
        return self._cursor.name()

    def _go(self, place):
        self._desktop.move_pointer(*place)
        self._place = place

    def _travel(self, end):
        """Moves over the screen in steps, since programs want to see a drag come."""
        start = self._place
        count = 1 + max(abs(end[axis] - start[axis]) for axis in (0, 1)) // STEP
        for step in range(1, count + 1):
            self._go(tuple(start[axis] + (end[axis] - start[axis]) * step // count for axis in (0, 1)))

    def _shake(self, condition, what, reach=1):
        """Moves to and fro around a place until a condition holds: programs look again at each motion."""
        x, y = self._place
        offsets = [0]

        def holds():
            offsets[0] = (offsets[0] + max(1, reach // 4)) % (reach + 1)
            self._desktop.move_pointer(x + offsets[0], y + offsets[0] // 2)
            return condition()
        wait_for(holds, what)

    def _wait_for_rest(self):
        """Waits until the picture has not changed for a moment: a busy program follows the pointer late."""
        def at_rest():
            picture = self._cursor.picture()
            return stays(lambda: self._cursor.picture() == picture, REST)
        wait_for(at_rest, "the pointer's picture to come to rest")
