// Stand-ins for the GNOME Shell objects the extension touches: signal
// emitters, windows, apps, and the parts of Gio and GLib it calls.

export class FakeEmitter {
  constructor() {
    this.handlers = new Map();
    this.nextId = 1;
  }

  connect(signal, callback) {
    const id = this.nextId++;
    this.handlers.set(id, { signal, callback });
    return id;
  }

  disconnect(id) {
    if (!this.handlers.delete(id)) {
      throw new Error(`disconnecting unknown handler ${id}`);
    }
  }

  emit(signal) {
    for (const { signal: name, callback } of [...this.handlers.values()]) {
      if (name === signal) {
        callback();
      }
    }
  }

  connectedSignals() {
    return [...this.handlers.values()].map(({ signal }) => signal).sort();
  }
}

// A Meta.Window whose title may not be read: reading it throws.
export function fakeWindow({ wmClass = "", instance = "", sandboxed = "", pid = -1 } = {}) {
  const window = new FakeEmitter();
  Object.assign(window, {
    wmClass,
    get_wm_class: () => window.wmClass,
    get_wm_class_instance: () => instance,
    get_sandboxed_app_id: () => sandboxed,
    get_pid: () => pid,
    get_title: () => {
      throw new Error("the title was read");
    },
  });
  Object.defineProperty(window, "title", {
    get() {
      throw new Error("the title was read");
    },
  });
  return window;
}

export function fakeApp(id, { windowBacked = false } = {}) {
  return { get_id: () => id, is_window_backed: () => windowBacked };
}

// A shell with one display and one window tracker; `apps` maps windows to
// their apps.
export function fakeShell() {
  const display = new FakeEmitter();
  display.focus_window = null;
  const apps = new Map();
  const windowTracker = new FakeEmitter();
  windowTracker.get_window_app = (window) => apps.get(window) ?? null;
  const bus = { exported: [], signals: [], owned: [], released: [] };
  const Gio = {
    DBus: { session: "session-bus" },
    BusType: { SESSION: "session" },
    BusNameOwnerFlags: { NONE: 0 },
    DBusExportedObject: {
      wrapJSObject(xml, implementation) {
        return {
          export(connection, path) {
            bus.exported.push({ connection, path, xml, implementation });
          },
          unexport() {
            bus.exported.pop();
          },
          emit_signal(name, variant) {
            bus.signals.push({ name, signature: variant.signature, values: variant.values });
          },
        };
      },
    },
    bus_own_name(type, name) {
      bus.owned.push({ type, name, exportedBefore: bus.exported.length > 0 });
      return 42;
    },
    bus_unown_name(id) {
      bus.released.push(id);
    },
  };
  const GLib = {
    Variant: class {
      constructor(signature, values) {
        this.signature = signature;
        this.values = values;
      }
    },
  };
  const focus = (window) => {
    display.focus_window = window;
    display.emit("notify::focus-window");
  };
  return { display, windowTracker, apps, bus, Gio, GLib, focus };
}
