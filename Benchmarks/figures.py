"""What is made of measured figures: medians, ratios, and whether they are what is required."""

import functools
import statistics
from dataclasses import dataclass, field



@dataclass
class Verdict:
    """One figure against what is required of it; `met` is None where nothing is."""
    text: str
    met: bool | None = None

    def __str__(self):
        return self.text if self.met is None else f"{self.text}: {'met' if self.met else 'NOT MET'}"


@dataclass
class Row:
    """One line of the table, in words."""
    job: str
    place: str
    ours: str
    verdicts: list
    floor: str = ""
    peers: str = ""
    peak: str = ""


@dataclass
class Timings:
    """Seconds and peak memory of everybody who did one job, a figure for each round.

    `session` is what the programs that are measured whole take for a job of next to nothing, by name.
    """
    seconds: dict = field(default_factory=dict)
    peak_kib: dict = field(default_factory=dict)
    session: dict = field(default_factory=dict)

    def add(self, name, seconds, peak_kib):
        self.seconds.setdefault(name, []).append(seconds)
        self.peak_kib.setdefault(name, []).append(peak_kib)

    def median(self, name):
        return statistics.median(self.seconds[name])

    def peak(self, name):
        return max(self.peak_kib[name])

    def job_alone(self, name):
        """The median without start, login and end, for programs of which these were measured, too; not above
        zero where a job is lost in these."""
        return self.median(name) - self.session.get(name, 0.0)

    def peers(self):
        return [name for name in self.seconds if name not in ("ours", "floor")]


def comparable(compare):
    """A comparison that says so where the other's job is too short for one; what is required is not met then."""
    @functools.wraps(compare)
    def compare_if_measured(timings, other, *limits):
        if timings.job_alone(other) <= 0:
            return Verdict(f"{other}: lost in its start and login", None if compare.__name__ == "beside" else False)
        return compare(timings, other, *limits)
    return compare_if_measured


def of_the_floor(timings, least):
    """The rate of ours as a part of the floor's."""
    ratio = timings.job_alone("floor") / timings.job_alone("ours")
    return Verdict(f"{ratio:.2f} of the floor's rate (at least {least})", ratio >= least)


@comparable
def ahead_of(timings, peer):
    ratio = timings.job_alone(peer) / timings.job_alone("ours")
    return Verdict(f"{ratio:.2f} times {peer}'s rate (ahead)", ratio > 1.0)


@comparable
def times_of(timings, peer, most):
    """The time of ours as a multiple of another's."""
    ratio = timings.job_alone("ours") / timings.job_alone(peer)
    return Verdict(f"{ratio:.2f} of {peer}'s time (at most {most})", ratio <= most)


@comparable
def beside(timings, peer):
    ratio = timings.job_alone(peer) / timings.job_alone("ours")
    return Verdict(f"{ratio:.2f} times {peer}'s rate (nothing required)")


def below(seconds, most):
    return Verdict(f"{duration(seconds)} (under {duration(most)})", seconds < most)


def straightness(points, most=1.25):
    """Whether cost grows with the amount: `points` are (amount, seconds); what the last unit costs there
    against what it costs at a quarter of the amount or less."""
    amount, seconds = points[-1]
    earlier = [point for point in points if point[0] <= amount / 4]
    if not earlier:
        raise ValueError("no earlier point to compare with")
    ratio = (seconds / amount) / (earlier[-1][1] / earlier[-1][0])
    return Verdict(f"{ratio:.2f} of the cost per unit at {earlier[-1][0]:,} (at most {most})", ratio <= most)


def timed_row(job, place, timings, verdicts):
    """A row about times, with everybody's."""
    names = [name for name in ("ours", "floor") if name in timings.seconds] + timings.peers()
    texts = {name: duration(timings.median(name)) for name in names}
    peers = ", ".join(f"{name} {texts[name]}" for name in timings.peers())
    peak = ", ".join(f"{name} {size(timings.peak(name))}" for name in names if timings.peak(name))
    return Row(job, place, texts["ours"], verdicts, texts.get("floor", ""), peers, peak)


def duration(seconds):
    """Three figures and a unit."""
    for unit, length in (("s", 1.0), ("ms", 1e-3)):
        if seconds >= length:
            return f"{three_figures(seconds / length)} {unit}"
    return f"{three_figures(seconds / 1e-6)} µs"


def three_figures(number):
    return f"{number:.{2 if number < 10 else 1 if number < 100 else 0}f}"


def size(kib):
    return f"{kib / 1024:.1f} MiB"
