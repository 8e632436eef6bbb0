#!/usr/bin/env python3
"""How soon the service serves, how fast it answers, and what it takes to wait.

    benchmarks/service_start.py build/release [--runs N] [--requests N]

Starts the service on a bus of its own, with a host beside it, and prints medians of: start to
name owned, one request without locations, and resident memory after those requests. Exit status 1
when they are over 100 ms, 2 ms or 40 MB, or an answer is not the empty list. Needs dbus-daemon and
python3-gi.
"""

import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from gi.repository import Gio, GLib

BUS = "org.freedesktop.DBus"
NAME = "com.quillfen.Benchmark"
LONGEST_WAIT = 10  # seconds
ALLOWED_START, ALLOWED_REQUEST, ALLOWED_KILOBYTES = 0.100, 0.002, 40_000


class PrivateBus:
    def __init__(self, folder):
        address = f"unix:path={folder}/bus"
        self.process = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
             f"--address={address}"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.address = self.process.stdout.readline().decode().strip()
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self.connection = Gio.DBusConnection.new_for_address_sync(self.address, flags, None, None)

    def is_owned(self):
        return self.connection.call_sync(
            BUS, "/org/freedesktop/DBus", BUS, "NameHasOwner", GLib.Variant("(s)", (NAME,)), None,
            Gio.DBusCallFlags.NONE, -1).unpack()[0]

    def ask_for_nothing(self):
        """Seconds of one request."""
        begun = time.perf_counter()
        answer = self.connection.call_sync(
            NAME, "/com/quillfen/RootObject", "com.quillfen.QRXHDFileMatcherProtocol",
            "filePathDictionariesForAllHDFilesAtFileSystemLocations", GLib.Variant("(as)", ([],)),
            None, Gio.DBusCallFlags.NO_AUTO_START, -1)
        seconds = time.perf_counter() - begun
        if answer.unpack() != ([],):
            sys.exit(f"a request without locations got {answer.print_(True)}")
        return seconds


def resident_kilobytes(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1])
    sys.exit(f"process {pid} tells no resident memory")


def wait_for(condition, what):
    end = time.perf_counter() + LONGEST_WAIT
    while not condition():
        if time.perf_counter() > end:
            sys.exit(f"not within {LONGEST_WAIT} s: {what}")
        time.sleep(0.0005)


def measure(program, bus, requests):
    """Start, median request, memory of one life of the service."""
    environment = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": bus.address}
    begun = time.perf_counter()
    service = subprocess.Popen([program, NAME], env=environment)
    try:
        wait_for(bus.is_owned, "the service's name")
        start = time.perf_counter() - begun
        answers = [bus.ask_for_nothing() for _ in range(requests)]
        kilobytes = resident_kilobytes(service.pid)
    finally:
        service.terminate()
        status = service.wait(LONGEST_WAIT)
    if status != 0:
        sys.exit(f"the service ended with status {status}")
    wait_for(lambda: not bus.is_owned(), "the end of the service's name")
    return start, statistics.median(answers), kilobytes


def report(figures):
    starts, requests, kilobytes = zip(*figures)
    rows = (("start to name owned", statistics.median(starts), ALLOWED_START, 1e3, "ms"),
            ("empty request", statistics.median(requests), ALLOWED_REQUEST, 1e3, "ms"),
            ("resident memory", statistics.median(kilobytes), ALLOWED_KILOBYTES, 1e-3, "MB"))
    for what, value, allowed, scale, unit in rows:
        print(f"{what:<20} {value * scale:8.2f} {unit}  (at most {allowed * scale:.0f})")
    return all(value <= allowed for _, value, allowed, _, _ in rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path, help="build folder with the bundle")
    parser.add_argument("--runs", type=int, default=15)
    parser.add_argument("--requests", type=int, default=500)
    given = parser.parse_args()
    program = given.build / "QRXHDFileMatcher.app/Contents/MacOS/QRXHDFileMatcher"

    with tempfile.TemporaryDirectory(prefix="qrx-service-start-") as folder:
        shutil.copy("/bin/sleep", f"{folder}/QuillfenBenchmark")  # without a host it would end
        host = subprocess.Popen([f"{folder}/QuillfenBenchmark", "1000"])
        bus = PrivateBus(folder)
        try:
            figures = [measure(program, bus, given.requests) for _ in range(given.runs + 1)]
        finally:
            for process in (host, bus.process):
                process.kill()
                process.wait()
    return 0 if report(figures[1:]) else 1  # the first run warms the file cache


if __name__ == "__main__":
    sys.exit(main())
