"""The service with a warm tool: the answers of the command line, and nothing left at the end."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import unittest

from harness import COMMUNICATION, ServiceTest, wait_until

TOOL = os.environ["QRX_TOOL"]
LIBRARY = "libqrxwarm.so"


class WarmTool(ServiceTest):
    def setUp(self):
        super().setUp()
        real = shutil.which("ffmpeg")
        self.assertIsNotNone(real, "ffmpeg is needed")
        self.ffmpeg = self.path("ffmpeg")
        shutil.copy(os.path.realpath(real), self.ffmpeg)
        os.mkdir(self.path("files"))
        for name in ("a.mov", "b.mpg", "c.avi"):
            subprocess.run([real, "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                            "testsrc=size=64x48:rate=25:duration=1", self.path(f"files/{name}")],
                           check=True)
        for i in range(20):
            self.write(f"files/{i}.dat", f"<?xml version='1.0'?><a n='{i}'/>")

    def warm_parents(self):
        found = []
        for entry in pathlib.Path("/proc").iterdir():
            try:
                if entry.name.isdigit() and os.readlink(entry / "exe") == self.ffmpeg:
                    if LIBRARY in (entry / "maps").read_text():
                        found.append(int(entry.name))
            except OSError:
                pass
        return found

    def expected(self):
        done = subprocess.run([TOOL, "scan", "--plain-tool", "--ffmpeg", self.ffmpeg, "--format",
                               "json", self.path("files")], check=True, capture_output=True)
        clips = json.loads(done.stdout)
        self.assertEqual(len(clips), 3)
        return clips

    def test_same_answers_again_and_again(self):
        expected = self.expected()
        self.start_vended(tool=self.ffmpeg)
        for _ in range(3):
            self.assertEqual(self.clips(self.path("files")), expected)
        self.assertTrue(self.warm_parents())

    def test_nothing_is_left_at_the_end(self):
        for end in ("killSelf", signal.SIGTERM, signal.SIGKILL):
            with self.subTest(end):
                service = self.start_vended(f"End{end!s}", tool=self.ffmpeg)
                self.clips(self.path("files"))
                self.assertTrue(self.warm_parents())
                if end == "killSelf":
                    self.call(COMMUNICATION, end)
                else:
                    service.send_signal(end)
                service.wait(20)
                self.assertTrue(wait_until(lambda: not self.warm_parents()))

    def test_variable_makes_every_run_plain(self):
        os.environ["QRX_PLAIN_TOOL"] = "1"
        self.addCleanup(os.environ.pop, "QRX_PLAIN_TOOL")
        expected = self.expected()
        self.start_vended(tool=self.ffmpeg)
        self.assertEqual(self.clips(self.path("files")), expected)
        self.assertEqual(self.warm_parents(), [])


if __name__ == "__main__":
    unittest.main()
