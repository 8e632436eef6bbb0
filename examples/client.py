#!/usr/bin/env python3
"""Asks a running service which files are clips.

    client.py NAME PATH...

NAME is the connection name that the service was started with. Needs python3-gi and a session bus.
"""

import hashlib
import os
import sys

from gi.repository import Gio, GLib

ROOT_OBJECT = "/com/quillfen/RootObject"
MATCHER = "com.quillfen.QRXHDFileMatcherProtocol"
NO_LIMIT = GLib.MAXINT  # a large folder takes its time
LONGEST_BUS_NAME = 255


def bus_name(connection_name):
    """A well-known bus name stands for itself; any other text is written as one."""
    if (Gio.dbus_is_name(connection_name) and not connection_name.startswith(":")
            and connection_name != "org.freedesktop.DBus"):
        return connection_name
    prefix = "com.quillfen.connection.n"
    text = os.fsencode(connection_name)
    name = prefix + "".join(
        chr(byte) if chr(byte).isascii() and chr(byte).isalnum() else f"_{byte:02x}"
        for byte in text)
    return name if len(name) <= LONGEST_BUS_NAME else prefix + hashlib.sha256(text).hexdigest()


def clips(connection_name, locations):
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    answer = bus.call_sync(
        bus_name(connection_name), ROOT_OBJECT, MATCHER,
        "filePathDictionariesForAllHDFilesAtFileSystemLocations",
        GLib.Variant("(as)", (locations,)), GLib.VariantType("(aa{sv})"),
        Gio.DBusCallFlags.NO_AUTO_START, NO_LIMIT)
    return answer.unpack()[0]


def text_of(path):
    """A path comes as text, or as bytes where its name is not UTF-8."""
    return path if isinstance(path, str) else os.fsdecode(bytes(path))


def main():
    if len(sys.argv) < 3:
        print(f"usage: {sys.argv[0]} NAME PATH...", file=sys.stderr)
        return 2
    try:
        found = clips(sys.argv[1], [os.path.abspath(path) for path in sys.argv[2:]])
    except GLib.Error as error:
        print(error.message, file=sys.stderr)
        return 1
    except UnicodeEncodeError:
        print("a name that is not UTF-8 cannot be asked for here", file=sys.stderr)
        return 1
    for clip in found:
        line = f"{clip['volumeTitle']}\t{'qt' if clip['qt'] else '-'}\t{text_of(clip['filePath'])}"
        sys.stdout.buffer.write(os.fsencode(line) + b"\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
