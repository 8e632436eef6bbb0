"""The service's answers about real cards are those of the command line."""

import json
import os
import shutil
import subprocess
import unittest

from harness import MATCHER, ServiceTest

TOOL = os.environ["QRX_TOOL"]


class Cards(ServiceTest):
    def setUp(self):
        super().setUp()
        self.ffmpeg = shutil.which("ffmpeg")
        self.assertIsNotNone(self.ffmpeg, "ffmpeg is needed to make cards")
        made = subprocess.run([TOOL, "mkcard", "all", self.path("cards")], check=False,
                              capture_output=True, text=True)
        self.assertEqual(made.returncode, 0, made.stderr)
        scanned = subprocess.run([TOOL, "scan", "--ffmpeg", self.ffmpeg, "--format", "json",
                                  self.path("cards")], check=True, capture_output=True)
        self.expected = json.loads(scanned.stdout)
        self.assertGreater(len(self.expected), 3)

    def test_clips_and_movies_of_every_card(self):
        self.start_vended(tool=self.ffmpeg)
        self.assertEqual(self.clips(self.path("cards")), self.expected)
        movies = {clip["filePath"] for clip in self.expected
                  if self.call(MATCHER, "filePathIsQuickTime", "(s)", clip["filePath"])[0]}
        transport_streams = {clip["filePath"] for clip in self.expected
                             if clip["filePath"].upper().endswith(".MTS")}
        self.assertTrue(movies)
        self.assertTrue(transport_streams)
        self.assertFalse(transport_streams & movies)


if __name__ == "__main__":
    unittest.main()
