"""Measures the program beside what people would use instead, and beside what the wire and the disk allow.

    ./bench [--rounds N] [--only JOB]... [--quick]

Everything runs in a network of its own; servers and folders go with the run.
"""

import argparse
import contextlib
import os
import pathlib
import re
import shutil
import signal
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "Tests/support"))

import namespace  # noqa: E402

import conversion  # noqa: E402
import growth  # noqa: E402
import table  # noqa: E402
import transfers  # noqa: E402
import windows  # noqa: E402
from contenders import all_contenders  # noqa: E402
from material import Place  # noqa: E402
from runner import Runner, say  # noqa: E402
from servers import Servers  # noqa: E402

TRANSFERS = [job.name for job in transfers.JOBS]
WINDOWS = {"parse": windows.parse_rows, "paint": windows.paint_rows, "start": windows.start_rows}
ALL = [*TRANSFERS, "memory-use", "conversion", *WINDOWS, "idle", "growth"]


class Bench:
    """One run of the chosen jobs; collects rows and plots."""

    def __init__(self, chosen, build):
        self._chosen = chosen
        self._build = build
        self._end = contextlib.ExitStack()
        self._runner = None
        self.rows = []
        self.plots = {}

    def __enter__(self):
        self._runner = Runner(self._build / "bin", self._folder(self._build), self._chosen.rounds)
        return self

    def __exit__(self, *_):
        self._end.close()

    def run(self):
        for name, parent, is_disk in (("disk", self._build, True), ("memory", pathlib.Path("/dev/shm"), False)):
            if self._wants(*TRANSFERS, "memory-use", "conversion", "growth", "idle"):
                self._run_in(Place(name, self._folder(parent), is_disk))
        for name, rows in WINDOWS.items():
            if self._wants(name):
                self.rows += rows(self._runner)

    def _wants(self, *names):
        return any(name in self._chosen.only for name in names)

    def _folder(self, parent):
        folder = pathlib.Path(tempfile.mkdtemp(prefix="quillbox-bench-", dir=parent))
        self._end.callback(shutil.rmtree, folder, ignore_errors=True)
        return folder

    def _run_in(self, place):
        say(f"In {place.folder}")
        configurations = self._folder(self._runner.folder)
        with Servers(self._runner.programs, place.root, configurations):
            contenders = all_contenders(self._runner.programs, configurations / "user_key")
            self._transfer(place, contenders)
            self._grow(place, contenders)
            if self._wants("idle") and not place.is_disk:
                self.rows.append(windows.idle_row(self._runner))
        if self._wants("conversion"):
            self._convert(place)
        shutil.rmtree(place.folder)

    def _transfer(self, place, contenders):
        sizes = transfers.QUICK if self._chosen.quick else transfers.Sizes()
        if not self._wants(*TRANSFERS, "memory-use"):
            return
        transfers.prepare(place, sizes)
        work = transfers.Transfers(self._runner, place, contenders)
        self.rows += [work.row(job) for job in transfers.JOBS if self._wants(job.name)]
        if self._wants(*TRANSFERS):
            self.rows.append(work.session_row())
        if self._wants("memory-use") and not place.is_disk:
            self.rows += transfers.memory_rows(self._runner, place, contenders[0], sizes)

    def _grow(self, place, contenders):
        """In memory only: what grows on a disk is its own affair."""
        if not self._wants("growth") or place.is_disk:
            return
        work = transfers.Transfers(self._runner, place, contenders)
        for rows, plots in (growth.by_size(work, place, self._chosen.quick),
                            growth.by_count(work, place, contenders[:2], self._chosen.quick)):
            self.rows += rows
            self.plots |= plots

    def _convert(self, place):
        seconds = conversion.QUICK_SECONDS if self._chosen.quick else conversion.SECONDS
        conversion.prepare(self._runner, place, seconds)
        self.rows += conversion.rows(self._runner, place, seconds)


def arguments():
    parser = argparse.ArgumentParser(prog="./bench", description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=5, help="how often everybody has their turn (5)")
    parser.add_argument("--only", action="append", choices=ALL, help="this job; may be given again")
    parser.add_argument("--quick", action="store_true", help="small sizes: shows that it works, not how fast")
    parser.add_argument("--build", type=pathlib.Path, default=HERE.parent / "build/bench",
                        help="the build folder, which receives the results, too")
    chosen = parser.parse_args()
    if chosen.rounds < 1:
        parser.error("--rounds takes a number above 0")
    chosen.only = chosen.only or ALL
    return chosen


def machine():
    """What the figures were measured on, in words."""
    model = re.search(r"^model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    total = int(re.search(r"^MemTotal:\s+(\d+)", pathlib.Path("/proc/meminfo").read_text(), re.M)[1])
    return (f"{os.cpu_count()} processors{f' ({model[1]})' if model else ''}, {total / 2 ** 20:.0f} GiB of memory, "
            f"Linux {os.uname().release}, load {os.getloadavg()[0]:.1f} before the run")


def write_results(bench, build, machine_words):
    words = " ".join(["./bench", *sys.argv[1:]])
    print(table.terminal(bench.rows))
    (build / "results.md").write_text(f"Made by `{words}` on {machine_words}. {table.summary(bench.rows)}.\n\n"
                                      + table.markdown(bench.rows), encoding="utf-8")
    for name, drawing in bench.plots.items():
        (build / name).write_text(drawing, encoding="utf-8")
    print(table.summary(bench.rows))
    print(f"Written: {', '.join(str(build / name) for name in ('results.md', *bench.plots))}")


def stop_in_order(number, _frame):
    """Ends the servers and removes the folders on the way out."""
    sys.exit(128 + number)


def main():
    chosen = arguments()
    namespace.prepare()
    if not namespace.available():
        sys.exit("This takes user, network and mount namespaces, which this machine does not allow.")
    namespace.enter()
    signal.signal(signal.SIGTERM, stop_in_order)
    machine_words = machine()
    with Bench(chosen, chosen.build.resolve()) as bench:
        try:
            bench.run()
        finally:  # what has been measured before a job failed is worth keeping
            if bench.rows:
                write_results(bench, chosen.build.resolve(), machine_words)


if __name__ == "__main__":
    main()
