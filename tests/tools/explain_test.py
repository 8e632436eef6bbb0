"""`qrx explain`: who claims a file, and why the others do not."""

import base64
import json
import os

import qrx_case
from qrx_case import NO_FFMPEG

PRECEDENCE = ["Canon AVCHD", "Sony NXCAM AVCHD", "Panasonic AVCHD", "JVC-MP4", "Sony XDCAM EX",
              "Panasonic P2", "Sony XDCAM HD", "Canon XF", "JVC-QuickTime", "RED One", "GoPro",
              "Canon EOS", "MXF", "General Movies", "Apple QuickTime"]


class Explain(qrx_case.QrxCase):
    def explain(self, *files, tool=NO_FFMPEG, status=0):
        done = self.run_qrx("explain", "--format", "json", "--ffmpeg", tool, *files, status=status)
        return json.loads(done.stdout)

    def explain_as_text(self, *files, tool=NO_FFMPEG, status=0):
        return self.run_qrx("explain", "--ffmpeg", tool, *files, status=status).stdout.decode()

    def test_every_utility_in_order_of_precedence(self):
        self.write("a.mov")
        (explanation,) = self.explain("a.mov")
        self.assertEqual(list(explanation), ["filePath", "claimedBy", "utilities"])
        self.assertEqual([u["volumeTitle"] for u in explanation["utilities"]], PRECEDENCE)

    def test_first_that_claims_gets_it_and_later_claims_are_told(self):
        card = self.sony_card()
        (explanation,) = self.explain(f"{card}/AVCHD/BDMV/STREAM/00000.MTS")
        self.assertEqual(explanation["claimedBy"], "Sony NXCAM AVCHD")
        claims = {u["volumeTitle"]: u["claims"] for u in explanation["utilities"]}
        self.assertFalse(claims["Canon AVCHD"])
        self.assertTrue(claims["Sony NXCAM AVCHD"])
        self.assertTrue(claims["Panasonic AVCHD"])

    def test_failed_check_is_a_phrase(self):
        card = self.sony_card()
        (explanation,) = self.explain(f"{card}/AVCHD/BDMV/STREAM/00000.MTS")
        canon = explanation["utilities"][0]
        self.assertEqual(list(canon), ["volumeTitle", "claims", "failedCheck"])
        self.assertIn("PRIVATE/AVCHD", canon["failedCheck"])

    def test_each_check_can_be_the_one_that_fails(self):
        self.write("private/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS")
        self.write("name/PRIVATE/AVCHD/BDMV/STREAM/clip.mts")
        self.write("kind/PRIVATE/AVCHD/CANON/x")
        self.write("kind/PRIVATE/AVCHD/BDMV/STREAM/00000.M2TS")
        failed = [e["utilities"][0]["failedCheck"] for e in self.explain(
            "private/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
            "name/PRIVATE/AVCHD/BDMV/STREAM/clip.mts",
            "kind/PRIVATE/AVCHD/BDMV/STREAM/00000.M2TS")]
        self.assertEqual(len(set(failed)), 3)
        self.assertIn("CANON", failed[0])
        self.assertIn("MTS", failed[2])

    def test_file_of_nobody(self):
        self.write("notes.txt")
        (explanation,) = self.explain("notes.txt")
        self.assertIsNone(explanation["claimedBy"])
        self.assertFalse(any(u["claims"] for u in explanation["utilities"]))
        self.assertIn("claimed by none", self.explain_as_text("notes.txt"))

    def test_agrees_with_scan(self):
        tool = self.reporting_script()
        for name in ("a.mov", "b.bin", "c/AVCHD/BDMV/STREAM/00000.MTS"):
            self.write(name)
        clips, _ = self.scan("--ffmpeg", tool, "a.mov", "b.bin", "c")
        explained = self.explain(*[c["filePath"] for c in clips], tool=tool)
        self.assertEqual([(c["filePath"], c["volumeTitle"]) for c in clips],
                         [(e["filePath"], e["claimedBy"]) for e in explained])
        self.assertEqual(len(clips), 3)

    def test_tool_is_run_once_for_all_checks(self):
        self.write("a.bin")
        runs = self.folder / "runs"
        self.explain("a.bin", tool=self.reporting_script(before=f'echo run >> "{runs}"'))
        self.assertEqual(runs.read_text(), "run\n")

    def test_text_has_a_line_a_utility(self):
        self.write("a.mov")
        lines = self.explain_as_text("a.mov").splitlines()
        self.assertEqual(lines[0], f"{self.folder}/a.mov")
        self.assertEqual([line[7:].split("  ")[0] for line in lines[1:-1]], PRECEDENCE)
        self.assertEqual(lines[-1], "  claimed by Apple QuickTime")

    def test_several_files_are_apart_by_an_empty_line(self):
        self.write("a.mov")
        blocks = self.explain_as_text("a.mov", "a.mov").split("\n\n")
        self.assertEqual(len(blocks), 2)
        self.assertEqual(blocks[0] + "\n", blocks[1])

    def test_missing_file_is_said_and_the_rest_is_explained(self):
        self.write("a.mov")
        done = self.run_qrx("explain", "--format", "json", "--ffmpeg", NO_FFMPEG, "gone", "a.mov",
                            "", status=1)
        self.assertEqual(len(json.loads(done.stdout)), 1)
        self.assertIn(b"gone: No such file or directory", done.stderr)
        self.assertIn(b"'': No such file or directory", done.stderr)

    def test_folder_is_said(self):
        done = self.run_qrx("explain", "--ffmpeg", NO_FFMPEG, ".", status=1)
        self.assertIn(b".: is a folder", done.stderr)

    def test_fifo_is_explained_without_being_opened(self):
        os.mkfifo(self.folder / "f.mp4")
        (explanation,) = self.explain("f.mp4", tool=self.script("exec cat \"$2\""))
        self.assertIsNone(explanation["claimedBy"])

    def test_harmful_names(self):
        names = [b"\x1b[2J.mov", b"a\nb.mov", b"\xff.mov"]
        for name in names:
            self.write(name)
        text = self.explain_as_text(*names)
        self.assertNotIn("\x1b", text)
        self.assertIn(r"/a\nb.mov", text)
        explained = self.explain(*names)
        self.assertEqual(explained[0]["filePath"], f"{self.folder}/\x1b[2J.mov")
        self.assertEqual(base64.b64decode(explained[2]["filePathBytes"]),
                         os.fsencode(self.folder) + b"/\xff.mov")
        self.assertNotIn("filePath", explained[2])


if __name__ == "__main__":
    qrx_case.main()
