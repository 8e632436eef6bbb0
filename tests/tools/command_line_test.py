"""Usage: help, version, and what is said when something is wrong with the arguments."""

import qrx_case

COMMANDS = ("scan", "explain", "mkcard")


class Usage(qrx_case.QrxCase):
    def wrong(self, *arguments):
        done = self.run_qrx(*arguments, status=2)
        self.assertEqual(done.stdout, b"")
        return done.stderr.decode()

    def test_version(self):
        self.assertRegex(self.run_qrx("--version").stdout.decode(), r"^qrx \d+\.\d+\.\d+\n$")

    def test_help_names_every_command(self):
        text = self.run_qrx("help").stdout.decode()
        self.assertEqual(text, self.run_qrx("--help").stdout.decode())
        for command in COMMANDS:
            self.assertIn(command, text)

    def test_help_of_a_command_shows_options_statuses_and_examples(self):
        for command in COMMANDS:
            with self.subTest(command):
                text = self.run_qrx("help", command).stdout.decode()
                self.assertEqual(text, self.run_qrx(command, "--help").stdout.decode())
                self.assertIn(f"Usage: qrx {command}", text)
                for expected in ("--ffmpeg", "--tool-limit", "Exit status", "Examples:"):
                    self.assertIn(expected, text)

    def test_help_tells_the_rule_for_bytes(self):
        text = self.run_qrx("help", "scan").stdout.decode()
        for expected in ("table", "json", "ndjson", "csv", "RFC 4180", "filePathBytes", "base64",
                         "--from-stdin", "-0"):
            self.assertIn(expected, text)

    def test_no_command(self):
        self.assertIn("qrx help", self.wrong())

    def test_unknown_command(self):
        self.assertIn("there is no command frob", self.wrong("frob"))
        self.assertIn("there is no command frob", self.wrong("help", "frob"))

    def test_harmful_arguments_are_shown_safely(self):
        self.assertNotIn("\x1b", self.wrong("\x1b[2J"))
        self.assertNotIn("\x1b", self.wrong("mkcard", "\x1b[2J", "x"))

    def test_scan_without_a_path(self):
        self.assertIn("--from-stdin", self.wrong("scan"))

    def test_unknown_option(self):
        self.assertIn("--frob", self.wrong("scan", "--frob", "."))

    def test_unknown_format(self):
        self.assertIn("xml", self.wrong("scan", "--format", "xml", "."))
        self.assertIn("csv", self.wrong("explain", "--format", "csv", "."))

    def test_nul_separators_without_a_list(self):
        self.assertIn("--from-stdin", self.wrong("scan", "-0", "."))

    def test_tool_limits_that_are_none(self):
        for limit in ("-1", "nan", "inf", "1e9", "soon", ""):
            with self.subTest(limit):
                self.assertIn("--tool-limit", self.wrong("scan", f"--tool-limit={limit}", "."))

    def test_explain_without_a_file(self):
        self.assertIn("FILE", self.wrong("explain"))

    def test_mkcard_needs_layout_and_folder(self):
        self.assertIn("LAYOUT", self.wrong("mkcard"))
        self.assertIn("FOLDER", self.wrong("mkcard", "loose"))
        self.assertIn("betamax", self.wrong("mkcard", "betamax", "x"))

    def test_mkcard_numbers_that_no_card_holds(self):
        for clips in ("0", "-1", "many", "1.5", "10000"):
            with self.subTest(clips):
                self.assertIn("--clips", self.wrong("mkcard", "loose", "x", f"--clips={clips}"))
        self.assertIn("4000", self.wrong("mkcard", "sony-avchd", "x", "--clips", "4001"))
        self.assertFalse((self.folder / "x").exists())


if __name__ == "__main__":
    qrx_case.main()
