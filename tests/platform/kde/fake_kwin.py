#!/usr/bin/python3
"""A stand-in KWin on a private session bus, for the KDE observer's tests.

It owns org.kde.KWin with /Scripting (org.kde.kwin.Scripting): loadScript
records the file and plugin name and exports the script object at
/Scripting/Script<id> (--plasma 6) or /<id> (--plasma 5); run() makes it
call the observer the way Lumenote's script does, with the window the test
set through test.FakeKWin.Control on /Control. With --screensaver it also
owns org.freedesktop.ScreenSaver with GetSessionIdleTime (milliseconds, as
KDE's screen locker answers). Every scripting call is logged; Calls()
returns the log.
"""
import argparse
import os

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

SCRIPTING = "org.kde.kwin.Scripting"
SCRIPT = "org.kde.kwin.Script"
CONTROL = "test.FakeKWin.Control"
OBSERVER = "com.tallywise.Lumenote.KWinObserver"
OBSERVER_PATH = "/com/tallywise/Lumenote/KWinObserver"


class Script(dbus.service.Object):
    def __init__(self, kwin, path, plugin):
        super().__init__(kwin.bus, path)
        self.kwin = kwin
        self.path = path
        self.plugin = plugin

    @dbus.service.method(SCRIPT)
    def run(self):
        self.kwin.log.append("run:" + self.path)
        if self.kwin.options.fail_run:
            raise dbus.exceptions.DBusException("the script failed", name="org.kde.kwin.Test.Failed")
        self.kwin.running = True
        self.kwin.report()


class Scripting(dbus.service.Object):
    SUPPORTS_MULTIPLE_OBJECT_PATHS = True

    def __init__(self, bus, options):
        super().__init__(bus, "/Scripting")
        self.bus = bus
        self.options = options
        self.log = []
        self.scripts = {}
        self.next_id = 0
        self.running = False
        self.window = None
        if options.stale:
            self.load("/stale/lumenote-activation.js", "lumenote-activation")

    def load(self, path, plugin):
        script_id = self.next_id
        self.next_id += 1
        object_path = ("/Scripting/Script%d" if self.options.plasma == 6 else "/%d") % script_id
        self.scripts[plugin] = Script(self, object_path, plugin)
        return script_id

    def report(self):
        if not self.running:
            return
        if self.window is None:
            self.call_observer("NoWindowActive", "", [])
        else:
            self.call_observer("WindowActivated", "sssi", self.window)

    def call_observer(self, method, signature, arguments):
        self.bus.call_async(OBSERVER, OBSERVER_PATH, OBSERVER, method, signature, arguments,
                            lambda *reply: None, lambda error: None)

    @dbus.service.method(SCRIPTING, in_signature="ss", out_signature="i")
    def loadScript(self, path, plugin):
        self.log.append("loadScript:%s:%s" % (path, plugin))
        if self.options.refuse_load or plugin in self.scripts:
            return -1
        return self.load(str(path), str(plugin))

    @dbus.service.method(SCRIPTING, in_signature="s", out_signature="b")
    def isScriptLoaded(self, plugin):
        self.log.append("isScriptLoaded:" + plugin)
        return plugin in self.scripts

    @dbus.service.method(SCRIPTING, in_signature="s", out_signature="b")
    def unloadScript(self, plugin):
        self.log.append("unloadScript:" + plugin)
        script = self.scripts.pop(str(plugin), None)
        if script is None:
            return False
        script.remove_from_connection()
        self.running = False
        return True

    @dbus.service.method(CONTROL, out_signature="as")
    def Calls(self):
        return self.log

    @dbus.service.method(CONTROL, in_signature="sssi")
    def Activate(self, resource_class, resource_name, desktop_file_name, pid):
        self.window = [resource_class, resource_name, desktop_file_name, dbus.Int32(pid)]
        self.report()

    @dbus.service.method(CONTROL)
    def Deactivate(self):
        self.window = None
        self.report()

    @dbus.service.method(CONTROL, in_signature="ssv")
    def CallObserver(self, method, signature, argument):
        """Calls the observer with one argument of any type (or none when signature is "")."""
        self.call_observer(method, signature, [argument] if signature else [])


class ScreenSaver(dbus.service.Object):
    def __init__(self, bus, milliseconds):
        super().__init__(bus, "/ScreenSaver")
        self.milliseconds = milliseconds

    @dbus.service.method("org.freedesktop.ScreenSaver", out_signature="u")
    def GetSessionIdleTime(self):
        if self.milliseconds < 0:
            raise dbus.exceptions.DBusException(
                "not supported", name="org.freedesktop.DBus.Error.NotSupported")
        return dbus.UInt32(self.milliseconds)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--plasma", type=int, choices=(5, 6), default=6)
    parser.add_argument("--stale", action="store_true", help="a script of the plugin is loaded")
    parser.add_argument("--refuse-load", action="store_true")
    parser.add_argument("--fail-run", action="store_true")
    parser.add_argument("--idle-ms", type=int, default=None,
                        help="own org.freedesktop.ScreenSaver; negative: answer NotSupported")
    parser.add_argument("--no-kwin", action="store_true", help="only the screen saver")
    parser.add_argument("--scripting-after-ms", type=int, default=0,
                        help="own org.kde.KWin at once but export /Scripting this much later,"
                             " as a starting KWin does")
    options = parser.parse_args()

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
    keep = []
    if options.idle_ms is not None:
        keep.append(ScreenSaver(bus, options.idle_ms))
        keep.append(dbus.service.BusName("org.freedesktop.ScreenSaver", bus, do_not_queue=True))
    if not options.no_kwin:
        def export():
            scripting = Scripting(bus, options)
            # The control object shares the scripting object's state.
            scripting.add_to_connection(bus, "/Control")
            keep.append(scripting)
            return False

        keep.append(dbus.service.BusName("org.kde.KWin", bus, do_not_queue=True))
        if options.scripting_after_ms > 0:
            GLib.timeout_add(options.scripting_after_ms, export)
        else:
            export()
    GLib.MainLoop().run()
    del keep


if __name__ == "__main__":
    main()
