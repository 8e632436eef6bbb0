"""What is installed: the bundle, the interface files, activation, the unit, the manual."""

import configparser
import os
import pathlib
import shutil
import stat
import subprocess
import unittest

from gi.repository import GLib

from harness import COMMUNICATION, MATCHER, ServiceTest, wait_until

BUILD = pathlib.Path(os.environ["QRX_SERVICE_BUNDLE"]).parent
ACTIVATED_NAME = "com.quillfen.QRXHDFileMatcher"


class Packaging(ServiceTest):
    def setUp(self):
        super().setUp()
        self.root = pathlib.Path(self.path("root"))
        subprocess.run(["cmake", "--install", BUILD, "--component", "service", "--prefix",
                        self.root], check=True, stdout=subprocess.DEVNULL)
        (self.bundle,) = self.root.glob("lib/**/qrx/QRXHDFileMatcher.app")
        self.program = self.bundle / "Contents/MacOS/QRXHDFileMatcher"

    def read_unit(self, path):
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read_string((self.root / path).read_text(encoding="utf-8"))
        return parser

    def test_bundle(self):
        self.assertTrue(self.program.stat().st_mode & stat.S_IXUSR)
        lines = (self.bundle / "Contents/Resources/LASTCLIP.TXT").read_bytes()
        self.assertRegex(lines, rb"\A[^\r\n]+\r\n1\.0\r\n\d+\r\n\Z")

    def test_interfaces(self):
        names = {path.stem for path in self.root.glob("share/dbus-1/interfaces/*.xml")}
        self.assertEqual(names, {
            "com.quillfen.QRXApplicationLauncherProtocol",
            "com.quillfen.QRXDistributedAppCommunicationProtocol",
            "com.quillfen.QRXHDFileMatcherProtocol", "com.quillfen.QRXHDFileMatcherStream"})

    def install_activation(self):
        """The installed file, with the program where this test has installed it."""
        name = f"{ACTIVATED_NAME}.service"
        told = self.read_unit(f"share/dbus-1/services/{name}")["D-BUS Service"]
        self.assertEqual(told["Name"], ACTIVATED_NAME)
        program, argument = told["Exec"].split()
        self.assertEqual(argument, ACTIVATED_NAME)
        self.assertEqual(pathlib.Path(program).parts[-5:], self.program.parts[-5:])
        self.write(f"services/{name}",
                   f"[D-BUS Service]\nName={ACTIVATED_NAME}\nExec={self.program} {argument}\n")
        self.client.ask_bus("ReloadConfig", None)
        self.client.ask_bus("UpdateActivationEnvironment",
                            GLib.Variant("(a{ss})", ({"DBUS_SESSION_BUS_ADDRESS": self.address},)))

    def test_activation_with_a_host(self):
        self.start_host()
        self.install_activation()
        answer = self.client.connection.call_sync(
            ACTIVATED_NAME, "/com/quillfen/RootObject", MATCHER, "filePathIsQuickTime",
            GLib.Variant("(s)", ("/nowhere.mov",)), None, 0, 20_000, None)
        self.assertEqual(answer.unpack(), (False,))
        self.client.call(ACTIVATED_NAME, COMMUNICATION, "killSelf")

    def test_activation_without_a_host_ends_at_its_first_pass(self):
        self.install_activation()
        try:
            self.client.ask_bus("StartServiceByName", GLib.Variant("(su)", (ACTIVATED_NAME, 0)))
        except GLib.Error:
            pass  # it was gone before its name was
        self.assertTrue(wait_until(lambda: not self.client.has_owner(ACTIVATED_NAME)))

    def test_unit_starts_the_same_program_and_hides_no_process(self):
        unit = self.read_unit("lib/systemd/user/qrx-hd-file-matcher.service")["Service"]
        self.assertEqual(unit["BusName"], ACTIVATED_NAME)
        self.assertEqual(unit["Type"], "dbus")
        program, argument = unit["ExecStart"].split()
        self.assertEqual(argument, ACTIVATED_NAME)
        self.assertEqual(pathlib.Path(program).parts[-5:], self.program.parts[-5:])
        for hiding in ("ProtectProc", "ProcSubset", "PrivatePIDs", "PrivateTmp", "PrivateDevices"):
            self.assertNotIn(hiding, unit)
        for hardening in ("NoNewPrivileges", "ProtectSystem", "RestrictAddressFamilies"):
            self.assertIn(hardening, unit)

    def test_unit_is_one_that_systemd_takes(self):
        if shutil.which("systemd-analyze") is None:
            self.skipTest("no systemd-analyze")
        text = (self.root / "lib/systemd/user/qrx-hd-file-matcher.service").read_text("utf-8")
        told = next(line for line in text.splitlines() if line.startswith("ExecStart="))
        unit = self.write("unit/qrx-hd-file-matcher.service", text.replace(
            told, f"ExecStart={self.program} {ACTIVATED_NAME}"))
        done = subprocess.run(["systemd-analyze", "verify", "--man=no", "--user", unit],
                              capture_output=True, text=True, check=False,
                              env={**os.environ, "XDG_RUNTIME_DIR": self.folder})
        complaints = [line for line in done.stderr.splitlines() if "qrx-hd-file-matcher" in line]
        self.assertEqual(complaints, [])

    def test_manual(self):
        manual = self.root / "share/man/man1/QRXHDFileMatcher.1"
        text = manual.read_text(encoding="utf-8")
        self.assertNotIn("@", text.replace("\\@", ""))
        for said in ("Quillfen", "QRX_FFMPEG", "com.quillfen.Error.TooLarge", "killSelf"):
            self.assertIn(said, text)
        if shutil.which("groff") is None:
            self.skipTest("no groff to set the manual with")
        done = subprocess.run(["groff", "-ww", "-man", "-Tutf8", "-z", manual],
                              capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))


if __name__ == "__main__":
    unittest.main()
