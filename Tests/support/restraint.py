"""Keeps a driver to one way of input, so that a test that uses another by mistake fails."""

import contextlib
import unittest.mock

from accessibility import Bus
from desktop import Desktop


def keyboard_only():
    """While this lasts only keys are sent; the accessibility bus answers questions and does nothing."""
    return _restrained(lambda tool: tool in ("key", "type"), lambda method: method.startswith("Get"))


def accessibility_bus_only():
    """While this lasts neither keys nor pointer events are sent."""
    return _restrained(lambda tool: False, lambda method: True)


@contextlib.contextmanager
def _restrained(may_send, may_call):
    send, call = Desktop.send_input, Bus.call

    def guarded_send(desktop, *words):
        if not may_send(words[0]):
            raise AssertionError(f"not in this test: {words}")
        return send(desktop, *words)

    def guarded_call(bus, name, path, interface, method, arguments=None):
        if not may_call(method):
            raise AssertionError(f"not in this test: {method} of {path}")
        return call(bus, name, path, interface, method, arguments)

    with unittest.mock.patch.object(Desktop, "send_input", guarded_send), \
            unittest.mock.patch.object(Bus, "call", guarded_call):
        yield
