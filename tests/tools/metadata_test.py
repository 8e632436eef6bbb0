"""`qrx metadata`: the metadata record of a clip."""

import json
import subprocess

import cards
import qrx_case
from qrx_case import NO_FFMPEG

NOT_FOUND = "QRXMediaMetadataNotFound"


class Metadata(qrx_case.QrxCase):
    def metadata(self, *arguments, status=0):
        done = self.run_qrx("metadata", "--format", "json", "--ffmpeg", NO_FFMPEG, *arguments,
                            status=status)
        return json.loads(done.stdout)

    def test_found_values_come_with_identifier_and_description(self):
        clip = cards.ex_segments(self)[0]
        (told,) = self.metadata(clip)
        self.assertEqual(list(told), ["filePath", "volumeTitle", "volumeType", "metadata"])
        self.assertEqual((told["filePath"], told["volumeTitle"], told["volumeType"]),
                         (clip, "Sony XDCAM EX", 3))
        self.assertIn({"identifier": "QRXMediaMetadataStartTimecodeKey",
                       "description": "Start Timecode", "value": "01:02:03:04"}, told["metadata"])
        self.assertNotIn(NOT_FOUND, [each["value"] for each in told["metadata"]])

    def test_all_tells_every_key_once(self):
        clip = cards.ex_segments(self)[0]
        (found,) = self.metadata(clip)
        (told,) = self.metadata("--all", clip)
        identifiers = [each["identifier"] for each in told["metadata"]]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        self.assertGreaterEqual(len(identifiers), 25)
        missing = [each for each in told["metadata"] if each["value"] == NOT_FOUND]
        self.assertTrue(missing)
        self.assertEqual([each for each in told["metadata"] if each not in missing],
                         found["metadata"])

    def test_real_movie(self):
        self.make_movie("clip.mov")
        done = self.run_qrx("metadata", "--format", "json", "clip.mov")
        (told,) = json.loads(done.stdout)
        values = {each["identifier"]: each["value"] for each in told["metadata"]}
        self.assertEqual(values["QRXMediaMetadataVideoFrameRate"], " 25 ")
        self.assertEqual(values["QRXMediaMetadataVideoDurationKey"], "00:00:01.00")

    def make_movie(self, name):
        subprocess.run(["ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i",
                        "testsrc=s=64x48:r=25", "-t", "1", "-c:v", "mpeg4", name],
                       cwd=self.folder, check=True, stdin=subprocess.DEVNULL)

    def test_text_stands_in_columns(self):
        clips = cards.ex_segments(self)
        done = self.run_qrx("metadata", "--ffmpeg", NO_FFMPEG, *clips)
        blocks = done.stdout.decode().split("\n\n")
        self.assertEqual([block.splitlines()[0] for block in blocks], clips)
        rows = blocks[0].splitlines()[1:]
        (row,) = [row for row in rows if "StartTimecodeKey" in row]
        self.assertEqual(row.split(), ["QRXMediaMetadataStartTimecodeKey", "Start", "Timecode",
                                       "01:02:03:04"])
        at = row.index("Start Timecode")
        for other in rows:
            self.assertEqual(other[at - 2:at], "  ", other)

    def test_record_without_values(self):
        clip = self.write("p2/CONTENTS/VIDEO/0001AA.MXF")
        done = self.run_qrx("metadata", "--ffmpeg", NO_FFMPEG, clip)
        self.assertEqual(done.stdout, clip + b"\n  -\n")
        (told,) = self.metadata(clip)
        self.assertEqual(told["metadata"], [])

    def test_what_is_no_clip_is_said_and_the_rest_is_told(self):
        self.write("notes.txt")
        clip = cards.ex_segments(self)[0]
        done = self.run_qrx("metadata", "--format", "json", "--ffmpeg", NO_FFMPEG, "notes.txt",
                            "gone", "", ".", clip, status=1)
        self.assertEqual([each["filePath"] for each in json.loads(done.stdout)], [clip])
        for said in (b"qrx: notes.txt: no layout claims it", b"qrx: gone: No such file",
                     b"qrx: '': No such file", b"qrx: .: is a folder"):
            self.assertIn(said, done.stderr)

    def test_wrong_usage(self):
        self.run_qrx("metadata", status=2)
        self.run_qrx("metadata", "--format", "table", "x", status=2)


if __name__ == "__main__":
    qrx_case.main()
