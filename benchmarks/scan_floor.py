#!/usr/bin/env python3
"""`qrx scan` of files that a layout claims, beside the least that it could cost.

    benchmarks/scan_floor.py build/release/bin [--runs N] [--clips N]
    benchmarks/scan_floor.py build/release/bin --files 1000000 [--one-folder] [--in FOLDER]

Makes 5,000 small Sony AVCHD clips, or with --files so many empty files under names of four layouts,
then runs the scan and the program scan_floor in turns, so that both meet the same weather, and
checks that each saw every file and that each layout got its own. Prints medians, their ratio and
the scan's peak memory. Exit status 1 when the scan takes more than twice the floor and 30 ms, or
more than 60 MB (300 MB with --files).
"""

import argparse
import os
import pathlib
import stat
import statistics
import sys
import tempfile

from measuring import Runner

CLIPS_PER_CARD = 1000
CLIP = (b"\x00\x00\x00\x00\x47\x40\x00\x10" + b"\xff" * 184) * 8
ALLOWED_RATIO, ALLOWED_EXTRA_SECONDS = 2, 0.030

# Folder, names, and the title that the scan gives.
SONY = ("AVCHD/BDMV/STREAM", "{:05}.MTS", "Sony NXCAM AVCHD")
LAYOUTS = [SONY,
           ("CONTENTS/VIDEO", "{:06}.MXF", "Panasonic P2"),
           ("BPAV/CLPR/CLIP", "CLIP{:05}.MP4", "Sony XDCAM EX"),
           ("DCIM/100EOS1D", "MVI_{:05}.MOV", "Canon EOS")]


def make_card(folder, layout, count, content):
    """A card of `count` files of that layout."""
    clips = folder / layout[0]
    clips.mkdir(parents=True)
    for number in range(count):
        clip = clips / layout[1].format(number)
        if content:
            clip.write_bytes(content)
        else:
            os.mknod(clip, stat.S_IFREG | 0o644)


def make_cards(folder, count, per_card, layouts, content):
    """Cards of the layouts in turns; gives the number of files of each title."""
    made = {}
    for card, first in enumerate(range(0, count, per_card)):
        layout, files = layouts[card % len(layouts)], min(per_card, count - first)
        make_card(folder / f"card{card}", layout, files, content)
        made[layout[2]] = made.get(layout[2], 0) + files
    return made


def titles_in(table):
    """The number of rows of each title in the table of a scan."""
    next(table)  # the header
    titles = {}
    for row in table:
        title = row.partition(b"  ")[0].decode()
        titles[title] = titles.get(title, 0) + 1
    return titles


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", type=pathlib.Path, help="folder of qrx, scan_floor and measured_run")
    parser.add_argument("--runs", type=int, help="15; 3 with --files")
    parser.add_argument("--clips", type=int, default=5000)
    parser.add_argument("--files", type=int, help="empty files of several layouts, in place of clips")
    parser.add_argument("--one-folder", action="store_true", help="all of them in one folder")
    parser.add_argument("--in", dest="place", help="where, e.g. /dev/shm; the temporary folder")
    given = parser.parse_args()
    runner = Runner(given.programs)
    count = given.files or given.clips
    runs = given.runs or (3 if given.files else 15)
    allowed_kilobytes = 300_000 if given.files else 60_000

    scans, floors, kilobytes = [], [], []
    with tempfile.TemporaryDirectory(prefix="qrx-scan-floor-", dir=given.place) as folder:
        wanted = make_cards(pathlib.Path(folder), count,
                            count if given.one_folder else CLIPS_PER_CARD,
                            LAYOUTS if given.files else [SONY], b"" if given.files else CLIP)
        scan = [given.programs / "qrx", "scan", folder]
        floor = [given.programs / "scan_floor", folder]
        for run in range(runs + 1):
            floor_run, scan_run = runner.run(floor), runner.run(scan)
            if floor_run.status != 0 or scan_run.status != 0:
                sys.exit(f"exit status {floor_run.status} of the floor, {scan_run.status} of qrx")
            files = int(floor_run.output.read())
            if files != count:
                sys.exit(f"the floor program saw {files} files")
            titles = titles_in(scan_run.output)
            if titles != wanted:
                sys.exit(f"the scan found {titles}, not {wanted}")
            if run > 0:  # the first only warms the caches
                floors.append(floor_run)
                scans.append(scan_run)
                kilobytes.append(scan_run.kilobytes)

    def median(of, figure):
        return statistics.median(getattr(run, figure) for run in of)

    scan, floor, peak = median(scans, "seconds"), median(floors, "seconds"), max(kilobytes)
    allowed = ALLOWED_RATIO * floor + ALLOWED_EXTRA_SECONDS
    processor = median(scans, "processor_seconds") / median(floors, "processor_seconds")
    print(f"{count} {'empty files' if given.files else 'clips'}, medians of {runs} runs in turns")
    for name, of in (("floor", floors), ("qrx scan", scans)):
        seconds = [run.seconds for run in of]
        print(f"{name:10} {statistics.median(seconds) * 1000:8.1f} ms  "
              f"({min(seconds) * 1000:.1f} to {max(seconds) * 1000:.1f})")
    print(f"ratio      {scan / floor:8.2f}     allowed {allowed * 1000:.1f} ms")
    print(f"processor  {processor:8.2f}     time of the scan over that of the floor")
    print(f"peak       {peak / 1000:8.1f} MB  allowed {allowed_kilobytes / 1000:.0f} MB")
    if scan > allowed or peak > allowed_kilobytes:
        sys.exit("more than allowed")


if __name__ == "__main__":
    main()
