// The KWin script run in a bare context with a fake workspace and callDBus,
// as KWin runs it: what each window turns into on the bus, and which
// signal and current window it follows on Plasma 5 and Plasma 6.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import vm from "node:vm";

const scriptPath = new URL("../../../data/kwin/lumenote-activation.js", import.meta.url).pathname;
const source = readFileSync(scriptPath, "utf8");

const OBSERVER = [
  "com.tallywise.Lumenote.KWinObserver",
  "/com/tallywise/Lumenote/KWinObserver",
  "com.tallywise.Lumenote.KWinObserver",
];

class FakeSignal {
  constructor() { this.handlers = []; }
  connect(handler) { this.handlers.push(handler); }
  emit(value) { for (const handler of this.handlers) handler(value); }
}

// Loads the script into a fresh context; `globals` become its globals.
function load(globals = {}) {
  const context = vm.createContext({ ...globals });
  vm.runInContext(source, context, { filename: scriptPath });
  return context;
}

// A context with KWin's globals for `plasma` 5 or 6 and `active` as the
// window active at load time; the calls the script made are in `calls`.
function loadInKWin(plasma, active) {
  const calls = [];
  const signal = new FakeSignal();
  const workspace = plasma === 6 ? { windowActivated: signal, activeWindow: active }
                                 : { clientActivated: signal, activeClient: active };
  const context = load({ workspace, callDBus: (...args) => calls.push(args) });
  return { context, calls, signal };
}

test("a window becomes class, instance, desktop file name and process id", () => {
  const { LumenoteActivation } = load();
  const cases = [
    [{ resourceClass: "firefox-esr", resourceName: "Navigator", desktopFileName: "firefox-esr", pid: 4242 },
      ["firefox-esr", "Navigator", "firefox-esr", 4242]],
    [{ resourceClass: "org.kde.dolphin", resourceName: "dolphin", desktopFileName: "", pid: 7 },
      ["org.kde.dolphin", "dolphin", "", 7]],
    // Missing or non-text properties are empty; a bad pid is 0.
    [{}, ["", "", "", 0]],
    [{ resourceClass: null, resourceName: 12, desktopFileName: undefined, pid: -1 }, ["", "", "", 0]],
    [{ resourceClass: "a", pid: 2.5 }, ["a", "", "", 0]],
    [{ resourceClass: "a", pid: 2147483648 }, ["a", "", "", 0]],
    [{ resourceClass: "a", pid: 2147483647 }, ["a", "", "", 2147483647]],
    [{ resourceClass: "a", pid: "31" }, ["a", "", "", 31]],
    [{ resourceClass: "Écrire", resourceName: "écrire" }, ["Écrire", "écrire", "", 0]],
  ];
  for (const [window, expected] of cases) {
    assert.deepEqual(Array.from(LumenoteActivation.activationArguments(window)), expected,
      JSON.stringify(window));
  }
  assert.equal(LumenoteActivation.activationArguments(null), null);
  assert.equal(LumenoteActivation.activationArguments(undefined), null);
});

test("the caption is never read, not even through a getter", () => {
  const { LumenoteActivation } = load();
  const window = {
    resourceClass: "konsole", resourceName: "konsole", desktopFileName: "org.kde.konsole", pid: 9,
    get caption() { throw new Error("the caption was read"); },
  };
  assert.deepEqual(Array.from(LumenoteActivation.activationArguments(window)),
    ["konsole", "konsole", "org.kde.konsole", 9]);
});

test("byte arrays from older KWin releases are decoded as UTF-8, else Latin-1", () => {
  const context = load();
  const bytes = (list) => vm.runInContext(`new Uint8Array(${JSON.stringify(list)}).buffer`, context);
  const cases = [
    [[0x6b, 0x61, 0x74, 0x65], "kate"],
    [[0xc3, 0x89, 0x63, 0x72, 0x69, 0x72, 0x65], "Écrire"],
    [[0xc9, 0x63], "\u00c9c"],  // not UTF-8: read as Latin-1
    [[], ""],
  ];
  for (const [list, expected] of cases) {
    const window = { resourceClass: bytes(list), resourceName: bytes(list) };
    const args = context.LumenoteActivation.activationArguments(window);
    assert.equal(args[0], expected, JSON.stringify(list));
    assert.equal(args[1], expected, JSON.stringify(list));
  }
});

test("on Plasma 5 and 6 the window active at load time is reported, then each activation", () => {
  const first = { resourceClass: "kate", resourceName: "kate", desktopFileName: "org.kde.kate", pid: 10 };
  const second = { resourceClass: "firefox", resourceName: "Navigator", desktopFileName: "firefox", pid: 11 };
  for (const plasma of [5, 6]) {
    const { calls, signal } = loadInKWin(plasma, first);
    signal.emit(second);
    signal.emit(null);
    signal.emit(first);
    assert.deepEqual(calls, [
      [...OBSERVER, "WindowActivated", "kate", "kate", "org.kde.kate", 10],
      [...OBSERVER, "WindowActivated", "firefox", "Navigator", "firefox", 11],
      [...OBSERVER, "NoWindowActive"],
      [...OBSERVER, "WindowActivated", "kate", "kate", "org.kde.kate", 10],
    ], `Plasma ${plasma}`);
  }
});

test("no window active at load time is reported as such", () => {
  for (const plasma of [5, 6]) {
    const { calls } = loadInKWin(plasma, null);
    assert.deepEqual(calls, [[...OBSERVER, "NoWindowActive"]], `Plasma ${plasma}`);
  }
});
