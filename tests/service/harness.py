"""What the tests of the service share: a bus of their own, hosts, the service, a client.

The environment says where things are: QRX_SERVICE_BUNDLE, QRX_TOOL, QRX_EXAMPLE_HOST.
"""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from gi.repository import Gio, GLib

BUNDLE = os.environ["QRX_SERVICE_BUNDLE"]
PROGRAM = os.path.join(BUNDLE, "Contents/MacOS/QRXHDFileMatcher")
SOURCES = pathlib.Path(__file__).resolve().parents[2]

ROOT_OBJECT = "/com/quillfen/RootObject"
MATCHER = "com.quillfen.QRXHDFileMatcherProtocol"
COMMUNICATION = "com.quillfen.QRXDistributedAppCommunicationProtocol"
LAUNCHER = "com.quillfen.QRXApplicationLauncherProtocol"
STREAM = "com.quillfen.QRXHDFileMatcherStream"
ASK_FOR_CLIPS = "filePathDictionariesForAllHDFilesAtFileSystemLocations"
MARK = "QRXDistributedParentMustNotBeSelfArgument"

SECONDS = 1000  # of Gio's milliseconds
NO_LIMIT = GLib.MAXINT

CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
</busconfig>
"""


def bus_name(connection_name):
    """Written anew, so that the service's own rule is held against it. Short names only."""
    escaped = "".join(
        chr(byte) if chr(byte).isascii() and chr(byte).isalnum() else f"_{byte:02x}"
        for byte in os.fsencode(connection_name))
    return "com.quillfen.connection.n" + escaped


def wait_until(condition, seconds=20):
    """Whether `condition` came true in time."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.01)
    return condition()


def is_running(pid):
    """Whether there is such a process, and it has not ended."""
    try:
        status = pathlib.Path(f"/proc/{pid}/status").read_text(encoding="utf-8", errors="replace")
    except (FileNotFoundError, ProcessLookupError):
        return False
    state = next(line for line in status.splitlines() if line.startswith("State:"))
    return state.split()[1] not in "ZX"


class Client:
    """A connection to the bus, as a foreign program makes it."""

    def __init__(self, address):
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def close(self):
        if not self.connection.is_closed():
            self.connection.close_sync(None)

    def call(self, destination, interface, member, arguments=None, limit=20 * SECONDS):
        """The results as Python values."""
        return self.connection.call_sync(destination, ROOT_OBJECT, interface, member, arguments,
                                         None, Gio.DBusCallFlags.NO_AUTO_START, limit,
                                         None).unpack()

    def ask_bus(self, member, arguments):
        return self.connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                         "org.freedesktop.DBus", member, arguments, None,
                                         Gio.DBusCallFlags.NONE, 20 * SECONDS, None).unpack()

    def has_owner(self, name):
        return self.ask_bus("NameHasOwner", GLib.Variant("(s)", (name,)))[0]


def error_name(error):
    return Gio.DBusError.get_remote_error(error) or ""


class ServiceTest(unittest.TestCase):
    """Every test has a folder, a bus, and a host unless it says otherwise."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="qrx-service-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.mkdir(self.path("services"))
        self.write("bus.conf", CONFIGURATION.format(folder=self.folder))
        self.bus = self.start(
            ["dbus-daemon", "--config-file=" + self.path("bus.conf"), "--nofork", "--nopidfile",
             "--print-address=1"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.address = self.bus.stdout.readline().decode().strip()
        self.assertTrue(self.address, "dbus-daemon did not start")
        self.client = self.new_client()

    # Files.

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, content="", executable=False):
        full = self.path(name)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(content)
        if executable:
            os.chmod(full, 0o755)
        return full

    def make_sony_card(self, clips=1, name="card"):
        """Paths of the clips on a card that is told by its layout alone."""
        return [self.write(f"{name}/AVCHD/BDMV/STREAM/{number:05}.MTS")
                for number in range(clips)]

    def make_slow_tool(self, seconds=30):
        """An ffmpeg that takes its time over a file that nobody else claims; gives that file."""
        self.slow_tool = self.write("slow-ffmpeg", executable=True, content=(
            "#!/bin/sh\n"
            f"echo $$ >> {self.folder}/tool-pids\n"
            f"exec sleep {seconds}\n"))
        return self.write("slow/clip.xyz", "not a movie")

    @staticmethod
    def resources_of(service):
        """Its threads, and its open descriptors."""
        return tuple(len(os.listdir(f"/proc/{service.pid}/{kind}")) for kind in ("task", "fd"))

    def tool_pids(self):
        try:
            with open(self.path("tool-pids"), encoding="utf-8") as file:
                return [int(line) for line in file if line.endswith("\n")]
        except FileNotFoundError:
            return []

    # Processes.

    def start(self, arguments, **options):
        process = subprocess.Popen(arguments, **options)
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            process.kill()
        process.wait()
        for pipe in (process.stdin, process.stdout, process.stderr):
            if pipe is not None:
                pipe.close()

    def start_host(self, name="Quillfen"):
        """A process whose display name is `name`."""
        program = self.path(name)
        if not os.path.exists(program):
            shutil.copy("/bin/sleep", program)
        return self.start([program, "1000"])

    def environment(self, **more):
        own = {"DBUS_SESSION_BUS_ADDRESS": self.address, "QRX_FFMPEG": "/nowhere/ffmpeg"}
        return {**os.environ, **own, **more}

    def start_service(self, *arguments, tool=None, jobs=None, **options):
        """Not waited for; a `tool` takes the place of ffmpeg, `jobs` is said in QRX_JOBS."""
        more = {"QRX_FFMPEG": tool} if tool else {}
        if jobs is not None:
            more["QRX_JOBS"] = str(jobs)
        return self.start([PROGRAM, *arguments], env=self.environment(**more), **options)

    def start_vended(self, name="Cards", *arguments, tool=None, jobs=None, **options):
        """With a host, and once it serves."""
        self.host = self.start_host()
        service = self.start_service(name, *arguments, tool=tool, jobs=jobs, **options)
        self.name = bus_name(name)
        self.assertTrue(wait_until(lambda: self.client.has_owner(self.name)),
                        "the service took no name")
        return service

    def assert_ends(self, process, status=0, seconds=20):
        try:
            self.assertEqual(process.wait(seconds), status)
        except subprocess.TimeoutExpired:
            self.fail(f"the process still runs after {seconds} s")

    # Calls.

    def new_client(self):
        client = Client(self.address)
        self.addCleanup(client.close)
        return client

    def call(self, interface, member, signature="()", *values, limit=20 * SECONDS):
        return self.client.call(self.name, interface, member, GLib.Variant(signature, values),
                                limit)

    def clips(self, *locations, limit=60 * SECONDS):
        return self.call(MATCHER, ASK_FOR_CLIPS, "(as)", list(locations), limit=limit)[0]

    def process_identifier(self):
        return self.call(COMMUNICATION, "distributedProcessIdentifier")[0]

    def error_of(self, interface, member, signature="()", *values, limit=20 * SECONDS):
        """Name of the error that a call ends with."""
        with self.assertRaises(GLib.Error) as raised:
            self.call(interface, member, signature, *values, limit=limit)
        return error_name(raised.exception)


def send_signal(process, number=signal.SIGKILL):
    process.send_signal(number)
    process.wait()
