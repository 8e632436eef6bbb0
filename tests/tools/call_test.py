#!/usr/bin/env python3
"""`qrx call`: the real service on a bus of its own, asked from the command line.

    call_test.py PATH-OF-QRX PATH-OF-THE-BUNDLE [unittest arguments]
"""

import base64
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time

import qrx_case

NOWHERE = "unix:path=/nowhere/bus"

CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Call(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        self.address = NOWHERE

    # -- a bus, a host, a service -----------------------------------------------------------

    def launch(self, *arguments, **options):
        process = subprocess.Popen(
            arguments, stdin=subprocess.DEVNULL, env=self.environment(), **options)
        self.addCleanup(self._end, process)
        return process

    def environment(self, **changes):
        changes.setdefault("DBUS_SESSION_BUS_ADDRESS", self.address)
        return super().environment(**changes)

    def start_bus(self):
        self.write("bus.conf", CONFIGURATION.format(folder=self.folder).encode())
        bus = self.launch(
            "dbus-daemon", f"--config-file={self.folder}/bus.conf", "--nofork", "--nopidfile",
            "--print-address=1", stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.address = bus.stdout.readline().decode().strip()
        self.assertTrue(self.address, "dbus-daemon did not start")

    def start_service(self, name="Cards"):
        """With a bus and a host, once it answers."""
        host = self.folder / "Quillfen"
        if not host.exists():
            shutil.copy("/bin/sleep", host)
            self.launch(str(host), "1000")
        if self.address == NOWHERE:
            self.start_bus()
        service = self.launch(str(BUNDLE / "Contents/MacOS/QRXHDFileMatcher"), name)
        self.wait_until(lambda: self.answers(name), "the service's first answer")
        return service

    def answers(self, name):
        return subprocess.run(
            [self.binary, "call", name, "pid"], env=self.environment(), capture_output=True,
            check=False).returncode == 0

    def call(self, *arguments, status=0, **options):
        """Standard output and standard error."""
        done = self.run_qrx("call", *arguments, status=status, **options)
        return done.stdout.decode(), done.stderr.decode()

    # -- questions --------------------------------------------------------------------------

    def test_pid_is_that_of_the_service(self):
        service = self.start_service()
        self.assertEqual(self.call("Cards", "pid"), (f"{service.pid}\n", ""))

    def test_files_are_those_that_a_scan_finds(self):
        self.start_service()
        card = self.sony_card(("00000.MTS", "00001.MTS"))
        for form in ("json", "ndjson", "table"):
            with self.subTest(form):
                told, _ = self.call("Cards", "files", card, "--format", form)
                scanned = self.run_qrx("scan", "--format", form, card).stdout.decode()
                if form == "table":  # columns are as wide as the titles that occur
                    told = [line.split() for line in told.splitlines()]
                    scanned = [line.split() for line in scanned.splitlines()]
                    self.assertEqual(len(told), 3)
                self.assertEqual(told, scanned)

    def test_relative_paths_are_those_of_the_caller(self):
        self.start_service()
        self.sony_card(card="[card]")
        told, _ = self.call("Cards", "files", "[card]", "--format", "json")
        self.assertEqual(
            [clip["filePath"] for clip in json.loads(told)],
            [str(self.folder / "[card]/AVCHD/BDMV/STREAM/00000.MTS")])

    def test_a_path_at_which_nothing_exists_is_passed_over(self):
        self.start_service()
        self.assertEqual(self.call("Cards", "files", "nothing", "--format", "json"), ("[]\n", ""))

    def test_a_clip_whose_name_is_not_utf8_is_told_in_bytes(self):
        self.start_service()
        card = self.sony_card((b"\xff.MTS",))
        told = json.loads(self.call("Cards", "files", card, "--format", "json")[0])
        self.assertEqual(list(told[0]), ["filePathBytes", "volumeTitle", "qt"])

    def test_paths_that_are_not_utf8_are_asked_for_too(self):
        self.start_service()
        card = self.sony_card(card="card")
        odd = self.write(b"odd\xff/AVCHD/BDMV/STREAM/00000.MTS")
        for paths in ([b"odd\xff", card], [odd, card], [b"odd\xff", b"\xfe", card]):
            told, said = self.call("Cards", "files", *paths, "--format", "json")
            clips = json.loads(told)
            self.assertEqual(said, "")
            self.assertEqual([list(clip)[0] for clip in clips], ["filePathBytes", "filePath"])
            self.assertEqual(base64.b64decode(clips[0]["filePathBytes"]), odd)
            self.assertEqual([clip["volumeTitle"] for clip in clips], ["Sony NXCAM AVCHD"] * 2)
        self.assertEqual(self.call("Cards", "files", b"\xfe", "--format", "json"), ("[]\n", ""))

    def test_is_quicktime_cannot_be_asked_of_a_name_that_is_not_utf8(self):
        self.start_service()
        _, said = self.call("Cards", "is-quicktime", b"/x\xff.mov", status=1)
        self.assertEqual(said, "qrx: /x\\xff.mov: not UTF-8, so a service cannot be asked for it\n")

    def test_is_quicktime(self):
        self.start_service()
        text = self.write("clip.mov", b"not a movie")
        self.assertEqual(self.call("Cards", "is-quicktime", text), ("no\n", ""))
        movie = self.folder / "movie.mov"
        subprocess.run(
            ["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=size=64x48:duration=0.2", movie],
            check=True, stdin=subprocess.DEVNULL)
        self.assertEqual(self.call("Cards", "is-quicktime", "movie.mov"), ("yes\n", ""))

    def test_lock_stays(self):
        self.start_service()
        self.assertEqual(self.call("Cards", "lock"), ("locked\n", ""))
        self.assertEqual(self.call("Cards", "lock"), ("locked already\n", ""))

    def test_quit_ends_the_service(self):
        service = self.start_service()
        self.assertEqual(self.call("Cards", "quit"), ("", ""))
        self.assertEqual(service.wait(10), 0)
        self.assertEqual(
            self.call("Cards", "quit", status=1),
            ("", "qrx: no service runs under the name 'Cards'\n"))

    def test_names_with_odd_characters(self):
        self.start_bus()
        for name in ("Cards & more/\u00e9", "[Cards]", "[a,b]", "pid", "", "long" * 100):
            with self.subTest(name):
                service = self.start_service(name)
                self.assertEqual(self.call(name, "pid")[0], f"{service.pid}\n")

    # -- no answer --------------------------------------------------------------------------

    def test_no_bus(self):
        told, said = self.call("Cards", "pid", status=1)
        self.assertEqual(told, "")
        self.assertTrue(said.startswith("qrx: cannot reach the session bus: "), said)
        self.assertEqual(said.count("\n"), 1)

    def test_no_service(self):
        self.start_bus()
        self.assertEqual(
            self.call("Ca\nrds", "files", "/", status=1),
            ("", "qrx: no service runs under the name 'Ca\\nrds'\n"))

    def test_a_service_that_takes_too_long(self):
        service = self.start_service()
        service.send_signal(signal.SIGSTOP)
        begun = time.monotonic()
        told, said = self.call("Cards", "files", "/", "--timeout", "0.2", status=1)
        self.assertLess(time.monotonic() - begun, 10)
        self.assertEqual(
            (told, said), ("", "qrx: the service 'Cards' did not answer within 0.2 s\n"))

    def test_a_service_that_ends_while_it_is_asked(self):
        service = self.start_service()
        service.send_signal(signal.SIGSTOP)
        asking = self.start("call", "Cards", "files", "/", env=self.environment())
        time.sleep(0.3)  # the question is on its way
        self.assertIsNone(asking.poll())
        service.kill()
        told, said = asking.communicate(timeout=20)
        self.assertEqual(
            (asking.returncode, told, said),
            (1, b"", b"qrx: the service 'Cards' ended before it answered\n"))

    def test_an_error_of_the_service_is_told_with_its_name(self):
        """A foreign program that serves something else under the name."""
        self.start_bus()
        self.launch("/usr/bin/python3", str(pathlib.Path(__file__).with_name("other_service.py")))
        name = "com.quillfen.connection.Other"
        self.wait_until(
            lambda: b"no service" not in self.start(
                "call", name, "pid", env=self.environment()).communicate()[1],
            "the other service")
        told, said = self.call(name, "pid", status=1)
        self.assertEqual(told, "")
        self.assertTrue(said.startswith(f"qrx: the service '{name}' refused: "), said)
        self.assertTrue(said.endswith(" (org.freedesktop.DBus.Error.UnknownMethod)\n"), said)

    def test_a_polite_kill_ends_the_wait(self):
        service = self.start_service()
        service.send_signal(signal.SIGSTOP)
        asking = self.start("call", "Cards", "pid", env=self.environment())
        time.sleep(0.3)
        asking.send_signal(signal.SIGTERM)
        self.assertEqual(asking.wait(10), 128 + signal.SIGTERM)

    # -- wrong usage ------------------------------------------------------------------------

    def test_wrong_usage(self):
        for arguments in (
                (), ("Cards",), ("Cards", "dance"), ("Cards", "files"), ("Cards", "is-quicktime"),
                ("Cards", "is-quicktime", "a", "b"), ("Cards", "pid", "a"),
                ("Cards", "files", "/", "--format", "csv"), ("Cards", "pid", "--timeout", "soon"),
                ("Cards", "pid", "--timeout", "-1")):
            with self.subTest(arguments):
                self.call(*arguments, status=2)


if __name__ == "__main__":
    BUNDLE = pathlib.Path(sys.argv.pop(2)).resolve()
    qrx_case.main()
