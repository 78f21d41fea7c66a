"""The servers that a run compares, each over the same folder, on loopback ports of their own.

They need no rights of the system: FTP, rsync and SSH servers run as an ordinary user of a namespace below the
run's one, since as root they would want to become users that the namespace does not have.
"""

import contextlib
import os
import pathlib
import socket
import subprocess

from processes import Process
from waiting import wait_for

ADDRESS = "127.0.0.1"
FTP_PORT = 2121
SSH_PORT = 2222
RSYNC_PORT = 8730
DEVICE_PORT = 10240
USER = "bench"
USER_ID = 1000
AS_USER = ["unshare", "--user", f"--map-user={USER_ID}", f"--map-group={USER_ID}", "--"]

VSFTPD = """listen=YES
listen_address={address}
listen_port={port}
background=NO
run_as_launching_user=YES
seccomp_sandbox=NO
anonymous_enable=YES
local_enable=NO
no_anon_password=YES
anon_root={root}
allow_writeable_chroot=YES
anon_world_readable_only=NO
write_enable=YES
anon_upload_enable=YES
anon_mkdir_write_enable=YES
anon_other_write_enable=YES
anon_umask=022
pasv_enable=YES
connect_from_port_20=NO
xferlog_enable=NO
secure_chroot_dir={empty}
"""

RSYNCD = """use chroot = no
address = {address}
port = {port}
reverse lookup = no
[root]
path = {root}
read only = no
"""

SSHD = """ListenAddress {address}
Port {port}
HostKey {folder}/host_key
AuthorizedKeysFile {folder}/user_key.pub
PidFile none
UsePAM no
StrictModes no
PasswordAuthentication no
UseDNS no
LogLevel ERROR
Subsystem sftp /usr/lib/openssh/sftp-server
"""


class Servers:
    """All servers over one folder; they end with the block, or when this script is killed."""

    def __init__(self, programs, root, folder):
        """`folder` takes configurations and logs."""
        self._programs = pathlib.Path(programs)
        self._root = root
        self.folder = pathlib.Path(folder)
        self._end = contextlib.ExitStack()

    def __enter__(self):
        with self._end:
            self._start_device()
            self._start_ftp()
            self._start_rsync()
            self._start_ssh()
            self._end = self._end.pop_all()
        return self

    def __exit__(self, *_):
        self._end.close()

    def _start_device(self):
        self._start([self._programs / "quillbox-device", "--root", self._root], DEVICE_PORT)

    def _start_ftp(self):
        empty = self.folder / "empty"
        empty.mkdir()
        configuration = self._write("vsftpd.conf", VSFTPD, FTP_PORT, empty=empty)
        self._start([*AS_USER, "vsftpd", configuration], FTP_PORT)

    def _start_rsync(self):
        configuration = self._write("rsyncd.conf", RSYNCD, RSYNC_PORT)
        self._start([*AS_USER, "rsync", "--daemon", "--no-detach", f"--config={configuration}"], RSYNC_PORT)

    def _start_ssh(self):
        name_user(self.folder)
        for key in ("host_key", "user_key"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / key], check=True)
        configuration = self._write("sshd.conf", SSHD, SSH_PORT)
        self._start([*AS_USER, "/usr/sbin/sshd", "-D", "-e", "-f", configuration], SSH_PORT)

    def _write(self, name, template, port, **more):
        path = self.folder / name
        path.write_text(template.format(address=ADDRESS, port=port, root=self._root, folder=self.folder, **more))
        return path

    def _start(self, command, port):
        log = self.folder / f"port-{port}.log"
        process = Process(command, {**os.environ, "HOME": str(self.folder)}, log, "TERM")
        self._end.callback(process.end)
        wait_for(lambda: answers(process, port), f"port {port} of {command}")


def answers(process, port):
    """True once somebody listens there."""
    if not process.running:
        raise RuntimeError(f"{process.argv} ended: {process.output()[-2000:]}")
    try:
        socket.create_connection((ADDRESS, port), 1).close()
    except OSError:
        return False
    return True


def name_user(folder):
    """Gives the user of the servers a name, in the files of the run's own mount namespace."""
    known = pathlib.Path("/etc/passwd").read_text(encoding="utf-8")
    if f"\n{USER}:x:{USER_ID}:" in known:
        return
    others = "".join(line for line in known.splitlines(True) if f":x:{USER_ID}:" not in line)
    over = folder / "passwd"
    over.write_text(f"{others}{USER}:x:{USER_ID}:{USER_ID}::/:/bin/sh\n", encoding="utf-8")
    subprocess.run(["mount", "--bind", over, "/etc/passwd"], check=True)
