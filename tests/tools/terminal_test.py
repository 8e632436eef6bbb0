"""What is different on a terminal: the progress line and a table that fits."""

import fcntl
import os
import pty
import re
import struct
import termios
import threading
import unicodedata

import qrx_case
from qrx_case import NO_FFMPEG


class OnATerminal(qrx_case.QrxCase):
    def terminal(self, columns=80):
        """Master and slave of a new terminal."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        settings = termios.tcgetattr(slave)
        settings[1] &= ~termios.OPOST  # bytes as they are written
        termios.tcsetattr(slave, termios.TCSANOW, settings)
        return master, slave

    def run_on_terminal(self, *arguments, columns=80, streams=("stdout", "stderr"), term="xterm",
                        status=0):
        """What the terminal got, and what went elsewhere."""
        master, slave = self.terminal(columns)
        received = bytearray()

        def receive():
            while True:
                try:
                    data = os.read(master, 65536)
                except OSError:  # the other side is closed
                    return
                if not data:
                    return
                received.extend(data)

        options = {name: slave for name in streams}
        process = self.start(*arguments, env=self.environment(TERM=term), **options)
        os.close(slave)
        reader = threading.Thread(target=receive)
        reader.start()
        elsewhere, _ = process.communicate(timeout=60)
        reader.join()
        os.close(master)
        self.assertEqual(process.returncode, status)
        return received.decode(), elsewhere

    @staticmethod
    def columns_of(text):
        return sum(0 if unicodedata.combining(c) else
                   2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)

    def slow_tool(self):
        return self.script("sleep 0.4; exit 1")


class Progress(OnATerminal):
    def test_tells_files_done_clips_found_and_the_current_file(self):
        self.write("a.mov")
        self.write("b.bin")
        text, output = self.run_on_terminal("scan", "--ffmpeg", self.slow_tool(), "--jobs",
                                            "1", "--format", "json", ".", streams=["stderr"])
        self.assertIn(f"0 files, 0 clips  {self.folder}/a.mov", text)
        self.assertIn(f"1 file, 1 clip  {self.folder}/b.bin", text)
        self.assertIn(b"a.mov", output)

    def test_is_taken_away_at_the_end(self):
        self.write("b.bin")
        text, _ = self.run_on_terminal("scan", "--ffmpeg", self.slow_tool(), ".")
        self.assertIn("b.bin", text)
        last = text.rsplit("\r\x1b[K", 1)[1]
        self.assertEqual(last, "qrx: 0 clips in 2 files\n")

    def test_is_absent_when_standard_error_is_no_terminal(self):
        self.write("b.bin")
        text, _ = self.run_on_terminal("scan", "--ffmpeg", self.slow_tool(), ".",
                                       streams=["stdout"])
        self.assertEqual(text, "")

    def test_is_absent_when_piped(self):
        self.write("b.bin")
        self.assertEqual(self.run_qrx("scan", "--ffmpeg", self.slow_tool(), ".").stderr, b"")

    def test_is_absent_on_a_terminal_that_cannot_erase(self):
        self.write("b.bin")
        text, _ = self.run_on_terminal("scan", "--ffmpeg", self.slow_tool(), ".", term="dumb")
        self.assertNotIn("\x1b", text)

    def test_never_fills_the_line_and_shows_names_safely(self):
        name = "\u65e5\u672c\x1b[2J\n" * 12 + ".bin"
        self.write("x/" + name)
        for columns in (20, 40, 80):
            with self.subTest(columns):
                text, _ = self.run_on_terminal("scan", "--ffmpeg", self.slow_tool(), "x",
                                               columns=columns, streams=["stderr"])
                drawn = [line for line in text.split("\r\x1b[K") if "files" in line or
                         "0 file" in line]
                self.assertTrue(drawn)
                for line in drawn:
                    line = line.split("qrx:")[0]
                    self.assertLess(self.columns_of(line), columns)
                    self.assertNotIn("\x1b", line)
                    self.assertNotIn("\n", line)

    def test_messages_stand_on_lines_of_their_own(self):
        self.write("a.bin")
        self.write("b.bin")
        tool = self.script('case "$2" in *a.bin) sleep 0.3;; esac; kill -SEGV $$')
        text, _ = self.run_on_terminal("scan", "--ffmpeg", tool, "a.bin", "b.bin",
                                       streams=["stderr"])
        for line in text.split("\n")[:-1]:
            self.assertRegex(line, r"^(.*\r\x1b\[K)?qrx: ")

    def test_rows_stand_on_lines_of_their_own(self):
        for name in ("a.mov", "b.mov", "c.mov"):
            self.write(name)
        tool = self.script("sleep 0.2; exit 1")
        text, _ = self.run_on_terminal("scan", "--ffmpeg", tool, ".")
        rows = [line.rsplit("\r\x1b[K", 1)[-1] for line in text.split("\n")[:-1]]
        self.assertEqual([re.split(r"\s{2,}", row)[-1] for row in rows[:4]],
                         ["PATH"] + [f"{self.folder}/{n}.mov" for n in "abc"])


class Table(OnATerminal):
    def rows(self, *arguments, **options):
        text, _ = self.run_on_terminal("scan", "--ffmpeg", NO_FFMPEG, *arguments,
                                       streams=["stdout"], **options)
        return text.split("\n")[:-1]

    def test_long_paths_lose_their_middle_and_keep_the_name(self):
        self.write("d" * 200 + "/clip-0001.mov")
        for columns in (50, 80, 132):
            with self.subTest(columns):
                row = self.rows(".", columns=columns)[1]
                self.assertLessEqual(self.columns_of(row), columns)
                self.assertIn("\u2026", row)
                self.assertTrue(row.endswith("/clip-0001.mov"))

    def test_wide_characters_count_as_two_columns(self):
        self.write("\u6620" * 70 + ".mov")
        row = self.rows(".", columns=70)[1]
        self.assertLessEqual(self.columns_of(row), 70)
        self.assertTrue(row.endswith("\u6620.mov"))

    def test_wide_table_never_shortens(self):
        path = os.fsdecode(self.write("d" * 200 + "/clip.mov"))
        self.assertTrue(self.rows("--wide", ".")[1].endswith(path))

    def test_piped_table_never_shortens(self):
        path = os.fsdecode(self.write("d" * 200 + "/clip.mov"))
        self.assertIn(path.encode(), self.run_qrx("scan", "--ffmpeg", NO_FFMPEG, ".").stdout)

    def test_terminal_too_narrow_for_a_table_lets_paths_run_over(self):
        path = os.fsdecode(self.write("clip.mov"))
        self.assertTrue(self.rows(".", columns=30)[1].endswith(path))

    def test_terminal_of_no_width_counts_as_eighty(self):
        self.write("d" * 200 + "/clip.mov")
        self.assertLessEqual(self.columns_of(self.rows(".", columns=0)[1]), 80)


if __name__ == "__main__":
    qrx_case.main()
