"""Tables, as text for a terminal and as Markdown for a document."""

import dataclasses


@dataclasses.dataclass
class Table:
    title: str
    header: tuple
    rows: list  # of tuples of texts
    notes: tuple = ()


def _lines(rows, widths, left, right, between):
    # The first column is words, the others are figures.
    return [left + between.join(cell.ljust(width) if at == 0 else cell.rjust(width)
                                for at, (cell, width) in enumerate(zip(row, widths))) + right
            for row in rows]


def as_text(table):
    widths = [max(map(len, column)) for column in zip(table.header, *table.rows)]
    lines = _lines([table.header, *table.rows], widths, "", "", "  ")
    return "\n".join([table.title, "", *(line.rstrip() for line in lines), *table.notes]) + "\n"


def as_markdown(table):
    widths = [max(map(len, column)) for column in zip(table.header, *table.rows)]
    widths = [max(width, 3) for width in widths]
    head, *body = _lines([table.header, *table.rows], widths, "| ", " |", " | ")
    rule = "| " + " | ".join("-" * width if at == 0 else "-" * (width - 1) + ":"
                             for at, width in enumerate(widths)) + " |"
    notes = ["", *(f"{note}  " for note in table.notes[:-1]), table.notes[-1]] if table.notes else []
    return "\n".join([f"### {table.title}", "", head, rule, *body, *notes]) + "\n"


def seconds(value):
    """Three digits that say something: 0.0123 is 12.3 ms."""
    if value < 1:
        return f"{value * 1000:.1f} ms" if value < 0.1 else f"{value * 1000:.0f} ms"
    return f"{value:.2f} s" if value < 10 else f"{value:.1f} s"


def megabytes(kilobytes):
    return f"{kilobytes / 1000:.0f} MB" if kilobytes >= 10_000 else f"{kilobytes / 1000:.1f} MB"


def ratio(value):
    if value < 0.1:
        return f"{value:.2g}"
    return f"{value:.2f}" if value < 10 else f"{value:.1f}"


def count(number):
    return f"{number:,}"
