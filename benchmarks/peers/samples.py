"""The runs of one row, with what the table says of them."""

import dataclasses
import statistics

import table


@dataclasses.dataclass
class Samples:
    name: str
    result: str = ""  # what was checked, in words
    runs: list = dataclasses.field(default_factory=list)
    missing: str = ""  # why there are none

    def add(self, run, result):
        self.result = result
        self.runs.append((run.seconds, run.processor_seconds, run.kilobytes))

    def _column(self, at):
        return [run[at] for run in self.runs]

    @property
    def seconds(self):
        return statistics.median(self._column(0)) if self.runs else None

    @property
    def kilobytes(self):
        return max(self._column(2)) if self.runs else None

    def cells(self, reference):
        """Name, median, range, runs, processor time, peak memory, ratio to `reference`."""
        if not self.runs:
            return (self.name, self.missing, *[""] * 6)
        seconds = self._column(0)
        return (self.name, table.seconds(self.seconds),
                f"{table.seconds(min(seconds))} to {table.seconds(max(seconds))}",
                str(len(seconds)), table.seconds(statistics.median(self._column(1))),
                table.megabytes(self.kilobytes),
                table.ratio(self.seconds / reference) if reference else "", self.result)

    def as_record(self):
        return {"name": self.name, "missing": self.missing, "result": self.result,
                "medianSeconds": self.seconds, "peakKilobytes": self.kilobytes,
                "seconds": self._column(0), "processorSeconds": self._column(1)}


def over(one, other):
    """How many times longer `one` takes than `other`; nothing when either was not measured."""
    return one.seconds / other.seconds if one and other and one.runs and other.runs else None
