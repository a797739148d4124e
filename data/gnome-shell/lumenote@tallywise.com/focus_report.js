// The focused window's report that the extension serves over D-Bus, when a
// change of it is worth a signal, and the interface's introspection XML.
// Plain JavaScript without GNOME Shell's libraries, so that node tests it and
// both extension formats share it.
//
// A report never carries the window's title: it is not read at all.

export const BUS_NAME = "com.tallywise.Lumenote.GnomeShellExtension";
export const OBJECT_PATH = "/com/tallywise/Lumenote/GnomeShellExtension";
export const INTERFACE_NAME = "com.tallywise.Lumenote.GnomeShellExtension";
export const CHANGE_SIGNAL = "FocusedWindowChanged";
// The D-Bus type of the signal's arguments and the method's reply.
export const REPORT_SIGNATURE = "(bssssu)";

// Longer texts are cut, so that a window setting a huge class cannot make
// every signal huge.
export const MAXIMUM_TEXT_LENGTH = 512;

const REPORT_ARGUMENTS = `
      <arg type="b" name="has_window"/>
      <arg type="s" name="app_id"/>
      <arg type="s" name="wm_class"/>
      <arg type="s" name="wm_class_instance"/>
      <arg type="s" name="sandboxed_app_id"/>
      <arg type="u" name="process_id"/>`;

export const INTERFACE_XML = `<node>
  <interface name="${INTERFACE_NAME}">
    <method name="GetFocusedWindow">${REPORT_ARGUMENTS.replace(/"\/>/g, "\" direction=\"out\"/>")}
    </method>
    <signal name="${CHANGE_SIGNAL}">${REPORT_ARGUMENTS}
    </signal>
  </interface>
</node>`;

// What is reported while no window has the focus.
export function emptyReport() {
  return { hasWindow: false, appId: "", wmClass: "", wmClassInstance: "", sandboxedAppId: "", processId: 0 };
}

function text(value) {
  return typeof value === "string" ? value.slice(0, MAXIMUM_TEXT_LENGTH) : "";
}

function callOrNull(object, method) {
  return object && typeof object[method] === "function" ? object[method]() : null;
}

// The desktop-file id of a Shell.App-like object without its ".desktop"
// suffix ("org.gnome.Nautilus.desktop" is "org.gnome.Nautilus"), as the
// desktop entries are named on the other side. "" without an app, and for
// the stand-in apps the window tracker makes up for windows it cannot match
// to any desktop file ("window:17"): those ids mean nothing outside the
// shell.
export function applicationId(app) {
  if (!app || callOrNull(app, "is_window_backed") === true) {
    return "";
  }
  const id = text(callOrNull(app, "get_id"));
  return id.endsWith(".desktop") ? id.slice(0, -".desktop".length) : id;
}

// The process id as D-Bus's unsigned 32 bits; 0 when the shell does not know
// it (Meta.Window says -1 or 0) or the value is not a process id.
function processId(value) {
  return Number.isInteger(value) && value > 0 && value <= 0xffffffff ? value : 0;
}

// The report of a Meta.Window-like object and the Shell.App-like object the
// window tracker assigns to it (either may be null). Reads the WM class, its
// instance, the sandboxed app id and the process id, nothing else.
export function reportOf(window, app) {
  if (!window) {
    return emptyReport();
  }
  return {
    hasWindow: true,
    appId: applicationId(app),
    wmClass: text(callOrNull(window, "get_wm_class")),
    wmClassInstance: text(callOrNull(window, "get_wm_class_instance")),
    sandboxedAppId: text(callOrNull(window, "get_sandboxed_app_id")),
    processId: processId(callOrNull(window, "get_pid")),
  };
}

// Whether going from `previous` (null before the first report) to `next`
// deserves a signal: only when something in the report differs, so that
// focusing another window of the same application, or a property set to the
// value it had, is not announced.
export function isChange(previous, next) {
  if (!previous) {
    return true;
  }
  return reportValues(previous).some((value, index) => value !== reportValues(next)[index]);
}

// The report as the values of REPORT_SIGNATURE, in order.
export function reportValues(report) {
  return [report.hasWindow, report.appId, report.wmClass, report.wmClassInstance,
    report.sandboxedAppId, report.processId];
}
