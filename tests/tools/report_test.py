"""`qrx report`: what it tells of cards, whatever it is written as."""

import base64
import csv
import html.parser
import io
import json
import os
import re
import signal
import stat
import subprocess

import cards
import qrx_case
from qrx_case import NO_FFMPEG

LAYOUTS = {  # of mkcard: title, clips, whether there is a start timecode
    "canon-avchd": ("Canon AVCHD", 3, False),
    "sony-avchd": ("Sony NXCAM AVCHD", 3, True),
    "panasonic-avchd": ("Panasonic AVCHD", 3, True),
    "p2": ("Panasonic P2", 4, True),
    "xdcam-hd": ("Sony XDCAM HD", 3, True),
    "xdcam-ex": ("Sony XDCAM EX", 4, True),
    "jvc-mp4": ("JVC-MP4", 4, True),
    "canon-xf": ("Canon XF", 3, True),
    "canon-eos": ("Canon EOS", 3, True),
    "gopro": ("GoPro", 3, False),
    "red-one": ("RED One", 3, False),
    "jvc-qt": ("JVC-QuickTime", 4, True),
    "loose": ("General Movies", 4, False),
}
SPANNED = {"p2", "xdcam-ex", "jvc-mp4", "jvc-qt"}


class Page(html.parser.HTMLParser):
    """What a reader of the page gets: text, elements and attributes."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.elements, self.texts, self.open = [], [], []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        self.elements.append((tag, dict(attrs)))
        if tag in ("script", "style"):
            self.open.append(tag)

    def handle_endtag(self, tag):
        if tag in ("script", "style"):
            self.open.pop()

    def handle_data(self, data):
        if not self.open:
            self.texts.append(data)

    @property
    def text(self):
        return "".join(self.texts)

    def all(self, tag):
        return [attributes for name, attributes in self.elements if name == tag]


class Report(qrx_case.QrxCase):
    def json(self, *arguments, status=0, **options):
        done = self.run_qrx("report", "--format", "json", *arguments, status=status, **options)
        return json.loads(done.stdout)

    def page(self, *arguments, status=0, **options):
        done = self.run_qrx("report", "-o", "-", *arguments, status=status, **options)
        return Page(done.stdout.decode())

    def rows(self, *arguments, **options):
        done = self.run_qrx("report", "--format", "csv", *arguments, **options)
        return list(csv.DictReader(io.StringIO(done.stdout.decode(), newline="")))

    # -- every layout -----------------------------------------------------------------------

    def test_every_layout_by_real_media(self):
        self.run_qrx("mkcard", "all", "cards", timeout=300)
        folders = [f"cards/{layout}" for layout in LAYOUTS]
        report = self.json(*folders, timeout=300)
        self.assertEqual(report["problems"], [])
        by_card = {}
        for clip in report["clips"]:
            by_card.setdefault(os.path.basename(clip["card"]), []).append(clip)
        self.assertEqual(set(by_card), set(LAYOUTS))
        for layout, (title, count, has_timecode) in LAYOUTS.items():
            with self.subTest(layout):
                clips = by_card[layout]
                self.assertEqual({clip["volumeTitle"] for clip in clips}, {title})
                self.assertEqual(len(clips), count)
                self.assertEqual([clip["position"] for clip in clips], list(range(1, count + 1)))
                for clip in clips:
                    self.assertAlmostEqual(clip["durationSeconds"], 1.0, delta=0.05)
                    self.assertEqual(clip["bytes"], os.path.getsize(clip["filePath"]))
                    self.assertIn(clip["frameRate"], {"25", "29.97"})
                    self.assertEqual(clip["startTimecode"] is not None, has_timecode)
                spans = [clip["span"] for clip in clips if clip["span"]]
                self.assertEqual(len(spans), 3 if layout in SPANNED else 0)
                for number, span in enumerate(spans, 1):
                    self.assertEqual((span["piece"], span["pieces"]), (number, 3))
                    self.assertIs(span["complete"], True)
        self.assertEqual([clip["audioFiles"] for clip in by_card["p2"]], [2] * 4)
        self.assertEqual(by_card["gopro"][0]["width"], 1920)
        self.assertEqual(by_card["sony-avchd"][0]["height"], 1080)
        self.assertEqual(report["totals"]["clips"], len(report["clips"]))
        self.assertEqual(report["totals"]["bytes"],
                         sum(card["totals"]["bytes"] for card in report["cards"]))

        self.check_that_formats_agree(folders, report["clips"])
        self.check_that_jobs_do_not_matter(folders, report)
        self.check_page_with_posters(folders, report)

    def check_that_formats_agree(self, folders, clips):
        rows = self.rows(*folders, timeout=300)
        self.assertEqual([row["filePath"] for row in rows], [clip["filePath"] for clip in clips])
        for row, clip in zip(rows, clips):
            for key in ("startTimecode", "endTimecode", "frameRate", "uniqueIdentifier", "codec"):
                self.assertEqual(row[key], clip[key] or "")
            self.assertEqual(float(row["durationSeconds"]), clip["durationSeconds"])
            self.assertEqual(int(row["bytes"]), clip["bytes"])
            self.assertEqual(row["dropFrame"], {None: "", True: "true", False: "false"}
                             [clip["dropFrame"]])

    def check_that_jobs_do_not_matter(self, folders, report):
        for jobs in ("1", "7"):
            again = self.json("--jobs", jobs, *folders, timeout=300)
            again["made"] = report["made"]
            self.assertEqual(again, report)

    def check_page_with_posters(self, folders, report):
        done = self.run_qrx("report", "-o", "report.html", *folders, timeout=300)
        self.assertEqual((done.stdout, done.stderr), (b"", b""))
        page = Page((self.folder / "report.html").read_text(encoding="utf-8"))
        pictures = page.all("img")
        self.assertEqual(len(pictures), len(report["clips"]))
        for picture in pictures:
            self.assertRegex(picture["alt"], r"^Poster of \S+")
            self.assertLessEqual(int(picture["width"]), 240)
            kind, data = picture["src"].split(",", 1)
            self.assertEqual(kind, "data:image/jpeg;base64")
            jpeg = base64.b64decode(data, validate=True)
            self.assertLessEqual(len(jpeg), 16384)
            self.assertTrue(jpeg.startswith(b"\xff\xd8\xff") and jpeg.endswith(b"\xff\xd9"))
        for clip in report["clips"]:
            self.assertIn(os.path.basename(clip["filePath"]), page.text)
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith(".")], [])

    # -- pieces -----------------------------------------------------------------------------

    def test_missing_pieces_are_named_where_they_belong(self):
        cards.ex_segments(self, pieces=(2, 5))
        report = self.json("ex", "--ffmpeg", NO_FFMPEG)
        self.assertEqual(report["totals"]["missingPieces"], 3)
        span = report["clips"][0]["span"]
        self.assertEqual(span["missing"], ["632_0001_01", "632_0001_03 to 632_0001_04"])
        self.assertIs(span["complete"], False)
        text = self.page("ex", "--ffmpeg", NO_FFMPEG).text
        places = [text.index(what, text.index("Spanned recording")) for what in (
            "632_0001_01", "632_0001_02.MP4", "632_0001_03 to 632_0001_04", "632_0001_05.MP4")]
        self.assertEqual(places, sorted(places))
        self.assertIn("3 missing", text)
        self.assertEqual([row["spanMissing"] for row in self.rows("ex", "--ffmpeg", NO_FFMPEG)],
                         ["3", "3"])

    def test_recording_that_goes_on_on_another_card(self):
        names = ["0001AA", "0001BB", "0001CC"]
        cards.p2_series(self, names, card="a", left_out=names[1:])
        cards.p2_series(self, names, card="b", left_out=names[:1])
        report = self.json("a", "b", "--ffmpeg", NO_FFMPEG)
        self.assertEqual([card["totals"]["clips"] for card in report["cards"]], [1, 2])
        self.assertEqual([clip["span"]["otherCards"] for clip in report["clips"]],
                         [[f"{self.folder}/b"], [f"{self.folder}/a"], [f"{self.folder}/a"]])
        self.assertEqual(report["totals"]["missingPieces"], 0)

    # -- cards ------------------------------------------------------------------------------

    def test_cards_of_one_parent_stay_apart(self):
        for name in ("one", "two"):
            self.write(f"mnt/{name}/DCIM/100CANON/MVI_0001.MOV", b"x")
        report = self.json("mnt", "--ffmpeg", NO_FFMPEG)
        self.assertEqual([card["filePath"] for card in report["cards"]],
                         [f"{self.folder}/mnt/one", f"{self.folder}/mnt/two"])
        self.assertEqual([clip["uniqueIdentifier"] for clip in report["clips"]], [None, None])

    def test_two_layouts_on_one_card(self):
        self.sony_card()
        self.write("card/DCIM/100CANON/MVI_0001.MOV", b"x")
        (card,) = self.json("card", "--ffmpeg", NO_FFMPEG)["cards"]
        self.assertEqual({layout["volumeTitle"] for layout in card["layouts"]},
                         {"Sony NXCAM AVCHD", "Canon EOS"})

    def test_file_named_twice_is_told_once(self):
        card = self.sony_card()
        report = self.json(card, card, f"{card}/AVCHD/BDMV/STREAM/00000.MTS", "--ffmpeg", NO_FFMPEG)
        self.assertEqual(report["totals"]["clips"], 1)

    # -- what is not known ------------------------------------------------------------------

    def test_nothing_is_invented(self):
        self.sony_card()
        (clip,) = self.json("card", "--ffmpeg", NO_FFMPEG)["clips"]
        for key in ("startTimecode", "endTimecode", "frameRate", "dropFrame", "durationSeconds",
                    "audioStreams", "width", "height", "codec", "span"):
            self.assertIsNone(clip[key], key)
        self.assertEqual(clip["bytes"], 0)
        page = self.page("card", "--ffmpeg", NO_FFMPEG)
        self.assertNotIn("00:00:00:00", page.text)
        self.assertIn("empty file", page.text)
        (row,) = self.rows("card", "--ffmpeg", NO_FFMPEG)
        self.assertEqual((row["startTimecode"], row["durationSeconds"], row["frameRate"]),
                         ("", "", ""))

    def test_drop_frame_of_xdcam_is_a_flag_and_no_digit(self):
        folder = "ex/BPAV/CLPR/632_0001_01"
        self.write(f"{folder}/632_0001_01M01.XML", cards.xdcam_meta(first="44030201"))
        self.write(f"{folder}/632_0001_01.MP4", b"x")
        (clip,) = self.json("ex", "--ffmpeg", NO_FFMPEG)["clips"]
        self.assertEqual((clip["startTimecode"], clip["dropFrame"]), ("01:02:03;04", True))
        self.assertAlmostEqual(clip["durationSeconds"], 240 * 1001 / 30000, places=3)

    # -- what nobody claims -----------------------------------------------------------------

    def test_unclaimed_files_are_grouped_with_their_reason(self):
        self.sony_card()
        for number in range(300):
            self.write(f"card/AVCHD/BDMV/PLAYLIST/9{number:04}.MPL", b"x" * 10)
        self.write("card/AVCHD/BDMV/CLIPINF/00000.CPI", b"x" * 20)
        self.write("card/empty.mxf")
        self.write("card/odd.xyz", b"x")
        (card,) = self.json("card", "--ffmpeg", self.script("exit 1"))["cards"]
        self.assertEqual(
            [(group["reason"], group["kind"], group["files"], group["mayBeFootage"])
             for group in card["unclaimed"]],
            [("empty file", "MXF", 1, True), ("ffmpeg reports no duration", "XYZ", 1, True),
             ("not video by its name", "MPL", 300, False)])
        self.assertEqual(len(card["unclaimed"][2]["examples"]), 3)
        self.assertEqual(card["totals"]["files"], 2)  # the clip and its sidecar
        self.assertEqual(card["totals"]["bytes"], 20)
        page = self.page("card", "--ffmpeg", self.script("exit 1"))
        self.assertIn("may be footage", page.text)
        self.assertLess(page.text.count(".MPL"), 5)

    def test_sound_of_clips_is_no_footage_and_orphans_are(self):
        cards.p2_series(self, ["0001AA"])
        for name in ("0001AA00", "0001AA15", "0009ZZ00"):
            self.write(f"p2/CONTENTS/AUDIO/{name}.MXF",
                       bytes.fromhex("060e2b34020501010d01020101020400") + b"x")
        report = self.json("p2", "--ffmpeg", NO_FFMPEG)
        names = {os.path.basename(clip["filePath"]) for clip in report["clips"]}
        self.assertTrue({"0001AA.MXF", "0009ZZ00.MXF"} >= names, names)
        self.assertEqual(report["cards"][0]["layouts"][0]["totals"]["files"], 4)
        told = names | {os.path.basename(example["filePath"])
                        for group in report["cards"][0]["unclaimed"]
                        for example in group["examples"]}
        self.assertIn("0009ZZ00.MXF", told)

    def test_quick_spares_the_tool_and_exact_does_not(self):
        self.write("x/page.xml", b"x")
        self.write("x/movie.xyz", b"x")
        log = self.folder / "log"
        tool = self.script(f'echo "$2" >> {log}\nexit 1')
        self.json("x", "--ffmpeg", tool)
        self.assertNotIn("page.xml", log.read_text())
        self.assertIn("movie.xyz", log.read_text())
        self.json("x", "--ffmpeg", tool, "--exact")
        self.assertIn("page.xml", log.read_text())

    def test_tool_describes_each_file_once(self):
        self.sony_card([f"{n:05}.MTS" for n in range(8)])
        for n in range(8):
            self.write(f"card/AVCHD/BDMV/STREAM/{n:05}.MTS", b"x")
        log = self.folder / "log"
        self.json("card", "--ffmpeg", self.reporting_script(before=f'echo "$2" >> {log}'))
        lines = log.read_text().splitlines()
        self.assertEqual(len(lines), 8)
        self.assertEqual(len(set(lines)), 8)

    # -- names ------------------------------------------------------------------------------

    HOSTILE = [b"</script><script>alert(1)</script>.MOV", b"<img src=x onerror=alert(1)>.MOV",
               b'"quote\'s & amp;.MOV', b"line\nend\ttab.MOV", b"\x1b[2J.MOV",
               "gpj.\u202eVOM.MOV".encode(), b"\xff\xfe.MOV", b"{{script}}.MOV", b"=1+1,a.MOV"]

    def hostile_card(self):
        # "/" ends a name, so the closing tag is spelled with another folder.
        names = [name.replace(b"/", b"\xe2\x88\x95") for name in self.HOSTILE]
        for name in names:
            self.write(b"card/DCIM/100CANON/" + name, b"x")
        return names

    def test_names_stay_text_on_the_page(self):
        self.hostile_card()
        self.write(b"<svg onload=x>/note.xyz", b"x")
        page = self.page("card", "<svg onload=x>", "--ffmpeg", NO_FFMPEG)
        self.assertEqual(len(page.all("script")), 1)
        self.assertEqual((page.all("img"), page.all("svg")), ([], []))
        for attributes in (each for _, each in page.elements):
            self.assertEqual([name for name in attributes if name.startswith("on")], [])
        for harmful in ("\x1b", "\u202e", "\t"):
            self.assertNotIn(harmful, page.text)
        for shown in (r"line\nend\ttab.MOV", r"\x1b[2J.MOV", r"gpj.\u{202e}VOM.MOV",
                      r"\xff\xfe.MOV", "<img src=x onerror=alert(1)>.MOV", "{{script}}.MOV"):
            self.assertIn(shown, page.text)

    def test_names_come_back_from_csv_and_json(self):
        wanted = {os.path.join(os.fsencode(self.folder), b"card/DCIM/100CANON", name)
                  for name in self.hostile_card()}

        def path(record):
            if record.get("filePathBytes"):
                return base64.b64decode(record["filePathBytes"])
            return record["filePath"].encode()

        self.assertEqual({path(clip) for clip in self.json("card", "--ffmpeg", NO_FFMPEG)["clips"]},
                         wanted)
        done = self.run_qrx("report", "--format", "csv", "card", "--ffmpeg", NO_FFMPEG)
        self.assertEqual(done.stdout.count(b"\n"), len(wanted) + 1)
        self.assertEqual({path(row) for row in self.rows("card", "--ffmpeg", NO_FFMPEG)}, wanted)

    # -- the page by itself -----------------------------------------------------------------

    def test_page_refers_to_nothing_outside_and_says_so(self):
        self.sony_card()
        done = self.run_qrx("report", "-o", "-", "card", "--ffmpeg", NO_FFMPEG)
        page = Page(done.stdout.decode())
        (policy,) = [meta["content"] for meta in page.all("meta")
                     if meta.get("http-equiv") == "Content-Security-Policy"]
        self.assertIn("default-src 'none'", policy)
        self.assertNotIn("unsafe", policy)
        self.assertNotRegex(policy, r"https?:|\*")
        for _, attributes in page.elements:
            for name in ("src", "href", "action", "srcset", "data", "poster"):
                value = attributes.get(name) or "#"
                self.assertRegex(value, r"^(#|data:)")
        self.assertNotRegex(done.stdout.decode(), r"https?://|@import|url\(")
        self.assertEqual([a for _, a in page.elements if "style" in a], [])

    def test_tables_have_captions_scopes_and_heads(self):
        cards.ex_segments(self)
        page = self.page("ex", "--ffmpeg", NO_FFMPEG)
        self.assertEqual(len(page.all("caption")), len(page.all("table")))
        for cell in page.all("th"):
            self.assertIn(cell.get("scope"), {"col", "row", "rowgroup"})
        (table,) = [each for each in page.all("table") if "clips" in each.get("class", "")]
        self.assertEqual(table["data-layout"], "Sony XDCAM EX")

    # -- where it goes ----------------------------------------------------------------------

    def test_page_needs_a_name(self):
        self.sony_card()
        done = self.run_qrx("report", "card", status=2)
        self.assertIn(b"-o report.html", done.stderr)
        self.run_qrx("report", status=2)
        self.run_qrx("report", "card", "--format", "pdf", "-o", "x", status=2)
        self.run_qrx("report", "card", "--jobs", "0", "-o", "x", status=2)
        self.assertEqual(os.listdir(self.folder), ["card"])

    def test_existing_file_is_kept_unless_forced(self):
        self.sony_card()
        self.write("report.html", b"mine")
        arguments = ("report", "card", "-o", "report.html", "--ffmpeg", NO_FFMPEG)
        done = self.run_qrx(*arguments, status=1)
        self.assertIn(b"report.html: exists already (--force replaces a file)", done.stderr)
        self.assertEqual((self.folder / "report.html").read_bytes(), b"mine")
        self.run_qrx(*arguments, "--force")
        self.assertIn(b"Camera report", (self.folder / "report.html").read_bytes())
        self.assertEqual(sorted(os.listdir(self.folder)), ["card", "report.html"])

    def test_file_gets_the_usual_permissions(self):
        self.sony_card()
        self.run_qrx("report", "card", "-o", "report.html", "--ffmpeg", NO_FFMPEG, umask=0o027)
        mode = stat.S_IMODE(os.stat(self.folder / "report.html").st_mode)
        self.assertEqual(mode, 0o640)

    def test_link_and_folder_are_not_replaced(self):
        self.sony_card()
        self.write("mine", b"mine")
        os.symlink("mine", self.folder / "link")
        for name in ("link", "card"):
            self.run_qrx("report", "card", "-o", name, "--force", "--ffmpeg", NO_FFMPEG, status=1)
        self.assertEqual((self.folder / "mine").read_bytes(), b"mine")

    def test_output_that_cannot_be_written_is_told_before_the_work(self):
        self.write("x/1.xyz", b"x")
        os.makedirs(self.folder / "closed")
        os.chmod(self.folder / "closed", 0o500)
        tool = self.reporting_script(before=f'touch "{self.folder}/asked"')
        for target in ("closed/r.html", "gone/r.html"):
            done = self.run_qrx("report", "x", "-o", target, "--ffmpeg", tool, status=1,
                                **self.as_plain_user())
            self.assertIn(target.encode(), done.stderr)
        self.assertFalse((self.folder / "asked").exists())

    def test_full_disk_and_closed_pipe(self):
        self.sony_card()
        with open("/dev/full", "wb") as full:
            done = subprocess.run([self.binary, "report", "card", "-o", "-", "--ffmpeg", NO_FFMPEG],
                                  stdout=full, stderr=subprocess.PIPE, cwd=self.folder, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"cannot write", done.stderr)

    def test_missing_path_is_in_the_report(self):
        self.sony_card()
        report = self.json("card", "gone", "--ffmpeg", NO_FFMPEG, status=1)
        self.assertEqual(report["problems"], ["gone: No such file or directory"])
        self.assertEqual(report["totals"]["clips"], 1)
        page = self.page("card", "gone", "--ffmpeg", NO_FFMPEG, status=1)
        self.assertIn("Not everything could be looked at", page.text)

    def test_empty_folder(self):
        os.makedirs(self.folder / "empty")
        report = self.json("empty", "--ffmpeg", NO_FFMPEG)
        self.assertEqual((report["clips"], report["cards"]), ([], []))
        self.assertIn("There is no file at all.", self.page("empty", "--ffmpeg", NO_FFMPEG).text)
        self.assertEqual(self.rows("empty", "--ffmpeg", NO_FFMPEG), [])

    # -- interruption -----------------------------------------------------------------------

    def test_ctrl_c_leaves_nothing(self):
        for n in range(6):
            self.write(f"x/{n}.xyz", b"x")
        os.makedirs(self.folder / "tmp")
        pids = self.folder / "pids"
        tool = self.script(f'echo $$ >> "{pids}"\nwhile :; do sleep 100; done')
        process = self.start("report", "x", "-o", "report.html", "--jobs", "3", "--ffmpeg", tool,
                             env=self.environment(TMPDIR=str(self.folder / "tmp")))
        self.wait_until(lambda: pids.exists() and len(pids.read_text().split()) == 3,
                        "three tools at work")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.communicate(timeout=10), (b"", b""))
        self.assertEqual(process.returncode, 130)
        for pid in pids.read_text().split():
            self.assert_gone(pid)
        self.assertEqual(sorted(os.listdir(self.folder)), ["pids", "tmp", "tools", "x"])
        self.assertEqual(os.listdir(self.folder / "tmp"), [])

    def test_nothing_is_written_to_the_card(self):
        card = self.sony_card()
        before = sorted((root, tuple(folders), tuple(files)) for root, folders, files in os.walk(card))
        self.page("card", "--ffmpeg", self.reporting_script())
        after = sorted((root, tuple(folders), tuple(files)) for root, folders, files in os.walk(card))
        self.assertEqual(before, after)


if __name__ == "__main__":
    qrx_case.main()
