"""`benchmarks/peers`: the small form runs, and a wrong answer never becomes a figure.

    peers_test.py BENCHMARK PROGRAMS [unittest arguments]

Peers that only the benchmark needs are left out, and nothing is judged by its time.
"""

import io
import json
import pathlib
import subprocess
import sys
import tempfile
import types
import unittest

BENCHMARK, PROGRAMS = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
sys.path[:0] = [str(BENCHMARK), str(BENCHMARK.parent)]

import expected  # noqa: E402
import rows  # noqa: E402
import samples  # noqa: E402
import table  # noqa: E402
import tree  # noqa: E402

OPTIONAL_PEERS = ("--skip", "mediainfo", "--skip", "exiftool")
ONLY_SCANS = (*OPTIONAL_PEERS, "--skip", "xargs", "--skip", "scale", "--skip", "workers")

# Answers as the real program does, but for one clip.
LIAR = """#!{python}
import json, subprocess, sys
done = subprocess.run([{qrx!r}, *sys.argv[1:]], stdout=subprocess.PIPE)
if sys.argv[1] == "scan" and {option!r} in sys.argv:
    clips = json.loads(done.stdout)
    del clips[{clip}]
    done.stdout = json.dumps(clips).encode()
sys.stdout.buffer.write(done.stdout)
sys.exit(done.returncode)
"""


def finished(output, status=0, error=b""):
    return types.SimpleNamespace(status=status, output=io.BytesIO(output), error=io.BytesIO(error))


class SmallForm(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory(prefix="qrx-test-peers-")
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.folder = pathlib.Path(cls.temporary.name)

    def run_benchmark(self, *arguments, programs=PROGRAMS):
        return subprocess.run(
            [sys.executable, "-B", BENCHMARK, programs, "--quick-look", "--runs", "1",
             "--tree", self.folder / "tree", *arguments],
            stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=500, check=False)

    def lying_programs(self, option, clip):
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.folder))
        for name in ("scan_floor", "measured_run"):
            (folder / name).symlink_to(PROGRAMS / name)
        (folder / "qrx").write_text(
            LIAR.format(python=sys.executable, qrx=str(PROGRAMS / "qrx"), option=option, clip=clip),
            encoding="utf-8")
        (folder / "qrx").chmod(0o755)
        return folder

    def test_every_part_runs_and_every_answer_is_right(self):
        figures, page = self.folder / "figures.json", self.folder / "page.md"
        done = self.run_benchmark("--scale", "1000", *OPTIONAL_PEERS, "--json", figures,
                                  "--markdown", page)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        told = json.loads(figures.read_text(encoding="utf-8"))
        clips = f"{told['tree']['clips']} clips"
        answers = {row["name"]: row["result"] or row["missing"] for row in told["tree"]["rows"]}
        self.assertEqual(answers[rows.EXACT], clips)
        self.assertEqual(answers[rows.PLAIN], f"{clips}, same bytes")
        self.assertEqual(answers[rows.INFO], clips)
        self.assertIn("clips", answers[rows.QUICK])
        for name in (rows.FIND, rows.FLOOR):
            self.assertEqual(answers[name], f"{told['tree']['files']} files")
        self.assertRegex(answers[rows.FFMPEG], "^opened [0-9]+$")
        for name in (rows.MEDIAINFO, rows.MEDIAINFO_LIST, rows.EXIFTOOL):
            self.assertEqual(answers[name], "left out")
        self.assertEqual([step["files"] for step in told["scale"]], [1000])
        self.assertEqual([row["result"] for row in told["workers"]], ["16 clips in order"] * 2)
        self.assertEqual(told["expected"], [])  # the small form judges nothing
        for figure in (row["medianSeconds"] for row in told["tree"]["rows"] if row["result"]):
            self.assertGreater(figure, 0)
        self.assertIn("| qrx scan ", page.read_text(encoding="utf-8"))

    def test_clip_that_one_of_the_scans_lacks_is_no_figure(self):
        for option, name, complaint in (
                ("--plain-tool", rows.PLAIN, "not that of the first exact scan"),
                ("--quick", rows.QUICK, "quick differs for 1 files of known layouts")):
            with self.subTest(option):
                done = self.run_benchmark(*ONLY_SCANS, programs=self.lying_programs(option, 0))
                self.assertEqual(done.returncode, 1, done.stdout)
                self.assertIn(f"{name}: wrong result: ", done.stderr)
                self.assertIn(complaint, done.stderr)

    def test_scan_that_finds_less_than_the_tree_holds_is_no_figure(self):
        done = self.run_benchmark(*ONLY_SCANS, programs=self.lying_programs("scan", -1))
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("the tree holds", done.stderr)

    def test_tree_of_another_size_is_refused(self):
        other = self.folder / "other"
        (other / "cards").mkdir(parents=True)
        (other / tree.MANIFEST).write_text('{"files": 0}', encoding="utf-8")
        done = self.run_benchmark("--tree", other)
        self.assertEqual(done.returncode, 1)
        self.assertIn("is another one", done.stderr)


class Checks(unittest.TestCase):
    """What each program has to answer, held against answers that are wrong."""

    def setUp(self):
        self.tree = tree.Tree(pathlib.Path("/t"), "small", ["/t/a.mts", "/t/b.avi", "/t/c.xml"])
        self.peers = rows.Peers(self.tree, movies=1)
        self.scans = rows.Scans(self.tree)
        self.scans.clips = [self.clip("/t/a.mts", "Canon AVCHD"), self.clip("/t/b.avi", rows.LOOSE)]

    @staticmethod
    def clip(path, title):
        return {"filePath": path, "volumeTitle": title, "qt": False}

    def quick(self, *clips):
        return self.scans.check_quick(finished(json.dumps(clips).encode()))

    def test_difference_of_a_quick_scan_is_told(self):
        known, loose = self.scans.clips
        self.assertEqual(self.quick(known, loose), "2 clips, the same")
        self.setUp()
        self.assertEqual(self.quick(known, self.clip("/t/c.xml", rows.LOOSE)),
                         "2 clips; lacks 1 .avi; adds 1 .xml")
        self.setUp()
        self.assertEqual(self.quick(known, {**loose, "qt": True}), "2 clips; changes 1 .avi")

    def test_quick_scan_that_differs_on_a_layout_or_from_itself_is_wrong(self):
        known, loose = self.scans.clips
        for clips in ([loose], [{**known, "qt": True}, loose]):
            self.setUp()
            with self.assertRaises(rows.WrongResult):
                self.quick(*clips)
        self.setUp()
        self.quick(known)
        with self.assertRaises(rows.WrongResult):
            self.quick(known, loose)

    def test_right_answers_of_the_peers(self):
        three = json.dumps([{"SourceFile": name} for name in self.tree.files]).encode()
        self.assertEqual(self.peers.check_find(finished(b"a\nb\nc\n")), "3 files")
        self.assertEqual(self.peers.check_floor(finished(b"3\n")), "3 files")
        self.assertEqual(self.peers.check_each_file(finished(three, status=1)), "3 records")
        opened = finished(b"", rows.SOME_CHILD_FAILED, b"Input #0, avi\nx: Invalid data\n")
        self.assertEqual(self.peers.check_ffmpeg(opened), "opened 1")

    def test_wrong_answers_of_the_peers(self):
        for name, check, run in (
                ("TooFewLines", self.peers.check_find, finished(b"a\nb\n")),
                ("FindFailed", self.peers.check_find, finished(b"a\nb\nc\n", status=1)),
                ("TooFewFiles", self.peers.check_floor, finished(b"2\n")),
                ("TooFewRecords", self.peers.check_each_file, finished(b"[1]")),
                ("RecordOfSomethingElse", self.peers.check_folder_records,
                 finished(b'[{"media": {"@ref": "/elsewhere"}}]')),
                ("NothingOpened", self.peers.check_ffmpeg,
                 finished(b"", rows.SOME_CHILD_FAILED, b"x: Invalid data\n")),
                ("FfmpegNotRun", self.peers.check_ffmpeg, finished(b"", 127))):
            with self.subTest(name), self.assertRaises(rows.WrongResult):
                check(run)

    def test_peer_that_answers_otherwise_in_a_later_run_is_wrong(self):
        record = b'{"media": {"@ref": "/t/a.mts"}}'
        self.peers.check_folder_records(finished(b"[" + record + b"]"))
        with self.assertRaises(rows.WrongResult):
            self.peers.check_folder_records(finished(b"[" + record + b"," + record + b"]"))

    def test_unclaimed_files_are_those_without_a_layout(self):
        self.assertEqual(rows.unclaimed_files(self.tree, self.scans.clips),
                         ["/t/b.avi", "/t/c.xml"])


class Tables(unittest.TestCase):
    def test_expectation_is_met_up_to_its_limit(self):
        for value, at_least, met in ((0.2, False, True), (0.21, False, False), (15, True, True),
                                     (14.9, True, False), (None, True, None)):
            with self.subTest(value=value, at_least=at_least):
                limit = 15 if at_least else 0.2
                self.assertIs(expected.Expectation("x", value, limit, at_least).is_met, met)

    def test_median_and_ratio_of_what_was_measured(self):
        one, other = samples.Samples("one"), samples.Samples("other")
        self.assertIsNone(samples.over(one, other))
        for seconds in (3, 1, 2):
            one.add(types.SimpleNamespace(seconds=seconds, processor_seconds=1, kilobytes=5), "ok")
        other.add(types.SimpleNamespace(seconds=4, processor_seconds=1, kilobytes=5), "ok")
        self.assertEqual(samples.over(one, other), 0.5)

    def test_program_that_is_missing_is_named(self):
        cells = samples.Samples("exiftool", missing="not installed (exif)").cells(1.0)
        self.assertEqual(cells[:2], ("exiftool", "not installed (exif)"))
        row = rows.Row("exiftool", ["/nowhere/exiftool"], None, "exif")
        self.assertEqual(row.missing, "not installed (exif)")

    def test_markdown_has_a_cell_for_each_figure(self):
        page = table.as_markdown(table.Table("T", ("what", "n"), [("a", "1"), ("b", "22")], ("N",)))
        self.assertEqual(page.splitlines(),
                         ["### T", "", "| what |   n |", "| ---- | --: |", "| a    |   1 |",
                          "| b    |  22 |", "", "N"])


if __name__ == "__main__":
    unittest.main()
