#!/usr/bin/python3
"""A stand-in screen saver service on a private session bus.

It owns --name (org.freedesktop.ScreenSaver by default) and emits
ActiveChanged(b) on --interface from --path when the test calls
test.FakeScreenSaver.Control.EmitActiveChanged on that path.
"""
import argparse
import os

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

CONTROL = "test.FakeScreenSaver.Control"


def make_saver_class(interface):
    class Saver(dbus.service.Object):
        def __init__(self, bus, path):
            super().__init__(bus, path)
            self.active = False

        @dbus.service.signal(interface, signature="b")
        def ActiveChanged(self, active):
            pass

        @dbus.service.method(interface, out_signature="b")
        def GetActive(self):
            return self.active

        @dbus.service.method(CONTROL, in_signature="b")
        def EmitActiveChanged(self, active):
            self.active = bool(active)
            self.ActiveChanged(active)

    return Saver


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--name", default="org.freedesktop.ScreenSaver")
    parser.add_argument("--path", default="/org/freedesktop/ScreenSaver")
    parser.add_argument("--interface", default="org.freedesktop.ScreenSaver")
    options = parser.parse_args()

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
    saver = make_saver_class(options.interface)(bus, options.path)
    name = dbus.service.BusName(options.name, bus, do_not_queue=True)
    GLib.MainLoop().run()
    del name, saver


if __name__ == "__main__":
    main()
