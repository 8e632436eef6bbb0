"""How a service begins and ends: names, hosts, parents, signals."""

import hashlib
import os
import signal
import subprocess
import time
import unittest

from gi.repository import GLib

from harness import (COMMUNICATION, MARK, MATCHER, PROGRAM, ASK_FOR_CLIPS, SECONDS, ServiceTest,
                     bus_name, is_running, send_signal, wait_until)

ONE_PASS = 5  # seconds between two looks of a watch
SLACK = 4


class Names(ServiceTest):
    def setUp(self):
        super().setUp()
        self.host = self.start_host()

    def owner_of(self, name):
        return self.client.ask_bus("GetNameOwner", GLib.Variant("(s)", (name,)))[0]

    def test_without_a_name_it_ends_at_once(self):
        self.assert_ends(self.start_service(), seconds=3)

    def test_second_instance_ends_and_the_first_goes_on(self):
        first = self.start_vended("Cards")
        owner = self.owner_of(self.name)
        for _ in range(3):
            self.assert_ends(self.start_service("Cards"), seconds=3)
        self.assertEqual(self.owner_of(self.name), owner)
        self.assertEqual(self.process_identifier(), first.pid)

    def test_one_of_many_that_start_together_stays(self):
        services = [self.start_service("Cards") for _ in range(6)]
        self.assertTrue(wait_until(
            lambda: sum(one.poll() is None for one in services) == 1))
        self.name = bus_name("Cards")
        stayed = next(one for one in services if one.poll() is None)
        self.assertTrue(wait_until(lambda: self.client.has_owner(self.name)))
        self.assertEqual(self.process_identifier(), stayed.pid)

    def test_names_of_every_kind(self):
        for name in ("Cards", "", "My Cards", "a/b", "x" * 230, "é", "\"quoted\" $(x) `y`", "a\nb",
                     "-x", "--help", ":1.5", "_", MARK, "org.freedesktop.DBus"):
            with self.subTest(name):
                service = self.start_vended(name)
                self.assertEqual(self.process_identifier(), service.pid)
                self.call(COMMUNICATION, "killSelf")
                self.assert_ends(service)

    def test_name_that_is_too_long_for_the_bus(self):
        name = "x" * 255
        service = self.start_service(name)
        self.name = ("com.quillfen.connection.n"
                     + hashlib.sha256(name.encode()).hexdigest())
        self.assertTrue(wait_until(lambda: self.client.has_owner(self.name)))
        self.assertEqual(self.process_identifier(), service.pid)

    def test_well_known_name_is_used_as_it_is(self):
        service = self.start_service("com.example.Matcher-1")
        self.name = "com.example.Matcher-1"
        self.assertTrue(wait_until(lambda: self.client.has_owner(self.name)))
        self.assertEqual(self.process_identifier(), service.pid)

    def test_name_that_is_not_utf8(self):
        self.start([os.fsencode(PROGRAM), b"\xff"], env=self.environment())
        self.assertTrue(wait_until(
            lambda: self.client.has_owner("com.quillfen.connection.n_ff")))


class Ends(ServiceTest):
    def test_without_a_host_it_ends_at_once(self):
        self.assert_ends(self.start_service("Cards"), seconds=3)

    def test_host_of_a_longer_name(self):
        self.start_host("My Quillfen 10.5 beta")
        service = self.start_service("Cards")
        time.sleep(1)
        self.assertIsNone(service.poll())

    def test_host_known_by_its_first_argument(self):
        self.start(["Quillfen", "1000"], executable="/bin/sleep")
        service = self.start_service("Cards")
        time.sleep(1)
        self.assertIsNone(service.poll())

    def test_host_of_another_case_is_none(self):
        self.start_host("quillfen")
        self.assert_ends(self.start_service("Cards"), seconds=3)

    def test_zombie_is_no_host(self):
        host = self.start_host()
        host.kill()
        os.waitid(os.P_PID, host.pid, os.WEXITED | os.WNOWAIT)  # dead, and not reaped
        self.assert_ends(self.start_service("Cards"), seconds=3)

    def test_signal_ends_it_with_status_0(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number):
                service = self.start_vended()
                service.send_signal(number)
                self.assert_ends(service, seconds=3)

    def test_bus_that_goes_away_ends_it(self):
        service = self.start_vended()
        send_signal(self.bus, signal.SIGTERM)
        self.assert_ends(service, seconds=5)

    def test_without_a_bus_it_serves_nobody_until_its_host_goes(self):
        host = self.start_host()
        service = self.start([PROGRAM, "Cards"], env={
            **self.environment(), "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere/at/all"})
        time.sleep(1)
        self.assertIsNone(service.poll())
        send_signal(host)
        self.assert_ends(service, seconds=ONE_PASS + SLACK)

    def test_standard_input_is_not_the_hosts(self):
        service = self.start_vended(stdin=subprocess.PIPE)
        self.assertEqual(os.readlink(f"/proc/{service.pid}/fd/0"), "/dev/null")

    def test_closed_standard_streams_are_filled(self):
        self.start_host()
        shell = self.start(["sh", "-c", f'exec "{PROGRAM}" Cards <&- >&- 2>&-'],
                           env=self.environment())
        self.name = bus_name("Cards")
        self.assertTrue(wait_until(lambda: self.client.has_owner(self.name)))
        for stream in range(3):
            self.assertEqual(os.readlink(f"/proc/{shell.pid}/fd/{stream}"), "/dev/null")


class Watches(ServiceTest):
    """These really wait, a pass of a watch or more."""

    def test_host_that_goes_ends_it_within_one_pass(self):
        service = self.start_vended()
        time.sleep(ONE_PASS + 1)  # past the second look
        self.assertIsNone(service.poll())
        send_signal(self.host)
        begin = time.monotonic()
        self.assert_ends(service, seconds=ONE_PASS + SLACK)
        self.assertLess(time.monotonic() - begin, ONE_PASS + SLACK)

    def test_last_of_two_hosts_counts(self):
        service = self.start_vended()
        other = self.start_host("Quillfen Two")
        send_signal(self.host)
        time.sleep(ONE_PASS + 1)
        self.assertIsNone(service.poll())
        send_signal(other)
        self.assert_ends(service, seconds=ONE_PASS + SLACK)

    def test_parent_that_goes_ends_it_within_one_pass(self):
        service = self.start_vended()
        parent = self.start(["sleep", "1000"])
        self.call(COMMUNICATION, "setParentProcessId", "(i)", parent.pid)
        time.sleep(ONE_PASS + 1)
        self.assertEqual(self.process_identifier(), service.pid)
        send_signal(parent)  # and reaped: ps lists a zombie, too
        self.assert_ends(service, seconds=ONE_PASS + SLACK)

    def test_parent_that_never_was_ends_it_at_once(self):
        service = self.start_vended()
        self.call(COMMUNICATION, "setParentProcessId", "(i)", 2**22 + 1)  # beyond any process
        self.assert_ends(service, seconds=3)

    def test_parent_that_must_not_be_self_has_five_passes(self):
        untold = self.start_vended("Untold", MARK)
        untold_name = self.name
        told = self.start_vended("Told", MARK)
        unmarked = self.start_vended("Unmarked")
        for name in ("Untold", "Told", "Unmarked"):
            self.client.connection.call_sync(
                bus_name(name), "/com/quillfen/RootObject", COMMUNICATION, "communicationLocked",
                None, None, 0, 5 * SECONDS, None)
            with self.assertRaises(GLib.Error):
                self.client.call(bus_name(name), COMMUNICATION, "configureKillTimer", None, 200)
        begin = time.monotonic()
        self.client.call(bus_name("Told"), COMMUNICATION, "setParentProcessId",
                         GLib.Variant("(i)", (os.getpid(),)))
        time.sleep(4 * ONE_PASS)
        self.assertTrue(self.client.has_owner(untold_name))
        self.assert_ends(untold, seconds=2 * ONE_PASS + SLACK)
        self.assertGreater(time.monotonic() - begin, 4.5 * ONE_PASS)
        self.assertIsNone(told.poll())
        self.assertIsNone(unmarked.poll())

    def test_host_that_goes_while_a_request_is_served_ends_all(self):
        clip = self.make_slow_tool()
        service = self.start_vended(tool=self.slow_tool)
        self.client.connection.call(
            self.name, "/com/quillfen/RootObject", MATCHER, ASK_FOR_CLIPS,
            GLib.Variant("(as)", ([clip],)), None, 0, 60 * SECONDS, None, None)
        self.assertTrue(wait_until(self.tool_pids))
        (tool,) = self.tool_pids()
        send_signal(self.host)
        self.assert_ends(service, seconds=ONE_PASS + SLACK)
        self.assertTrue(wait_until(lambda: not is_running(tool)))


if __name__ == "__main__":
    unittest.main()
