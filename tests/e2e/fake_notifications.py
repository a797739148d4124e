#!/usr/bin/python3
"""A stand-in notification server on a private session bus.

It owns org.freedesktop.Notifications and appends each Notify call to the
file given with --record, one JSON object a line.
"""
import argparse
import json
import os

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

SERVICE = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"
INTERFACE = "org.freedesktop.Notifications"


class Server(dbus.service.Object):
    def __init__(self, bus, record):
        super().__init__(bus, PATH)
        self.record = record
        self.last_id = 0

    @dbus.service.method(INTERFACE, in_signature="susssasa{sv}i", out_signature="u")
    def Notify(self, app_name, replaces_id, app_icon, summary, body, actions, hints, timeout):
        self.last_id += 1
        with open(self.record, "a", encoding="utf-8") as out:
            out.write(json.dumps({"appName": str(app_name), "replacesId": int(replaces_id),
                                  "summary": str(summary), "body": str(body),
                                  "expireTimeout": int(timeout)}, ensure_ascii=False) + "\n")
        return dbus.UInt32(self.last_id)

    @dbus.service.method(INTERFACE, out_signature="ssss")
    def GetServerInformation(self):
        return "fake-notifications", "test", "1", "1.2"

    @dbus.service.method(INTERFACE, out_signature="as")
    def GetCapabilities(self):
        return dbus.Array(["body"], signature="s")

    @dbus.service.method(INTERFACE, in_signature="u")
    def CloseNotification(self, notification_id):
        pass


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--record", required=True)
    options = parser.parse_args()

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
    server = Server(bus, options.record)
    name = dbus.service.BusName(SERVICE, bus, do_not_queue=True)
    GLib.MainLoop().run()
    del name, server


if __name__ == "__main__":
    main()
