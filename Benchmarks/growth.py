"""How cost grows: the time of downloads by size, and of trees by the number of their files."""

import figures
import material
import plot
from transfers import Job

SIZES = tuple(4096 * 4 ** power for power in range(10))
COUNTS = (1, 10, 100, 400, 1000, 2000, 5000, 10_000, 20_000)
QUICK_SIZE, QUICK_COUNT = 4 << 20, 1000
MOST_LISTED = 5000  # the listing of a folder that holds more would pass the limit of a reply
FOLDERS = 400
FILE_SIZE = 4096
WAYS = {"down": ("download_tree", "out"), "up": ("upload_tree", "incoming")}


def by_size(transfers, place, quick):
    """Rows and plots, by file name, for downloads of everybody."""
    lines = {}
    for size in SIZES:
        if not quick or size <= QUICK_SIZE:
            add(lines, size, medians_of_download(transfers, place, size))
    drawing = plot.plot("Time of one download, by its size (others: with start and login)", "size of the file",
                        "time (median)", lines, sizes=True)
    return [grown("download", place, lines["ours"], "bytes")], {"time-by-size.svg": drawing}


def medians_of_download(transfers, place, size):
    name = f"size-{size}.bin"
    material.write_file(place.root / name, size)
    timings = transfers.timings(Job(f"download of {size:,}", "", "download_file", "out", "root", name, ()))
    (place.root / name).unlink()
    return {who: timings.median(who) for who in timings.seconds}


def by_count(transfers, place, contenders, quick):
    """The same for trees of small files, in one folder and in many, both ways, by ours and the floor."""
    lines = {}
    for count in COUNTS:
        for folders in (1, FOLDERS):
            if not quick or count <= QUICK_COUNT:
                add(lines, count, medians_of_tree(transfers, place, contenders, count, folders))
    ours = lines_of("ours", lines)
    return [grown(name, place, line, "files") for name, line in ours.items()], {
        "time-by-count.svg": count_plot("Time of a tree of 4 KiB files, by their number", ours),
        "time-by-count-floor.svg": count_plot("The same for the floor", lines_of("floor", lines))}


def medians_of_tree(transfers, place, contenders, count, folders):
    """By "who, way, folders"."""
    name = f"count-{count}-{folders}"
    material.write_tree(place.root / name, count, folders, FILE_SIZE)
    found = {}
    for way, (action, target) in WAYS.items():
        if way == "up" or folders > 1 or count <= MOST_LISTED:
            title = f"{count:,} files in {folders} folders, {way}"
            timings = transfers.timings(Job(title, "", action, target, "root", name, ()), contenders)
            where = "one folder" if folders == 1 else f"{folders} folders"
            found.update({f"{who}, {way}, {where}": timings.median(who) for who in timings.seconds})
    material.remove(place.root / name)
    return found


def add(lines, amount, seconds):
    for name, value in seconds.items():
        lines.setdefault(name, []).append((amount, value))


def lines_of(who, lines):
    return {name.removeprefix(f"{who}, "): line for name, line in lines.items() if name.startswith(who)}


def count_plot(title, lines):
    return plot.plot(title, "number of files", "time (median)", lines)


def grown(title, place, line, unit):
    return figures.Row(f"growth: {title}, to {line[-1][0]:,} {unit}", place.name, figures.duration(line[-1][1]),
                       [figures.straightness(line)])
