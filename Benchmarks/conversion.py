"""The conversion of a recording, beside programs that make the same 16-bit WAV file of it."""

import array
import pathlib

import figures

LARGEST_DIFFERENCE = 2  # of two ways to round
COMPARED_STEP = 997
SECONDS, QUICK_SECONDS = 600, 10
RECORDING = "recording"


def prepare(runner, place, seconds):
    """The recording in both kinds of file: 24 bits, 96 kHz, stereo."""
    wav, aiff = (place.local / f"{RECORDING}.{kind}" for kind in ("wav", "aif"))
    runner.output(["sox", "-n", "-r", "96000", "-c", "2", "-b", "24", wav, "synth", str(seconds), "pinknoise",
                   "vol", "0.5"])
    runner.output(["sndfile-convert", "-pcm24", wav, aiff])


def rows(runner, place, seconds):
    return [row(runner, place, kind, seconds) for kind in ("wav", "aif")]


def row(runner, place, kind, seconds):
    source = place.local / f"{RECORDING}.{kind}"
    target = place.out / f"{RECORDING}.wav"
    reference = place.local / f"{RECORDING}-16.wav"
    runner.output(["sndfile-convert", "-pcm16", source, reference])
    commands = {
        "ours": [runner.programs / "benchmark_conversion", source, place.out],
        "sndfile-convert": ["sndfile-convert", "-pcm16", source, target],
        "ffmpeg": ["ffmpeg", "-v", "error", "-y", "-i", source, "-c:a", "pcm_s16le", target],
    }
    tries = {name: converter(runner, place, target, command, reference) for name, command in commands.items()}
    timings = runner.in_turn(f"conversion of {kind}, {place.name}", tries)
    return figures.timed_row(f"conversion of {seconds} s, 24 bits, 96 kHz, stereo, {kind.upper()}", place.name,
                             timings, [figures.times_of(timings, "sndfile-convert", 1.25),
                                       figures.ahead_of(timings, "ffmpeg")])


def converter(runner, place, target, command, reference):
    def attempt(first):
        place.clear()
        report = runner.whole_report(command)
        check(runner, target, reference, first)
        return report
    return attempt


def check(runner, target, reference, thoroughly):
    """All frames are there, and in the first round many of them are compared."""
    frames, wanted = (int(runner.output(["soxi", "-s", file])) for file in (target, reference))
    if frames != wanted:
        raise RuntimeError(f"{target} holds {frames} frames, not {wanted}")
    if thoroughly and difference(samples(runner, target), samples(runner, reference)) > LARGEST_DIFFERENCE:
        raise RuntimeError(f"{target} does not sound like {reference}")


def samples(runner, file):
    """Some of them. The 16-bit files of others have headers of a kind that Python's own reader refuses."""
    raw = pathlib.Path(f"{file}.s16")
    runner.output(["sox", file, raw])
    content = array.array("h", raw.read_bytes())
    raw.unlink()
    return content[::COMPARED_STEP]


def difference(some, others):
    """The largest between samples at the same places."""
    return max(abs(one - other) for one, other in zip(some, others, strict=True))
