"""The guided tour: the real program on a virtual display, its steps printed, its windows saved as pictures.

    python3 tour.py [--dark] [--scale 2] [--language de] [--bin FOLDER] [--sample FOLDER] [--pictures FOLDER]

Leaves the pictures and a page that shows them, index.html. Ends with status 0 only when every step was seen to work.
"""

import argparse
import pathlib
import subprocess
import sys

import namespace
from clipboard import reason_not_to_paste
from desktop import REPOSITORY, Desktop, reason_not_to_run
from filemanager import Thunar
from look import LOCALES, Look
from tourstage import Stage
from tourwalk import walk
from waiting import Gone
from words import Words, read_in_english

HOME = pathlib.Path("/media/anna")
PROBLEMS = (RuntimeError, TimeoutError, Gone)

# Stands in for the person's web browser: it writes down what it is asked to show.
BROWSER = """#!/bin/sh
echo "$1" >> "$XDG_RUNTIME_DIR/shown"
"""


def move_in(desktop):
    """A home for the person whose pictures these are, where nothing of this machine shows; it ends with the tour."""
    subprocess.run(["mount", "-t", "tmpfs", "tmpfs", HOME.parent], check=True, timeout=20)
    HOME.mkdir()
    desktop.environment["HOME"] = str(HOME)
    return HOME


def dress(desktop, look):
    """Makes the desktop look like that, and lets its drivers read the program in every language."""
    look.put_on(desktop)
    browser = desktop.folder("bin") / "xdg-open"
    browser.write_text(BROWSER)
    browser.chmod(0o755)
    desktop.environment["PATH"] = f"{browser.parent}:{desktop.environment['PATH']}"
    if look.language != "en":
        read_in_english(desktop.bus, Words(look.language))


def arguments():
    release = REPOSITORY / "build/release"
    parser = argparse.ArgumentParser(description="Takes the guided tour through the program.")
    parser.add_argument("--dark", action="store_true", help="on a dark desktop")
    parser.add_argument("--scale", type=int, choices=(1, 2), default=1, help="how many pixels a point has each way")
    parser.add_argument("--language", choices=LOCALES, default="en", help="the person's language")
    parser.add_argument("--bin", type=pathlib.Path, default=release / "bin", help="where the programs are")
    parser.add_argument("--sample", type=pathlib.Path, default=release / "share/quillbox/sample",
                        help="the folder that the device serves a copy of")
    parser.add_argument("--pictures", type=pathlib.Path, default=REPOSITORY / "build/tour",
                        help="where the pictures and the page go; what an earlier tour left there is removed")
    return parser.parse_args()


def remove_earlier(pictures):
    pictures.mkdir(parents=True, exist_ok=True)
    for path in (*pictures.glob("*.png"), *pictures.glob("index.html")):
        path.unlink()


def take(chosen, desktop, look):
    """Takes the tour; returns what it stopped at, None when it was complete."""
    stage = Stage(desktop, chosen.sample, move_in(desktop), chosen.pictures, look)
    try:
        walk(stage)
    except PROBLEMS as problem:
        failure = chosen.pictures / "failed.png"
        desktop.picture(failure)
        stage.report.write(problem, failure)
        return f"The tour stopped: {problem}\n{failure} shows the screen at that moment."
    print(f"The tour is complete; {stage.report.write()} shows it.")
    return None


def main():
    chosen = arguments()
    reason = reason_not_to_run() or Thunar.reason_not_to_run() or reason_not_to_paste()
    if reason:
        sys.exit(f"The tour cannot be taken: {reason}")
    namespace.enter()
    remove_earlier(chosen.pictures)
    look = Look(chosen.dark, chosen.scale, chosen.language)
    with Desktop(chosen.bin.resolve(), look.scale) as desktop:
        dress(desktop, look)
        sys.exit(take(chosen, desktop, look))


if __name__ == "__main__":
    main()
