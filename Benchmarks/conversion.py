"""The conversion of a recording, beside programs that make the same 16-bit WAV file of it."""

import figures

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
    commands = {
        "ours": [runner.programs / "benchmark_conversion", source, place.out],
        "sndfile-convert": ["sndfile-convert", "-pcm16", source, target],
        "ffmpeg": ["ffmpeg", "-v", "error", "-y", "-i", source, "-c:a", "pcm_s16le", target],
    }
    tries = {name: converter(runner, place, target, command, seconds) for name, command in commands.items()}
    timings = runner.in_turn(f"conversion of {kind}, {place.name}", tries)
    return figures.timed_row(f"conversion of {seconds} s, 24 bits, 96 kHz, stereo, {kind.upper()}", place.name,
                             timings, [figures.times_of(timings, "sndfile-convert", 1.25),
                                       figures.ahead_of(timings, "ffmpeg")])


def converter(runner, place, target, command, seconds):
    def attempt(first):
        place.clear()
        report = runner.whole_report(command)
        check(target, seconds)
        return report
    return attempt


def check(target, seconds):
    """All frames are there: two samples of two bytes each."""
    frames = (target.stat().st_size - 44) // 4
    if not 0 <= frames - 96000 * seconds <= 96000:
        raise RuntimeError(f"{target} holds {frames} frames, not those of {seconds} s")
