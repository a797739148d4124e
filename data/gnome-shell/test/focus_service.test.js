import assert from "node:assert/strict";
import { test } from "node:test";

import { BUS_NAME, OBJECT_PATH, REPORT_SIGNATURE } from "../lumenote@tallywise.com/focus_report.js";
import { FocusService } from "../lumenote@tallywise.com/focus_service.js";
import { fakeApp, fakeShell, fakeWindow } from "./fakes.js";

function started(shell) {
  const service = new FocusService(shell);
  service.start();
  return service;
}

function reply(shell) {
  return shell.bus.exported[0].implementation.GetFocusedWindow();
}

test("the object is exported before the name is owned, and the reply describes the focus", () => {
  const shell = fakeShell();
  const editor = fakeWindow({ wmClass: "gedit", instance: "gedit", pid: 31 });
  shell.apps.set(editor, fakeApp("org.gnome.gedit.desktop"));
  shell.display.focus_window = editor;
  started(shell);
  assert.deepEqual(shell.bus.owned, [{ type: "session", name: BUS_NAME, exportedBefore: true }]);
  assert.equal(shell.bus.exported[0].path, OBJECT_PATH);
  assert.deepEqual(reply(shell), [true, "org.gnome.gedit", "gedit", "gedit", "", 31]);
  assert.deepEqual(shell.bus.signals, []);
});

test("each focus change signals the new report once; refocusing the same application does not", () => {
  const shell = fakeShell();
  const first = fakeWindow({ wmClass: "foot", instance: "foot", pid: 5 });
  const second = fakeWindow({ wmClass: "Navigator", instance: "firefox-esr", pid: 6 });
  const secondAgain = fakeWindow({ wmClass: "Navigator", instance: "firefox-esr", pid: 6 });
  shell.apps.set(second, fakeApp("firefox-esr.desktop"));
  shell.apps.set(secondAgain, fakeApp("firefox-esr.desktop"));
  started(shell);

  shell.focus(first);
  shell.focus(second);
  shell.focus(secondAgain);
  shell.focus(null);
  shell.focus(null);
  assert.deepEqual(shell.bus.signals.map(({ name, signature, values }) => [name, signature, values]), [
    ["FocusedWindowChanged", REPORT_SIGNATURE, [true, "", "foot", "foot", "", 5]],
    ["FocusedWindowChanged", REPORT_SIGNATURE, [true, "firefox-esr", "Navigator", "firefox-esr", "", 6]],
    ["FocusedWindowChanged", REPORT_SIGNATURE, [false, "", "", "", "", 0]],
  ]);
  assert.deepEqual(reply(shell), [false, "", "", "", "", 0]);
});

test("a class set late on the focused window is signalled; the previous window is no longer heard", () => {
  const shell = fakeShell();
  const late = fakeWindow({ wmClass: "", pid: 8 });
  const other = fakeWindow({ wmClass: "other", pid: 9 });
  started(shell);
  shell.focus(late);
  late.wmClass = "org.example.Late";
  late.emit("notify::wm-class");
  shell.focus(other);
  late.wmClass = "changed.after.focus.left";
  late.emit("notify::wm-class");
  assert.deepEqual(shell.bus.signals.map(({ values }) => values[2]), ["", "org.example.Late", "other"]);
  assert.deepEqual(late.connectedSignals(), []);
  assert.deepEqual(other.connectedSignals(), ["notify::gtk-application-id", "notify::wm-class"]);
});

test("the tracker matching an app after the focus moved is signalled", () => {
  const shell = fakeShell();
  const window = fakeWindow({ wmClass: "nautilus", pid: 12 });
  started(shell);
  shell.focus(window);
  shell.apps.set(window, fakeApp("org.gnome.Nautilus.desktop"));
  shell.windowTracker.emit("notify::focus-app");
  shell.windowTracker.emit("notify::focus-app");
  assert.deepEqual(shell.bus.signals.map(({ values }) => values[1]), ["", "org.gnome.Nautilus"]);
});

test("stopping releases the name, disconnects every handler and unexports; twice is harmless", () => {
  const shell = fakeShell();
  const window = fakeWindow({ wmClass: "foot" });
  shell.display.focus_window = window;
  const service = started(shell);
  service.stop();
  service.stop();
  assert.deepEqual(shell.bus.released, [42]);
  assert.deepEqual(shell.bus.exported, []);
  assert.deepEqual(shell.display.connectedSignals(), []);
  assert.deepEqual(shell.windowTracker.connectedSignals(), []);
  assert.deepEqual(window.connectedSignals(), []);
  shell.focus(fakeWindow({ wmClass: "after" }));
  assert.deepEqual(shell.bus.signals, []);
});

test("enabling again after stopping serves the current focus", () => {
  const shell = fakeShell();
  started(shell).stop();
  shell.display.focus_window = fakeWindow({ wmClass: "again", pid: 3 });
  started(shell);
  assert.deepEqual(reply(shell), [true, "", "again", "", "", 3]);
});
