// The extension's entry for GNOME Shell 43 and 44 (imports.gi, init()).
// The build installs it as extension.js beside the other files converted to
// the same format.
const { Gio, GLib, Shell } = imports.gi;
const { FocusService } = imports.misc.extensionUtils.getCurrentExtension().imports.focus_service;

class LumenoteExtension {
  enable() {
    this._service = new FocusService({
      Gio, GLib, display: global.display, windowTracker: Shell.WindowTracker.get_default(),
    });
    this._service.start();
  }

  disable() {
    if (this._service) {
      this._service.stop();
    }
    this._service = null;
  }
}

function init() {
  return new LumenoteExtension();
}
