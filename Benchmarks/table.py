"""Rows as a table: ratios first, for a terminal and as Markdown."""

import textwrap

HEADINGS = ("Job", "Where", "Ratios", "Ours", "Floor", "Others", "Peak memory")
WIDTHS = (26, 7, 46, 9, 9, 27, 25)


def cells(row):
    """The texts of a row in the order of HEADINGS; ratios are several."""
    return row.job, row.place, [str(verdict) for verdict in row.verdicts], row.ours, row.floor, row.peers, row.peak


def terminal(rows):
    rule = "-+-".join("-" * width for width in WIDTHS)
    lines = [block(HEADINGS), rule.replace("-", "=")]
    for row in rows:
        lines += [block(cells(row)), rule]
    return "\n".join(lines) + "\n"


def block(texts):
    """One row of the table on as many lines as its longest cell takes."""
    columns = [wrapped(text, width) for text, width in zip(texts, WIDTHS)]
    height = max(map(len, columns))
    padded = [column + [""] * (height - len(column)) for column in columns]
    return "\n".join(" | ".join(part.ljust(width) for part, width in zip(line, WIDTHS)).rstrip()
                     for line in zip(*padded))


def wrapped(text, width):
    parts = text if isinstance(text, list) else [text]
    return [line for part in parts for line in textwrap.wrap(part, width) or [""]] or [""]


def markdown(rows):
    lines = [markdown_line(HEADINGS), markdown_line("---" for _ in HEADINGS)]
    for row in rows:
        lines.append(markdown_line("<br>".join(map(emphasised, text)) if isinstance(text, list) else text
                                   for text in cells(row)))
    return "\n".join(lines) + "\n"


def markdown_line(texts):
    return "| " + " | ".join(text.replace("|", "\\|") for text in texts) + " |"


def emphasised(text):
    return text.replace("NOT MET", "**not met**")


def summary(rows):
    """One closing line."""
    verdicts = [verdict for row in rows for verdict in row.verdicts if verdict.met is not None]
    met = sum(verdict.met for verdict in verdicts)
    return f"{met} of {len(verdicts)} required figures met"
