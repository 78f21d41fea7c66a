"""What is transferred: random bytes, since nobody is to gain by compressing them."""

import os
import shutil

BLOCK = 16 << 20
TREE = "tree"
LARGE = "large.bin"
LARGEST_UPLOAD = "upload.bin"
ONE_BYTE = "one.bin"
MOST_FOLDERS = 400


def write_file(path, size):
    path.parent.mkdir(parents=True, exist_ok=True)
    with open(path, "wb") as file:
        for begin in range(0, size, BLOCK):
            file.write(os.urandom(min(BLOCK, size - begin)))


def write_tree(folder, files, folders, size):
    """`files` files, spread evenly over at most `folders` folders of `folder`, or in it where that is 1."""
    for number in range(files):
        parent = folder / f"folder-{number % folders:03}" if folders > 1 else folder
        write_file(parent / f"{number:05}.bin", size)


def sizes(folder):
    """Sizes by path of all files below a folder."""
    found = {}
    for parent, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(parent, name)
            found[os.path.relpath(path, folder)] = os.path.getsize(path)
    return found


def remove(folder):
    if folder.exists():
        shutil.rmtree(folder)


def empty(folder):
    remove(folder)
    folder.mkdir(parents=True)


class Place:
    """A folder, on a disk or in memory, in which the jobs are done: `root` is served, `out` takes downloads,
    `root/in` takes uploads, and `local` holds what is uploaded."""

    def __init__(self, name, folder, is_disk):
        self.name = name
        self.is_disk = is_disk
        self.folder = folder
        self.root, self.local, self.out = (folder / part for part in ("root", "local", "out"))
        self.incoming = self.root / "in"
        write_file(self.root / ONE_BYTE, 1)
        self.local.mkdir()
        self.clear()

    def clear(self):
        """Removes what the last job has made, so that the next one finds what it found."""
        empty(self.out)
        empty(self.incoming)
        if self.is_disk:
            os.sync()  # what is still to be written would be written during the next job
