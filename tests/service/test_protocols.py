"""Every method, asked by foreign clients, and calls that are not as they should be."""

import os
import subprocess
import unittest
import xml.etree.ElementTree

from gi.repository import Gio, GLib

from harness import (ASK_FOR_CLIPS, BUNDLE, COMMUNICATION, LAUNCHER, MATCHER, ROOT_OBJECT, SECONDS,
                     SOURCES, STREAM, ServiceTest, bus_name, is_running, wait_until)

OWN_PREFIX = "com.quillfen."


class MethodsByPython(ServiceTest):
    def setUp(self):
        super().setUp()
        self.service = self.start_vended()

    def test_clips_of_a_folder_and_of_a_file(self):
        first, second = self.make_sony_card(2)
        self.write("card/notes.txt")
        expected = [{"filePath": path, "volumeTitle": "Sony NXCAM AVCHD", "qt": False}
                    for path in (first, second)]
        self.assertEqual(self.clips(self.path("card")), expected)
        self.assertEqual(self.clips(second, self.path("missing"), self.path("card")),
                         [expected[1], *expected])

    def test_no_locations_and_locations_without_clips_give_an_empty_list(self):
        self.assertEqual(self.clips(), [])
        self.assertEqual(self.clips("", self.path("missing"), self.write("notes.txt")), [])

    def test_types_of_a_path_dictionary(self):
        self.make_sony_card()
        answer = self.client.connection.call_sync(
            self.name, ROOT_OBJECT, MATCHER, ASK_FOR_CLIPS,
            GLib.Variant("(as)", ([self.path("card")],)), None, Gio.DBusCallFlags.NONE,
            20 * SECONDS, None)
        self.assertEqual(answer.get_type_string(), "(aa{sv})")
        clip = answer.get_child_value(0).get_child_value(0)
        kinds = {clip.get_child_value(i).get_child_value(0).get_string():
                 clip.get_child_value(i).get_child_value(1).get_variant().get_type_string()
                 for i in range(clip.n_children())}
        self.assertEqual(kinds, {"filePath": "s", "volumeTitle": "s", "qt": "b"})

    def test_name_that_is_not_utf8_comes_as_bytes(self):
        folder = os.fsencode(self.path("odd"))
        os.mkdir(folder)
        odd = os.path.join(folder, b"\xff\xfe.mov")
        with open(odd, "wb"):
            pass
        clips = self.clips(self.path("odd"))
        self.assertEqual(len(clips), 1)
        self.assertEqual(bytes(clips[0]["filePath"]), odd)

    def test_file_path_is_quick_time(self):
        self.assertEqual(self.call(MATCHER, "filePathIsQuickTime", "(s)", self.write("a.mov", "x")),
                         (False,))
        self.assertEqual(self.call(MATCHER, "filePathIsQuickTime", "(s)", ""), (False,))
        os.mkfifo(self.path("pipe.mov"))
        self.assertEqual(self.call(MATCHER, "filePathIsQuickTime", "(s)", self.path("pipe.mov")),
                         (False,))

    def test_process_identifier(self):
        self.assertEqual(self.process_identifier(), self.service.pid)

    def test_lock(self):
        self.assertEqual(self.call(COMMUNICATION, "communicationLocked"), (False,))
        self.assertEqual(self.call(COMMUNICATION, "lockCommunication"), ())
        self.assertEqual(self.call(COMMUNICATION, "communicationLocked"), (True,))
        self.assertEqual(self.call(COMMUNICATION, "lockCommunication"), ())
        self.assertEqual(self.call(COMMUNICATION, "communicationLocked"), (True,))

    def test_kill_self_answers_and_ends(self):
        self.assertEqual(self.call(COMMUNICATION, "killSelf"), ())
        self.assert_ends(self.service)
        self.assertFalse(self.client.has_owner(self.name))

    def test_vending_under_a_further_name(self):
        self.assertEqual(self.call(COMMUNICATION, "vendAsDistributedObjectWithRegisteredName",
                                   "(s)", "Second"), ())
        self.assertTrue(self.client.has_owner(bus_name("Second")))
        self.assertTrue(self.client.has_owner(self.name))
        self.assertEqual(self.process_identifier(), self.service.pid)

    def test_kept_vending_again_under_the_own_name_ends(self):
        self.error_of(COMMUNICATION, "vendAsDistributedObject")
        self.assert_ends(self.service)

    def test_vending_under_no_name_ends(self):
        self.error_of(COMMUNICATION, "vendAsDistributedObjectWithRegisteredName", "(s)", "")
        self.assert_ends(self.service)

    def test_own_identifier_as_parent_keeps_it_alive(self):
        self.assertEqual(self.call(COMMUNICATION, "setParentProcessId", "(i)", self.service.pid),
                         ())
        self.assertEqual(self.process_identifier(), self.service.pid)

    def test_what_never_returns_never_answers_and_keeps_nobody_waiting(self):
        for member in ("ensureParentApplicationIsRunning", "configureKillTimer"):
            with self.subTest(member):
                with self.assertRaises(GLib.Error) as raised:
                    self.call(COMMUNICATION, member, limit=SECONDS // 2)
                self.assertTrue(raised.exception.matches(Gio.io_error_quark(),
                                                         Gio.IOErrorEnum.TIMED_OUT))
                self.assertEqual(self.clips(), [])
                self.assertEqual(self.process_identifier(), self.service.pid)

    def test_launching_a_further_service(self):
        answer = self.call(LAUNCHER, "launchDistributedApplicationAtPath", "(ss)", BUNDLE, "Child")
        self.assertEqual(answer, (True, bus_name("Child"), ROOT_OBJECT))
        child = self.client.call(bus_name("Child"), COMMUNICATION,
                                 "distributedProcessIdentifier")[0]
        self.assertNotEqual(child, self.service.pid)
        self.assertTrue(is_running(child))
        self.client.call(bus_name("Child"), COMMUNICATION, "killSelf")
        self.assertTrue(wait_until(lambda: not os.path.exists(f"/proc/{child}")), "not reaped")

    def test_launching_with_the_mark(self):
        member = "launchDistributedApplicationAtPathWithRegisteredNameParentAppCantBeSelf"
        answer = self.call(LAUNCHER, member, "(ssb)", BUNDLE, "Child", True)
        self.assertEqual(answer, (True, bus_name("Child"), ROOT_OBJECT))
        self.client.call(bus_name("Child"), COMMUNICATION, "killSelf")

    def test_launching_what_is_not_there(self):
        answer = self.call(LAUNCHER, "launchDistributedApplicationAtPath", "(ss)",
                           self.path("Missing.app"), "Missing")
        self.assertEqual(answer, (False, "", "/"))
        self.assertEqual(self.clips(), [])


class MethodsByCommandLine(ServiceTest):
    """The same by gdbus and busctl, which know nothing of the service but what it tells."""

    def setUp(self):
        super().setUp()
        self.service = self.start_vended()

    def run_tool(self, *arguments):
        done = subprocess.run(arguments, env=self.environment(), capture_output=True, text=True,
                              timeout=60, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.strip()

    def gdbus(self, member, *arguments):
        return self.run_tool("gdbus", "call", "--session", "--dest", self.name, "--object-path",
                             ROOT_OBJECT, "--method", member, *arguments)

    def test_by_gdbus(self):
        (clip,) = self.make_sony_card()
        self.assertEqual(
            self.gdbus(f"{MATCHER}.{ASK_FOR_CLIPS}", f"['{self.path('card')}']"),
            f"([{{'filePath': <'{clip}'>, 'volumeTitle': <'Sony NXCAM AVCHD'>, 'qt': <false>}}],)")
        self.assertEqual(self.gdbus(f"{MATCHER}.{ASK_FOR_CLIPS}", "[]"), "(@aa{sv} [],)")
        self.assertEqual(self.gdbus(f"{MATCHER}.filePathIsQuickTime", clip), "(false,)")
        self.assertEqual(self.gdbus(f"{COMMUNICATION}.distributedProcessIdentifier"),
                         f"({self.service.pid},)")
        self.assertEqual(self.gdbus(f"{COMMUNICATION}.communicationLocked"), "(false,)")
        self.assertEqual(self.gdbus(f"{COMMUNICATION}.lockCommunication"), "()")
        self.assertEqual(self.gdbus(f"{COMMUNICATION}.setParentProcessId", str(os.getpid())), "()")
        self.assertEqual(
            self.gdbus(f"{LAUNCHER}.launchDistributedApplicationAtPath", "/nowhere.app", "X"),
            "(false, '', objectpath '/')")
        self.assertEqual(self.gdbus(f"{COMMUNICATION}.killSelf"), "()")
        self.assert_ends(self.service)

    def test_by_busctl(self):
        answer = self.run_tool("busctl", f"--address={self.address}", "call", self.name,
                               ROOT_OBJECT, COMMUNICATION, "distributedProcessIdentifier")
        self.assertEqual(answer, f"i {self.service.pid}")


class Introspection(ServiceTest):
    def setUp(self):
        super().setUp()
        self.start_vended()
        text = self.call("org.freedesktop.DBus.Introspectable", "Introspect")[0]
        self.node = xml.etree.ElementTree.fromstring(text)

    @staticmethod
    def shape(interface):
        """Members with the names and types of what goes in and out."""
        members = {}
        for member in interface:
            if member.tag not in ("method", "signal"):
                continue
            arguments = [(one.get("name"), one.get("type"), one.get("direction"))
                         for one in member.iter("arg")]
            marks = [one.get("name") for one in member.iter("annotation")]
            members[member.get("name")] = (member.tag, arguments, marks)
        return members

    def told(self):
        return {one.get("name"): self.shape(one) for one in self.node.iter("interface")
                if one.get("name").startswith(OWN_PREFIX)}

    def test_tells_what_is_installed(self):
        installed = {}
        for path in sorted(SOURCES.glob("src/*/interfaces/*.xml")):
            root = xml.etree.ElementTree.parse(path).getroot()
            for interface in root.iter("interface"):
                self.assertEqual(path.stem, interface.get("name"))
                installed[interface.get("name")] = self.shape(interface)
        self.assertEqual(self.told(), installed)
        self.assertEqual(set(installed), {MATCHER, COMMUNICATION, LAUNCHER, STREAM})

    def test_no_member_occurs_twice(self):
        members = [member for interface in self.told().values() for member in interface]
        self.assertEqual(len(members), len(set(members)))
        self.assertEqual(len(members), 15)

    def test_what_never_answers_is_marked(self):
        marked = [member for member, (_, _, marks) in self.told()[COMMUNICATION].items()
                  if "org.freedesktop.DBus.Method.NoReply" in marks]
        self.assertEqual(marked, ["ensureParentApplicationIsRunning", "configureKillTimer"])


class MalformedCalls(ServiceTest):
    INVALID = "org.freedesktop.DBus.Error.InvalidArgs"
    UNKNOWN = "org.freedesktop.DBus.Error.UnknownMethod"

    def setUp(self):
        super().setUp()
        self.service = self.start_vended()

    def tearDown(self):
        self.assertEqual(self.process_identifier(), self.service.pid)
        self.assertEqual(self.call(COMMUNICATION, "communicationLocked"), (False,))

    def test_wrong_types(self):
        for signature, values in (("(s)", ("/tmp",)), ("(aay)", ([],)), ("(ass)", ([], "")),
                                  ("()", ()), ("(i)", (1,)), ("(av)", ([],))):
            with self.subTest(signature):
                self.assertEqual(self.error_of(MATCHER, ASK_FOR_CLIPS, signature, *values),
                                 self.INVALID)
        self.assertEqual(self.error_of(COMMUNICATION, "setParentProcessId", "(u)", 1), self.INVALID)
        self.assertEqual(self.error_of(COMMUNICATION, "lockCommunication", "(b)", True),
                         self.INVALID)
        self.assertEqual(self.error_of(COMMUNICATION, "killSelf", "(s)", "now"), self.INVALID)

    def test_unknown_members_interfaces_and_objects(self):
        self.assertEqual(self.error_of(MATCHER, "notThere"), self.UNKNOWN)
        self.assertEqual(self.error_of("com.quillfen.NotThere", "killSelf"), self.UNKNOWN)
        self.assertEqual(self.error_of(MATCHER, "killSelf"), self.UNKNOWN)
        with self.assertRaises(GLib.Error):
            self.client.connection.call_sync(self.name, "/elsewhere", COMMUNICATION, "killSelf",
                                             None, None, Gio.DBusCallFlags.NONE, 5 * SECONDS, None)

    def test_methods_without_a_protocol_are_not_exported(self):
        for member in ("autoTest", "filePathMatchesADefinedVolume", "ensureValidAppIsRunning",
                       "launchApplicationAtPath"):
            with self.subTest(member):
                self.assertEqual(self.error_of(MATCHER, member), self.UNKNOWN)

    def test_interface_may_be_left_out(self):
        message = Gio.DBusMessage.new_method_call(self.name, ROOT_OBJECT, None,
                                                  "distributedProcessIdentifier")
        reply, _ = self.client.connection.send_message_with_reply_sync(
            message, Gio.DBusSendMessageFlags.NONE, 5 * SECONDS, None)
        self.assertEqual(reply.get_body().unpack(), (self.service.pid,))


if __name__ == "__main__":
    unittest.main()
