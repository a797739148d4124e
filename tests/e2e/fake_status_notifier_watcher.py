#!/usr/bin/python3
"""A stand-in StatusNotifierWatcher with a registered host, on a private
session bus, so that Qt puts its tray icon on the bus as a
StatusNotifierItem. Each registered item's service and path is appended to
the file given with --record as one JSON object a line.

Qt asks once, at start-up, whether a watcher with a host exists, reading
the IsStatusNotifierHostRegistered property, so Introspect declares the
properties as a real watcher does.
"""
import argparse
import json

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

SERVICE = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"
INTERFACE = "org.kde.StatusNotifierWatcher"
PROPERTIES = "org.freedesktop.DBus.Properties"

INTROSPECTION = """<!DOCTYPE node PUBLIC "-//freedesktop//DTD D-BUS Object Introspection 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd">
<node>
  <interface name="org.kde.StatusNotifierWatcher">
    <method name="RegisterStatusNotifierItem"><arg name="service" type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg name="service" type="s" direction="in"/></method>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
    <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
    <signal name="StatusNotifierHostRegistered"/>
  </interface>
  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get"><arg type="s" direction="in"/><arg type="s" direction="in"/>
      <arg type="v" direction="out"/></method>
    <method name="GetAll"><arg type="s" direction="in"/><arg type="a{sv}" direction="out"/></method>
  </interface>
  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect"><arg type="s" direction="out"/></method>
  </interface>
</node>
"""


class Watcher(dbus.service.Object):
    def __init__(self, bus, record):
        super().__init__(bus, PATH)
        self.record = record
        self.items = []

    @dbus.service.method(INTERFACE, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        # An item gives its bus name or its object path; with a path, the
        # item lives at that path under the caller's own name.
        if service.startswith("/"):
            name, path = sender, service
        else:
            name, path = service, "/StatusNotifierItem"
        self.items.append(name + path)
        with open(self.record, "a", encoding="utf-8") as out:
            out.write(json.dumps({"service": str(name), "path": str(path)}) + "\n")
        self.StatusNotifierItemRegistered(name + path)

    @dbus.service.method(INTERFACE, in_signature="s")
    def RegisterStatusNotifierHost(self, service):
        pass

    @dbus.service.signal(INTERFACE, signature="s")
    def StatusNotifierItemRegistered(self, service):
        pass

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self.GetAll(interface)[name]

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return {
            "RegisteredStatusNotifierItems": dbus.Array(self.items, signature="s"),
            "IsStatusNotifierHostRegistered": dbus.Boolean(True),
            "ProtocolVersion": dbus.Int32(0),
        }

    @dbus.service.method("org.freedesktop.DBus.Introspectable", out_signature="s")
    def Introspect(self):
        return INTROSPECTION


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--record", required=True)
    arguments = parser.parse_args()
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    watcher = Watcher(bus, arguments.record)
    name = dbus.service.BusName(SERVICE, bus)
    GLib.MainLoop().run()
    del watcher, name


if __name__ == "__main__":
    main()
