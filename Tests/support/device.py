"""Devices for the program to talk to: the real server, and one that misbehaves on order."""

import re
import signal
import socket
import struct
import threading

DEVICE_PORT = 10240
FOLDER_SIZE = 4096  # what has no size is not downloaded


class Device:
    """The device server of this repository, serving a folder."""

    def __init__(self, desktop, root, name="Test device", address="127.0.0.1", rights="cd-", version="1.10",
                 announce=(), host=None, port=DEVICE_PORT):
        """`announce` holds the options by which it announces itself; `host` is the machine of a Lan it is on."""
        self._desktop = desktop
        self._host = host
        self._argv = [desktop.programs / "quillbox-device", "--root", root, "--port", port,
                      "--address", address, "--name", name, "--rights", rights, "--protocol-version", version,
                      *announce]
        self._process = None
        self.start()

    def start(self):
        self._process = self._desktop.start(self._argv, host=self._host)
        self._process.wait_for_output("listening on")

    def stop(self):
        self._process.end()

    def kill(self):
        """Ends it without a chance to say goodbye."""
        self._process.signal(signal.SIGKILL)
        self._process.wait()


class ScriptedDevice:
    """A device made of a few files in memory, each file named by its path.

    `held` holds the commands that stay unanswered ("dir", say, or "welcome"). Of a download only the first
    `body_limit` bytes are sent when that is set; `announced` replaces its length and `surplus` follows its
    body. `commands` collects what arrived.
    """

    COMMAND = re.compile(rb'<cmd (\w+)>\w+ = "([^"]*)".*?</cmd>', re.DOTALL)

    def __init__(self, files=(), address="127.0.0.1", name="Scripted", version="1.10"):
        self.files = dict(files)
        self.held = set()
        self.body_limit = None
        self.announced = None
        self.surplus = b""
        self.commands = []
        self._welcome = f'<welcome>Name = "{name}" Version = "{version}" ID = "1"</welcome>'.encode()
        self._answers = {"dir": self._dir, "dir_recurse": self._dir_recurse, "download": self._download}
        self._connections = []
        self._listener = socket.create_server((address, DEVICE_PORT))
        self._threads = [threading.Thread(target=self._accept, daemon=True)]
        self._threads[0].start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def drop(self):
        """Ends all connections and goes on listening."""
        for connection in self._connections:
            close(connection)

    def stop(self):
        close(self._listener)
        self.drop()
        for thread in self._threads:
            thread.join(5)

    def release(self):
        """From here on everything is answered in full."""
        self.held.clear()
        self.body_limit = None
        self.announced = None
        self.surplus = b""

    def connection_count(self):
        """Connections accepted so far."""
        return len(self._connections)

    def has_received(self, command):
        return any(name == command for name, _ in self.commands)

    def _accept(self):
        while True:
            try:
                connection, _ = self._listener.accept()
            except OSError:
                return
            self._connections.append(connection)
            thread = threading.Thread(target=self._serve, args=(connection,), daemon=True)
            self._threads.append(thread)
            thread.start()

    def _serve(self, connection):
        try:
            if "welcome" not in self.held:
                connection.sendall(self._welcome)
            self._read_commands(connection)
        except OSError:
            pass  # the other side left

    def _read_commands(self, connection):
        pending = b""
        while chunk := connection.recv(65536):
            pending += chunk
            while match := self.COMMAND.search(pending):
                pending = pending[match.end():]
                self._answer(connection, match[1].decode(), match[2].decode())

    def _answer(self, connection, command, path):
        self.commands.append((command, path))
        answer = self._answers.get(command)
        if answer and command not in self.held:
            connection.sendall(answer(path.removeprefix("User/")))

    def _dir(self, folder):
        prefix = folder + "/" if folder else ""
        entries = {}
        for path, body in self.files.items():
            if path.startswith(prefix):
                name, slash, _ = path.removeprefix(prefix).partition("/")
                entries[name] = ("Dir", FOLDER_SIZE) if slash else ("File", len(body))
        lines = [f'<Item Name = "{name}" Type = "{kind}" Date = "2024-05-01" Size = "{size}" Rights = "cd-">'
                 for name, (kind, size) in entries.items()]
        return ('<dir>Rights = "cd-"\n' + "\n".join(lines) + "\n</dir>").encode()

    def _dir_recurse(self, folder):
        bodies = [body for path, body in self.files.items() if path.startswith(folder + "/")]
        size = sum(map(len, bodies))
        return f'<dir_recurse>Size = "{size}" NumFiles = "{len(bodies)}"</dir_recurse>'.encode()

    def _download(self, path):
        body = self.files[path]
        length = len(body) if self.announced is None else self.announced
        return struct.pack("<I", length) + body[:self.body_limit] + self.surplus


def close(end):
    """Closes a socket; closing alone would leave a thread that waits in accept or recv where it is."""
    try:
        end.shutdown(socket.SHUT_RDWR)
    except OSError:
        pass
    end.close()
