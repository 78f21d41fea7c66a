"""Runs commands and measures them, everybody in turn."""

import json
import os
import subprocess
import sys

import figures

PATIENCE = 900.0


class Runner:
    """Runs the commands of one bench run, in an environment that holds nothing of the user's."""

    def __init__(self, programs, folder, rounds):
        self.programs = programs
        self.folder = folder
        self.rounds = rounds
        home = folder / "home"
        home.mkdir()
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(home), "LC_ALL": "C.UTF-8",
                            "XDG_RUNTIME_DIR": str(home), "TMPDIR": str(folder)}

    def printed_report(self, command):
        """What a program that measures itself prints, between lines of its log: a dictionary."""
        return json.loads([line for line in self.output(command).splitlines() if line.startswith("{")][-1])

    def whole_report(self, command):
        """The same about a whole process, from its start to its end."""
        report = self.folder / "report.json"
        report.unlink(missing_ok=True)
        self.output([self.programs / "benchmark_command", report, *command])
        return json.loads(report.read_text())

    def output(self, command):
        """Runs a command that must succeed; returns what it prints."""
        words = [str(word) for word in command]
        done = subprocess.run(words, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, timeout=PATIENCE, cwd=self.folder, check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{words[:6]} ended with {done.returncode}: {done.stderr[-2000:]}")
        return done.stdout

    def in_turn(self, title, tries):
        """Timings of the functions in `tries`, by name. Each returns a report; all of them have their turn in
        each round before the next begins, so that what changes on the machine meets them alike."""
        timings = figures.Timings({name: [] for name in tries})
        for number in range(self.rounds):
            for name in rotated(list(tries), number):
                report = tries[name](first=number == 0)
                timings.add(name, report["seconds"], report.get("peak_kib", 0))
            say(f"{title}, round {number + 1} of {self.rounds}: "
                + ", ".join(f"{name} {figures.duration(timings.seconds[name][-1])}" for name in tries))
        return timings


def rotated(names, number):
    """Each round begins with another: the first may find a machine that has to wake up."""
    begin = number % len(names)
    return names[begin:] + names[:begin]


def say(text):
    print(text, file=sys.stderr, flush=True)
