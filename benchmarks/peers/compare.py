"""Rounds of all programs over the tree, in turns, so that all meet the same weather."""

import os
import pathlib
import random
import sys
import tempfile

import rows
import table
from samples import Samples, over

DROP_CACHES = pathlib.Path("/proc/sys/vm/drop_caches")
PAGES_AND_NAMES = "3"
COLD_ROWS = (rows.FIND, rows.FLOOR, rows.QUICK, rows.EXACT)
HEADER = ("program", "median", "range", "runs", "processor", "peak", "to qrx scan", "answer")


def measured(runner, row, samples):
    run = runner.run(row.command)
    try:
        samples.add(run, row.check(run))
    except (rows.WrongResult, ValueError) as wrong:
        sys.exit(f"{row.name}: wrong result: {wrong}")


def warmed(tree):
    """Brings every byte of the tree into the page cache."""
    for file in tree.files:
        pathlib.Path(file).read_bytes()


def first_scan(runner, programs, tree):
    """One exact scan that no table shows: it says which files are claimed."""
    scans = rows.Scans(tree)
    exact = rows.Row(rows.EXACT, [programs / "qrx", "scan", "--format", "json", tree.folder],
                     scans.check_exact)
    measured(runner, exact, Samples(rows.EXACT))
    return scans


def why_not_cold():
    """Why the caches cannot be emptied; nothing when they can."""
    if os.geteuid() != 0:
        return "not measured: only root can empty the caches"
    if not os.access(DROP_CACHES, os.W_OK):
        return "not measured: this system does not let the caches be emptied"
    return ""


class Comparison:
    def __init__(self, runner, programs, tree, options, say):
        self._runner, self._options, self._say = runner, options, say
        self._tree = tree
        warmed(tree)
        self._scans = first_scan(runner, programs, tree)
        self.unclaimed = rows.unclaimed_files(tree, self._scans.clips)
        with tempfile.NamedTemporaryFile(prefix="qrx-unclaimed-") as names:
            names.write(b"".join(os.fsencode(file) + b"\0" for file in self.unclaimed))
            names.flush()
            all_rows = rows.compared_rows(programs, tree, self._scans, names.name)
            self.samples = {row.name: Samples(row.name, missing=self._why_left_out(row))
                            for row in all_rows}
            self.rows = [row for row in all_rows if not self.samples[row.name].missing]
            self._run_rounds()
            self.cold = {name: Samples(name) for name in COLD_ROWS}
            self.why_not_cold = "left out" if "cold" in options.skip else why_not_cold()
            if not self.why_not_cold:
                self._run_cold_rounds()

    def _why_left_out(self, row):
        return "left out" if os.path.basename(row.command[0]) in self._options.skip else row.missing

    def _run_rounds(self):
        """In another order each round, the same in every comparison: after minutes on all cores a
        machine may be slower for a while, and that must not always meet the same row."""
        for number in range(self._options.runs):
            for row in random.Random(number).sample(self.rows, len(self.rows)):
                if row.is_slow_own and number >= self._options.side_runs:
                    continue
                self._say(f"round {number + 1} of {self._options.runs}: {row.name}")
                measured(self._runner, row, self.samples[row.name])

    def _run_cold_rounds(self):
        for number in range(self._options.side_runs):
            for row in (row for row in self.rows if row.name in COLD_ROWS):
                self._say(f"cold round {number + 1} of {self._options.side_runs}: {row.name}")
                os.sync()
                DROP_CACHES.write_text(PAGES_AND_NAMES, encoding="ascii")
                measured(self._runner, row, self.cold[row.name])

    def ratio(self, one, other):
        return over(self.samples.get(one), self.samples.get(other))

    def tables(self):
        clips, files = len(self._scans.clips), len(self._tree.files)
        title = (f"{table.count(files)} files of twelve cards and a folder of loose media, "
                 f"{table.count(clips)} clips")
        part = len(self.unclaimed) / files
        notes = (f"{table.count(len(self.unclaimed))} files ({part:.0%}) are claimed by no layout "
                 "and are no MXF files; an exact scan asks ffmpeg about each.",
                 "The answer of every run was checked. Peak: of the largest process. Processor: "
                 "with all processes that ended before the program did.")
        exact = self.samples[rows.EXACT].seconds
        yield table.Table(title, HEADER,
                          [samples.cells(exact) for samples in self.samples.values()], notes)
        if self.why_not_cold:
            yield table.Table("Cold caches", ("program", "median"),
                              [(rows.EXACT, self.why_not_cold)])
        else:
            cold = self.cold[rows.EXACT].seconds
            yield table.Table(
                "Cold caches: emptied before each run", (*HEADER, "to warm"),
                [(*samples.cells(cold), table.ratio(over(samples, self.samples[name])))
                 for name, samples in self.cold.items() if samples.runs])

    def as_record(self):
        return {"files": len(self._tree.files), "unclaimed": len(self.unclaimed),
                "clips": len(self._scans.clips),
                "rows": [samples.as_record() for samples in self.samples.values()],
                "cold": self.why_not_cold
                or [samples.as_record() for samples in self.cold.values()]}
