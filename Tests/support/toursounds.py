"""The sounds of the guided tour: one that it makes, and what has become of those that were sent."""

import math
import os
import struct
import wave

FRAMES_PER_SECOND = 44100
DATE_OF_SOUND = 1715106600  # 7 May 2024, in the evening


def write_sound(path, seconds):
    """A stereo sound of 24 bits a sample: a tone that repeats with every second."""
    places = range(FRAMES_PER_SECOND)
    tone = (round(2 ** 21 * math.sin(2 * math.pi * 220 * place / FRAMES_PER_SECOND)) for place in places)
    second = b"".join(2 * struct.pack("<i", value)[:3] for value in tone)
    with wave.open(str(path), "wb") as sound:
        sound.setparams((2, 3, FRAMES_PER_SECOND, 0, "NONE", "not compressed"))
        for _ in range(seconds):
            sound.writeframesraw(second)
    os.utime(path, (DATE_OF_SOUND, DATE_OF_SOUND))


def format_of(path):
    """A word for what a sound file holds."""
    with wave.open(str(path)) as sound:
        return f"{8 * sound.getsampwidth()}-bit WAV"
