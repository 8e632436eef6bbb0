"""Clips as they are found: the way for folders too big for one answer."""

import base64
import json
import os
import subprocess
import sys
import threading
import time
import unittest

from gi.repository import Gio, GLib

from harness import (COMMUNICATION, NO_LIMIT, ROOT_OBJECT, SECONDS, STREAM, Client, ServiceTest,
                     error_name, is_running, wait_until)

MEMBER = "streamFilePathDictionaries"

# A client that asks and then reads nothing.
ASK = """
import os, sys, time
from gi.repository import Gio, GLib
flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
bus = Gio.DBusConnection.new_for_address_sync(sys.argv[1], flags, None, None)
reading, writing = os.pipe()
descriptors = Gio.UnixFDList.new()
descriptors.append(writing)
os.close(writing)
arguments = GLib.Variant("(aaya{sv}h)", ([os.fsencode(path) for path in sys.argv[3:]], {}, 0))
bus.call_with_unix_fd_list(sys.argv[2], "/com/quillfen/RootObject",
                           "com.quillfen.QRXHDFileMatcherStream", "streamFilePathDictionaries",
                           arguments, None, 0, GLib.MAXINT, descriptors, None, None)
bus.flush_sync(None)
print("asked", flush=True)
time.sleep(1000)
"""


class Stream(ServiceTest):
    def ask(self, *locations, client=None, options=None, limit=60 * SECONDS):
        return Asking(client or self.client, self.name, locations, options or {}, limit)

    def lines(self, *locations, **more):
        asking = self.ask(*locations, **more)
        lines = asking.read_lines()
        return lines, asking.answer()


class Asking:
    """One request under way; the reading end of its pipe is `reading`."""

    def __init__(self, client, name, locations, options, limit):
        self.reading, writing = os.pipe()
        descriptors = Gio.UnixFDList.new()
        descriptors.append(writing)  # a copy
        os.close(writing)
        # As byte strings: PyGObject takes each for a text with a NUL at its end otherwise.
        places = GLib.Variant.new_array(GLib.VariantType("ay"), [
            GLib.Variant("ay", os.fsencode(place)) for place in locations])
        options = GLib.Variant("a{sv}", options)
        arguments = GLib.Variant.new_tuple(places, options, GLib.Variant("h", 0))
        self.result = None
        self.error = None
        self.thread = threading.Thread(target=self.run, daemon=True,
                                       args=(client, name, arguments, limit, descriptors))
        self.thread.start()

    def run(self, client, name, arguments, limit, descriptors):
        try:
            answer, _ = client.connection.call_with_unix_fd_list_sync(
                name, ROOT_OBJECT, STREAM, MEMBER, arguments, None, Gio.DBusCallFlags.NONE, limit,
                descriptors, None)
            self.result = answer.unpack()
        except GLib.Error as error:
            # The traceback would keep the descriptors, and with them the pipe, open.
            self.error = error.with_traceback(None)

    def read_lines(self):
        with os.fdopen(self.reading, "rb") as pipe:
            return [json.loads(line) for line in pipe]

    def answer(self):
        self.thread.join(60)
        if self.error:
            raise self.error
        return self.result


class Lines(Stream):
    def test_a_line_for_each_clip_then_the_end_and_the_answer(self):
        first, second = self.make_sony_card(2)
        self.write("card/notes.txt")
        self.start_vended()
        lines, answer = self.lines(self.path("card"), self.path("missing"), second)
        self.assertEqual(lines, [
            {"filePath": path, "volumeTitle": "Sony NXCAM AVCHD", "qt": False}
            for path in (first, second, second)])
        self.assertEqual(answer, (4, 3))

    def test_same_clips_as_the_answer_in_one_piece(self):
        self.make_sony_card(40)
        self.write("card/loose/a.mov")
        self.start_vended()
        lines, _ = self.lines(self.path("card"))
        self.assertEqual(lines, self.clips(self.path("card")))

    def test_name_that_is_not_utf8(self):
        folder = os.fsencode(self.path("odd\xe9"))
        os.mkdir(folder)
        odd = os.path.join(folder, b"\xff.mov")
        with open(odd, "wb"):
            pass
        self.start_vended()
        for location in (odd, odd + b"\0", folder):
            lines, _ = self.lines(location)
            self.assertEqual([base64.b64decode(line["filePathBytes"]) for line in lines], [odd])

    def test_no_locations(self):
        self.start_vended()
        self.assertEqual(self.lines(), ([], (0, 0)))

    def test_more_than_one_answer_could_carry(self):
        folder = os.path.join(self.folder, *["d" * 250] * 15)
        os.makedirs(folder)
        for number in range(500):
            with open(f"{folder}/{number:04}.mov", "wb"):
                pass
        self.start_vended()
        asking = self.ask(*[folder] * 33)
        with os.fdopen(asking.reading, "rb") as pipe:
            size = sum(len(line) for line in pipe)
        self.assertEqual(asking.answer(), (16_500, 16_500))
        self.assertGreater(size, 60_000_000)

    def test_lines_come_as_they_are_found(self):
        (clip,) = self.make_sony_card()
        slow = self.make_slow_tool(seconds=3)
        self.start_vended(tool=self.slow_tool)
        asking = self.ask(clip, slow)
        with os.fdopen(asking.reading, "rb") as pipe:
            self.assertEqual(json.loads(pipe.readline())["filePath"], clip)
            self.assertTrue(asking.thread.is_alive())  # the tool is still at it
            self.assertEqual(pipe.read(), b"")
        self.assertEqual(asking.answer(), (2, 1))


class Beside(Stream):
    def test_other_requests_are_served_meanwhile(self):
        (clip,) = self.make_sony_card()
        slow = self.make_slow_tool(seconds=3)
        self.start_vended(tool=self.slow_tool)
        asking = self.ask(slow)
        self.assertTrue(wait_until(self.tool_pids))
        self.assertEqual(len(self.clips(clip)), 1)
        self.assertEqual(self.lines(clip, client=self.new_client())[1], (1, 1))
        self.assertTrue(asking.thread.is_alive())
        self.assertEqual(asking.answer(), (1, 0))
        os.close(asking.reading)

    def test_as_many_streams_as_there_are_places(self):
        slow = self.make_slow_tool(seconds=3)
        self.start_vended(tool=self.slow_tool)
        asked = [self.ask(slow) for _ in range(8)]
        self.assertTrue(wait_until(lambda: len(self.tool_pids()) == 8))
        with self.assertRaises(GLib.Error) as raised:
            self.lines(slow)
        self.assertEqual(error_name(raised.exception),
                         "org.freedesktop.DBus.Error.LimitsExceeded")
        for asking in asked:
            self.assertEqual(asking.answer(), (1, 0))
            os.close(asking.reading)
        self.assertEqual(self.lines(), ([], (0, 0)))

    def test_progress_goes_to_the_caller(self):
        self.make_sony_card(30)
        self.start_vended()
        told = []
        loop = GLib.MainLoop()
        self.client.connection.signal_subscribe(
            self.name, STREAM, "Progress", ROOT_OBJECT, None, Gio.DBusSignalFlags.NONE,
            lambda *arguments: told.append(arguments[5].unpack()))
        options = {"id": GLib.Variant("u", 7), "progressInterval": GLib.Variant("u", 0)}
        asking = self.ask(self.path("card"), options=options)
        self.assertEqual(len(asking.read_lines()), 30)
        self.assertEqual(asking.answer(), (30, 30))
        GLib.timeout_add(300, loop.quit)
        loop.run()
        self.assertEqual(told, [(number, number, 7) for number in range(30)])


class Options(Stream):
    def refused(self, **options):
        asking = self.ask(self.path("card"), options=options)
        self.assertEqual(asking.read_lines(), [])
        with self.assertRaises(GLib.Error) as raised:
            asking.answer()
        self.assertEqual(error_name(raised.exception), "org.freedesktop.DBus.Error.InvalidArgs")
        return raised.exception.message

    def test_any_number_of_jobs_gives_the_same_lines(self):
        self.make_sony_card(40)
        for number in range(40):
            self.write(f"other/{number}.xyz", "no movie")
        self.write("other/a.mov")
        self.start_vended()
        places = (self.path("other"), self.path("card"))
        expected = self.lines(*places)
        self.assertEqual(expected[1], (81, 41))
        for jobs in (1, 2, 64):
            with self.subTest(jobs):
                self.assertEqual(
                    self.lines(*places, options={"jobs": GLib.Variant("u", jobs)}), expected)

    def test_as_many_tools_at_a_time_as_jobs(self):
        slow = self.make_slow_tool(seconds=100)
        self.start_vended(tool=self.slow_tool, jobs=1)
        self.ask(*[slow] * 20, options={"jobs": GLib.Variant("u", 7)}, client=self.new_client())
        self.assertTrue(wait_until(lambda: len(self.tool_pids()) == 7))
        time.sleep(0.3)
        self.assertEqual(len(self.tool_pids()), 7)

    def test_numbers_of_jobs_that_are_none_are_refused(self):
        self.make_sony_card()
        self.start_vended()
        for jobs in (0, 65, 0xFFFFFFFF):
            self.assertIn("jobs is no number from 1 to 64",
                          self.refused(jobs=GLib.Variant("u", jobs)))
        self.assertIn("jobs is not of type u", self.refused(jobs=GLib.Variant("i", 4)))

    def test_quick_spares_the_tool_files_without_video(self):
        tool = self.write("tool", executable=True, content=(
            "#!/bin/sh\n"
            f'echo "$2" >> {self.folder}/shown\n'
            "cat >&2 <<'END'\n"
            "Input #0, avi, from 'x':\n"
            "  Duration: 00:00:01.00, start: 0.000000, bitrate: 488 kb/s\n"
            "  Stream #0:0: Video: mpeg4, yuv420p, 64x48, 400 kb/s, 25 fps, 25 tbr, 25 tbn\n"
            "END\n"))
        for name in ("a.JPG", "b.xyz", "c.txt", "PRINT"):
            self.write(f"files/{name}", "x")
        self.start_vended(tool=tool)
        paths = {}
        for quick in (False, True):
            lines, _ = self.lines(self.path("files"), options={"quick": GLib.Variant("b", quick)})
            paths[quick] = [os.path.basename(line["filePath"]) for line in lines]
        self.assertEqual(paths[False], ["a.JPG", "b.xyz", "c.txt", "PRINT"])
        self.assertEqual(paths[True], ["b.xyz"])
        with open(self.path("shown"), encoding="utf-8") as file:
            self.assertEqual(len(file.readlines()), 5)

    def test_quick_is_a_boolean(self):
        self.make_sony_card()
        self.start_vended()
        self.assertIn("quick is not of type b", self.refused(quick=GLib.Variant("u", 1)))


class Readers(Stream):
    def test_reader_that_leaves_ends_its_own_request(self):
        clips = self.make_sony_card(50)
        service = self.start_vended()
        asking = self.ask(*clips * 100)
        os.close(asking.reading)
        with self.assertRaises(GLib.Error) as raised:
            asking.answer()
        self.assertEqual(error_name(raised.exception), "com.quillfen.Error.ReaderGone")
        self.assertEqual(self.process_identifier(), service.pid)

    def test_reader_that_takes_nothing_for_30_seconds_ends_its_own_request(self):
        clips = self.make_sony_card(50)
        service = self.start_vended()
        begin = time.monotonic()
        asking = self.ask(*clips * 100)
        other, answer = self.lines(clips[0], client=self.new_client())
        self.assertEqual((len(other), answer), (1, (1, 1)))
        with self.assertRaises(GLib.Error) as raised:
            asking.answer()
        self.assertEqual(error_name(raised.exception), "com.quillfen.Error.ReaderStalled")
        self.assertGreater(time.monotonic() - begin, 29)
        os.close(asking.reading)
        self.assertEqual(self.process_identifier(), service.pid)

    def test_client_that_is_killed_ends_its_tool(self):
        slow = self.make_slow_tool(seconds=100)
        service = self.start_vended(tool=self.slow_tool, jobs=1)
        asking = self.start([sys.executable, "-c", ASK, self.address, self.name, slow, slow],
                            stdout=subprocess.PIPE)
        self.assertEqual(asking.stdout.readline(), b"asked\n")
        self.assertTrue(wait_until(self.tool_pids))
        asking.kill()
        self.assertTrue(wait_until(lambda: not is_running(self.tool_pids()[0])))
        self.assertEqual(self.process_identifier(), service.pid)
        self.assertTrue(wait_until(lambda: len(os.listdir(f"/proc/{service.pid}/task")) <= 5))
        self.assertEqual(len(self.tool_pids()), 1)

    def test_client_that_is_killed_ends_all_tools_of_its_stream(self):
        slow = self.make_slow_tool(seconds=100)
        (clip,) = self.make_sony_card()
        service = self.start_vended(tool=self.slow_tool, jobs=5)
        self.assertEqual(len(self.lines(clip)[0]), 1)
        self.assertTrue(wait_until(lambda: self.resources_of(service)[0] <= 5))
        before = self.resources_of(service)
        asking = self.start([sys.executable, "-c", ASK, self.address, self.name, *[slow] * 40],
                            stdout=subprocess.PIPE)
        self.assertEqual(asking.stdout.readline(), b"asked\n")
        self.assertTrue(wait_until(lambda: len(self.tool_pids()) == 5))
        asking.kill()
        self.assertTrue(wait_until(lambda: not any(map(is_running, self.tool_pids()))))
        self.assertTrue(wait_until(lambda: self.resources_of(service) <= before))
        self.assertEqual(len(self.tool_pids()), 5)
        self.assertEqual(self.process_identifier(), service.pid)

    def test_reader_that_leaves_ends_the_tools_under_way(self):
        slow = self.make_slow_tool(seconds=100)
        clips = self.make_sony_card(50)
        service = self.start_vended(tool=self.slow_tool, jobs=16)
        # More lines than a pipe holds, fewer than workers run ahead.
        asking = self.ask(*clips * 18, slow, client=self.new_client())
        self.assertTrue(wait_until(self.tool_pids))
        os.close(asking.reading)
        with self.assertRaises(GLib.Error) as raised:
            asking.answer()
        self.assertEqual(error_name(raised.exception), "com.quillfen.Error.ReaderGone")
        self.assertTrue(wait_until(lambda: not any(map(is_running, self.tool_pids()))))
        self.assertEqual(self.process_identifier(), service.pid)

    def test_call_without_a_descriptor_is_refused(self):
        service = self.start_vended()
        arguments = GLib.Variant("(aaya{sv}h)", ([], {}, 0))
        with self.assertRaises(GLib.Error) as raised:
            self.client.call(self.name, STREAM, MEMBER, arguments)
        self.assertEqual(error_name(raised.exception), "org.freedesktop.DBus.Error.InvalidArgs")
        self.assertEqual(self.process_identifier(), service.pid)

    def test_quit_ends_streams(self):
        slow = self.make_slow_tool(seconds=100)
        service = self.start_vended(tool=self.slow_tool)
        asking = self.ask(slow, limit=NO_LIMIT)
        self.assertTrue(wait_until(self.tool_pids))
        other = Client(self.address)
        other.call(self.name, COMMUNICATION, "killSelf")
        other.close()
        self.assert_ends(service)
        self.assertEqual(asking.read_lines(), [])
        self.assertTrue(wait_until(lambda: not is_running(self.tool_pids()[0])))


if __name__ == "__main__":
    unittest.main()
