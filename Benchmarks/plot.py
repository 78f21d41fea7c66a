"""Line plots as SVG, on logarithmic axes, readable on light and on dark pages."""

import math
from xml.sax.saxutils import escape

WIDTH, HEIGHT = 760, 460
LEFT, RIGHT, TOP, BOTTOM = 80, 190, 46, 60
COLOURS = (("#0b62a4", "#6cb6ff"), ("#b4460b", "#ff9e64"), ("#2c7a2c", "#7ee787"), ("#7b3fa0", "#d2a8ff"),
           ("#8a6d00", "#e3c14a"), ("#b0175f", "#ff7eb6"), ("#57606a", "#b1bac4"))

STYLE = """text { font: 13px sans-serif; fill: #1f2328; } .title { font-size: 16px; }
.frame, .grid { fill: none; stroke: #1f2328; } .grid { opacity: 0.15; }
polyline { fill: none; stroke-width: 2; }
"""
DARK = "text { fill: #e6edf3; } .frame, .grid { stroke: #e6edf3; }"


def colour_rules(index):
    return "".join(f".line{number} {{ stroke: {pair[index]}; }} .dot{number} {{ fill: {pair[index]}; }}\n"
                   for number, pair in enumerate(COLOURS))


class Axis:
    """Maps values to places between two ends, a tenfold value always as far."""

    def __init__(self, values, begin, end):
        self._low = math.floor(math.log10(min(values)) + 1e-9)
        self._high = max(math.ceil(math.log10(max(values)) - 1e-9), self._low + 1)
        self._begin, self._end = begin, end

    def place(self, value):
        part = (math.log10(value) - self._low) / (self._high - self._low)
        return self._begin + part * (self._end - self._begin)

    def ticks(self):
        return [10.0 ** power for power in range(self._low, self._high + 1)]


class BinaryAxis(Axis):
    """The same with a tick at each second power of four, for sizes in bytes."""

    def ticks(self):
        return [2.0 ** power for power in range(0, 41, 4)
                if self._low <= math.log10(2.0 ** power) <= self._high]


def plot(title, x_label, y_label, lines, sizes=False):
    """An SVG document; `lines` holds lists of (x, y), all above zero, by name. With `sizes` x is in bytes."""
    points = [point for line in lines.values() for point in line]
    if not points or min(min(point) for point in points) <= 0:
        raise ValueError("a plot takes points above zero")
    x_axis = (BinaryAxis if sizes else Axis)([x for x, _ in points], LEFT, WIDTH - RIGHT)
    y_axis = Axis([y for _, y in points], HEIGHT - BOTTOM, TOP)
    parts = [head(title), *grid(x_axis, y_axis, byte_text if sizes else count_text),
             *labels(x_label, y_label)]
    for number, (name, line) in enumerate(lines.items()):
        parts += curve(number % len(COLOURS), number, name, line, x_axis, y_axis)
    return "\n".join(parts) + "\n</svg>\n"


def head(title):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" role="img" '
            f'aria-label="{escape(title, {chr(34): "&quot;"})}">\n<style>{STYLE}{colour_rules(0)}'
            f'@media (prefers-color-scheme: dark) {{ {DARK} {colour_rules(1)} }}</style>\n'
            + text(LEFT, 26, title, "start", ' class="title"'))


def text(x, y, words, anchor="middle", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>{escape(words)}</text>'


def grid(x_axis, y_axis, x_text):
    bottom, right = HEIGHT - BOTTOM, WIDTH - RIGHT
    parts = [f'<rect class="frame" x="{LEFT}" y="{TOP}" width="{right - LEFT}" height="{bottom - TOP}"/>']
    for value in x_axis.ticks():
        x = x_axis.place(value)
        parts += [f'<path class="grid" d="M{x:.1f} {TOP}V{bottom}"/>', text(x, bottom + 18, x_text(value))]
    for value in y_axis.ticks():
        y = y_axis.place(value)
        parts += [f'<path class="grid" d="M{LEFT} {y:.1f}H{right}"/>', text(LEFT - 8, y + 4, time_text(value), "end")]
    return parts


def labels(x_label, y_label):
    middle = (TOP + HEIGHT - BOTTOM) / 2
    return [text((LEFT + WIDTH - RIGHT) / 2, HEIGHT - 16, x_label),
            text(18, middle, y_label, more=f' transform="rotate(-90 18 {middle:.1f})"')]


def curve(colour, number, name, line, x_axis, y_axis):
    places = [(x_axis.place(x), y_axis.place(y)) for x, y in line]
    path = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
    key_x, key_y = WIDTH - RIGHT + 16, TOP + 16 + 22 * number
    return [f'<polyline class="line{colour}" points="{path}"/>',
            *(f'<circle class="dot{colour}" cx="{x:.1f}" cy="{y:.1f}" r="3"/>' for x, y in places),
            f'<circle class="dot{colour}" cx="{key_x}" cy="{key_y}" r="5"/>',
            text(key_x + 12, key_y + 4, name, "start")]


def byte_text(value):
    for unit, length in (("GiB", 1 << 30), ("MiB", 1 << 20), ("KiB", 1 << 10)):
        if value >= length:
            return f"{value / length:g} {unit}"
    return f"{value:g} B"


def count_text(value):
    return f"{value:,.0f}"


def time_text(value):
    if value >= 1:
        return f"{value:g} s"
    return f"{value * 1e3:g} ms" if value >= 1e-3 else f"{value * 1e6:g} µs"
