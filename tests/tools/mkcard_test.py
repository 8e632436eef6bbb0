"""`qrx mkcard`: real cards, found again by `qrx scan`; needs a working ffmpeg."""

import filecmp
import json
import os
import shutil
import subprocess

import qrx_case

LAYOUTS = {
    "canon-avchd": ("Canon AVCHD", "PRIVATE/AVCHD"),
    "sony-avchd": ("Sony NXCAM AVCHD", "AVCHD"),
    "panasonic-avchd": ("Panasonic AVCHD", "PRIVATE/AVCHD"),
}

# Title, and where a card of two clips has them.
CAMERAS = {
    "p2": ("Panasonic P2", ["CONTENTS/VIDEO/0001AB.MXF", "CONTENTS/VIDEO/0002AB.MXF"]),
    "xdcam-hd": ("Sony XDCAM HD", ["Clip/C0001.MXF", "Clip/C0002.MXF"]),
    "xdcam-ex": ("Sony XDCAM EX", ["BPAV/CLPR/632_0001_01/632_0001_01.MP4",
                                   "BPAV/CLPR/632_0002_01/632_0002_01.MP4"]),
    "jvc-mp4": ("JVC-MP4", ["PRIVATE/JVC/BPAV/CLPR/ABCD0001_01/ABCD0001_01.MP4",
                            "PRIVATE/JVC/BPAV/CLPR/ABCD0002_01/ABCD0002_01.MP4"]),
    "canon-xf": ("Canon XF", ["CONTENTS/CLIPS001/AA0001/AA000101.MXF",
                              "CONTENTS/CLIPS001/AA0002/AA000201.MXF"]),
    "canon-eos": ("Canon EOS", ["DCIM/100CANON/MVI_0001.MOV", "DCIM/100CANON/MVI_0002.MOV"]),
    "gopro": ("GoPro", ["DCIM/100GOPRO/GOPR0001.MP4", "DCIM/100GOPRO/GOPR0002.MP4"]),
    "red-one": ("RED One", ["A001.RDM/A001_C001_0503AB.RDC/A001_C001_0503AB_F.mov",
                            "A001.RDM/A001_C002_0503AB.RDC/A001_C002_0503AB_F.mov"]),
    "jvc-qt": ("JVC-QuickTime", ["PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV",
                                 "PRIVATE/JVC/CQAV/CLIP/ABCD0002_01.MOV"]),
}

# Sounds and proxies beside the clips, which are media of their own wherever they lie.
COMPANIONS = {
    "p2": ["CONTENTS/AUDIO/0001AB00.MXF", "CONTENTS/AUDIO/0001AB01.MXF",
           "CONTENTS/AUDIO/0002AB00.MXF", "CONTENTS/AUDIO/0002AB01.MXF",
           "CONTENTS/PROXY/0001AB.MP4", "CONTENTS/PROXY/0002AB.MP4"],
    "xdcam-hd": ["Sub/C0001S01.MXF", "Sub/C0002S01.MXF"],
    "gopro": ["DCIM/100GOPRO/GOPR0001.LRV", "DCIM/100GOPRO/GOPR0002.LRV"],
}


class Mkcard(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        for tool in ("ffmpeg", "ffprobe"):
            if not shutil.which(tool):
                self.fail(f"these tests need {tool}")

    def make(self, *arguments, status=0, **options):
        return self.run_qrx("mkcard", *arguments, status=status, **options)

    def streams(self, path):
        done = subprocess.run(["ffprobe", "-v", "error", "-show_streams", "-of", "json", path],
                              capture_output=True, check=True, timeout=60)
        return [s["codec_name"] for s in json.loads(done.stdout)["streams"]
                if s["codec_type"] in ("video", "audio")]


class Avchd(Mkcard):
    def test_scan_finds_the_clips_of_each_layout(self):
        for layout, (title, root) in LAYOUTS.items():
            with self.subTest(layout):
                self.make(layout, layout)
                clips, _ = self.scan(layout)
                stream = f"{self.folder}/{layout}/{root}/BDMV/STREAM"
                self.assertEqual(clips, [
                    {"filePath": f"{stream}/0000{n}.MTS", "volumeTitle": title, "qt": False}
                    for n in range(3)])

    def test_clips_are_real_transport_streams_of_192_byte_packets(self):
        self.make("sony-avchd", "card", "--clips", "1")
        clip = self.folder / "card/AVCHD/BDMV/STREAM/00000.MTS"
        self.assertEqual(self.streams(clip), ["h264", "ac3"])
        data = clip.read_bytes()
        self.assertEqual(len(data) % 192, 0)
        self.assertEqual({data[at] for at in range(4, len(data), 192)}, {0x47})

    def test_every_clip_has_its_information_and_stands_in_a_playlist(self):
        self.make("panasonic-avchd", "card", "--clips", "5")
        bdmv = self.folder / "card/PRIVATE/AVCHD/BDMV"
        names = [f"{n:05}" for n in range(5)]
        self.assertEqual(sorted(os.listdir(bdmv / "STREAM")), [f"{n}.MTS" for n in names])
        self.assertEqual(sorted(os.listdir(bdmv / "CLIPINF")), [f"{n}.CPI" for n in names])
        playlist = (bdmv / "PLAYLIST/00000.MPL").read_bytes()
        self.assertEqual(playlist[:8], b"MPLS0100")
        for name in names:
            self.assertEqual(playlist.count(f"{name}M2TS".encode()), 1)

    def test_index_files_say_what_they_are(self):
        self.make("sony-avchd", "card")
        bdmv = self.folder / "card/AVCHD/BDMV"
        self.assertEqual((bdmv / "INDEX.BDM").read_bytes()[:8], b"INDX0100")
        self.assertEqual((bdmv / "MOVIEOBJ.BDM").read_bytes()[:8], b"MOBJ0100")
        for name in os.listdir(bdmv / "CLIPINF"):
            data = (bdmv / "CLIPINF" / name).read_bytes()
            self.assertEqual(data[:8], b"HDMV0100")
            self.assertGreaterEqual(len(data), 600)
            self.assertLessEqual(len(data), 2500)

    def test_parts_of_the_files_begin_where_their_heads_say(self):
        self.make("sony-avchd", "card", "--clips", "2")
        bdmv = self.folder / "card/AVCHD/BDMV"
        # First head field that holds an address, number of addresses, where the first part begins.
        for name, at, count in (("INDEX.BDM", 8, 1), ("PLAYLIST/00000.MPL", 8, 2),
                                ("CLIPINF/00000.CPI", 8, 5)):
            with self.subTest(name):
                data = (bdmv / name).read_bytes()

                def number(position):
                    return int.from_bytes(data[position:position + 4], "big")
                begins = [40] + [number(at + 4 * n) for n in range(count)]
                for begin, following in zip(begins, begins[1:] + [len(data)]):
                    if following == len(data) and name != "CLIPINF/00000.CPI":
                        self.assertEqual(begin + 4 + number(begin), len(data))
                    else:
                        self.assertEqual(begin + 4 + number(begin), following)

    def test_start_timecodes_stand_where_the_maker_writes_them_and_differ(self):
        for layout, distance, flag in (("sony-avchd", 16, 0x40), ("panasonic-avchd", 8, 0)):
            with self.subTest(layout):
                self.make(layout, layout, "--clips", "4")
                folder = self.folder / layout / LAYOUTS[layout][1] / "BDMV/CLIPINF"
                codes = []
                for name in sorted(os.listdir(folder)):
                    data = (folder / name).read_bytes()
                    code = data[len(data) - distance:][:4]
                    codes.append(bytes([code[0] & ~flag]) + code[1:])
                    self.assertEqual(code[0] & 0xC0, flag)
                self.assertEqual([c.hex() for c in codes],
                                 ["00000001", "05070001", "10140001", "15210001"])

    def test_canon_card_has_copies_of_index_and_playlists(self):
        self.make("canon-avchd", "card")
        avchd = self.folder / "card/PRIVATE/AVCHD"
        for copy, original in (("INDEX.BDM", "INDEX.BDM"), ("00000.MPL", "PLAYLIST/00000.MPL")):
            self.assertTrue(filecmp.cmp(avchd / "CANON" / copy, avchd / "BDMV" / original, False))

    def test_long_card_has_several_playlists(self):
        self.make("sony-avchd", "card", "--clips", "201")
        self.assertEqual(sorted(os.listdir(self.folder / "card/AVCHD/BDMV/PLAYLIST")),
                         ["00000.MPL", "00001.MPL"])
        self.assertEqual(len(self.paths("--ffmpeg", qrx_case.NO_FFMPEG, "card")), 201)

    def test_tool_without_the_usual_encoders_is_made_do_with(self):
        real = shutil.which("ffmpeg")
        tool = self.script(f'case "$2" in -encoders) {real} "$@" | grep -Ev "264|ac3";; '
                           f'*) exec {real} "$@";; esac')
        self.make("sony-avchd", "card", "--clips", "1", "--ffmpeg", tool)
        clip = self.folder / "card/AVCHD/BDMV/STREAM/00000.MTS"
        self.assertEqual(self.streams(clip), ["mpeg2video", "mp2"])


class Cameras(Mkcard):
    def test_scan_finds_the_clips_of_each_layout_and_nothing_unexpected(self):
        for layout, (title, places) in CAMERAS.items():
            with self.subTest(layout):
                self.make(layout, layout, "--clips", "2")
                found = {os.path.relpath(clip["filePath"], self.folder / layout):
                         clip["volumeTitle"] for clip in self.scan(layout)[0]}
                companions = {place: found.get(place) for place in COMPANIONS.get(layout, [])}
                self.assertLessEqual(set(companions.values()), {"MXF", "General Movies"})
                self.assertEqual(found, {**dict.fromkeys(places, title), **companions})

    def test_clips_have_picture_and_sound(self):
        for layout, (_, places) in CAMERAS.items():
            with self.subTest(layout):
                self.make(layout, layout, "--clips", "1")
                streams = self.streams(self.folder / layout / places[0])
                self.assertEqual(len(streams), 1 if layout == "p2" else 2)
        sound = self.folder / "p2/CONTENTS/AUDIO/0001AB00.MXF"
        self.assertEqual(self.streams(sound), ["pcm_s16le"])

    def test_each_clip_has_the_companions_that_the_camera_writes(self):
        # Layout, and the files of its second clip (of three), the clip itself left out.
        for layout, companions in (
                ("p2", ["AUDIO/0002AB00.MXF", "AUDIO/0002AB01.MXF", "CLIP/0002AB.XML",
                        "ICON/0002AB.BMP", "PROXY/0002AB.BIN", "PROXY/0002AB.MP4",
                        "PROXY/0002AB.XML", "VIDEO/0002AB.MXF"]),
                ("xdcam-hd", ["Clip/C0002.MXF", "Clip/C0002M01.XML", "Sub/C0002S01.MXF"]),
                ("xdcam-ex", [f"632_0002_01/632_0002_01{end}"
                              for end in (".MP4", ".SMI", "C01.SMI", "I01.PPN", "M01.XML",
                                          "R01.BIM")]),
                ("canon-eos", ["100CANON/MVI_0002.MOV", "100CANON/MVI_0002.THM"]),
                ("gopro", ["100GOPRO/GOPR0002.LRV", "100GOPRO/GOPR0002.MP4",
                           "100GOPRO/GOPR0002.THM"])):
            with self.subTest(layout):
                self.make(layout, layout, "--clips", "3")
                found = sorted(f"{path.parent.name}/{path.name}"
                               for path in (self.folder / layout).rglob("*0002*")
                               if path.is_file())
                self.assertEqual(found, companions)

    def test_photographs_go_on_with_the_numbers_of_the_movies(self):
        self.make("canon-eos", "card", "--clips", "2")
        folder = self.folder / "card/DCIM/100CANON"
        self.assertEqual(sorted(path.name for path in folder.glob("IMG_*")),
                         ["IMG_0003.JPG", "IMG_0004.JPG"])
        self.assertEqual((folder / "IMG_0003.JPG").read_bytes()[:3], b"\xff\xd8\xff")

    def test_clips_of_a_long_card_are_all_whole_and_begin_at_times_of_their_own(self):
        clips = 103  # more than the tool writes in one run, twice
        self.make("canon-xf", "card", "--clips", str(clips))
        movies = sorted((self.folder / "card").rglob("*.MXF"))
        self.assertEqual(len(movies), clips)
        self.assertEqual(len({path.stat().st_size for path in movies}), 1)
        for path in (movies[0], movies[50], movies[100], movies[-1]):
            self.assertEqual(len(self.streams(path)), 2)
        self.assertEqual(len({path.read_bytes() for path in movies}), clips)

    def test_card_in_a_folder_with_an_odd_name(self):
        for layout in ("p2", "gopro"):
            with self.subTest(layout):
                self.make(layout, "--clips", "2", "--", f"-{layout} 100%d [x]")
                self.assertGreater(len(self.paths("--", f"-{layout} 100%d [x]")), 2)


class Loose(Mkcard):
    def test_movies_are_found_and_the_rest_is_not(self):
        self.make("loose", "x")
        self.assertEqual(sorted(os.listdir(self.folder / "x")),
                         ["edit.xml", "movie0001.mov", "movie0002.mp4", "movie0003.avi",
                          "movie0004.mkv", "notes.txt", "still.jpg"])
        clips, _ = self.scan("x")
        self.assertEqual([(os.path.basename(c["filePath"]), c["volumeTitle"], c["qt"])
                          for c in clips],
                         [("movie0001.mov", "General Movies", True),
                          ("movie0002.mp4", "General Movies", True),
                          ("movie0003.avi", "General Movies", True),
                          ("movie0004.mkv", "General Movies", False)])

    def test_as_many_movies_as_wanted(self):
        self.make("loose", "x", "--clips", "6")
        movies = [n for n in sorted(os.listdir(self.folder / "x")) if n.startswith("movie")]
        self.assertEqual(movies[4:], ["movie0005.mov", "movie0006.mp4"])
        for name in movies:
            self.assertEqual(len(self.streams(self.folder / "x" / name)), 2)


class All(Mkcard):
    def test_one_card_of_each_layout_in_a_folder_of_its_own(self):
        done = self.make("all", "cards", "--clips", "1")
        layouts = [line.split()[0] for line in
                   self.make("--list").stdout.decode().splitlines()]
        self.assertEqual(layouts.pop(), "all")
        self.assertEqual(sorted(os.listdir(self.folder / "cards")), sorted(layouts))
        self.assertEqual(len(done.stdout.splitlines()), len(layouts))
        titles = {}
        for clip in self.scan("cards")[0]:
            layout = os.path.relpath(clip["filePath"], self.folder / "cards").split("/")[0]
            titles.setdefault(layout, set()).add(clip["volumeTitle"])
        self.assertEqual(sorted(titles), sorted(layouts))
        for layout, (title, _) in {**LAYOUTS, **CAMERAS}.items():
            self.assertIn(title, titles[layout])
        self.assertEqual(titles["loose"], {"General Movies"})


class Folder(Mkcard):
    def refused(self, *arguments, **options):
        done = self.make(*arguments, status=1, **options)
        self.assertEqual(done.stdout, b"")
        return done.stderr.decode()

    def everything(self):
        return sorted(os.path.join(at, name) for at, folders, files in os.walk(self.folder)
                      for name in folders + files)

    def test_empty_folder_is_taken(self):
        (self.folder / "card").mkdir()
        self.make("sony-avchd", "card", "--clips", "1")
        self.assertTrue((self.folder / "card/AVCHD/BDMV/INDEX.BDM").exists())

    def test_folders_above_are_made(self):
        self.make("sony-avchd", "a/b/card", "--clips", "1")
        self.assertTrue((self.folder / "a/b/card/AVCHD/BDMV/INDEX.BDM").exists())

    def test_folder_that_is_not_empty_is_refused(self):
        self.write("card/.hidden", b"mine")
        before = self.everything()
        self.assertIn("is not empty", self.refused("sony-avchd", "card"))
        self.assertIn("is not empty", self.refused("all", "card"))
        self.assertEqual(self.everything(), before)

    def test_file_and_dangling_link_are_refused(self):
        self.write("file", b"mine")
        os.symlink("nowhere", self.folder / "link")
        before = self.everything()
        self.assertIn("is no folder", self.refused("sony-avchd", "file"))
        self.assertIn("link", self.refused("sony-avchd", "link"))
        self.assertEqual(self.everything(), before)

    def test_odd_names(self):
        for name in ("-card", "a b", "100%d", "[x]", "a:b", "new\nline"):
            with self.subTest(name):
                self.make("sony-avchd", "--clips", "1", "--", name)
                self.assertEqual(len(self.paths("--", name)), 1)

    def test_missing_tool_leaves_nothing_behind(self):
        before = self.everything()
        said = self.refused("all", "new/cards", "--ffmpeg", "/nowhere/ffmpeg")
        self.assertIn("/nowhere/ffmpeg cannot be run: No such file or directory", said)
        self.assertEqual(self.everything(), before)

    def test_failing_tool_is_quoted_and_leaves_nothing_behind(self):
        real = shutil.which("ffmpeg")
        tool = self.script(f'case "$2" in -encoders) exec {real} "$@";; esac; '
                           'for last; do :; done; echo half > "$last"; '
                           'echo "no space on planet" >&2; exit 69')
        before = self.everything()
        said = self.refused("all", "cards", "--ffmpeg", tool)
        self.assertIn("failed with status 69: no space on planet", said)
        self.assertEqual(self.everything(), before)

    def test_tool_that_fails_late_leaves_an_empty_folder_empty(self):
        real = shutil.which("ffmpeg")
        tool = self.script(f'case "$*" in *.avi) exit 1;; esac; exec {real} "$@"')
        (self.folder / "card").mkdir()
        self.assertIn("failed with status 1: it says nothing",
                      self.refused("loose", "card", "--ffmpeg", tool))
        self.assertEqual(os.listdir(self.folder / "card"), [])

    def test_slow_tool_is_ended_by_the_limit(self):
        real = shutil.which("ffmpeg")
        tool = self.script(f'case "$2" in -encoders) exec {real} "$@";; esac; exec sleep 1000')
        said = self.refused("loose", "card", "--ffmpeg", tool, "--tool-limit", "1")
        self.assertIn("took too long", said)
        self.assertFalse((self.folder / "card").exists())

    def test_folder_that_may_not_be_written(self):
        user = self.as_plain_user()
        os.mkdir(self.folder / "closed", 0o555)
        self.assertIn("Permission denied", self.refused("loose", "closed/card", **user))


if __name__ == "__main__":
    qrx_case.main()
