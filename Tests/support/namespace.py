"""A private network and a private place for X sockets, so that a run meets nothing of its machine."""

import os
import shutil
import subprocess
import sys

MARK = "QUILLBOX_PRIVATE_NETWORK"
X_SOCKETS = "/tmp/.X11-unix"
UNSHARE = ["unshare", "--map-root-user", "--net", "--mount", "sh", "-c"]

# A virtual display takes the first free number and would put its socket over that of a real display.
SET_UP = f"""ip link set lo up multicast on && ip route add 224.0.0.0/4 dev lo &&
mount -t tmpfs tmpfs {X_SOCKETS}"""


def prepare():
    """Puts in place what the other two need; call it first."""
    # An ordinary user's search path lacks the folders of ip and mount.
    if not os.environ.get("PATH", "").endswith(":/sbin"):
        os.environ["PATH"] = os.environ.get("PATH", "/usr/bin:/bin") + ":/usr/sbin:/sbin"
    if not os.path.isdir(X_SOCKETS):
        os.mkdir(X_SOCKETS)
        os.chmod(X_SOCKETS, 0o1777)


def available():
    """True when this machine lets us have such namespaces."""
    return MARK in os.environ or can_run(SET_UP)


def can_run(commands):
    """True when shell commands succeed in new namespaces, which end with them."""
    quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
    return shutil.which("unshare") is not None and \
        subprocess.run(UNSHARE + [commands], check=False, **quiet).returncode == 0


def enter():
    """Runs this very script again inside new namespaces, unless it already is in its own."""
    if os.environ.pop(MARK, None) is None:
        os.environ[MARK] = "1"
        sys.stdout.flush()
        os.execvp(UNSHARE[0], UNSHARE + [SET_UP + ' && exec "$@"', "sh", sys.executable, *sys.argv])
