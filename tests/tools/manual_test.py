#!/usr/bin/env python3
"""The manual page: it installs, it can be set, and it promises nothing that the program lacks.

    manual_test.py PATH-OF-QRX BUILD-FOLDER [unittest arguments]
"""

import re
import shutil
import subprocess
import sys

import qrx_case

OPTIONS_OF_EVERY_COMMAND = {"--ffmpeg", "--plain-tool", "--tool-limit"}


class Manual(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        subprocess.run(["cmake", "--install", BUILD, "--component", "tool", "--prefix", "/usr"],
                       check=True, stdout=subprocess.DEVNULL,
                       env=self.environment(DESTDIR=str(self.folder)))
        self.page = self.folder / "usr/share/man/man1/qrx.1"
        self.text = self.page.read_text(encoding="utf-8")

    def commands(self):
        """Each command of the page with what is said about it."""
        section = self.text.split(".SH COMMANDS\n")[1].split(".SH ")[0]
        entries = [entry.split("\n", 1) for entry in section.split(".TP\n")[1:]]
        return {head.split()[1]: body.replace("\\-", "-") for head, body in entries}

    def help_of(self, command):
        return self.run_qrx("help", command).stdout.decode()

    def test_program_is_installed_beside_it(self):
        told = subprocess.run([self.folder / "usr/bin/qrx", "--version"], check=True,
                              capture_output=True, text=True).stdout.strip()
        self.assertIn(f'"{told}"', self.text.splitlines()[0])

    def test_every_command_exists_with_every_option(self):
        commands = self.commands()
        self.assertGreaterEqual(set(commands), {"scan", "explain", "info", "call", "mkcard"})
        for command, said in commands.items():
            with self.subTest(command):
                told = self.help_of(command)
                for option in re.findall(r"--[a-z-]+", said):
                    self.assertIn(option, told)

    def test_common_options_exist(self):
        told = self.help_of("scan")
        for option in OPTIONS_OF_EVERY_COMMAND:
            self.assertIn(option.replace("-", "\\-"), self.text)
            self.assertIn(option, told)

    def test_formats_are_those_of_the_program(self):
        for command, said in self.commands().items():
            offered = re.search(r"--format ([a-z|]+)", self.help_of(command))
            if not offered:
                continue
            with self.subTest(command):
                for name in offered[1].split("|"):
                    self.assertRegex(said, rf"\b{name}\b")

    def test_it_can_be_set(self):
        self.assertNotIn("@", self.text)
        if shutil.which("groff") is None:
            self.skipTest("no groff to set the manual with")
        done = subprocess.run(["groff", "-ww", "-man", "-Tutf8", "-z", self.page],
                              capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))


if __name__ == "__main__":
    BUILD = sys.argv.pop(2)
    qrx_case.main()
