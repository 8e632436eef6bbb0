"""What is expected of qrx on two cores, and whether this run met it."""

import dataclasses

import rows
import table

LARGEST = 1_000_000
MOST_KILOBYTES = 300_000


@dataclasses.dataclass
class Expectation:
    what: str
    value: float  # None: not measured
    limit: float
    at_least: bool

    @property
    def is_met(self):
        """Nothing when it was not measured."""
        if self.value is None:
            return None
        return self.value >= self.limit if self.at_least else self.value <= self.limit

    def cells(self):
        bound = f"{'at least' if self.at_least else 'at most'} {self.limit:g}"
        if self.value is None:
            return (self.what, "", bound, "not measured")
        return (self.what, table.ratio(self.value), bound, "met" if self.is_met else "NOT MET")


def expectations(comparison, scale, workers):
    at_most = [
        ("exact scan / xargs ffmpeg -i over the unclaimed files",
         comparison.ratio(rows.EXACT, rows.FFMPEG), 0.2),
        ("exact scan / exiftool", comparison.ratio(rows.EXACT, rows.EXIFTOOL), 1),
        ("exact scan / mediainfo over the list of files",
         comparison.ratio(rows.EXACT, rows.MEDIAINFO_LIST), 1),
        (f"scan / open and read, {table.count(LARGEST)} claimed files",
         scale.floor_ratio(LARGEST) if scale else None, 2),
    ]
    at_least = [
        ("exiftool / quick scan", comparison.ratio(rows.EXIFTOOL, rows.QUICK), 10),
        ("mediainfo over the list of files / quick scan",
         comparison.ratio(rows.MEDIAINFO_LIST, rows.QUICK), 10),
        ("1 worker / 16 workers over a sleeping stand-in", workers.ratio() if workers else None,
         15),
    ]
    kilobytes = scale.kilobytes(LARGEST) if scale else None
    memory = Expectation(f"peak MB of a scan of {table.count(LARGEST)} files",
                         kilobytes and kilobytes / 1000, MOST_KILOBYTES / 1000, False)
    return ([Expectation(*row, False) for row in at_most] + [memory]
            + [Expectation(*row, True) for row in at_least])


def expectation_table(all_expectations):
    return table.Table("Expected on two cores", ("ratio of medians", "measured", "expected", ""),
                       [each.cells() for each in all_expectations])
