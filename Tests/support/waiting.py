"""Waiting for conditions, always with a deadline."""

import time

PATIENCE = 15.0
POLL_PAUSE = 0.02


class Gone(Exception):
    """What was asked is not there (any more): a closed window, an ended program."""


def wait_for(condition, what, seconds=PATIENCE):
    """Polls `condition` until it holds and returns its value; TimeoutError names `what` otherwise.

    `what` may be a function, so that the message can tell what was there instead.
    """
    deadline = time.monotonic() + seconds
    while True:
        try:
            value = condition()
            if value:
                return value
        except Gone:
            pass
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited {seconds:g} s for {what() if callable(what) else what}")
        time.sleep(POLL_PAUSE)


def stays(condition, seconds):
    """True when `condition` holds at every look during this time."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if not condition():
            return False
        time.sleep(POLL_PAUSE)
    return True


def becomes(condition, seconds):
    """True when `condition` holds at some look during this time."""
    return not stays(lambda: not condition(), seconds)
