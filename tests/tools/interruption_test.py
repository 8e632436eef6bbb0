"""Ctrl-C and its like in the middle of the work: status 130, no child left, nothing half."""

import fcntl
import json
import os
import pty
import signal
import subprocess
import time

import qrx_case
from qrx_case import NO_FFMPEG


class Interruption(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        self.pid_file = self.folder / "pid"
        self.write("x/1.mov")
        self.write("x/2.bin")
        self.write("x/3.mov")

    def hanging_tool(self, before=""):
        """An ffmpeg that says its number and goes on for ever."""
        return self.script(f'{before}\necho $$ > "{self.pid_file}"\nwhile :; do sleep 100; done')

    def interrupted(self, *arguments, tool=None, number=signal.SIGINT, **options):
        """Starts a scan, waits for its tool to hang, sends the signal. Gives process and output."""
        tool = tool or self.hanging_tool()
        process = self.start("scan", "--ffmpeg", tool, *arguments, "x", **options)
        pid = self.wait_for_text(self.pid_file, "the start of the tool").strip()
        process.send_signal(number)
        output, errors = process.communicate(timeout=10)
        self.assert_gone(pid)
        return process.returncode, output, errors

    def test_ctrl_c_ends_the_tool_and_gives_130(self):
        status, _, errors = self.interrupted()
        self.assertEqual((status, errors), (130, b""))

    def test_sigterm_gives_143(self):
        self.assertEqual(self.interrupted(number=signal.SIGTERM)[0], 143)

    def test_closed_terminal_gives_129(self):
        self.assertEqual(self.interrupted(number=signal.SIGHUP)[0], 129)

    def test_tool_that_ignores_signals_is_ended_too(self):
        tool = self.hanging_tool(before='trap "" INT TERM HUP')
        self.assertEqual(self.interrupted(tool=tool)[0], 130)

    def test_json_is_whole_or_nothing(self):
        self.assertEqual(self.interrupted("--format", "json")[1], b"")

    def test_lines_that_were_written_are_whole(self):
        for form in ("ndjson", "csv", "table"):
            with self.subTest(form):
                self.pid_file.unlink(missing_ok=True)
                output = self.interrupted("--format", form)[1]
                self.assertTrue(output == b"" or output.endswith(b"\n"))
                # The file under examination gets no answer that lacks the tool's.
                self.assertNotIn(b"2.bin", output)
                self.assertNotIn(b"3.mov", output)

    def test_clips_before_the_hanging_file_have_been_told(self):
        tool = self.script(f'case "$2" in *2.bin) echo $$ > "{self.pid_file}"; '
                           'while :; do sleep 100; done;; esac')
        lines = self.interrupted("--format", "ndjson", "--jobs", "1", tool=tool)[1].splitlines()
        self.assertEqual([json.loads(line)["filePath"] for line in lines],
                         [f"{self.folder}/x/1.mov"])

    def test_explain_is_interrupted_too(self):
        tool = self.hanging_tool()
        for form in ("text", "json"):
            with self.subTest(form):
                self.pid_file.unlink(missing_ok=True)
                process = self.start("explain", "--format", form, "--ffmpeg", tool, "x/2.bin")
                pid = self.wait_for_text(self.pid_file, "the start of the tool").strip()
                process.send_signal(signal.SIGINT)
                self.assertEqual(process.communicate(timeout=10), (b"", b""))
                self.assertEqual(process.returncode, 130)
                self.assert_gone(pid)

    def test_ctrl_c_typed_at_a_terminal(self):
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        tool = self.hanging_tool()
        process = self.start("scan", "--ffmpeg", tool, "x", stdin=slave, stdout=slave,
                             stderr=slave, start_new_session=True,
                             preexec_fn=lambda: fcntl.ioctl(0, 0x540E, 0))  # TIOCSCTTY
        os.close(slave)
        pid = self.wait_for_text(self.pid_file, "the start of the tool").strip()
        os.write(master, b"\x03")
        self.assertEqual(process.wait(10), 130)
        self.assert_gone(pid)

    def test_while_waiting_for_names(self):
        process = self.start("scan", "--ffmpeg", NO_FFMPEG, "--from-stdin", "--format", "ndjson",
                             stdin=subprocess.PIPE)
        process.stdin.write(b"x/1.mov\n")
        process.stdin.flush()
        process.stdout.readline()
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(10), 130)

    def test_while_nobody_reads_the_output(self):
        self.sony_card([f"{n:05}.MTS" for n in range(5000)])
        process = self.start("scan", "--ffmpeg", NO_FFMPEG, "--format", "ndjson", "card")
        self.wait_until(lambda: self.is_blocked(process), "a full pipe")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(10), 130)

    @staticmethod
    def is_blocked(process):
        """Whether the main thread sleeps in a write to a pipe."""
        try:
            with open(f"/proc/{process.pid}/wchan") as file:
                place = file.read()
            if "pipe" in place:
                return True
        except OSError:
            pass
        # Where the kernel hides the place: no progress in a tenth of a second.
        def ticks():
            with open(f"/proc/{process.pid}/stat") as file:
                return file.read().rsplit(")", 1)[1].split()[11:13]
        before = ticks()
        time.sleep(0.3)
        return ticks() == before

    def test_ignored_signal_stays_ignored(self):
        release = self.folder / "release"
        tool = self.script(f'echo $$ > "{self.pid_file}"\n'
                           f'while [ ! -e "{release}" ]; do sleep 0.01; done')
        process = self.start("scan", "--ffmpeg", tool, "--format", "json", "x/2.bin",
                             preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        self.wait_for_text(self.pid_file, "the start of the tool")
        process.send_signal(signal.SIGINT)
        time.sleep(0.2)
        self.assertIsNone(process.poll())
        release.touch()
        self.assertEqual(process.wait(30), 0)

    def test_mkcard_takes_back_what_it_made(self):
        listing = "printf ' V..... mpeg4 x\\n A..... aac x\\n A..... mp2 x\\n V..... mjpeg x\\n'"
        tool = self.script(f'case "$2" in -encoders) {listing};; *) '
                           f'echo $$ > "{self.pid_file}"; while :; do sleep 100; done;; esac')
        process = self.start("mkcard", "loose", "new/card", "--ffmpeg", tool)
        pid = self.wait_for_text(self.pid_file, "the start of the tool").strip()
        self.assertTrue((self.folder / "new/card").is_dir())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.communicate(timeout=10), (b"", b""))
        self.assertEqual(process.returncode, 130)
        self.assert_gone(pid)
        self.assertFalse((self.folder / "new").exists())


if __name__ == "__main__":
    qrx_case.main()
