import assert from "node:assert/strict";
import { test } from "node:test";

import { helloMessage, isRecording, readHostMessage } from "../src/host_messages.js";

const recordingStatus = {
  bridgeMessage: "status", applicationRunning: true, sessionRunning: true, trackingPaused: false,
  filenameLabelsEnabled: true, browserBundleIdentifier: "org.chromium.Chromium",
  nativeHostVersion: "0.1.0", protocolVersion: 1,
};

test("the hello names the extension's version, the protocol and the guessed browser", () => {
  assert.deepEqual(helloMessage({ extensionVersion: "0.1.0", browserBundleIdentifier: "org.mozilla.firefox" }),
    { bridgeMessage: "hello", extensionVersion: "0.1.0", protocolVersion: 1,
      browserBundleIdentifier: "org.mozilla.firefox" });
});

test("a status of a recording session lets events through", () => {
  const read = readHostMessage(recordingStatus);
  assert.equal(read.kind, "status");
  assert.deepEqual(read.status, { applicationRunning: true, sessionRunning: true, trackingPaused: false,
    filenameLabelsEnabled: true, browserBundleIdentifier: "org.chromium.Chromium" });
  assert.ok(isRecording(read.status));
});

test("any one condition missing keeps the extension quiet", () => {
  const variants = [
    { applicationRunning: false },
    { sessionRunning: false },
    { trackingPaused: true },
    { applicationRunning: "true" },
    { sessionRunning: 1 },
    { applicationRunning: undefined },
    { trackingPaused: "false", sessionRunning: undefined },
  ];
  for (const change of variants) {
    const read = readHostMessage({ ...recordingStatus, ...change });
    assert.equal(isRecording(read.status), false, JSON.stringify(change));
  }
});

test("a status that does not name the browser leaves it to the fallback", () => {
  const { browserBundleIdentifier, ...rest } = recordingStatus;
  assert.equal(readHostMessage(rest).status.browserBundleIdentifier, undefined);
  assert.equal(readHostMessage({ ...rest, browserBundleIdentifier: 3 }).status.browserBundleIdentifier,
    undefined);
});

test("commands are passed on; anything else is ignored", () => {
  const command = { id: "C6A4B1E2-0000-4000-8000-000000000001", type: "showLocalPDF",
    browserBundleIdentifier: "org.chromium.Chromium", pdfIdentifier: "0A1B2C3D-4E5F-8A6B-9C7D-0E1F2A3B4C5D",
    createdAt: "2026-03-01T10:00:00Z" };
  assert.deepEqual(readHostMessage({ bridgeMessage: "command", command }), { kind: "command", command });
  for (const message of [null, "status", 3, {}, { bridgeMessage: "hello" },
    { bridgeMessage: "command" }, { bridgeMessage: "command", command: { id: "x" } },
    { bridgeMessage: "command", command: null }]) {
    assert.deepEqual(readHostMessage(message), { kind: "ignored" }, JSON.stringify(message));
  }
});
