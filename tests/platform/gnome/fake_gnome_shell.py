#!/usr/bin/python3
"""Stand-ins for GNOME Shell's services on a private session bus.

--extension     owns com.tallywise.Lumenote.GnomeShellExtension and serves
                GetFocusedWindow / FocusedWindowChanged as the extension does
--impostor      serves the same object without owning the name
--idle-monitor  owns org.gnome.Mutter and serves the IdleMonitor's GetIdletime

--behaviour normal|slow|wrong-reply chooses how methods answer: slow answers
after two seconds, wrong-reply with a value of another type. The test drives
the state through test.FakeGnomeShell.Control on each object: SetFocus
(bssssu) stores the report and emits the change signal, SetIdletime(t)
stores the milliseconds GetIdletime returns. Once its name is owned (or its
object exported, for the impostor) it writes "ready" to --ready.
"""
import argparse
import os
import time

import dbus
import dbus.lowlevel
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

CONTROL = "test.FakeGnomeShell.Control"
EXTENSION_NAME = "com.tallywise.Lumenote.GnomeShellExtension"
EXTENSION_PATH = "/com/tallywise/Lumenote/GnomeShellExtension"
EXTENSION_INTERFACE = "com.tallywise.Lumenote.GnomeShellExtension"
IDLE_NAME = "org.gnome.Mutter.IdleMonitor"
IDLE_PATH = "/org/gnome/Mutter/IdleMonitor/Core"
IDLE_INTERFACE = "org.gnome.Mutter.IdleMonitor"
NO_WINDOW = (False, "", "", "", "", 0)


def typed_report(report):
    has_window, app_id, wm_class, instance, sandboxed, pid = report
    return (dbus.Boolean(has_window), dbus.String(app_id), dbus.String(wm_class),
            dbus.String(instance), dbus.String(sandboxed), dbus.UInt32(pid))


class Behaviour:
    def __init__(self, name):
        self.name = name

    def before_answer(self):
        if self.name == "slow":
            time.sleep(2)


class Extension(dbus.service.Object):
    def __init__(self, bus, behaviour, report):
        super().__init__(bus, EXTENSION_PATH)
        self.bus = bus
        self.behaviour = behaviour
        self.report = report

    @dbus.service.method(EXTENSION_INTERFACE)
    def GetFocusedWindow(self):
        self.behaviour.before_answer()
        if self.behaviour.name == "wrong-reply":
            return (dbus.String("org.gnome.Nautilus"),)
        return typed_report(self.report)

    @dbus.service.signal(EXTENSION_INTERFACE, signature="bssssu")
    def FocusedWindowChanged(self, has_window, app_id, wm_class, instance, sandboxed, pid):
        pass

    @dbus.service.method(CONTROL, in_signature="bssssu")
    def SetFocus(self, has_window, app_id, wm_class, instance, sandboxed, pid):
        self.report = (has_window, app_id, wm_class, instance, sandboxed, pid)
        self.FocusedWindowChanged(*typed_report(self.report))

    @dbus.service.method(CONTROL, in_signature="")
    def EmitMalformed(self):
        # The change signal with two arguments instead of six.
        message = dbus.lowlevel.SignalMessage(EXTENSION_PATH, EXTENSION_INTERFACE,
                                              "FocusedWindowChanged")
        message.append(True, "only two", signature="bs")
        self.bus.send_message(message)


class IdleMonitor(dbus.service.Object):
    def __init__(self, bus, behaviour):
        super().__init__(bus, IDLE_PATH)
        self.behaviour = behaviour
        self.idletime = 0

    @dbus.service.method(IDLE_INTERFACE)
    def GetIdletime(self):
        self.behaviour.before_answer()
        if self.behaviour.name == "wrong-reply":
            return (dbus.Int32(self.idletime),)
        return (dbus.UInt64(self.idletime),)

    @dbus.service.method(CONTROL, in_signature="t")
    def SetIdletime(self, milliseconds):
        self.idletime = int(milliseconds)


def parse_report(text):
    fields = text.split(",")
    return (fields[0] == "true", *fields[1:5], int(fields[5]))


def main():
    parser = argparse.ArgumentParser()
    role = parser.add_mutually_exclusive_group(required=True)
    role.add_argument("--extension", action="store_true")
    role.add_argument("--impostor", action="store_true")
    role.add_argument("--idle-monitor", action="store_true")
    parser.add_argument("--behaviour", default="normal", choices=["normal", "slow", "wrong-reply"])
    parser.add_argument("--focus", type=parse_report, default=NO_WINDOW,
                        help="the initial report: has_window,app_id,class,instance,sandboxed,pid")
    parser.add_argument("--ready", required=True)
    options = parser.parse_args()

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
    behaviour = Behaviour(options.behaviour)
    keep = []
    if options.idle_monitor:
        keep.append(IdleMonitor(bus, behaviour))
        keep.append(dbus.service.BusName(IDLE_NAME, bus, do_not_queue=True))
    else:
        keep.append(Extension(bus, behaviour, options.focus))
        if options.extension:
            keep.append(dbus.service.BusName(EXTENSION_NAME, bus, do_not_queue=True))
    with open(options.ready, "w", encoding="utf-8") as ready:
        ready.write(bus.get_unique_name() + "\n")
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
