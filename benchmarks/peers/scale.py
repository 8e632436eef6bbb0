"""Cost and memory of a scan as the card grows tenfold and tenfold, beside the least it could be."""

import os
import pathlib
import sys
import tempfile

import table
from samples import Samples, over

FILES_PER_CARD = 1000
SMALLEST = 1000
# Layouts that know a clip by its place alone, so that empty files will do: one of each in turn.
PLACES = (
    ("AVCHD/BDMV/STREAM", "{:05}.MTS"),
    ("CONTENTS/VIDEO", "{:04}AB.MXF"),
    ("BPAV/CLPR/CLIP", "632_{:04}_01.MP4"),
    ("CONTENTS/CLIPS001", "AA{:04}01.MXF"),
    ("DCIM/100CANON", "MVI_{:04}.MOV"),
)


def make_card(folder, number):
    place, name = PLACES[number % len(PLACES)]
    clips = folder / f"card{number:04}" / place
    clips.mkdir(parents=True)
    descriptor = os.open(clips, os.O_RDONLY)
    for clip in range(FILES_PER_CARD):
        os.mknod(name.format(clip), 0o100644, dir_fd=descriptor)
    os.close(descriptor)


def lines_of(run):
    return sum(chunk.count(b"\n") for chunk in iter(lambda: run.output.read(1 << 20), b""))


def require_files(what, run, found, files):
    if run.status != 0 or found != files:
        sys.exit(f"{what}: wrong result: status {run.status}, {found} of {files} files")
    return f"{table.count(files)} files"


def check_scan(run, files):
    """One row a file below the header, and none of them a loose movie or MXF file."""
    loose = 0
    found = -1
    for row in run.output:
        found += 1
        loose += row.startswith((b"General Movies", b"MXF"))
    if loose:
        sys.exit(f"qrx scan: {loose} files of layouts were not known")
    return require_files("qrx scan", run, found, files)


class Scale:
    def __init__(self, runner, programs, options, say):
        self.steps = {}  # number of files: find, floor, scan
        with tempfile.TemporaryDirectory(prefix="qrx-peers-scale-", dir=options.tree) as name:
            folder = pathlib.Path(name)
            files = 0
            step = SMALLEST
            while step <= options.scale:
                say(f"making {table.count(step)} files")
                for card in range(files // FILES_PER_CARD, step // FILES_PER_CARD):
                    make_card(folder, card)
                files = step
                self._measure(runner, programs, folder, files, options.runs, say)
                step *= 10
            say("removing them")

    def _measure(self, runner, programs, folder, files, runs, say):
        find, floor, scan = Samples("find"), Samples("floor"), Samples("qrx scan")
        self.steps[files] = (find, floor, scan)
        for number in range(runs + 1):
            say(f"{table.count(files)} files, round {number} of {runs}")
            found = runner.run(["find", folder, "-type", "f"])
            read = runner.run([programs / "scan_floor", folder])
            listed = runner.run([programs / "qrx", "scan", folder])
            results = (require_files("find", found, lines_of(found), files),
                       require_files("scan_floor", read, int(read.output.read()), files),
                       check_scan(listed, files))
            if number > 0:  # the first round brings the names into the cache
                for samples, run, result in zip(self.steps[files], (found, read, listed), results):
                    samples.add(run, result)

    def floor_ratio(self, files):
        _, floor, scan = self.steps.get(files, (None, None, None))
        return over(scan, floor)

    def kilobytes(self, files):
        return self.steps[files][2].kilobytes if files in self.steps else None

    def tables(self):
        body = []
        before = None
        for files, (find, floor, scan) in self.steps.items():
            growth = over(scan, before) if before else None
            body.append((table.count(files), table.seconds(find.seconds),
                         table.seconds(floor.seconds), table.seconds(scan.seconds),
                         table.ratio(over(scan, find)), table.ratio(over(scan, floor)),
                         f"x {table.ratio(growth)}" if growth else "",
                         f"{scan.seconds / files * 1e6:.1f} us", table.megabytes(scan.kilobytes)))
            before = scan
        yield table.Table(
            "Scale: empty files that layouts claim, 1,000 a card",
            ("files", "find", "open and read", "qrx scan", "to find", "to open and read",
             "than a tenth", "a file", "peak"), body)

    def as_record(self):
        return [{"files": files, "rows": [samples.as_record() for samples in step]}
                for files, step in self.steps.items()]
