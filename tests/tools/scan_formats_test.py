"""Every format of `qrx scan`, read back by the parsers of the standard library."""

import base64
import csv
import io
import json
import os
import unicodedata

import qrx_case
from qrx_case import NO_FFMPEG

# Names that a card may hold and that a terminal, a table or a parser may stumble over.
HARMLESS = [b"plain.mov", b"a:b.mov", b"-rf.mov", b"it's.mov", b"50% off.mov", b"a\\b.mov",
            "\u00fcbung \U0001f3ac \u65e5\u672c.mov".encode(), b" blanks .mov", b"[a,b].mov",
            b"{x}.mov", b"$(reboot).mov", b"`id`.mov", b"=1+1.mov", b"a,b.mov", b'say "hi".mov',
            b'",".mov']
HARMFUL = [b"new\nline.mov", b"carriage\rreturn.mov", b"tab\there.mov", b"\x1b[2J\x1b]0;x\x07.mov",
           b"\x7fdelete.mov", "c1\u009b31m.mov".encode(), "right\u202eleft.mov".encode(),
           "line\u2028end.mov".encode(), b"\x01\x02.mov"]
NOT_UTF8 = [b"latin-\xe9.mov", b"\xff\xfe.mov", b"cut-\xe2\x82.mov", b"\xff\n\x1b.mov"]


class Formats(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        self.expected = sorted(self.write(b"x/" + name)
                               for name in HARMLESS + HARMFUL + NOT_UTF8)

    def output(self, form, *arguments):
        return self.run_qrx("scan", "--format", form, "--ffmpeg", NO_FFMPEG, *arguments,
                            os.path.join(self.folder, "x")).stdout

    @staticmethod
    def path_of(record):
        if "filePath" in record and record["filePath"]:
            return record["filePath"].encode()
        return base64.b64decode(record["filePathBytes"], validate=True)

    def assert_plain(self, text, beside="\n"):
        """Nothing in it moves a cursor or turns the direction of writing."""
        bad = {c for c in text if c not in beside
               and unicodedata.category(c) in ("Cc", "Cf", "Zl", "Zp", "Cs", "Cn")}
        self.assertEqual(bad, set())

    def test_json_is_one_array_with_exactly_three_keys(self):
        text = self.output("json").decode()
        records = json.loads(text)
        self.assertEqual(sorted(map(self.path_of, records)), self.expected)
        for record in records:
            first = "filePath" if "filePath" in record else "filePathBytes"
            self.assertEqual(list(record), [first, "volumeTitle", "qt"])
            self.assertEqual(record["volumeTitle"], "Apple QuickTime")
            self.assertIs(record["qt"], True)
        self.assert_plain(text)

    def test_only_names_that_are_not_utf8_come_as_bytes(self):
        records = json.loads(self.output("json"))
        as_bytes = sorted(self.path_of(r) for r in records if "filePathBytes" in r)
        self.assertEqual(as_bytes, sorted(
            os.fsencode(self.folder) + b"/x/" + name for name in NOT_UTF8))

    def test_ndjson_is_one_object_a_line(self):
        text = self.output("ndjson").decode()
        self.assertTrue(text.endswith("\n"))
        # splitlines knows every line end of Unicode; none may stand in a name.
        lines = text.splitlines()
        records = [json.loads(line) for line in lines]
        self.assertEqual(sorted(map(self.path_of, records)), self.expected)
        self.assert_plain(text)

    def test_json_and_ndjson_agree(self):
        self.assertEqual(json.loads(self.output("json")),
                         [json.loads(line) for line in self.output("ndjson").splitlines()])

    def test_csv_is_rfc_4180(self):
        text = self.output("csv").decode()
        rows = list(csv.reader(io.StringIO(text, newline=""), strict=True))
        self.assertEqual(rows[0], ["filePath", "volumeTitle", "qt", "filePathBytes"])
        records = [dict(zip(rows[0], row)) for row in rows[1:]]
        self.assertEqual(sorted(map(self.path_of, records)), self.expected)
        for record in records:
            self.assertEqual(len(record), 4)
            self.assertTrue(bool(record["filePath"]) != bool(record["filePathBytes"]))
            self.assertEqual((record["volumeTitle"], record["qt"]), ("Apple QuickTime", "true"))
        self.assertTrue(text.endswith("\r\n"))
        self.assertEqual(text.count("\r\n"), len(self.expected) + 1)
        self.assert_plain(text, beside="\r\n")

    def test_csv_bytes_are_for_names_that_cannot_stand_plainly(self):
        rows = csv.DictReader(io.StringIO(self.output("csv").decode(), newline=""))
        as_bytes = sorted(base64.b64decode(r["filePathBytes"]) for r in rows if not r["filePath"])
        self.assertEqual(as_bytes, sorted(
            os.fsencode(self.folder) + b"/x/" + name for name in NOT_UTF8 + HARMFUL))

    def test_table_has_one_safe_line_a_clip(self):
        text = self.output("table").decode()
        lines = text.split("\n")
        self.assertEqual(lines.pop(), "")
        self.assertEqual(lines[0].split(), ["LAYOUT", "QT", "PATH"])
        self.assertEqual(len(lines), len(self.expected) + 1)
        self.assert_plain(text)
        at = lines[0].index("PATH")
        for line in lines[1:]:
            self.assertEqual(line[:at].split(), ["Apple", "QuickTime", "yes"])
            self.assertTrue(line[at:].startswith(f"{self.folder}/x/"))

    def test_table_tells_names_apart_that_look_alike_when_escaped(self):
        self.write(b"x/new\\nline.mov")
        lines = self.output("table").decode().splitlines()
        self.assertEqual(len(set(lines)), len(lines))
        self.assertIn(r"/x/new\nline.mov", "\n".join(lines))
        self.assertIn(r"/x/new\\nline.mov", "\n".join(lines))
        self.assertIn(r"/x/\x1b[2J\x1b]0;x\x07.mov", "\n".join(lines))
        self.assertIn(r"/x/right\u{202e}left.mov", "\n".join(lines))
        self.assertIn(r"/x/latin-\xe9.mov", "\n".join(lines))

    def test_table_is_the_default(self):
        done = self.run_qrx("scan", "--ffmpeg", NO_FFMPEG, str(self.folder / "x"))
        self.assertEqual(done.stdout, self.output("table"))


class NoClips(qrx_case.QrxCase):
    def test_every_format_is_well_formed_without_a_clip(self):
        self.write("notes.txt")
        for form, expected in (("json", b"[]\n"), ("ndjson", b""), ("table", b""),
                               ("csv", b"filePath,volumeTitle,qt,filePathBytes\r\n")):
            with self.subTest(form):
                done = self.run_qrx("scan", "--format", form, "--ffmpeg", NO_FFMPEG, ".")
                self.assertEqual(done.stdout, expected)


class Streaming(qrx_case.QrxCase):
    def test_ndjson_line_comes_while_the_scan_goes_on(self):
        self.write("1.mov")
        self.write("2.bin")
        release = self.folder / "release"
        tool = self.script(f'case "$2" in *2.bin) while [ ! -e "{release}" ]; do sleep 0.01; done;; '
                           'esac')
        process = self.start("scan", "--format", "ndjson", "--ffmpeg", tool,
                             "1.mov", "2.bin", "1.mov")
        self.assertEqual(json.loads(process.stdout.readline())["filePath"],
                         str(self.folder / "1.mov"))
        self.assertIsNone(process.poll())
        release.touch()
        self.assertEqual(len(process.stdout.read().splitlines()), 1)
        self.assertEqual(process.wait(30), 0)


if __name__ == "__main__":
    qrx_case.main()
