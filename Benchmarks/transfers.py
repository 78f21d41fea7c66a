"""The transfer jobs: one file and one tree, each way, by everybody."""

import filecmp
import statistics
from dataclasses import dataclass

import figures
import material
from material import LARGE, LARGEST_UPLOAD, ONE_BYTE, TREE

LARGEST_UPLOAD_SIZE = 268_435_455
UPLOAD_MARGIN_KIB = 2048


@dataclass(frozen=True)
class Sizes:
    """What is transferred; `quick` shows that everything works and nothing else."""
    download: int = 1 << 30
    upload: int = LARGEST_UPLOAD_SIZE
    tree_files: int = 2000
    tree_folders: int = 40
    tree_file: int = 4096


QUICK = Sizes(16 << 20, 8 << 20, 80, 8, 4096)


def prepare(place, sizes):
    material.write_file(place.root / LARGE, sizes.download)
    material.write_file(place.local / LARGEST_UPLOAD, sizes.upload)
    material.write_tree(place.root / TREE, sizes.tree_files, sizes.tree_folders, sizes.tree_file)


@dataclass(frozen=True)
class Job:
    """`action` is the contenders' method; `target` the folder of the place where the result is looked for;
    `subject` what is transferred, in the folder of a place that `origin` names."""
    name: str
    title: str
    action: str
    target: str
    origin: str
    subject: str
    demands: tuple

    def source(self, place):
        return getattr(place, self.origin) / self.subject

    def argument(self, place):
        return self.subject if self.target == "out" else self.source(place)


def demand(function, *arguments):
    return lambda timings: function(timings, *arguments)


def ahead_of(*peers):
    return tuple(demand(figures.ahead_of, peer) for peer in peers)


def beside(*peers):
    return tuple(demand(figures.beside, peer) for peer in peers)


JOBS = (
    Job("download", "one download", "download_file", "out", "root", LARGE,
        (demand(figures.of_the_floor, 0.85), *ahead_of("curl", "lftp", "rsync", "sftp", "scp"))),
    Job("upload", "one upload", "upload", "incoming", "local", LARGEST_UPLOAD,
        (demand(figures.of_the_floor, 0.85), *ahead_of("rsync", "sftp", "scp"),
         demand(figures.times_of, "curl", 1.3), *beside("lftp"))),
    Job("tree-down", "tree, down", "download_tree", "out", "root", TREE,
        (demand(figures.of_the_floor, 0.6), *ahead_of("lftp", "sftp", "curl"), *beside("scp", "rsync"))),
    Job("tree-up", "tree, up", "upload_tree", "incoming", "root", TREE,
        (*ahead_of("lftp", "sftp", "curl"), *beside("floor", "scp", "rsync"))),
)

# How long start, login and end take: of everybody whose whole process is measured.
SESSION = Job("session", "one byte", "download_file", "out", "root", ONE_BYTE, ())


class Transfers:
    """All transfer jobs in one place."""

    def __init__(self, runner, place, contenders):
        self._runner = runner
        self._place = place
        self._contenders = contenders
        self._session = None

    def row(self, job):
        timings = self.timings(job)
        timings.session = self.session()
        return figures.timed_row(f"{job.title}: {self._amount(job)}", self._place.name, timings,
                                 [verdict(timings) for verdict in job.demands])

    def session_row(self):
        timings = figures.Timings(seconds={name: [seconds] for name, seconds in self.session().items()},
                                  peak_kib={name: [0] for name in self.session()})
        peers = ", ".join(f"{name} {figures.duration(timings.median(name))}" for name in timings.seconds)
        return figures.Row("start, login, one byte, end: taken off the others' times in ratios",
                           self._place.name, "", [], "", peers)

    def session(self):
        """Seconds by name; measured once."""
        if self._session is None:
            peers = [contender for contender in self._contenders if not contender.own_clock]
            timings = self.timings(SESSION, peers)
            self._session = {name: timings.median(name) for name in timings.seconds}
        return self._session

    def timings(self, job, contenders=None):
        tries = {contender.name: self._attempt(job, contender) for contender in contenders or self._contenders}
        return self._runner.in_turn(f"{job.name}, {self._place.name}", tries)

    def _attempt(self, job, contender):
        def attempt(first):
            self._place.clear()
            command = getattr(contender, job.action)(self._place, job.argument(self._place))
            run = self._runner.printed_report if contender.own_clock else self._runner.whole_report
            report = run(command)
            check(job.source(self._place), getattr(self._place, job.target) / job.subject, first, contender.name)
            return report
        return attempt

    def _amount(self, job):
        source = job.source(self._place)
        if not source.is_dir():
            return f"{source.stat().st_size:,} bytes"
        found = material.sizes(source)
        folders = len([path for path in source.iterdir() if path.is_dir()])
        return f"{len(found):,} files of {next(iter(found.values())):,} bytes in {folders} folders"


def check(source, result, thoroughly, name):
    """What has arrived is what was sent: all sizes, and in the first round all bytes."""
    if not source.is_dir():
        same = result.is_file() and source.stat().st_size == result.stat().st_size
        pairs = [(source, result)]
    else:
        found = material.sizes(source)
        same = material.sizes(result) == found
        pairs = [(source / path, result / path) for path in found]
    if same and thoroughly:
        same = all(filecmp.cmp(*pair, shallow=False) for pair in pairs)
    if not same:
        raise RuntimeError(f"{name} did not do its job: {source} is not what {result} is")


def memory_rows(runner, place, program, sizes):
    """How much memory one download and one upload take beyond what the connected program holds."""
    return [download_memory(runner, place, program, sizes), upload_memory(runner, place, program)]


def median_growth_kib(runner, place, command):
    def growth_kib():
        place.clear()
        report = runner.printed_report(command())
        return report["peak_kib"] - report["before_kib"]
    return statistics.median(growth_kib() for _ in range(runner.rounds))


def download_memory(runner, place, program, sizes):
    """Flat: sixteen times the bytes take no more, give or take what one allocation of the heap does."""
    small = "small.bin"
    material.write_file(place.root / small, sizes.download // 16)
    grown = []
    for name in (small, LARGE):
        grown.append(median_growth_kib(runner, place, lambda name=name: program.download_file(place, name)))
    (place.root / small).unlink()
    text = f"{figures.size(grown[1])} more at its peak, {figures.size(grown[0])} for a sixteenth of the bytes"
    verdict = figures.Verdict(f"{text} (flat: at most 1 MiB apart)", abs(grown[1] - grown[0]) <= 1024)
    return figures.Row(f"memory of a download of {sizes.download:,} bytes", place.name, "", [verdict])


def upload_memory(runner, place, program):
    path = place.local / LARGEST_UPLOAD
    grown = median_growth_kib(runner, place, lambda: program.upload(place, path))
    beyond = grown - path.stat().st_size / 1024
    verdict = figures.Verdict(f"the file once and {figures.size(beyond)} (at most 2 MiB)",
                              beyond <= UPLOAD_MARGIN_KIB)
    return figures.Row(f"memory of an upload of {path.stat().st_size:,} bytes", place.name, "", [verdict])
