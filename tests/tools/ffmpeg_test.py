"""An ffmpeg that is missing, failing, crashing, slow or never quiet, and one that works."""

import os
import resource
import time

import qrx_case


class FfmpegBehaviour(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        self.write("a.bin")
        self.write("b.mov")
        self.claimed_without = [f"{self.folder}/b.mov"]

    def test_working_tool_describes_files(self):
        clips, said = self.scan("--ffmpeg", self.reporting_script(), "a.bin", "b.mov")
        self.assertEqual([(c["volumeTitle"], c["qt"]) for c in clips],
                         [("General Movies", False), ("General Movies", True)])
        self.assertEqual(said, "")

    def test_variable_names_the_tool(self):
        environment = self.environment(QRX_FFMPEG=self.reporting_script())
        self.assertEqual(len(self.paths("a.bin", env=environment)), 1)

    def test_option_goes_before_the_variable(self):
        environment = self.environment(QRX_FFMPEG=self.reporting_script())
        clips, said = self.scan("--ffmpeg", "/nowhere/ffmpeg", "a.bin", env=environment)
        self.assertEqual(clips, [])
        self.assertIn("/nowhere/ffmpeg: no ffmpeg there", said)

    def test_empty_variable_counts_as_none(self):
        tool = self.reporting_script()
        environment = self.environment(QRX_FFMPEG="", PATH=os.path.dirname(tool) + ":" +
                                       os.environ["PATH"])
        self.assertEqual(len(self.paths("a.bin", env=environment)), 1)

    def test_first_tool_on_the_path_is_used(self):
        tool = self.reporting_script()
        environment = self.environment(PATH=os.path.dirname(tool) + ":" + os.environ["PATH"])
        self.assertEqual(len(self.paths("a.bin", env=environment)), 1)

    def test_missing_tool_is_said_and_the_rest_is_scanned(self):
        clips, said = self.scan("--ffmpeg", "/nowhere/ffmpeg", ".")
        self.assertEqual([c["filePath"] for c in clips], self.claimed_without)
        self.assertIn("/nowhere/ffmpeg: no ffmpeg there", said)

    def test_tool_that_cannot_be_run_is_said_for_each_file(self):
        tool = self.script("exit 0")
        with open(tool, "wb") as file:
            file.write(b"\x7fELF no program at all")
        clips, said = self.scan("--ffmpeg", tool, "a.bin", "b.mov")
        self.assertEqual([c["filePath"] for c in clips], self.claimed_without)
        self.assertIn(f"{self.folder}/a.bin: ffmpeg cannot be run: Exec format error", said)

    def test_failing_tool_claims_nothing(self):
        tool = self.script("echo 'Invalid data found' >&2; exit 1")
        clips, said = self.scan("--ffmpeg", tool, "a.bin", "b.mov")
        self.assertEqual([c["filePath"] for c in clips], self.claimed_without)
        self.assertEqual(said, "")

    def test_silent_tool_claims_nothing(self):
        self.assertEqual(self.paths("--ffmpeg", self.script("exit 0"), "a.bin", "b.mov"),
                         self.claimed_without)

    def test_crashing_tool_is_said_with_the_file(self):
        clips, said = self.scan("--ffmpeg", self.script("kill -SEGV $$"), "a.bin", "b.mov")
        self.assertEqual([c["filePath"] for c in clips], self.claimed_without)
        self.assertIn(f"{self.folder}/a.bin: ffmpeg crashed (Segmentation fault)", said)

    def test_name_of_the_file_is_said_safely(self):
        self.write(b"x\x1b[2J\n\xff.bin")
        _, said = self.scan("--ffmpeg", self.script("kill -SEGV $$"), b"x\x1b[2J\n\xff.bin")
        self.assertIn(r"x\x1b[2J\n\xff.bin: ffmpeg crashed", said)

    def test_slow_tool_is_ended_and_its_file_named(self):
        pids = self.folder / "pids"
        tool = self.script(f'case "$2" in *a.bin) echo $$ >> "{pids}"; exec sleep 1000;; esac')
        begun = time.monotonic()
        clips, said = self.scan("--ffmpeg", tool, "--tool-limit", "0.3", "a.bin", "b.mov")
        self.assertLess(time.monotonic() - begun, 20)
        self.assertEqual([c["filePath"] for c in clips], self.claimed_without)
        self.assertIn(f"{self.folder}/a.bin: ffmpeg took longer than 0.3 seconds and was ended",
                      said)
        for pid in pids.read_text().split():
            self.assert_gone(pid)

    def test_slow_tool_that_left_children_is_ended_with_them(self):
        pids = self.folder / "pids"
        tool = self.script(f'trap "" TERM INT; sleep 1000 & echo $! >> "{pids}"; wait')
        self.scan("--ffmpeg", tool, "--tool-limit", "0.3", "a.bin")
        for pid in pids.read_text().split():
            self.assert_gone(pid)

    def test_limit_of_zero_never_ends_a_tool(self):
        tool = self.reporting_script(before="sleep 0.5")
        clips, said = self.scan("--ffmpeg", tool, "--tool-limit", "0", "a.bin")
        self.assertEqual((len(clips), said), (1, ""))

    def test_endless_output_is_ended_by_the_limit_and_takes_bounded_memory(self):
        tool = self.script("exec yes >&2")
        clips, said = self.scan("--ffmpeg", tool, "--tool-limit", "1", "a.bin")
        self.assertEqual(clips, [])
        self.assertIn("a.bin: ffmpeg took longer than 1 second and was ended", said)
        if not qrx_case.SANITIZED:
            kilobytes = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
            self.assertLess(kilobytes, 200_000)

    def test_report_larger_than_a_pipe_does_not_block(self):
        tool = self.reporting_script(before="yes 'no input yet' | head -c 3000000 >&2")
        self.assertEqual(len(self.paths("--ffmpeg", tool, "a.bin")), 1)

    def test_tool_is_given_the_path_as_one_argument(self):
        self.write('odd/a "b" $(c);d.bin')
        seen = self.folder / "seen"
        tool = self.script(f'printf "%s\\n" "$#" "$1" "$2" > "{seen}"; exit 1')
        self.scan("--ffmpeg", tool, "odd")
        self.assertEqual(seen.read_text().splitlines(),
                         ["2", "-i", f'{self.folder}/odd/a "b" $(c);d.bin'])

    def test_variables_that_make_the_tool_write_files_do_not_reach_it(self):
        seen = self.folder / "seen"
        tool = self.script(f'echo "[$FFREPORT]" > "{seen}"; exit 1')
        self.scan("--ffmpeg", tool, "a.bin", env=self.environment(FFREPORT="file=x.log"))
        self.assertEqual(seen.read_text(), "[]\n")

    def test_clips_that_their_place_tells_need_no_tool(self):
        card = self.sony_card()
        started = self.folder / "started"
        tool = self.script(f'touch "{started}"; exit 1')
        self.assertEqual(len(self.paths("--ffmpeg", tool, card)), 1)
        self.assertFalse(started.exists())


if __name__ == "__main__":
    qrx_case.main()
