import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";
import path from "node:path";
import { test } from "node:test";
import vm from "node:vm";

import * as FocusReport from "../lumenote@tallywise.com/focus_report.js";
import { fakeShell, fakeWindow } from "./fakes.js";

const built = process.env.LUMENOTE_GNOME_SHELL_DIR;
const uuid = "lumenote@tallywise.com";

// Loads the legacy files as GNOME Shell 43 does: each file is a script whose
// top-level var and function names are its exports, reached through
// imports.misc.extensionUtils.getCurrentExtension().imports.
function loadLegacy(folder) {
  const loaded = {};
  const extensionImports = new Proxy({}, { get: (_, name) => load(name) });
  const globals = { imports: { misc: { extensionUtils: { getCurrentExtension: () => ({ imports: extensionImports }) } } } };
  function load(name) {
    if (!(name in loaded)) {
      const context = vm.createContext({ ...globals });
      vm.runInContext(readFileSync(path.join(folder, `${name}.js`), "utf8"), context);
      loaded[name] = context;
    }
    return loaded[name];
  }
  return load;
}

test("the legacy format exports what the modules export and works the same", { skip: !built }, () => {
  const load = loadLegacy(path.join(built, "legacy", uuid));
  const report = load("focus_report");
  for (const name of Object.keys(FocusReport)) {
    assert.equal(typeof report[name], typeof FocusReport[name], name);
  }
  assert.equal(report.INTERFACE_XML, FocusReport.INTERFACE_XML);

  const shell = fakeShell();
  shell.display.focus_window = fakeWindow({ wmClass: "foot", pid: 2 });
  const service = new (load("focus_service").FocusService)(shell);
  service.start();
  // The reply array comes from the script's own realm: copied to compare.
  assert.deepEqual(Array.from(shell.bus.exported[0].implementation.GetFocusedWindow()), [true, "", "foot", "", "", 2]);
  service.stop();
  assert.deepEqual(shell.bus.released, [42]);
});

test("each format's metadata names the shell versions that load it", { skip: !built }, () => {
  const metadata = (format) => JSON.parse(readFileSync(path.join(built, format, uuid, "metadata.json"), "utf8"));
  assert.deepEqual(metadata("legacy")["shell-version"], ["43", "44"]);
  assert.ok(metadata("modules")["shell-version"].every((version) => Number(version) >= 45));
  for (const format of ["legacy", "modules"]) {
    assert.equal(metadata(format).uuid, uuid);
    assert.ok(Number.isInteger(metadata(format).version), format);
    const entry = readFileSync(path.join(built, format, uuid, "extension.js"), "utf8");
    assert.equal(/^export default class/m.test(entry), format === "modules", format);
    assert.equal(/^function init\(\)/m.test(entry), format === "legacy", format);
  }
});

test("each format's files parse as what their shell loads them as", { skip: !built }, () => {
  // GNOME Shell 45 and later import ES modules; 43 and 44 run scripts.
  for (const file of ["extension.js", "focus_report.js", "focus_service.js"]) {
    const source = readFileSync(path.join(built, "modules", uuid, file), "utf8");
    const check = spawnSync(process.execPath, ["--input-type=module", "--check"], { input: source });
    assert.equal(check.status, 0, `modules/${file}: ${check.stderr}`);
    assert.doesNotThrow(() => new vm.Script(readFileSync(path.join(built, "legacy", uuid, file), "utf8")),
      `legacy/${file}`);
  }
});
