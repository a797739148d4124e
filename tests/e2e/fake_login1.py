#!/usr/bin/python3
"""A stand-in for logind on a private bus playing the system bus.

It owns org.freedesktop.login1 (subscribers that name the sender ignore
signals from anyone else), serves the Manager's session lookups and "delay"
inhibitors, and one session object with Lock/Unlock and the Active and
LockedHint properties. The test drives it through test.FakeLogin1.Control
on the manager object: every Emit/Set call returns once the signal is sent.
"""
import argparse
import os
import select

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

SERVICE = "org.freedesktop.login1"
MANAGER_PATH = "/org/freedesktop/login1"
MANAGER = "org.freedesktop.login1.Manager"
SESSION = "org.freedesktop.login1.Session"
CONTROL = "test.FakeLogin1.Control"


class Session(dbus.service.Object):
    def __init__(self, bus, path, session_id):
        super().__init__(bus, path)
        self.properties = {
            "Id": dbus.String(session_id),
            "Active": dbus.Boolean(True),
            "LockedHint": dbus.Boolean(False),
        }

    @dbus.service.signal(SESSION)
    def Lock(self):
        pass

    @dbus.service.signal(SESSION)
    def Unlock(self):
        pass

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        if interface != SESSION or name not in self.properties:
            raise dbus.exceptions.DBusException(
                "no such property", name="org.freedesktop.DBus.Error.UnknownProperty")
        return self.properties[name]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return dbus.Dictionary(self.properties if interface == SESSION else {}, signature="sv")

    @dbus.service.signal(dbus.PROPERTIES_IFACE, signature="sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass

    def set_property(self, name, value, announce_value):
        self.properties[name] = dbus.Boolean(value)
        if announce_value:
            self.PropertiesChanged(SESSION, dbus.Dictionary({name: dbus.Boolean(value)},
                                                            signature="sv"),
                                   dbus.Array([], signature="s"))
        else:
            self.PropertiesChanged(SESSION, dbus.Dictionary({}, signature="sv"),
                                   dbus.Array([name], signature="s"))


class Manager(dbus.service.Object):
    def __init__(self, bus, session, session_id, refuse_inhibitors):
        super().__init__(bus, MANAGER_PATH)
        self.session = session
        self.session_id = session_id
        self.refuse_inhibitors = refuse_inhibitors
        self.inhibitor_ends = []

    def _session_path(self):
        if self.session is None:
            raise dbus.exceptions.DBusException(
                "no session", name="org.freedesktop.login1.NoSuchSession")
        return dbus.ObjectPath(self.session.__dbus_object_path__)

    @dbus.service.method(MANAGER, in_signature="s", out_signature="o")
    def GetSession(self, session_id):
        if session_id not in (self.session_id, "auto"):
            raise dbus.exceptions.DBusException(
                "no session " + session_id, name="org.freedesktop.login1.NoSuchSession")
        return self._session_path()

    @dbus.service.method(MANAGER, in_signature="u", out_signature="o")
    def GetSessionByPID(self, pid):
        return self._session_path()

    @dbus.service.method(MANAGER, in_signature="ssss", out_signature="h")
    def Inhibit(self, what, who, why, mode):
        if self.refuse_inhibitors or mode != "delay":
            raise dbus.exceptions.DBusException(
                "refused", name="org.freedesktop.DBus.Error.AccessDenied")
        # The caller holds the write end; its closing shows as end of file here.
        read_end, write_end = os.pipe()
        self.inhibitor_ends.append(read_end)
        passed = dbus.types.UnixFd(write_end)
        os.close(write_end)
        return passed

    @dbus.service.signal(MANAGER, signature="b")
    def PrepareForSleep(self, start):
        pass

    @dbus.service.signal(MANAGER, signature="b")
    def PrepareForShutdown(self, start):
        pass

    @dbus.service.method(CONTROL, in_signature="b")
    def EmitPrepareForSleep(self, start):
        self.PrepareForSleep(start)

    @dbus.service.method(CONTROL, in_signature="b")
    def EmitPrepareForShutdown(self, start):
        self.PrepareForShutdown(start)

    @dbus.service.method(CONTROL)
    def EmitLock(self):
        self.session.Lock()

    @dbus.service.method(CONTROL)
    def EmitUnlock(self):
        self.session.Unlock()

    @dbus.service.method(CONTROL, in_signature="b")
    def SetActive(self, active):
        self.session.set_property("Active", active, announce_value=True)

    @dbus.service.method(CONTROL, in_signature="b")
    def SetLockedHint(self, locked):
        # Announced as invalidated, so that the client has to read it back.
        self.session.set_property("LockedHint", locked, announce_value=False)

    @dbus.service.method(CONTROL, out_signature="uu")
    def Inhibitors(self):
        """(taken so far, still held)."""
        held = 0
        for end in self.inhibitor_ends:
            readable, _, _ = select.select([end], [], [], 0)
            if not readable:
                held += 1
        return dbus.UInt32(len(self.inhibitor_ends)), dbus.UInt32(held)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--session-id", default="c7")
    parser.add_argument("--no-session", action="store_true")
    parser.add_argument("--refuse-inhibitors", action="store_true")
    options = parser.parse_args()

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
    session = None
    if not options.no_session:
        session = Session(bus, "/org/freedesktop/login1/session/" + options.session_id,
                          options.session_id)
    manager = Manager(bus, session, options.session_id, options.refuse_inhibitors)
    # The name comes last: once it has an owner, every object is ready.
    name = dbus.service.BusName(SERVICE, bus, do_not_queue=True)
    GLib.MainLoop().run()
    del name, manager


if __name__ == "__main__":
    main()
