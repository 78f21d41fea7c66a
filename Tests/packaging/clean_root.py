"""The installed packages in a root of their own: the program finds the device in there and downloads from it.

    python3 clean_root.py ROOT

Display, window manager and buses are from outside, so that the root has to bring everything else.
"""

import os
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))

import namespace  # noqa: E402
from desktop import Desktop, reason_not_to_run  # noqa: E402
from device import Device  # noqa: E402
from quillbox import Quillbox  # noqa: E402

DEVICE_NAME = "Clean device"
FILES = {"Set/1.dat": b"one" * 100_000, "Set/Sub/2.dat": b"two", "a.txt": b"text"}


class Root:
    """What has a program run inside of the root; a desktop takes it for the machine to start programs on."""

    def __init__(self, path, desktop):
        self.path = path
        self.prefix = ["chroot", path]
        # All of these mounts end with our namespace, the folders made for them with the first of them.
        mount("-t", "tmpfs", "tmpfs", path / "tmp")
        mount("--rbind", "/proc", path / "proc")
        for shared in (desktop.root, pathlib.Path(namespace.X_SOCKETS)):
            inside = path / shared.relative_to("/")
            inside.mkdir(parents=True)
            mount("--bind", shared, inside)

    def holds(self, process):
        """Whether a process sees this folder as its root."""
        return os.path.samefile(f"/proc/{process.pid}/root", self.path)


def mount(*arguments):
    subprocess.run(["mount", *arguments], check=True, timeout=20)


def write_files(folder):
    for path, content in FILES.items():
        (folder / path).parent.mkdir(parents=True, exist_ok=True)
        (folder / path).write_bytes(content)


def check(condition, statement):
    if not condition:
        raise RuntimeError(f"not so: {statement}")
    print(f"   {statement}", flush=True)


def walk(desktop, root):
    served, target = desktop.folder("device"), desktop.folder("Downloads")
    write_files(served)
    Device(desktop, served, name=DEVICE_NAME, announce=["--announce-to", "127.0.0.1"], host=root)
    quillbox = Quillbox(desktop, root)
    check(root.holds(quillbox.program.process), "the program has started and sees nothing but the clean root")

    dialog = quillbox.open_selection()
    quillbox.wait_for_devices(dialog, [DEVICE_NAME])
    quillbox.choose_device(dialog, DEVICE_NAME)
    quillbox.confirm_selection(dialog, DEVICE_NAME)
    quillbox.wait_for_listing("/", ["Set", "a.txt"])
    check(True, f"it has found '{DEVICE_NAME}' and lists its folder")

    quillbox.start_download(["Set", "a.txt"], target)
    quillbox.wait_for_end_of_transfer()
    arrived = {str(path.relative_to(target)): path.read_bytes() for path in target.rglob("*") if path.is_file()}
    check(arrived == FILES, f"{', '.join(sorted(arrived))} have arrived, equal byte for byte")

    desktop.close_window(quillbox.main)
    check(quillbox.program.process.wait() == 0, "closing the window has ended it with status 0")


def main():
    reason = reason_not_to_run()
    if reason:
        sys.exit(f"The program cannot be started: {reason}")
    namespace.enter()
    with Desktop("/usr/bin") as desktop:
        walk(desktop, Root(pathlib.Path(sys.argv[1]).resolve(), desktop))


if __name__ == "__main__":
    main()
