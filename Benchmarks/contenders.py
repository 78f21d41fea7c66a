"""Who does a job: each contender has a command for each of the four jobs.

Those with `own_clock` print a report about the job alone; of the others the whole process is measured.
"""

import os

import material
from servers import ADDRESS, FTP_PORT, RSYNC_PORT, SSH_PORT, USER


class OverTheDeviceProtocol:
    own_clock = True

    def __init__(self, name, program):
        self.name = name
        self._program = program

    def download_file(self, place, name):
        return [self._program, "download-file", name, (place.root / name).stat().st_size, place.out]

    def download_tree(self, place, name):
        return [self._program, "download-folder", name, place.out]

    def upload(self, _place, path):
        return [self._program, "upload", "in", path]

    upload_tree = upload


class Curl:
    """One invocation, and so one connection, for a tree as well.

    The server connects back to it for each file ("-P -"). The other way round curl 7.88 loses a whole second
    whenever a server answers within its next few calls, which on one machine is every third file or so.
    """
    name = "curl"
    command = ["curl", "-sS", "-P", "-"]
    own_clock = False
    url = f"ftp://{ADDRESS}:{FTP_PORT}"

    def download_file(self, place, name):
        return [*self.command, "-o", place.out / name, f"{self.url}/{name}"]

    def upload(self, _place, path):
        return [*self.command, "-T", path, f"{self.url}/in/{path.name}"]

    def download_tree(self, place, name):
        lines = [f'url = "{self.url}/{name}/{path}"\noutput = "{place.out}/{name}/{path}"\n'
                 for path in sorted(material.sizes(place.root / name))]
        return [*self.command, "--create-dirs", "-K", script(place, "curl-down", lines)]

    def upload_tree(self, place, path):
        lines = [f'upload-file = "{path}/{part}"\nurl = "{self.url}/in/{path.name}/{part}"\n'
                 for part in sorted(material.sizes(path))]
        return [*self.command, "--ftp-create-dirs", "-K", script(place, "curl-up", lines)]


class Lftp:
    name = "lftp"
    own_clock = False

    def download_file(self, place, name):
        return self._command(f"get -O {place.out} {name}")

    def upload(self, _place, path):
        return self._command(f"put -O in {path}")

    def download_tree(self, place, name):
        return self._command(f"mirror {name} {place.out}/{name}")

    def upload_tree(self, _place, path):
        return self._command(f"mirror -R {path} in/{path.name}")

    def _command(self, text):
        return ["lftp", "-c", f"set cmd:fail-exit yes; open -p {FTP_PORT} {ADDRESS}; {text}"]


class Rsync:
    name = "rsync"
    own_clock = False
    url = f"rsync://{ADDRESS}:{RSYNC_PORT}/root"

    def download_file(self, place, name):
        return ["rsync", f"{self.url}/{name}", f"{place.out}/"]

    def upload(self, _place, path):
        return ["rsync", path, f"{self.url}/in/"]

    def download_tree(self, place, name):
        return ["rsync", "-r", f"{self.url}/{name}", f"{place.out}/"]

    def upload_tree(self, _place, path):
        return ["rsync", "-r", path, f"{self.url}/in/"]


class OverSsh:
    own_clock = False

    def __init__(self, key):
        self._options = ["-q", "-F", "none", "-P", SSH_PORT, "-i", key, "-o", "StrictHostKeyChecking=no",
                         "-o", "UserKnownHostsFile=/dev/null"]


class Sftp(OverSsh):
    name = "sftp"

    def download_file(self, place, name):
        return self._command(place, "down", f"get {place.root}/{name} {place.out}/{name}")

    def upload(self, place, path):
        return self._command(place, "up", f"put {path} {place.incoming}/{path.name}")

    def download_tree(self, place, name):
        return self._command(place, "down", f"get -r {place.root}/{name} {place.out}/")

    def upload_tree(self, place, path):
        return self._command(place, "up", f"put -r {path} {place.incoming}/")

    def _command(self, place, way, text):
        return ["sftp", *self._options, "-b", script(place, f"sftp-{way}", [text + "\n"]), f"{USER}@{ADDRESS}"]


class Scp(OverSsh):
    name = "scp"

    def download_file(self, place, name):
        return ["scp", *self._options, f"{USER}@{ADDRESS}:{place.root}/{name}", place.out]

    def upload(self, place, path):
        return ["scp", *self._options, path, f"{USER}@{ADDRESS}:{place.incoming}/"]

    def download_tree(self, place, name):
        return ["scp", "-r", *self._options, f"{USER}@{ADDRESS}:{place.root}/{name}", place.out]

    def upload_tree(self, place, path):
        return ["scp", "-r", *self._options, path, f"{USER}@{ADDRESS}:{place.incoming}/"]


def script(place, name, lines):
    """A file of commands for a contender."""
    path = place.folder / f"{name}-{os.getpid()}.txt"
    path.write_text("".join(lines), encoding="utf-8")
    return path


def all_contenders(programs, key):
    """Ours first and the floor second: measuring memory and growth takes them by their places."""
    return [OverTheDeviceProtocol("ours", programs / "benchmark_transfers"),
            OverTheDeviceProtocol("floor", programs / "benchmark_floor"),
            Curl(), Lftp(), Rsync(), Sftp(key), Scp(key)]
