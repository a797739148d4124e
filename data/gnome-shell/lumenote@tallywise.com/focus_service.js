// The extension's D-Bus service: owns the bus name, exports the focused
// window's report and signals its changes. GNOME Shell's objects are passed
// in (Gio, GLib, global.display, the window tracker), so that both extension
// formats share it and node tests it with stand-ins.
import * as FocusReport from "./focus_report.js";

// Properties of the focused window that change its report while it keeps
// the focus (a program setting its class late, a GTK application id
// arriving after the first frame).
const WINDOW_PROPERTIES = ["notify::wm-class", "notify::gtk-application-id"];

export class FocusService {
  constructor({ Gio, GLib, display, windowTracker }) {
    this._Gio = Gio;
    this._GLib = GLib;
    this._display = display;
    this._windowTracker = windowTracker;
    this._exported = null;
    this._nameId = 0;
    this._handlers = [];
    this._window = null;
    this._windowHandlers = [];
    this._report = null;
  }

  // Exports the object first and owns the name last, so that a client that
  // sees the name can ask at once.
  start() {
    const Gio = this._Gio;
    this._report = this._currentReport();
    this._exported = Gio.DBusExportedObject.wrapJSObject(FocusReport.INTERFACE_XML, {
      GetFocusedWindow: () => FocusReport.reportValues(this._report),
    });
    this._exported.export(Gio.DBus.session, FocusReport.OBJECT_PATH);
    this._connect(this._display, "notify::focus-window", () => this._focusMoved());
    this._connect(this._windowTracker, "notify::focus-app", () => this._update());
    this._watchWindow(this._display.focus_window);
    this._nameId = Gio.bus_own_name(Gio.BusType.SESSION, FocusReport.BUS_NAME,
      Gio.BusNameOwnerFlags.NONE, null, null, null);
  }

  // Releases the name first, then everything else; safe to call twice.
  stop() {
    if (this._nameId !== 0) {
      this._Gio.bus_unown_name(this._nameId);
      this._nameId = 0;
    }
    this._watchWindow(null);
    for (const [object, id] of this._handlers) {
      object.disconnect(id);
    }
    this._handlers = [];
    if (this._exported) {
      this._exported.unexport();
      this._exported = null;
    }
    this._report = null;
  }

  _connect(object, signal, callback) {
    this._handlers.push([object, object.connect(signal, callback)]);
  }

  _currentReport() {
    const window = this._display.focus_window ?? null;
    const app = window ? this._windowTracker.get_window_app(window) : null;
    return FocusReport.reportOf(window, app);
  }

  _focusMoved() {
    this._watchWindow(this._display.focus_window);
    this._update();
  }

  _watchWindow(window) {
    if (this._window === window) {
      return;
    }
    for (const id of this._windowHandlers) {
      this._window.disconnect(id);
    }
    this._windowHandlers = [];
    this._window = window ?? null;
    if (this._window) {
      this._windowHandlers = WINDOW_PROPERTIES.map(
        (signal) => this._window.connect(signal, () => this._update()));
    }
  }

  _update() {
    if (!this._exported) {
      return;
    }
    const next = this._currentReport();
    if (!FocusReport.isChange(this._report, next)) {
      return;
    }
    this._report = next;
    this._exported.emit_signal(FocusReport.CHANGE_SIGNAL,
      new this._GLib.Variant(FocusReport.REPORT_SIGNATURE, FocusReport.reportValues(next)));
  }
}
