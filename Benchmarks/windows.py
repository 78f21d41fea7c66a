"""The jobs of the window: listings, start, and doing nothing."""

import dataclasses
import json
import os
import pathlib
import re
import statistics
import time

import figures
from processes import Process
from runner import say

FULL = 4000
SMALL_PIECE = 256
LIMITS = {"parse": 3e-3, "paint": 60e-3}
IDLE_SECONDS = 20
ANNOUNCEMENT_SECONDS = 4
DROP_CACHES = "/proc/sys/vm/drop_caches"


def benchmark_timings(runner, program, wanted):
    """Timings of the benchmarks of a program whose names match: what the clock says, and what the program
    itself has worked."""
    timings = {"real_time": figures.Timings(), "cpu_time": figures.Timings()}
    for number in range(1, runner.rounds + 1):
        say(f"{program} {wanted}, round {number} of {runner.rounds}")
        for one in one_round(runner, program, wanted):
            if one.get("error_occurred"):
                raise RuntimeError(f"{one['name']}: {one['error_message']}")
            for kind, taken in timings.items():
                taken.add(one["name"], one[kind] / {"ms": 1e3, "s": 1.0}[one["time_unit"]], 0)
    return timings


def one_round(runner, program, wanted):
    report = runner.folder / "benchmarks.json"
    runner.output([runner.programs / program, f"--benchmark_filter={wanted}", f"--benchmark_out={report}",
                   "--benchmark_out_format=json", "--benchmark_min_time=0.2"])
    return json.loads(report.read_text())["benchmarks"]


# --- Listings ---

def parse_rows(runner):
    """Seconds by number of entries, for each size of the pieces in which the reply comes."""
    by_piece = {}
    timings = benchmark_timings(runner, "benchmark_listing", "ReadListing")["cpu_time"]
    for name in timings.seconds:
        entries, piece = map(int, re.search(r"entries:(\d+)/piece:(\d+)", name).groups())
        by_piece.setdefault(piece, {})[entries] = timings.median(name)
    return [parse_row(piece, by_piece[piece]) for piece in sorted(by_piece, reverse=True)]


def parse_row(piece, seconds):
    way = f"in pieces of {piece} bytes" if piece == SMALL_PIECE else "whole"
    verdicts = [figures.straightness(sorted(seconds.items()))]
    if piece != SMALL_PIECE:
        verdicts.insert(0, figures.below(seconds[FULL], LIMITS["parse"]))
    return figures.Row(f"parsing a listing of {FULL:,} entries, {way}", "", figures.duration(seconds[FULL]),
                       verdicts)


def paint_rows(runner):
    titles = {"ListAndPaint": f"a listing of {FULL:,} entries on screen, sorted, with its way over the network",
              "ClickAndPaint": "a click on a header of it"}
    timings = benchmark_timings(runner, "benchmark_window", "^(ListAndPaint|ClickAndPaint)")
    return [paint_row(titles[name.split("/")[0]], timings["real_time"].median(name),
                      timings["cpu_time"].median(name)) for name in timings["real_time"].seconds]


def paint_row(title, seconds, worked):
    """What the program has not worked itself is the device's part and the network's."""
    return figures.Row(title, "", figures.duration(seconds), [figures.below(seconds, LIMITS["paint"])], "",
                       f"{figures.duration(worked)} of it are the program's own work")


# --- Start ---

class Display:
    """A virtual display without a window manager, for one block."""

    def __init__(self, runner):
        self._runner = runner
        self._server = None

    def __enter__(self):
        command = ["Xvfb", "-displayfd", "1", "-screen", "0", "1280x900x24", "-nolisten", "tcp", "-noreset"]
        self._server = Process(command, dict(os.environ), self._runner.folder / "display.log", "KILL")
        self._server.wait_for_output("\n")
        number = [line for line in self._server.output().splitlines() if line.strip().isdigit()][-1]
        self._runner.environment["DISPLAY"] = f":{number.strip()}"

    def __exit__(self, *_):
        self._runner.environment.pop("DISPLAY", None)
        self._server.end()


def start_rows(runner):
    commands = {"ours": runner.programs / "quillbox", "minimal": runner.programs / "benchmark_minimal"}
    with Display(runner):
        warm = runner.in_turn("start, warm", {name: starter(runner, command, lambda: None)
                                              for name, command in commands.items()})
        way = way_to_forget(runner, commands)
        cold = runner.in_turn(f"start, cold, {way.__doc__}", {name: starter(runner, command, way)
                                                              for name, command in commands.items()})
    settled = {name: statistics.median(warm.peak_kib[name]) for name in commands}
    ratio = settled["ours"] / settled["minimal"]
    memory = figures.Verdict(f"{ratio:.2f} of minimal's memory (under 1.3)", ratio < 1.3)
    allowed = figures.times_of
    rows = [figures.timed_row("start to a painted window, warm", "", warm, [allowed(warm, "minimal", 1.4)]),
            figures.timed_row(f"start to a painted window, cold ({way.__doc__})", "", cold,
                              [allowed(cold, "minimal", 1.4)])]
    return [*(dataclasses.replace(row, peak="") for row in rows),
            figures.Row("memory a second after the start", "", figures.size(settled["ours"]), [memory], "",
                        f"minimal {figures.size(settled['minimal'])}")]


def starter(runner, command, before):
    def attempt(first):
        if first:  # not measured: whoever is first would read the files for the others
            start_once(runner, command)
        before()
        return start_once(runner, command)
    return attempt


def maps_file(runner, command):
    return runner.folder / f"{command.name}.maps"


def start_once(runner, command):
    """The report says of memory what the program holds when it has settled."""
    report = runner.printed_report([runner.programs / "benchmark_start", maps_file(runner, command), command])
    return {"seconds": report["seconds"], "peak_kib": report["settled_kib"]}


def way_to_forget(runner, commands):
    """A function that makes the system forget the contents of files, as far as it lets us."""
    def forget_everything():
        """all file caches dropped"""
        os.sync()
        pathlib.Path(DROP_CACHES).write_text("3\n", encoding="ascii")

    mapped = set()
    for command in commands.values():
        mapped |= mapped_files(maps_file(runner, command).read_text())

    def forget_mapped():
        """the caches of the programs' files dropped, but for what others are using"""
        for path in mapped:
            forget(path)

    try:
        forget_everything()
        return forget_everything
    except OSError:
        return forget_mapped


def mapped_files(maps):
    return {pathlib.Path(line.split(maxsplit=5)[5]) for line in maps.splitlines() if line.count("/")}


def forget(path):
    try:
        with open(path, "rb") as file:
            os.fdatasync(file.fileno())  # what is not on the disk yet cannot be forgotten
            os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)
    except FileNotFoundError:
        pass  # a shared memory segment, or a file that has been replaced


# --- Doing nothing ---

def idle_row(runner):
    """What the connected program does while nothing happens."""
    command = [runner.programs / "benchmark_transfers", "idle", str(IDLE_SECONDS + 15)]
    process = Process(command, runner.environment, runner.folder / "idle.log", "KILL")
    try:
        process.wait_for_output("idle\n")
        time.sleep(2)  # what is left of connecting is no part of it
        before, began = activity(process.pid), time.monotonic()
        time.sleep(IDLE_SECONDS)
        after, seconds = activity(process.pid), time.monotonic() - began
    finally:
        process.end()
    return idle_figures(after[0] - before[0], after[1] - before[1], seconds)


def idle_figures(wakes, ticks, seconds):
    """Each announcement wakes the program twice: to be sent, and as its own multicast comes back."""
    most = 2 * (int(seconds / ANNOUNCEMENT_SECONDS) + 1)
    part = 100 * ticks / os.sysconf("SC_CLK_TCK") / seconds
    verdicts = [figures.Verdict(f"{wakes} wake-ups in {seconds:.0f} s (announcements alone: at most {most})",
                                wakes <= most),
                figures.Verdict(f"{part:.1f} % of a core (0.0)", part < 0.05)]
    return figures.Row("idle, connected", "", "", verdicts)


def activity(pid):
    """Wake-ups and clock ticks so far, of all threads."""
    wakes = ticks = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        wakes += int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", (task / "status").read_text(), re.M)[1])
        fields = (task / "stat").read_text().rpartition(")")[2].split()
        ticks += int(fields[11]) + int(fields[12])
    return wakes, ticks
