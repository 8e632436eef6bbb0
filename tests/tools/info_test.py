"""`qrx info`: everything that the layout of a clip answers about it."""

import base64
import json
import os

import cards
import qrx_case
from qrx_case import NO_FFMPEG

KEYS = ["filePath", "volumeTitle", "volumeType", "frameRate", "uniqueIdentifier", "startTimecode",
        "endTimecode", "dropFrame", "sidecar", "audioFiles", "spanned", "spanKey", "volumeKey",
        "metadata"]


class Info(qrx_case.QrxCase):
    def info(self, *files, status=0):
        done = self.run_qrx("info", "--format", "json", "--ffmpeg", NO_FFMPEG, *files,
                            status=status)
        return json.loads(done.stdout)

    def info_as_text(self, *files, status=0):
        done = self.run_qrx("info", "--ffmpeg", NO_FFMPEG, *files, status=status)
        return done.stdout.decode()

    def test_p2_clip_is_told_from_its_xml(self):
        clip = cards.p2_series(self, ["0001AA", "0002BB"])[0]
        sounds = [os.fsdecode(self.write(f"p2/CONTENTS/AUDIO/0001AA0{n}.MXF")) for n in (0, 1)]
        (told,) = self.info(clip)
        self.assertEqual(list(told), KEYS)
        self.assertEqual(told["filePath"], clip)
        self.assertEqual((told["volumeTitle"], told["volumeType"]), ("Panasonic P2", 0))
        self.assertEqual(told["frameRate"], {"name": "29.97", "number": 5})
        self.assertEqual(told["uniqueIdentifier"], cards.p2_identifier("0001AA"))
        self.assertEqual(told["startTimecode"], "01:02:03:04")
        self.assertIsNone(told["endTimecode"])
        self.assertIs(told["dropFrame"], True)
        self.assertEqual(told["sidecar"],
                         {"filePath": f"{self.folder}/p2/CONTENTS/CLIP/0001AA.XML"})
        self.assertEqual([sound["filePath"] for sound in told["audioFiles"]], sounds)
        self.assertIs(told["spanned"], True)
        self.assertEqual(told["spanKey"], cards.p2_identifier("SHOT"))
        self.assertEqual(told["volumeKey"], f"{self.folder}/p2/CONTENTS/VIDEO")

    def test_p2_clip_of_a_pal_camera_is_not_drop_frame(self):
        xml = cards.p2_clip_xml("0001AA", cards.p2_identifier("0001AA"), edit_unit="1/25",
                                frame_rate="<FrameRate>50i</FrameRate>", start="10:00:00:00")
        self.write("p2/CONTENTS/CLIP/0001AA.XML", xml)
        (told,) = self.info(self.write("p2/CONTENTS/VIDEO/0001AA.MXF"))
        self.assertEqual(told["frameRate"]["name"], "25")
        self.assertIs(told["dropFrame"], False)
        self.assertEqual(told["startTimecode"], "10:00:00:00")
        self.assertIs(told["spanned"], False)
        self.assertIsNone(told["spanKey"])
        self.assertIsNone(told["audioFiles"])

    def test_ex_clip_has_metadata_values(self):
        clip = cards.ex_segments(self)[0]
        (told,) = self.info(clip)
        self.assertEqual((told["volumeTitle"], told["volumeType"]), ("Sony XDCAM EX", 3))
        self.assertEqual(told["startTimecode"], "01:02:03:04")
        self.assertEqual(told["endTimecode"], "01:02:10:03")
        self.assertEqual(told["spanKey"], "632_0001")
        self.assertEqual(told["audioFiles"], [])
        values = {each["identifier"]: (each["description"], each["value"])
                  for each in told["metadata"]}
        self.assertEqual(values["QRXMediaMetadataVideoFileTitleKey"], ("File", "632_0001_01.MP4"))
        self.assertEqual(values["QRXMediaMetadataStartTimecodeKey"][1], "01:02:03:04")
        self.assertNotIn("QRXMediaMetadataNotFound", [value for _, value in values.values()])

    def test_text_names_what_is_known_and_dashes_the_rest(self):
        clip = cards.p2_series(self, ["0001AA"])[0]
        sound = os.fsdecode(self.write("p2/CONTENTS/AUDIO/0001AA00.MXF"))
        self.write("p2/CONTENTS/AUDIO/0001AA01.MXF")
        lines = self.info_as_text(clip).splitlines()
        self.assertEqual(lines[0], clip)
        self.assertEqual(lines[1], "  layout          Panasonic P2 (0)")
        self.assertEqual(lines[2], "  frame rate      29.97 (5)")
        self.assertIn("  end timecode    -", lines)
        self.assertIn("  drop frame      yes", lines)
        self.assertIn(f"  audio files     {sound}", lines)
        self.assertIn(" " * 18 + sound.replace("AA00", "AA01"), lines)
        self.assertEqual(lines[-1], "  metadata        -")

    def test_several_clips_are_apart_by_an_empty_line(self):
        clips = cards.ex_segments(self)
        blocks = self.info_as_text(*clips).split("\n\n")
        self.assertEqual([block.splitlines()[0] for block in blocks], clips)
        self.assertIn("    Start Timecode  01:02:03:04", blocks[0].splitlines())

    def test_file_of_nobody_is_said_and_the_rest_is_told(self):
        self.write("notes.txt")
        clip = cards.p2_series(self, ["0001AA"])[0]
        done = self.run_qrx("info", "--format", "json", "--ffmpeg", NO_FFMPEG, "notes.txt", "gone",
                            "", ".", clip, status=1)
        self.assertEqual([each["filePath"] for each in json.loads(done.stdout)], [clip])
        self.assertIn(b"qrx: notes.txt: no layout claims it", done.stderr)
        self.assertIn(b"qrx: gone: No such file or directory", done.stderr)
        self.assertIn(b"qrx: '': No such file or directory", done.stderr)
        self.assertIn(b"qrx: .: is a folder", done.stderr)

    def test_nothing_named_and_unknown_format_are_wrong_usage(self):
        self.run_qrx("info", status=2)
        self.run_qrx("info", "--format", "table", "x", status=2)

    def test_sidecar_that_is_no_xml_leaves_the_clip_told(self):
        for contents in (b"", b"\xff" * 4096, b"<P2Main><ClipContent>", b"\0"):
            self.write("p2/CONTENTS/CLIP/0001AA.XML", contents)
            (told,) = self.info(self.write("p2/CONTENTS/VIDEO/0001AA.MXF"))
            self.assertEqual(told["volumeTitle"], "Panasonic P2", contents[:20])
            self.assertIsNotNone(told["sidecar"])
            self.assertIsNone(told["uniqueIdentifier"])
            self.assertIsNone(told["spanKey"])

    def test_fifo_in_place_of_a_clip_is_not_waited_for(self):
        os.makedirs(self.folder / "p2/CONTENTS/VIDEO")
        os.mkfifo(self.folder / "p2/CONTENTS/VIDEO/0001AA.MXF")
        (told,) = self.info("p2/CONTENTS/VIDEO/0001AA.MXF")
        self.assertEqual(told["volumeTitle"], "Panasonic P2")

    def test_harmful_names_and_values(self):
        names = [b"\x1b[2J.MXF", b"a\nb.MXF", b"\xff.MXF"]
        clips = [self.write(b"p2/CONTENTS/VIDEO/" + name) for name in names]
        xml = cards.p2_clip_xml("x", "A&#x9;B\u202e\u009b2J")
        self.write(b"p2/CONTENTS/CLIP/a\nb.XML", xml)
        text = self.info_as_text(*clips)
        for harmful in ("\x1b", "\u202e", "\u009b"):
            self.assertNotIn(harmful, text)
        self.assertIn(r"/a\nb.MXF", text)
        self.assertIn(r"unique id       A\tB\u{202e}\u{9b}2J", text)
        told = self.info(*clips)
        self.assertEqual(told[0]["filePath"], os.fsdecode(clips[0]))
        self.assertEqual(told[1]["uniqueIdentifier"], "A\tB\u202e\u009b2J")
        self.assertEqual(told[1]["sidecar"]["filePath"],
                         f"{self.folder}/p2/CONTENTS/CLIP/a\nb.XML")
        self.assertEqual(base64.b64decode(told[2]["filePathBytes"]), clips[2])


if __name__ == "__main__":
    qrx_case.main()
