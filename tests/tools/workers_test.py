"""Several files at a time: the same output as one at a time, whatever the files are."""

import os
import random
import shutil
import subprocess
import time

import qrx_case
from qrx_case import NO_FFMPEG

LAYOUTS = ("canon-avchd", "eos", "gopro", "jvc-mp4", "loose", "p2", "red", "sony-avchd",
           "xdcam-ex", "xdcam-hd")
MANY = "16"


class SameOutput(qrx_case.QrxCase):
    def outputs(self, *arguments, **options):
        """What one worker and many write, and what the command answers."""
        return [(done.stdout, sorted(done.stderr.splitlines()), done.returncode)
                for done in (subprocess.run([self.binary, *arguments, "--jobs", jobs],
                                            cwd=self.folder, env=self.environment(),
                                            capture_output=True, timeout=120, check=False,
                                            **options)
                             for jobs in ("1", MANY))]

    def assert_same(self, *arguments, **options):
        one, many = self.outputs(*arguments, **options)
        self.assertEqual(one, many)
        return one[0]

    def made_cards(self):
        listed = self.run_qrx("mkcard", "--list").stdout.decode()
        known = [layout for layout in LAYOUTS if layout in listed]
        self.assertGreater(len(known), 5)
        self.run_qrx("mkcard", "all", "cards", timeout=300)

    def mix(self, rng):
        """A tree of files of the cards and of others, hidden, odd, unreadable and missing ones."""
        sources = [os.path.join(parent, name) for parent, _, names in
                   os.walk(self.folder / "cards") for name in names]
        tree = self.folder / "tree"
        shutil.rmtree(tree, ignore_errors=True)
        shutil.copytree(self.folder / "cards", tree / "copied", dirs_exist_ok=True)
        folders = [parent for parent, _, _ in os.walk(tree)]
        for number in range(120):
            folder = rng.choice(folders)
            kind = rng.randrange(6)
            name = rng.choice(("a", "B", ".h", "\udcff", "x y", "Ä")) + str(number)
            path = os.path.join(folder, name)
            if kind == 0:
                os.makedirs(path, exist_ok=True)
                folders.append(path)
            elif kind == 1:
                os.symlink(rng.choice(sources + ["nowhere"]), path)
            elif kind == 2:
                shutil.copy(rng.choice(sources), path + rng.choice((".jpg", ".bin", ".MOV", "")))
            else:
                with open(path + rng.choice((".txt", ".xyz", ".MTS", "")), "wb") as file:
                    file.write(rng.randbytes(rng.randrange(200)))
        return tree

    def test_random_trees_of_made_cards(self):
        self.made_cards()
        for round_number in range(3):
            seed = random.randrange(1 << 32)
            print(f"seed {seed}", flush=True)
            rng = random.Random(seed)
            with self.subTest(seed=seed):
                tree = self.mix(rng)
                closed = rng.choice([parent for parent, _, _ in os.walk(tree / "copied")])
                os.chmod(closed, 0)
                form = ("ndjson", "csv", "json")[round_number]
                written = self.assert_same("scan", "--format", form, "tree", "gone", "cards")
                self.assert_same("scan", "--quick", "--format", "table", "tree", "cards")
                self.assertIn(b"General Movies", written)
                self.assert_same("series", "--format", "json", "tree", "cards")
                os.chmod(closed, 0o755)

    def test_names_from_standard_input(self):
        names = [f"{n}.xyz" for n in range(300)]
        for number, name in enumerate(names):
            if number % 7:
                self.write(name)
        tool = self.reporting_script('case "$2" in *3.xyz) exit 1;; esac')
        written = self.assert_same("scan", "--ffmpeg", tool, "--from-stdin", "--format", "csv",
                                   input="\n".join(names).encode())
        self.assertEqual(len(written.splitlines()),
                         1 + sum(1 for n in range(300) if n % 7 and n % 10 != 3))

    def test_commands_about_single_files(self):
        files = [os.fsdecode(self.write(f"f/{n}{ending}")) for n in range(20)
                 for ending in (".MOV", ".xyz", ".txt")] + ["gone", "f"]
        tool = self.reporting_script('case "$2" in *3.xyz) exit 1;; esac; sleep 0.0$(($$ % 9))')
        for command in (("info",), ("info", "--exact", "--format", "json"), ("explain",),
                        ("explain", "--format", "json"), ("order",)):
            with self.subTest(command):
                self.assertIn(b"17", self.assert_same(*command, "--ffmpeg", tool, *files))


class Workers(qrx_case.QrxCase):
    def waiting_tool(self):
        """An ffmpeg that says its number and goes on for ever."""
        return self.script(f'echo $$ >> "{self.folder}/pids"\nwhile :; do sleep 100; done')

    def pids(self):
        path = self.folder / "pids"
        return path.read_text().split() if path.exists() else []

    def test_as_many_tools_at_a_time_as_jobs(self):
        for number in range(30):
            self.write(f"x/{number}.xyz")
        process = self.start("scan", "--ffmpeg", self.waiting_tool(), "--jobs", "6", "x")
        self.wait_until(lambda: len(self.pids()) == 6, "six tools")
        time.sleep(0.3)
        self.assertEqual(len(self.pids()), 6)
        process.terminate()
        self.assertEqual(process.wait(10), 143)
        for pid in self.pids():
            self.assert_gone(pid)

    def test_variable_says_how_many_and_the_option_goes_before_it(self):
        for number in range(9):
            self.write(f"x/{number}.xyz")
        for options, jobs in (((), 4), (("-j", "3"), 3)):
            (self.folder / "pids").unlink(missing_ok=True)
            process = self.start("scan", "--ffmpeg", self.waiting_tool(), *options, "x",
                                 env=self.environment(QRX_JOBS="4"))
            self.wait_until(lambda: len(self.pids()) == jobs, f"{jobs} tools")
            time.sleep(0.2)
            self.assertEqual(len(self.pids()), jobs)
            process.terminate()
            process.wait(10)

    def test_numbers_that_are_none(self):
        self.write("a.mov")
        for jobs in ("0", "65", "-1", "1.5", "many", "99999999999999999999"):
            with self.subTest(jobs):
                said = self.run_qrx("scan", f"--jobs={jobs}", "a.mov", status=2).stderr.decode()
                self.assertIn(f"{jobs} is no number of files from 1 to 64", said)
                said = self.run_qrx("scan", "a.mov", status=2,
                                    env=self.environment(QRX_JOBS=jobs)).stderr.decode()
                self.assertIn("QRX_JOBS", said)
        self.run_qrx("scan", "a.mov", env=self.environment(QRX_JOBS=""))

    def test_clip_is_told_while_the_next_name_is_awaited(self):
        self.write("a.mov")
        process = self.start("scan", "--ffmpeg", NO_FFMPEG, "--jobs", MANY, "--from-stdin",
                             "--format", "ndjson", stdin=subprocess.PIPE)
        for _ in range(3):
            process.stdin.write(b"a.mov\n")
            process.stdin.flush()
            self.assertIn(b"a.mov", process.stdout.readline())
        process.stdin.close()
        self.assertEqual(process.wait(20), 0)

    def test_reader_that_has_seen_enough_ends_the_wait_for_names(self):
        self.write("a.mov")
        process = self.start("scan", "--ffmpeg", NO_FFMPEG, "--jobs", MANY, "--from-stdin",
                             "--format", "ndjson", stdin=subprocess.PIPE)
        process.stdin.write(b"a.mov\n")
        process.stdin.flush()
        process.stdout.readline()
        process.stdout.close()
        process.stdin.write(b"a.mov\n")
        process.stdin.flush()
        self.assertEqual(process.wait(20), 1)


class Quick(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        self.tool = self.reporting_script()

    def test_differs_from_exact_by_extension_alone(self):
        rejected = ("bmp jpg jpeg gif png tif tiff psd pdf txt rtf xml smi cpi mpl int bnp bdm thm "
                    "r3d aif aiff dmg").split()
        named = [f"x/{end}.{case(end)}" for end in rejected for case in (str.lower, str.upper)]
        kept = [f"x/kept.{end}" for end in ("bin", "avi", "mp4", "jpg2", "jp", "heic", "wav")]
        for name in named + kept + ["x/PRINT"]:
            self.write(name)
        exact = self.paths("--ffmpeg", self.tool, "x")
        self.assertEqual(len(exact), len(named) + len(kept) + 1)
        quick = self.paths("--ffmpeg", self.tool, "--quick", "x")
        self.assertEqual(quick, [path for path in exact if "/kept." in path])

    def test_everything_else_is_as_before(self):
        self.run_qrx("mkcard", "all", "cards", timeout=300)
        exact = self.scan("cards")[0]
        self.assertGreater(len(exact), 10)
        rejected = (".JPG", ".THM", ".BMP", ".PNG", ".XML", ".TXT")
        self.assertEqual(self.scan("--quick", "cards")[0],
                         [clip for clip in exact if not clip["filePath"].upper().endswith(rejected)])

    def test_real_pictures_and_sounds_are_no_clips_either_way(self):
        video = ["-f", "lavfi", "-i", "testsrc=d=1:s=64x48:r=5"]
        made = {"m.mp4": video, "a.gif": video,
                **{f"p.{end}": [*video, "-frames:v", "1"] for end in ("jpg", "png", "tif", "bmp")},
                "s.aif": ["-f", "lavfi", "-i", "sine=d=1"]}
        (self.folder / "x").mkdir()
        for name, arguments in made.items():
            subprocess.run(["ffmpeg", "-v", "error", *arguments, self.folder / "x" / name],
                           check=True, stdin=subprocess.DEVNULL)
        self.assertEqual(self.paths("x"), [f"{self.folder}/x/m.mp4"])
        self.assertEqual(self.paths("--quick", "x"), [f"{self.folder}/x/m.mp4"])
        shutil.copy(self.folder / "x/m.mp4", self.folder / "x/m.jpg")
        shutil.copy(self.folder / "x/m.mp4", self.folder / "x/PRINT")
        self.assertEqual([os.path.basename(path) for path in self.paths("x")],
                         ["m.jpg", "m.mp4", "PRINT"])
        self.assertEqual(self.paths("--quick", "x"), [f"{self.folder}/x/m.mp4"])

    def test_layout_that_claims_a_file_by_name_still_does(self):
        # The name of the folder is all that tells.
        self.write("x/a.JPG.mov")
        self.sony_card()
        self.assertEqual(self.paths("--ffmpeg", NO_FFMPEG, "--quick", "x", "card"),
                         self.paths("--ffmpeg", NO_FFMPEG, "x", "card"))

    def test_info_is_quick_unless_it_is_told_to_be_exact(self):
        self.write("a.jpg")
        said = self.run_qrx("info", "--ffmpeg", self.tool, "a.jpg", status=1).stderr.decode()
        self.assertIn("no layout claims it", said)
        told = self.run_qrx("info", "--exact", "--ffmpeg", self.tool, "a.jpg").stdout.decode()
        self.assertIn("General Movies", told)


if __name__ == "__main__":
    qrx_case.main()
