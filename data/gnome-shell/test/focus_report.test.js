import assert from "node:assert/strict";
import { test } from "node:test";

import {
  INTERFACE_XML, MAXIMUM_TEXT_LENGTH, REPORT_SIGNATURE, applicationId, emptyReport, isChange,
  reportOf, reportValues,
} from "../lumenote@tallywise.com/focus_report.js";
import { fakeApp, fakeWindow } from "./fakes.js";

test("an app id loses its .desktop suffix, and made-up or missing apps give none", () => {
  const cases = [
    [fakeApp("org.gnome.Nautilus.desktop"), "org.gnome.Nautilus"],
    [fakeApp("firefox-esr.desktop"), "firefox-esr"],
    [fakeApp("kde-org.kde.kate.desktop"), "kde-org.kde.kate"],
    [fakeApp("org.example.desktop.Tool"), "org.example.desktop.Tool"],
    [fakeApp(".desktop"), ""],
    [fakeApp("window:17", { windowBacked: true }), ""],
    [fakeApp(undefined), ""],
    [fakeApp(17), ""],
    [null, ""],
    [{}, ""],
  ];
  for (const [app, expected] of cases) {
    assert.equal(applicationId(app), expected, JSON.stringify(app?.get_id?.()));
  }
});

test("a window's report holds its class, instance, sandbox id and process, never its title", () => {
  const cases = [
    {
      window: fakeWindow({ wmClass: "firefox-esr", instance: "Navigator", pid: 4242 }),
      app: fakeApp("firefox-esr.desktop"),
      expected: { hasWindow: true, appId: "firefox-esr", wmClass: "firefox-esr",
        wmClassInstance: "Navigator", sandboxedAppId: "", processId: 4242 },
    },
    {
      window: fakeWindow({ wmClass: "org.gnome.Calculator", sandboxed: "org.gnome.Calculator", pid: 7 }),
      app: fakeApp("org.gnome.Calculator.desktop"),
      expected: { hasWindow: true, appId: "org.gnome.Calculator", wmClass: "org.gnome.Calculator",
        wmClassInstance: "", sandboxedAppId: "org.gnome.Calculator", processId: 7 },
    },
    {
      window: fakeWindow({ wmClass: "xterm", instance: "xterm", pid: 0 }),
      app: fakeApp("window:3", { windowBacked: true }),
      expected: { hasWindow: true, appId: "", wmClass: "xterm", wmClassInstance: "xterm",
        sandboxedAppId: "", processId: 0 },
    },
    {
      window: fakeWindow({ wmClass: null, instance: undefined, pid: -1 }),
      app: null,
      expected: { hasWindow: true, appId: "", wmClass: "", wmClassInstance: "", sandboxedAppId: "",
        processId: 0 },
    },
    { window: null, app: fakeApp("org.gnome.Nautilus.desktop"), expected: emptyReport() },
  ];
  for (const { window, app, expected } of cases) {
    assert.deepEqual(reportOf(window, app), expected);
  }
});

test("process ids outside D-Bus's unsigned 32 bits, or not whole numbers, become 0", () => {
  const cases = [[1, 1], [0xffffffff, 0xffffffff], [0x100000000, 0], [-5, 0], [1.5, 0], [NaN, 0],
    ["12", 0]];
  for (const [pid, expected] of cases) {
    assert.equal(reportOf(fakeWindow({ pid }), null).processId, expected, String(pid));
  }
});

test("long texts are cut to the maximum length", () => {
  const long = "x".repeat(MAXIMUM_TEXT_LENGTH + 10);
  const report = reportOf(fakeWindow({ wmClass: long, instance: long, sandboxed: long }), fakeApp(long));
  for (const value of [report.appId, report.wmClass, report.wmClassInstance, report.sandboxedAppId]) {
    assert.equal(value.length, MAXIMUM_TEXT_LENGTH);
  }
});

test("a signal is worth sending for the first report and for any field that differs", () => {
  const base = reportOf(fakeWindow({ wmClass: "a", instance: "a", pid: 10 }), fakeApp("a.desktop"));
  assert.equal(isChange(null, base), true);
  assert.equal(isChange(null, emptyReport()), true);
  assert.equal(isChange(base, { ...base }), false);
  assert.equal(isChange(emptyReport(), emptyReport()), false);
  for (const [field, value] of [["hasWindow", false], ["appId", "b"], ["wmClass", "b"],
    ["wmClassInstance", "b"], ["sandboxedAppId", "b"], ["processId", 11]]) {
    assert.equal(isChange(base, { ...base, [field]: value }), true, field);
  }
});

test("the introspection XML declares the method and the signal with the report's signature", () => {
  const argumentTypes = (element) => {
    const body = INTERFACE_XML.match(new RegExp(`<${element} name="[A-Za-z]+">([\\s\\S]*?)</${element}>`))[1];
    return [...body.matchAll(/<arg type="([a-z])" name="[a-z_]+"( direction="out")?\/>/g)];
  };
  const signature = `(${reportValues(emptyReport()).map((value) =>
    ({ boolean: "b", string: "s", number: "u" })[typeof value]).join("")})`;
  assert.equal(signature, REPORT_SIGNATURE);
  for (const element of ["method", "signal"]) {
    const args = argumentTypes(element);
    assert.equal(`(${args.map((match) => match[1]).join("")})`, REPORT_SIGNATURE, element);
    assert.ok(args.every((match) => (match[2] !== undefined) === (element === "method")), element);
  }
  assert.doesNotMatch(INTERFACE_XML, /title/i);
});
