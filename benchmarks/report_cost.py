#!/usr/bin/env python3
"""What `qrx report` adds to the work of the tools that make its pictures.

    benchmarks/report_cost.py build/release/bin [--clips N] [--runs N]

Makes a card of 500 clips, copies of one by `qrx mkcard gopro`, and writes its report. Beside it, in
turns, runs the same two commands of ffmpeg for each clip that the report needs (its description and
its still), as many at a time as there are cores and nothing else. Checks that the report shows every
clip with a picture. Prints the ratio of the times and the report's peak of memory: of the largest
process, so that ffmpeg's counts where it is larger. Exit status 1 when the ratio is above 1.1 or the peak is 200 MB or more.
"""

import argparse
import concurrent.futures
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import measuring

MOST_RATIO, MOST_MEGABYTES = 1.1, 200


def make_card(qrx, folder, clips):
    """A card of `clips` copies of one clip; gives their paths."""
    subprocess.run([qrx, "mkcard", "gopro", folder / "seed", "--clips", "1"], check=True,
                   stdout=subprocess.DEVNULL)
    seed = next((folder / "seed").rglob("*.MP4"))
    videos = []
    place = folder / "card/DCIM/100GOPRO"
    place.mkdir(parents=True)
    for number in range(1, clips + 1):
        videos.append(place / f"GOPR{number:04}.MP4")
        shutil.copy(seed, videos[-1])
    return folder / "card", videos


def tools_of_one_clip(ffmpeg, video, folder):
    """What the report has ffmpeg do for a clip."""
    quiet = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
             "stderr": subprocess.DEVNULL, "check": False}
    subprocess.run([ffmpeg, "-i", video], **quiet)
    still = folder / f"{video.name}.jpg"
    subprocess.run([ffmpeg, "-i", video, "-r", "1", "-t", "00:00:01", "-f", "image2", still],
                   **quiet)
    if not still.exists():
        sys.exit(f"no still of {video}")
    still.unlink()


def run_tools(ffmpeg, videos, folder, jobs):
    begun = time.perf_counter()
    with concurrent.futures.ThreadPoolExecutor(jobs) as workers:
        list(workers.map(lambda video: tools_of_one_clip(ffmpeg, video, folder), videos))
    return time.perf_counter() - begun


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", type=pathlib.Path, help="folder of qrx")
    parser.add_argument("--clips", type=int, default=500)
    parser.add_argument("--runs", type=int, default=3)
    given = parser.parse_args()
    ffmpeg = shutil.which("ffmpeg")
    if ffmpeg is None:
        sys.exit("ffmpeg is not installed")

    qrx = given.programs.resolve() / "qrx"
    runner = measuring.Runner(given.programs)
    jobs = len(os.sched_getaffinity(0))
    times = {"report": [], "tools": []}
    peak = 0
    with tempfile.TemporaryDirectory(prefix="qrx-report-cost-") as name:
        folder = pathlib.Path(name)
        card, videos = make_card(qrx, folder, given.clips)
        page = folder / "report.html"
        for _ in range(given.runs):
            run = runner.run([qrx, "report", card, "-o", page, "--force", "--ffmpeg", ffmpeg])
            text = page.read_text(encoding="utf-8")
            if run.status != 0 or text.count("<img ") != given.clips:
                sys.exit("the report does not show every clip with a picture")
            times["report"].append(run.seconds)
            peak = max(peak, run.kilobytes)
            times["tools"].append(run_tools(ffmpeg, videos, folder, jobs))

    medians = {what: statistics.median(seconds) for what, seconds in times.items()}
    ratio = medians["report"] / medians["tools"]
    megabytes = peak / 1000
    print(f"{given.clips} clips, {jobs} at a time")
    for what, seconds in medians.items():
        print(f"{what:8} {seconds:8.2f} s")
    print(f"report / tools  {ratio:.2f}  (at most {MOST_RATIO})")
    print(f"peak of memory  {megabytes:.0f} MB  (below {MOST_MEGABYTES}), the largest process")
    return 0 if ratio <= MOST_RATIO and megabytes < MOST_MEGABYTES else 1


if __name__ == "__main__":
    sys.exit(main())
