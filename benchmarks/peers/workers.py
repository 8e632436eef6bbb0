"""Sixteen workers against one, over a stand-in for ffmpeg that only sleeps: no processor is short."""

import json
import pathlib
import sys
import tempfile

import table
from samples import Samples, over

WORKERS = 16
STAND_IN = """#!/bin/sh
printf '%s\\n' "Input #0, avi, from 'x':" \\
  '  Duration: 00:00:01.00, start: 0.000000, bitrate: 488 kb/s' \\
  '  Stream #0:0: Video: mpeg4, yuv420p, 64x48, 400 kb/s, 25 fps, 25 tbr, 25 tbn' >&2
exec sleep {seconds}
"""


class Workers:
    def __init__(self, runner, programs, options, say):
        self.files, self.sleep = (WORKERS, 0.05) if options.quick_look else (3 * WORKERS, 0.5)
        self.one, self.many = Samples("1 worker"), Samples(f"{WORKERS} workers")
        with tempfile.TemporaryDirectory(prefix="qrx-peers-workers-") as name:
            folder = pathlib.Path(name)
            tool = folder / "sleeping-ffmpeg"
            tool.write_text(STAND_IN.format(seconds=self.sleep), encoding="ascii")
            tool.chmod(0o755)
            media = folder / "media"
            media.mkdir()
            for number in range(self.files):
                (media / f"take{number:03}.avi").write_bytes(b"no movie")
            for number in range(options.side_runs):
                for samples, jobs in ((self.one, 1), (self.many, WORKERS)):
                    say(f"round {number + 1} of {options.side_runs}: {samples.name}")
                    run = runner.run([programs / "qrx", "scan", "--format", "json", "--plain-tool",
                                      "--jobs", str(jobs), "--ffmpeg", tool, media])
                    samples.add(run, self._checked(run, samples))

    def _checked(self, run, samples):
        clips = json.loads(run.output.read()) if run.status == 0 else []
        names = [pathlib.Path(clip["filePath"]).name for clip in clips]
        if names != [f"take{number:03}.avi" for number in range(self.files)]:
            sys.exit(f"{samples.name}: wrong result: status {run.status}, {len(clips)} clips of "
                     f"{self.files}, or not in order")
        return f"{len(clips)} clips in order"

    def ratio(self):
        return over(self.one, self.many)

    def tables(self):
        yield table.Table(
            f"{WORKERS} workers against one: {self.files} files, a stand-in for ffmpeg that sleeps "
            f"{self.sleep} s",
            ("workers", "median", "range", "runs", "processor", "peak", f"to {WORKERS} workers",
             "answer"),
            [samples.cells(self.many.seconds) for samples in (self.one, self.many)])

    def as_record(self):
        return [samples.as_record() for samples in (self.one, self.many)]
