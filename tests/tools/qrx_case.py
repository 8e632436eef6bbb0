"""What the suites of the command line share: running it, folders of their own, stand-ins for ffmpeg.

Each suite is run as `python3 SUITE.py PATH-OF-QRX [unittest arguments]`.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

_binary = None

NO_FFMPEG = "/nowhere/ffmpeg"

# Sanitizers keep freed memory and shadows of it, so bounds on memory hold for plain builds only.
SANITIZED = os.environ.get("QRX_SANITIZE", "") != ""

REPORT = """Input #0, avi, from 'x':
  Duration: 00:00:01.00, start: 0.000000, bitrate: 488 kb/s
  Stream #0:0: Video: mpeg4, yuv420p, 64x48, 400 kb/s, 25 fps, 25 tbr, 25 tbn
"""


def main():
    global _binary
    _binary = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=1)


class QrxCase(unittest.TestCase):
    """One folder of its own per test, gone afterwards."""

    maxDiff = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="qrx-test-")).resolve()
        self.addCleanup(self._remove)

    def _remove(self):
        # Tests close folders, and only root gets into those.
        subprocess.run(["chmod", "-R", "u+rwX", self.folder], check=False,
                       stderr=subprocess.DEVNULL)
        shutil.rmtree(self.folder)

    @property
    def binary(self):
        return _binary

    # -- files ------------------------------------------------------------------------------

    def write(self, name, contents=b""):
        """A file below the test's folder; `name` may be bytes. Gives its path as bytes."""
        path = os.path.join(os.fsencode(self.folder), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(contents)
        return path

    def script(self, body, name="tools/ffmpeg"):
        """A program that stands in for ffmpeg. Gives its path."""
        path = os.fsdecode(self.write(name, ("#!/bin/sh\n" + body + "\n").encode()))
        os.chmod(path, 0o755)
        return path

    def reporting_script(self, before=""):
        """An ffmpeg that describes whatever it is shown as a video."""
        return self.script(f"{before}\ncat >&2 <<'END'\n{REPORT}END\nexit 1")

    def sony_card(self, names=("00000.MTS",), card="card"):
        """Clips by their place alone; gives the card's path."""
        for name in names:
            self.write(os.fsencode(f"{card}/AVCHD/BDMV/STREAM/") + os.fsencode(name))
        return os.path.join(self.folder, card)

    # -- running ----------------------------------------------------------------------------

    def environment(self, **changes):
        environment = {k: v for k, v in os.environ.items() if k != "QRX_FFMPEG"}
        environment.update(changes)
        return environment

    def start(self, *arguments, **options):
        options.setdefault("env", self.environment())
        options.setdefault("cwd", self.folder)
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        process = subprocess.Popen([self.binary, *arguments], **options)
        self.addCleanup(self._end, process)
        return process

    @staticmethod
    def _end(process):
        if process.poll() is None:
            process.kill()
        process.wait()
        for stream in (process.stdin, process.stdout, process.stderr):
            if stream:
                stream.close()

    def run_qrx(self, *arguments, stdin=None, status=0, timeout=60, **options):
        """The finished run; fails when its exit status is another."""
        options.setdefault("env", self.environment())
        options.setdefault("cwd", self.folder)
        given = {"input": stdin} if stdin is not None else {"stdin": subprocess.DEVNULL}
        done = subprocess.run(
            [self.binary, *arguments], capture_output=True, timeout=timeout, **given, **options)
        self.assertEqual(done.returncode, status, (done.stdout[-2000:], done.stderr[-2000:]))
        return done

    def scan(self, *arguments, status=0, **options):
        """Clips as JSON gives them, and what was said on standard error."""
        done = self.run_qrx("scan", "--format", "json", *arguments, status=status, **options)
        return json.loads(done.stdout), done.stderr.decode()

    def paths(self, *arguments, **options):
        return [clip["filePath"] for clip in self.scan(*arguments, **options)[0]]

    # -- waiting ----------------------------------------------------------------------------

    def wait_until(self, condition, what, seconds=30):
        until = time.monotonic() + seconds
        while time.monotonic() < until:
            answer = condition()
            if answer:
                return answer
            time.sleep(0.01)
        self.fail(f"not within {seconds} seconds: {what}")

    def wait_for_text(self, path, what):
        """Contents of a file that somebody else is going to write, up to a line end."""
        def text():
            if not os.path.exists(path):
                return None
            found = pathlib.Path(path).read_text()
            return found if found.endswith("\n") else None
        return self.wait_until(text, what)

    def assert_gone(self, pid):
        """No process of that number is left; a zombie of somebody else counts as gone."""
        def gone():
            try:
                return "\nState:\tZ" in pathlib.Path(f"/proc/{pid}/status").read_text()
            except (FileNotFoundError, ProcessLookupError):
                return True
        self.wait_until(gone, f"the end of process {pid}", seconds=10)

    # -- people -----------------------------------------------------------------------------

    def as_plain_user(self):
        """Options for a run by somebody whom permissions hold back."""
        os.chmod(self.folder, 0o755)
        if os.geteuid() != 0:
            return {}
        # The build folder may be closed to others.
        copy = os.path.join(self.folder, "qrx-for-all")
        shutil.copy(self.binary, copy)
        os.chmod(copy, 0o755)
        return {"executable": copy, "user": "nobody", "group": "nogroup", "extra_groups": []}


