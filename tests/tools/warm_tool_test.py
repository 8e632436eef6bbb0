"""The warm tool through the real program: the same answers as with --plain-tool, nothing left.

    warm_tool_test.py PATH-OF-QRX [unittest arguments]

The real ffmpeg is used, since only a program can be warmed.
"""

import os
import pathlib
import shutil
import signal
import subprocess

import qrx_case

LIBRARY = "libqrxwarm.so"


def ffmpeg():
    path = shutil.which("ffmpeg")
    assert path, "ffmpeg is needed"
    return os.path.realpath(path)


class WarmTool(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        # A copy, so that its processes can be told from everybody else's.
        self.tool = str(self.folder / "tools/ffmpeg")
        os.mkdir(self.folder / "tools")
        shutil.copy(ffmpeg(), self.tool)
        os.mkdir(self.folder / "files")

    def make_media(self):
        """Some of every kind, 40 files."""
        source = ["-f", "lavfi", "-i", "testsrc=size=64x48:rate=25:duration=1"]
        for name in ("a.mov", "b.mkv", "c.avi", "d.webm", "e.jpg", "f.gif", "%d.mpg", "g\nh.ts"):
            extra = ["-frames:v", "1"] if name.endswith("jpg") else []
            kind = {"%d.mpg": ["-f", "mpeg"]}.get(name, [])
            subprocess.run([ffmpeg(), "-nostdin", "-v", "error", *source, *extra, *kind,
                            str(self.folder / "files" / name)], check=True)
        for i in range(16):
            self.write(f"files/{i}.dat", f"<?xml version='1.0'?><a n='{i}'/>".encode())
            self.write(f"files/{i}.bin", bytes(range(256)) * i)

    def processes(self):
        """Numbers of the processes that run our copy."""
        found = []
        for entry in pathlib.Path("/proc").iterdir():
            try:
                if entry.name.isdigit() and os.readlink(entry / "exe") == self.tool:
                    found.append(int(entry.name))
            except OSError:
                pass
        return found

    def warm_parents(self):
        """Those that wait for a request: they have our library and no file of a card."""
        found = []
        for pid in self.processes():
            try:
                if LIBRARY in pathlib.Path(f"/proc/{pid}/maps").read_text():
                    found.append(pid)
            except OSError:
                pass
        return found

    def assert_nothing_left(self):
        self.wait_until(lambda: not self.processes(), "the end of every tool")

    def both_ways(self, *arguments):
        warm = self.run_qrx(*arguments, "--ffmpeg", self.tool)
        plain = self.run_qrx(*arguments, "--ffmpeg", self.tool, "--plain-tool")
        self.assertEqual(warm.stdout, plain.stdout)
        self.assertEqual(warm.stderr, plain.stderr)
        self.assert_nothing_left()
        return warm.stdout

    def test_library_lies_beside_the_program(self):
        self.assertTrue((pathlib.Path(self.binary).parent.parent / LIBRARY).exists())

    def test_library_needs_the_c_library_alone(self):
        told = subprocess.run(["readelf", "-d", pathlib.Path(self.binary).parent.parent / LIBRARY],
                              check=True, capture_output=True, text=True).stdout
        needed = [line.split("[")[1].rstrip("]\n") for line in told.splitlines() if "(NEEDED)" in line]
        self.assertEqual(needed, ["libc.so.6"])

    def test_scan_in_every_format(self):
        self.make_media()
        for form in ("json", "ndjson", "csv", "table"):
            with self.subTest(form):
                said = self.both_ways("scan", "--format", form, str(self.folder / "files"))
                self.assertIn(b"General Movies", said)

    def test_scan_of_cards(self):
        self.run_qrx("mkcard", "all", str(self.folder / "cards"), timeout=300)
        said = self.both_ways("scan", "--format", "json", str(self.folder / "cards"))
        self.assertIn(b"Panasonic P2", said)

    def test_explain_and_info(self):
        self.make_media()
        files = sorted(str(path) for path in (self.folder / "files").iterdir())
        self.both_ways("explain", "--format", "json", *files)
        self.both_ways("info", "--format", "json", str(self.folder / "files/c.avi"),
                       str(self.folder / "files/%d.mpg"))

    def scan_with_tool_stopped(self, **options):
        """A scan that takes long, once its warm parent is there."""
        self.make_media()
        for i in range(3000):
            self.write(f"files/more{i}.dat", b"<?xml version='1.0'?><a/>")
        return self.start("scan", "--ffmpeg", self.tool, str(self.folder / "files"), **options)

    def test_killed_scan_leaves_nothing(self):
        scan = self.scan_with_tool_stopped(stdout=subprocess.DEVNULL)
        self.wait_until(self.warm_parents, "a warm parent")
        scan.send_signal(signal.SIGKILL)
        scan.wait()
        self.assert_nothing_left()

    def test_interrupted_scan_leaves_nothing(self):
        scan = self.scan_with_tool_stopped(stdout=subprocess.DEVNULL)
        self.wait_until(self.warm_parents, "a warm parent")
        scan.send_signal(signal.SIGINT)
        self.assertEqual(scan.wait(20), 130)
        self.assert_nothing_left()

    def test_plain_tool_has_no_warm_parent(self):
        for arguments, environment in ((["--plain-tool"], {}), ([], {"QRX_PLAIN_TOOL": "1"})):
            with self.subTest(environment):
                for i in range(12):
                    self.write(f"files/{i}.dat", b"text")
                scan = self.start("scan", "--ffmpeg", self.tool, *arguments,
                                  str(self.folder / "files"), env=self.environment(**environment))
                while scan.poll() is None:
                    self.assertEqual(self.warm_parents(), [])
                self.assertEqual(scan.returncode, 0)

    def test_one_file_needs_no_warm_parent(self):
        self.write("files/1.dat", b"text")
        scan = self.start("scan", "--ffmpeg", self.tool, str(self.folder / "files"))
        while scan.poll() is None:
            self.assertEqual(self.warm_parents(), [])
        self.assertEqual(scan.returncode, 0)

    def test_program_without_its_library_answers_the_same(self):
        self.make_media()
        copy = str(self.folder / "qrx")
        shutil.copy(self.binary, copy)
        arguments = ["scan", "--format", "json", "--ffmpeg", self.tool, str(self.folder / "files")]
        alone = subprocess.run([copy, *arguments], check=True, capture_output=True,
                               stdin=subprocess.DEVNULL, env=self.environment())
        self.assertEqual(alone.stderr, b"")
        self.assertEqual(alone.stdout, self.run_qrx(*arguments).stdout)

    def test_library_of_a_stranger_is_not_loaded(self):
        if os.geteuid() != 0:
            self.skipTest("only root can give a file to a stranger")
        os.mkdir(self.folder / "bin")
        copy = str(self.folder / "bin/qrx")
        shutil.copy(self.binary, copy)
        library = self.folder / LIBRARY
        shutil.copy(pathlib.Path(self.binary).parent.parent / LIBRARY, library)
        for i in range(40):
            self.write(f"files/{i}.dat", b"text")

        def has_warm_parent():
            scan = subprocess.Popen([copy, "scan", "--ffmpeg", self.tool, self.folder / "files"],
                                    stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                    env=self.environment())
            self.addCleanup(self._end, scan)
            found = False
            while scan.poll() is None:
                found = found or bool(self.warm_parents())
            return found

        self.assertTrue(has_warm_parent())
        os.chown(library, 65534, 65534)
        self.assertFalse(has_warm_parent())
        os.chown(library, 0, 0)
        os.chmod(library, 0o666)
        self.assertFalse(has_warm_parent())


if __name__ == "__main__":
    qrx_case.main()
