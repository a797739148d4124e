#!/usr/bin/python3
"""Stand-ins for GNOME Shell's services on a private session bus.

--extension     owns com.tallywise.Lumenote.GnomeShellExtension and serves
                GetFocusedWindow / FocusedWindowChanged as the extension does
--impostor      serves the same object without owning the name
--idle-monitor  owns org.gnome.Mutter and serves the IdleMonitor's GetIdletime

--behaviour normal|slow|wrong-reply|no-watches|no-active-watch chooses how
methods answer: slow answers after two seconds, wrong-reply with a value of
another type; no-watches refuses every watch, no-active-watch the user-active
ones. The test drives the state through test.FakeGnomeShell.Control on each
object: SetFocus (bssssu) stores the report and emits the change signal;
SetIdletime(t) stores the milliseconds GetIdletime returns and fires the
idle monitor's watches as Mutter would at that idle time; Counts() says how
often GetIdletime was called and how many watches are set. Once its name is
owned (or its object exported, for the impostor) it writes "ready" to
--ready.
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
    """Mutter's IdleMonitor: GetIdletime, and watches that fire as the idle
    time set through SetIdletime crosses their interval (idle watches, kept)
    or goes down (user-active watches, fired once and removed)."""

    def __init__(self, bus, behaviour):
        super().__init__(bus, IDLE_PATH)
        self.behaviour = behaviour
        self.idletime = 0
        self.idletime_calls = 0
        self.next_watch = 1
        self.idle_watches = {}
        self.active_watches = []

    @dbus.service.method(IDLE_INTERFACE)
    def GetIdletime(self):
        self.idletime_calls += 1
        self.behaviour.before_answer()
        if self.behaviour.name == "wrong-reply":
            return (dbus.Int32(self.idletime),)
        return (dbus.UInt64(self.idletime),)

    def new_watch(self):
        if self.behaviour.name == "no-watches":
            raise dbus.exceptions.DBusException(
                "no watches here", name="org.freedesktop.DBus.Error.UnknownMethod")
        self.behaviour.before_answer()
        watch = self.next_watch
        self.next_watch += 1
        return watch

    @dbus.service.method(IDLE_INTERFACE, in_signature="t", out_signature="u")
    def AddIdleWatch(self, interval):
        watch = self.new_watch()
        self.idle_watches[watch] = int(interval)
        return watch

    @dbus.service.method(IDLE_INTERFACE, in_signature="", out_signature="u")
    def AddUserActiveWatch(self):
        if self.behaviour.name == "no-active-watch":
            raise dbus.exceptions.DBusException(
                "refused", name="org.freedesktop.DBus.Error.Failed")
        watch = self.new_watch()
        self.active_watches.append(watch)
        return watch

    @dbus.service.method(IDLE_INTERFACE, in_signature="u")
    def RemoveWatch(self, watch):
        self.idle_watches.pop(int(watch), None)
        if int(watch) in self.active_watches:
            self.active_watches.remove(int(watch))

    @dbus.service.signal(IDLE_INTERFACE, signature="u")
    def WatchFired(self, watch):
        pass

    @dbus.service.method(CONTROL, in_signature="t")
    def SetIdletime(self, milliseconds):
        before, self.idletime = self.idletime, int(milliseconds)
        if self.idletime < before:
            fired, self.active_watches = self.active_watches, []
            for watch in fired:
                self.WatchFired(dbus.UInt32(watch))
        for watch, interval in list(self.idle_watches.items()):
            if before < interval <= self.idletime or (self.idletime < before and
                                                      interval <= self.idletime):
                self.WatchFired(dbus.UInt32(watch))

    @dbus.service.method(CONTROL, in_signature="", out_signature="uu")
    def Counts(self):
        """GetIdletime calls so far, and the watches that are set."""
        return (dbus.UInt32(self.idletime_calls),
                dbus.UInt32(len(self.idle_watches) + len(self.active_watches)))


def parse_report(text):
    fields = text.split(",")
    return (fields[0] == "true", *fields[1:5], int(fields[5]))


def main():
    parser = argparse.ArgumentParser()
    role = parser.add_mutually_exclusive_group(required=True)
    role.add_argument("--extension", action="store_true")
    role.add_argument("--impostor", action="store_true")
    role.add_argument("--idle-monitor", action="store_true")
    parser.add_argument("--behaviour", default="normal",
                        choices=["normal", "slow", "wrong-reply", "no-watches", "no-active-watch"])
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
