#!/usr/bin/env python3
"""`qrx scan` with one worker and with several, in one run on one machine.

    benchmarks/scan_workers.py build/release/bin [--jobs N] [--files N] [--clips N]

First over files that only the ffmpeg tool can judge, with a stand-in for it that sleeps for half a
second: what is gained where the tool is waited for. Then over clips that a layout claims by their
path: what the workers cost where there is nothing to wait for. Checks that both write the same.
Exit status 1 when N workers are less than 15/16 N times as fast as one over the sleeping tool.
"""

import argparse
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

SLEEPING_TOOL = """#!/bin/sh
case "$2" in *7.bin) ;; *) cat >&2 <<'END'
Input #0, avi, from 'x':
  Duration: 00:00:01.00, start: 0.000000, bitrate: 488 kb/s
  Stream #0:0: Video: mpeg4, yuv420p, 64x48, 400 kb/s, 25 fps, 25 tbr, 25 tbn
END
esac
exec sleep 0.5
"""
ALLOWED_PART = 15 / 16


def timed(command):
    """Seconds and output of one run."""
    with tempfile.TemporaryFile() as output:
        begun = time.perf_counter()
        subprocess.run(command, stdin=subprocess.DEVNULL, stdout=output, check=True)
        seconds = time.perf_counter() - begun
        output.seek(0)
        return seconds, output.read()


def compared(scan, jobs, runs):
    """Medians of one worker and of `jobs`, and the clips that each found."""
    seconds = {1: [], jobs: []}
    written = set()
    for _ in range(runs):
        for number, of_number in seconds.items():
            took, output = timed([*scan, "--jobs", str(number)])
            of_number.append(took)
            written.add(output)
    if len(written) != 1:
        sys.exit("one worker and several wrote different things")
    return (statistics.median(seconds[1]), statistics.median(seconds[jobs]),
            len(written.pop().splitlines()))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", type=pathlib.Path, help="folder of qrx")
    parser.add_argument("--jobs", type=int, default=16)
    parser.add_argument("--files", type=int, default=96)
    parser.add_argument("--clips", type=int, default=20000)
    given = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="qrx-scan-workers-") as name:
        folder = pathlib.Path(name)
        tool = folder / "ffmpeg"
        tool.write_text(SLEEPING_TOOL, encoding="utf-8")
        tool.chmod(0o755)
        (folder / "files").mkdir()
        for number in range(given.files):
            (folder / f"files/{number}.bin").write_bytes(b"x")
        stream = folder / "card/AVCHD/BDMV/STREAM"
        stream.mkdir(parents=True)
        for number in range(given.clips):
            (stream / f"{number:05}.MTS").touch()

        scan = [given.programs / "qrx", "scan", "--format", "ndjson", "--ffmpeg", tool]
        one, many, clips = compared([*scan, folder / "files"], given.jobs, runs=1)
        judged = given.files - sum(str(n).endswith("7") for n in range(given.files))
        if clips != judged:
            sys.exit(f"{clips} clips among the files, not {judged}")
        paths_one, paths_many, paths = compared([*scan, folder / "card"], given.jobs, runs=7)
        if paths != given.clips:
            sys.exit(f"{paths} clips on the card, not {given.clips}")

    allowed = ALLOWED_PART * given.jobs
    print(f"{given.files} files, a tool that sleeps 0.5 s")
    print(f"  1 worker   {one:8.2f} s\n  {given.jobs} workers {many:8.2f} s")
    print(f"  ratio      {one / many:8.2f}    at least {allowed:.1f}")
    print(f"{given.clips} clips by their path, medians of 7 runs in turns")
    print(f"  1 worker   {paths_one * 1000:8.1f} ms\n  {given.jobs} workers {paths_many * 1000:8.1f} ms")
    print(f"  ratio      {paths_one / paths_many:8.2f}")
    return 0 if one / many >= allowed else 1


if __name__ == "__main__":
    sys.exit(main())
