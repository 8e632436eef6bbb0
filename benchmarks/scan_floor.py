#!/usr/bin/env python3
"""`qrx scan` of 5,000 clips that a layout claims, beside the least that it could cost.

    benchmarks/scan_floor.py build/release/bin [--runs N] [--clips N]

Makes small Sony AVCHD clips, then runs the scan and the program scan_floor in turns, so that both
meet the same weather, and checks that each saw every clip. Prints medians, their ratio and the
scan's peak memory. Exit status 1 when the scan takes more than twice the floor and 30 ms, or more
than 60 MB.
"""

import argparse
import pathlib
import statistics
import sys
import tempfile

from measuring import Runner

CLIPS_PER_CARD = 1000
CLIP = (b"\x00\x00\x00\x00\x47\x40\x00\x10" + b"\xff" * 184) * 8
ALLOWED_RATIO, ALLOWED_EXTRA_SECONDS, ALLOWED_KILOBYTES = 2, 0.030, 60_000


def make_clips(folder, count):
    for number in range(count):
        stream = folder / f"card{number // CLIPS_PER_CARD}/AVCHD/BDMV/STREAM"
        if number % CLIPS_PER_CARD == 0:
            stream.mkdir(parents=True)
        (stream / f"{number % CLIPS_PER_CARD:05}.MTS").write_bytes(CLIP)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", type=pathlib.Path, help="folder of qrx, scan_floor and measured_run")
    parser.add_argument("--runs", type=int, default=15)
    parser.add_argument("--clips", type=int, default=5000)
    given = parser.parse_args()
    runner = Runner(given.programs)

    scans, floors, kilobytes = [], [], []
    with tempfile.TemporaryDirectory(prefix="qrx-scan-floor-") as folder:
        make_clips(pathlib.Path(folder), given.clips)
        scan = [given.programs / "qrx", "scan", folder]
        floor = [given.programs / "scan_floor", folder]
        for run in range(given.runs + 1):
            floor_run, scan_run = runner.run(floor), runner.run(scan)
            if floor_run.status != 0 or scan_run.status != 0:
                sys.exit(f"exit status {floor_run.status} of the floor, {scan_run.status} of qrx")
            files = int(floor_run.output.read())
            if files != given.clips:
                sys.exit(f"the floor program saw {files} files")
            rows = scan_run.output.read().splitlines()[1:]  # behind the header
            claimed = sum(row.startswith(b"Sony NXCAM AVCHD ") for row in rows)
            if claimed != given.clips or len(rows) != given.clips:
                sys.exit(f"the scan claimed {claimed} clips in {len(rows)} rows")
            if run > 0:  # the first only warms the caches
                floors.append(floor_run.seconds)
                scans.append(scan_run.seconds)
                kilobytes.append(scan_run.kilobytes)

    scan, floor, peak = statistics.median(scans), statistics.median(floors), max(kilobytes)
    allowed = ALLOWED_RATIO * floor + ALLOWED_EXTRA_SECONDS
    print(f"{given.clips} clips, medians of {given.runs} runs in turns")
    print(f"floor      {floor * 1000:8.1f} ms  ({min(floors) * 1000:.1f} to {max(floors) * 1000:.1f})")
    print(f"qrx scan   {scan * 1000:8.1f} ms  ({min(scans) * 1000:.1f} to {max(scans) * 1000:.1f})")
    print(f"ratio      {scan / floor:8.2f}     allowed {allowed * 1000:.1f} ms")
    print(f"peak       {peak / 1000:8.1f} MB  allowed {ALLOWED_KILOBYTES / 1000:.0f} MB")
    if scan > allowed or peak > ALLOWED_KILOBYTES:
        sys.exit("more than allowed")


if __name__ == "__main__":
    main()
