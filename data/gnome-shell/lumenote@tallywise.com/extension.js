// The extension's entry for GNOME Shell 45 and later (ES modules).
import Gio from "gi://Gio";
import GLib from "gi://GLib";
import Shell from "gi://Shell";
import { Extension } from "resource:///org/gnome/shell/extensions/extension.js";

import { FocusService } from "./focus_service.js";

export default class LumenoteExtension extends Extension {
  enable() {
    this._service = new FocusService({
      Gio, GLib, display: global.display, windowTracker: Shell.WindowTracker.get_default(),
    });
    this._service.start();
  }

  disable() {
    this._service?.stop();
    this._service = null;
  }
}
