#!/usr/bin/env python3
"""A small stand-in for the desktop's keeper of drives, on a private bus of its own.

usage: udisks_stand_in.py FOLDER

Writes the bus's address to FOLDER/address, a line per call to FOLDER/calls, and ends when
FOLDER/stop appears, FOLDER is gone, or after a minute. It knows one device, /dev/sdb1; a label
"refuse" is refused.
"""

import os
import subprocess
import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

FOLDER = sys.argv[1]
INTERFACES = """
<node>
  <interface name="org.freedesktop.UDisks2.Manager">
    <method name="ResolveDevice">
      <arg type="a{sv}" direction="in"/><arg type="a{sv}" direction="in"/>
      <arg type="ao" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.UDisks2.Block"><property name="Drive" type="o" access="read"/></interface>
  <interface name="org.freedesktop.UDisks2.Filesystem">
    <method name="Unmount"><arg type="a{sv}" direction="in"/></method>
    <method name="SetLabel"><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/></method>
  </interface>
  <interface name="org.freedesktop.UDisks2.Drive">
    <method name="Eject"><arg type="a{sv}" direction="in"/></method>
  </interface>
</node>
"""
ROOT = "/org/freedesktop/UDisks2"
OBJECTS = {
    ROOT + "/Manager": ["Manager"],
    ROOT + "/block_devices/sdb1": ["Block", "Filesystem"],
    ROOT + "/drives/Reader": ["Drive"],
}


def note(text):
    with open(os.path.join(FOLDER, "calls"), "a", encoding="utf-8") as calls:
        calls.write(text + "\n")


def called(_bus, _sender, path, _interface, method, arguments, invocation):
    values = arguments.unpack()
    if method == "ResolveDevice":
        known = values[0].get("path") == "/dev/sdb1"
        found = [ROOT + "/block_devices/sdb1"] if known else []
        invocation.return_value(GLib.Variant("(ao)", (found,)))
        return
    note(" ".join([os.path.basename(path), method] + [v for v in values if isinstance(v, str)]))
    if method == "SetLabel" and values[0] == "refuse":
        invocation.return_dbus_error("org.freedesktop.UDisks2.Error.Failed", "not today")
    else:
        invocation.return_value(None)


def main():
    daemon = subprocess.Popen(
        ["dbus-daemon", "--session", "--nofork", "--print-address=1",
         "--address=unix:dir=" + FOLDER],
        stdout=subprocess.PIPE, text=True,
    )
    try:
        address = daemon.stdout.readline().strip()
        bus = Gio.DBusConnection.new_for_address_sync(
            address,
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
            None, None,
        )
        known = Gio.DBusNodeInfo.new_for_xml(INTERFACES)
        drive = GLib.Variant("o", ROOT + "/drives/Reader")
        for path, names in OBJECTS.items():
            for name in names:
                bus.register_object(
                    path, known.lookup_interface("org.freedesktop.UDisks2." + name), called,
                    lambda *_: drive, None,
                )
        loop = GLib.MainLoop()

        def owned(*_):
            partial = os.path.join(FOLDER, "address.partial")
            with open(partial, "w", encoding="utf-8") as out:
                out.write(address)
            os.rename(partial, os.path.join(FOLDER, "address"))

        Gio.bus_own_name_on_connection(
            bus, "org.freedesktop.UDisks2", Gio.BusNameOwnerFlags.NONE, owned, None
        )

        def look():
            if not os.path.isdir(FOLDER) or os.path.exists(os.path.join(FOLDER, "stop")):
                loop.quit()
            return True

        GLib.timeout_add(50, look)
        GLib.timeout_add_seconds(60, loop.quit)
        loop.run()
    finally:
        daemon.terminate()
        daemon.wait()


main()
