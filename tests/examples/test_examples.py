"""The example programs, run as a reader of theirs would run them."""

import os
import pathlib
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "service"))

from harness import SOURCES, ServiceTest, is_running, wait_until

HOST = os.environ["QRX_EXAMPLE_HOST"]
CLIENT = [sys.executable, str(SOURCES / "examples/client.py")]

# One pass of the service's watchdog, and time to come to its end on a busy machine.
ONE_PASS = 5 + 3


class Examples(ServiceTest):
    def run_program(self, *arguments, status=0):
        """Lines of standard output, and standard error."""
        done = subprocess.run(arguments, env=self.environment(), capture_output=True, text=True,
                              timeout=60, check=False)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout.splitlines(), done.stderr

    @staticmethod
    def rows(clips):
        return [f"Sony NXCAM AVCHD\t-\t{clip}" for clip in clips]

    def service_of(self, said):
        """From "service 12 serves NAME"."""
        words = said.split()
        self.assertEqual((words[0], words[2]), ("service", "serves"), said)
        return int(words[1])

    def test_host_prints_the_clips_and_the_service_follows_it_within_one_pass(self):
        clips = self.make_sony_card(3)
        rows, said = self.run_program(HOST, self.path("card"))
        gone_since = time.monotonic()
        self.assertEqual(rows, self.rows(clips))
        service = self.service_of(said)
        self.assertTrue(wait_until(lambda: not is_running(service), 30))
        self.assertLess(time.monotonic() - gone_since, ONE_PASS)

    def test_host_takes_a_name_and_a_bundle(self):
        bundle = os.environ["QRX_SERVICE_BUNDLE"]
        link = self.path("elsewhere/QRXHDFileMatcher.app")
        os.mkdir(os.path.dirname(link))
        os.symlink(bundle, link)
        _, said = self.run_program(HOST, "--bundle", link, "--name", "A & B", self.path("card"))
        self.assertTrue(said.endswith(" serves A & B\n"), said)

    def test_host_asks_for_relative_paths_of_its_own_folder(self):
        clips = self.make_sony_card()
        done = subprocess.run([HOST, "card"], env=self.environment(), cwd=self.folder,
                              capture_output=True, text=True, timeout=60, check=True)
        self.assertEqual(done.stdout.splitlines(), self.rows(clips))

    def test_host_says_so_when_no_service_comes_up(self):
        rows, said = self.run_program(HOST, "--bundle", self.path("No.app"), "/", status=1)
        self.assertEqual((rows, said.count("no service came up from ")), ([], 1))

    def test_host_without_paths_is_wrong_usage(self):
        self.run_program(HOST, status=2)
        self.run_program(HOST, "--name", status=2)

    def test_client_gets_the_same_answer(self):
        clips = self.make_sony_card(3)
        for name in ("Cards", "org.example.Cards", "A & B/\u00e9", "long" * 100):
            with self.subTest(name):
                self.start_host()
                self.start_service(name)
                rows = []

                def answered():
                    done = subprocess.run([*CLIENT, name, self.path("card")], check=False,
                                          env=self.environment(), capture_output=True, text=True)
                    rows[:] = done.stdout.splitlines()
                    return done.returncode == 0

                self.assertTrue(wait_until(answered))
                self.assertEqual(rows, self.rows(clips))

    def test_client_shows_a_name_that_is_not_utf8_as_it_is(self):
        self.make_sony_card()
        clip = os.fsencode(self.path("card/AVCHD/BDMV/STREAM/")) + b"\xff.MTS"
        with open(clip, "wb"):
            pass
        self.start_vended("Cards")
        done = subprocess.run([*CLIENT, "Cards", self.path("card")], env=self.environment(),
                              capture_output=True, check=True)
        self.assertIn(b"\t" + clip + b"\n", done.stdout)

    def test_client_says_so_when_nobody_serves(self):
        rows, said = self.run_program(*CLIENT, "Nobody", "/", status=1)
        self.assertEqual(rows, [])
        self.assertIn("com.quillfen.connection.nNobody", said)


if __name__ == "__main__":
    unittest.main()
