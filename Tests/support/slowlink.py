"""A slow line between the program and a device, so that a transfer lasts long enough to be looked at.

    link = SlowLink(listen=("127.0.0.1", 10240), to=("127.0.0.1", 10250))
    link.rate = 2_000_000   # bytes per second, in each direction
    ...
    link.rate = None        # as fast as it goes
"""

import contextlib
import socket
import threading
import time

PIECE = 32 * 1024
# Little room on the way, so that what the program has sent is what has gone through.
ROOM = 64 * 1024


class SlowLink:
    """Carries connections for as long as the driver lives."""

    def __init__(self, listen, to):
        self.rate = None
        self._to = to
        self._listener = socket.socket()
        self._listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self._listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, ROOM)
        self._listener.bind(listen)
        self._listener.listen()
        start(self._accept)

    def _accept(self):
        while True:
            program, _ = self._listener.accept()
            device = socket.create_connection(self._to)
            start(self._carry, program, device)
            start(self._carry, device, program)

    def _carry(self, source, target):
        with contextlib.suppress(OSError):  # one side left; the other one is told
            while piece := source.recv(PIECE):
                target.sendall(piece)
                self._rest(len(piece))
        with contextlib.suppress(OSError):
            target.shutdown(socket.SHUT_WR)

    def _rest(self, size):
        """Takes the time that so many bytes need."""
        rate = self.rate
        if rate:
            time.sleep(size / rate)


def start(work, *arguments):
    threading.Thread(target=work, args=arguments, daemon=True).start()
