"""Requests under load, callers that leave, answers and questions of every size."""

import os
import signal
import subprocess
import sys
import threading
import time
import unittest

from gi.repository import GLib

from harness import (ASK_FOR_CLIPS, COMMUNICATION, MATCHER, NO_LIMIT, ROOT_OBJECT, SECONDS, Client,
                     ServiceTest, is_running, wait_until)

TOO_LARGE = "com.quillfen.Error.TooLarge"

# Sanitizers keep freed memory and shadows of it, so bounds on memory hold for plain builds only.
SANITIZED = os.environ.get("QRX_SANITIZE", "") != ""

# A client that asks once and prints what it gets.
ASK = """
import sys
from gi.repository import Gio, GLib
flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
bus = Gio.DBusConnection.new_for_address_sync(sys.argv[1], flags, None, None)
answer = bus.call_sync(sys.argv[2], "/com/quillfen/RootObject",
                       "com.quillfen.QRXHDFileMatcherProtocol",
                       "filePathDictionariesForAllHDFilesAtFileSystemLocations",
                       GLib.Variant("(as)", (sys.argv[3:],)), None, 0, GLib.MAXINT, None)
print(len(answer.unpack()[0]))
"""


class Requests(ServiceTest):
    def ask_in_background(self, *locations, client=None):
        """The answer of the running call, once `done` is set: clips or an error."""
        return BackgroundCall(client or self.client, self.name, list(locations))

    def start_client(self, *locations):
        return self.start([sys.executable, "-c", ASK, self.address, self.name, *locations],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)


class BackgroundCall:
    def __init__(self, client, name, locations):
        self.clips = None
        self.error = None
        self.done = threading.Event()

        def run():
            try:
                self.clips = client.call(name, MATCHER, ASK_FOR_CLIPS,
                                         GLib.Variant("(as)", (locations,)), NO_LIMIT)[0]
            except GLib.Error as error:
                self.error = error
            self.done.set()

        threading.Thread(target=run, daemon=True).start()


class Load(Requests):
    @staticmethod
    def descriptors(pid):
        return len(os.listdir(f"/proc/{pid}/fd"))

    @staticmethod
    def kilobytes(pid, field="VmRSS:"):
        with open(f"/proc/{pid}/status", encoding="utf-8") as status:
            return next(int(line.split()[1]) for line in status if line.startswith(field))

    def test_thousand_requests_leave_memory_and_descriptors_as_they_were(self):
        self.make_sony_card(3)
        movie = self.write("card/a.mov", "x")
        service = self.start_vended()

        def ask():
            self.assertEqual(len(self.clips(self.path("card"))), 4)
            self.assertEqual(self.call(MATCHER, "filePathIsQuickTime", "(s)", movie), (False,))

        for _ in range(200):  # until every buffer has its size
            ask()
        descriptors = self.descriptors(service.pid)
        kilobytes = self.kilobytes(service.pid)
        threads = self.kilobytes(service.pid, "Threads:")
        for _ in range(500):
            ask()
        self.assertEqual(self.descriptors(service.pid), descriptors)
        self.assertEqual(self.kilobytes(service.pid, "Threads:"), threads)
        if not SANITIZED:
            self.assertLess(self.kilobytes(service.pid) - kilobytes, 2048)

    def test_clients_that_come_and_go_leave_nothing_behind(self):
        service = self.start_vended()
        for _ in range(20):
            self.clips()
        descriptors = self.descriptors(service.pid)
        for _ in range(100):
            client = Client(self.address)
            client.call(self.name, COMMUNICATION, "communicationLocked")
            client.close()
        self.assertEqual(self.descriptors(service.pid), descriptors)

    def test_eight_clients_at_once(self):
        clips = self.make_sony_card(50)
        self.start_vended()
        answers = [[] for _ in range(8)]

        def ask(answer):
            client = Client(self.address)
            for _ in range(25):
                answer.append(client.call(self.name, MATCHER, ASK_FOR_CLIPS,
                                          GLib.Variant("(as)", ([self.path("card")],)), NO_LIMIT))
            client.close()

        threads = [threading.Thread(target=ask, args=(answer,)) for answer in answers]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        for answer in answers:
            self.assertEqual(len(answer), 25)
            for (found,) in answer:
                self.assertEqual([clip["filePath"] for clip in found], clips)

    @unittest.skipIf(SANITIZED, "a sanitizer keeps memory of its own")
    def test_idle_service_is_small(self):
        service = self.start_vended()
        self.clips()
        self.assertLess(self.kilobytes(service.pid), 40_000)


class Sizes(Requests):
    def test_hundred_thousand_locations(self):
        first, second = self.make_sony_card(2)
        self.start_vended()
        locations = [self.path(f"missing-{number}") for number in range(100_000)]
        locations[7] = second
        locations[-1] = first
        self.assertEqual([clip["filePath"] for clip in self.clips(*locations)], [second, first])

    def make_deep_folder(self, clips):
        """A folder near the longest path there is, so that few clips make a large answer."""
        parts = ["d" * 250] * 15
        folder = os.path.join(self.folder, *parts)
        os.makedirs(folder)
        for number in range(clips):
            with open(f"{folder}/{number:04}.mov", "wb"):
                pass
        return folder

    def test_answer_that_is_too_large(self):
        folder = self.make_deep_folder(500)
        service = self.start_vended()
        self.assertEqual(len(self.clips(*[folder] * 28)), 14_000)  # some 54 million bytes
        with self.assertRaises(GLib.Error) as raised:
            self.clips(*[folder] * 33)
        self.assertIn(TOO_LARGE, raised.exception.message)
        self.assertIn("com.quillfen.QRXHDFileMatcherStream", raised.exception.message)
        self.assertEqual(self.process_identifier(), service.pid)
        self.assertEqual(len(self.clips(folder)), 500)


class Workers(Requests):
    """One request is matched by several workers, on the main thread and beside it."""

    def make_files_for_the_movie_probe(self, count):
        """Nobody tells them by name, so that each is opened on the main thread."""
        return [self.write(f"probed/{number:03}.xyz", "no movie") for number in range(count)]

    def test_answer_and_its_order_are_those_of_one_worker(self):
        clips = self.make_sony_card(50)
        self.make_files_for_the_movie_probe(50)
        self.write("probed/050.mov")
        answers = []
        for jobs in (1, 2, 16):
            service = self.start_vended(f"Cards{jobs}", jobs=jobs)
            answers.append(self.clips(self.path("probed"), self.path("card"), clips[7]))
            service.terminate()
            self.assert_ends(service)
        self.assertEqual(len(answers[0]), 52)
        self.assertEqual(answers[0], answers[1])
        self.assertEqual(answers[0], answers[2])

    def test_workers_open_movies_on_the_main_thread_that_waits_for_them(self):
        self.make_files_for_the_movie_probe(300)
        service = self.start_vended(jobs=16)
        for _ in range(5):
            self.assertEqual(self.clips(self.path("probed")), [])
        self.assertEqual(self.process_identifier(), service.pid)

    def test_requests_beside_each_other_while_all_open_movies(self):
        self.make_files_for_the_movie_probe(200)
        self.make_sony_card(3)
        self.start_vended(jobs=8)
        places = [self.path("probed"), self.path("card")]
        asked = [self.ask_in_background(*places, client=self.new_client()) for _ in range(4)]
        for one in asked:
            self.assertTrue(one.done.wait(60))
            self.assertEqual(len(one.clips), 3)

    def test_number_of_jobs_that_is_none_counts_as_none_given(self):
        for jobs in ("0", "65", "many", ""):
            with self.subTest(jobs):
                service = self.start_vended(f"Cards{jobs}", jobs=jobs)
                self.assertEqual(len(self.clips(*self.make_sony_card())), 1)
                service.terminate()
                self.assert_ends(service)


class Callers(Requests):
    def test_requests_are_served_in_order_of_arrival(self):
        slow = self.make_slow_tool(seconds=2)
        self.start_vended(tool=self.slow_tool)
        first = self.ask_in_background(slow)
        self.assertTrue(wait_until(self.tool_pids))
        other = self.new_client()
        second = self.ask_in_background(client=other)
        time.sleep(0.5)
        self.assertFalse(first.done.is_set())
        self.assertFalse(second.done.is_set())  # waits for the first
        self.assertTrue(second.done.wait(20))
        # The first had been served to its end by then, though its answer reaches another thread.
        self.assertFalse(any(is_running(pid) for pid in self.tool_pids()))
        self.assertTrue(first.done.wait(20))
        self.assertEqual((first.clips, second.clips), ([], []))

    def test_client_that_is_killed_ends_its_tool_and_harms_nobody(self):
        slow = self.make_slow_tool(seconds=100)
        (clip,) = self.make_sony_card()
        service = self.start_vended(tool=self.slow_tool, jobs=1)
        asking = self.start_client(slow, slow)
        self.assertTrue(wait_until(self.tool_pids))
        waiting = self.start_client(clip)
        asking.send_signal(signal.SIGKILL)
        asking.wait()
        self.assertEqual(waiting.communicate(timeout=20)[0], "1\n")
        self.assertTrue(wait_until(lambda: not is_running(self.tool_pids()[0])))
        self.assertEqual(len(self.tool_pids()), 1)  # the second file was not looked at
        self.assertEqual(self.process_identifier(), service.pid)

    def test_client_that_is_killed_ends_all_tools_of_its_request(self):
        slow = self.make_slow_tool(seconds=100)
        (clip,) = self.make_sony_card()
        service = self.start_vended(tool=self.slow_tool, jobs=5)
        self.assertEqual(len(self.clips(clip)), 1)
        before = self.resources_of(service)
        asking = self.start_client(*[slow] * 40)
        self.assertTrue(wait_until(lambda: len(self.tool_pids()) == 5))
        waiting = self.start_client(clip)
        asking.kill()
        asking.wait()
        self.assertEqual(waiting.communicate(timeout=20)[0], "1\n")
        self.assertTrue(wait_until(lambda: not any(map(is_running, self.tool_pids()))))
        self.assertEqual(len(self.tool_pids()), 5)  # no further file was looked at
        self.assertTrue(wait_until(lambda: self.resources_of(service) <= before))
        self.assertEqual(self.process_identifier(), service.pid)

    def test_client_that_is_killed_while_it_waits_is_not_served(self):
        slow = self.make_slow_tool(seconds=2)
        self.start_vended(tool=self.slow_tool)
        first = self.ask_in_background(slow)
        self.assertTrue(wait_until(self.tool_pids))
        waiting = self.start_client(slow)
        time.sleep(0.7)  # it has sent its call
        waiting.kill()
        waiting.wait()
        self.assertTrue(first.done.wait(20))
        self.assertEqual(self.clips(), [])
        self.assertEqual(len(self.tool_pids()), 1)

    def test_parent_watch_outlives_a_caller_that_leaves(self):
        slow = self.make_slow_tool(seconds=100)
        service = self.start_vended(tool=self.slow_tool)
        self.call(COMMUNICATION, "setParentProcessId", "(i)", os.getpid())
        asking = self.start_client(slow)
        self.assertTrue(wait_until(self.tool_pids))
        asking.kill()
        asking.wait()
        time.sleep(6)  # a pass of the watch
        self.assertEqual(self.process_identifier(), service.pid)

    def test_call_without_an_answer_is_served_though_the_caller_has_gone(self):
        self.start_vended()
        done = subprocess.run(
            ["dbus-send", "--session", "--type=method_call", f"--dest={self.name}", ROOT_OBJECT,
             f"{COMMUNICATION}.lockCommunication"], env=self.environment(), check=False)
        self.assertEqual(done.returncode, 0)
        self.assertTrue(wait_until(lambda: self.call(COMMUNICATION, "communicationLocked")[0]))

    def test_quit_while_a_scan_runs_comes_after_it(self):
        slow = self.make_slow_tool(seconds=2)
        (clip,) = self.make_sony_card()
        service = self.start_vended(tool=self.slow_tool)
        scan = self.ask_in_background(slow, clip)
        self.assertTrue(wait_until(self.tool_pids))
        self.new_client().call(self.name, COMMUNICATION, "killSelf", None, 60 * SECONDS)
        self.assert_ends(service)
        self.assertTrue(scan.done.wait(20))
        self.assertEqual([one["filePath"] for one in scan.clips], [clip])

    def test_signal_while_a_scan_runs_ends_it_at_once(self):
        slow = self.make_slow_tool(seconds=100)
        service = self.start_vended(tool=self.slow_tool)
        scan = self.ask_in_background(slow)
        self.assertTrue(wait_until(self.tool_pids))
        service.terminate()
        self.assert_ends(service, seconds=5)
        self.assertTrue(scan.done.wait(20))
        self.assertIsNotNone(scan.error)
        self.assertTrue(wait_until(lambda: not is_running(self.tool_pids()[0])))

    def test_tool_inherits_no_input_and_no_descriptor(self):
        tool = self.write("tool", executable=True, content=(
            "#!/bin/sh\n"
            f"ls -l /proc/self/fd > {self.folder}/descriptors\n"))
        clip = self.write("clip.xyz")
        self.start_vended(tool=tool)
        self.clips(clip)
        with open(self.path("descriptors"), encoding="utf-8") as file:
            links = dict(line.split()[-3::2] for line in file if "->" in line)
        self.assertEqual(links.pop("0"), "/dev/null")
        # 3 is the folder that ls itself reads.
        self.assertEqual(sorted(links), ["1", "2", "3"])


if __name__ == "__main__":
    unittest.main()
