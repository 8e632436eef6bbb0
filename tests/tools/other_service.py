"""Owns the name of a connection on the session bus, and has no object there."""

from gi.repository import Gio, GLib

Gio.bus_own_name(Gio.BusType.SESSION, "com.quillfen.connection.Other", Gio.BusNameOwnerFlags.NONE,
                 None, None, None)
GLib.MainLoop().run()
