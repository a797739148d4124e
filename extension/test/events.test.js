import assert from "node:assert/strict";
import { test } from "node:test";

import { buildEvent, describeClosedTab, describePage, repeatsLastEvent } from "../src/events.js";
import { classifyUrl } from "../src/page_classification.js";

const chromium = { bundleIdentifier: "org.chromium.Chromium", displayName: "Chromium" };
const common = { id: "6f1c2b43-2f1e-4a57-9a61-0f3c1e7d2b10", timestamp: "2026-03-01T10:00:00.000Z",
  browser: chromium };
const pdfIdentifier = "0a1b2c3d-4e5f-8a6b-9c7d-0e1f2a3b4c5d";

function page(url, { incognito = false, labels = false } = {}) {
  return describePage({ tab: { id: 7, incognito }, page: classifyUrl(url), pdfIdentifier,
    runPrefix: "k3x9q2ab", filenameLabelsEnabled: labels });
}

test("a website event has the recorder's keys in its order, optional ones only when present", () => {
  const event = buildEvent({ ...common, eventType: "tabNavigated",
    fields: page("https://docs.example.com/x?q=1"), localFilePermission: "permissionRequired" });
  assert.deepEqual(Object.entries(event), [
    ["id", common.id],
    ["browserDisplayName", "Chromium"],
    ["browserBundleIdentifier", "org.chromium.Chromium"],
    ["hostname", "docs.example.com"],
    ["temporaryTabIdentifier", "k3x9q2ab-7"],
    ["timestamp", common.timestamp],
    ["eventType", "tabNavigated"],
    ["isPrivate", false],
    ["resourceType", "website"],
    ["localFilePermission", "permissionRequired"],
  ]);
});

test("a local PDF event carries its identity and, only while labels are allowed, its file name", () => {
  const withoutLabel = buildEvent({ ...common, eventType: "heartbeat",
    fields: page("file:///home/ada/My%20Notes.pdf"), localFilePermission: "enabled" });
  assert.deepEqual(Object.keys(withoutLabel), ["id", "browserDisplayName", "browserBundleIdentifier",
    "temporaryTabIdentifier", "timestamp", "eventType", "isPrivate", "resourceType", "pdfIdentifier",
    "localFilePermission"]);
  assert.equal(withoutLabel.resourceType, "localPDF");
  assert.equal(withoutLabel.pdfIdentifier, pdfIdentifier);

  const withLabel = buildEvent({ ...common, eventType: "heartbeat",
    fields: page("file:///home/ada/My%20Notes.pdf", { labels: true }) });
  assert.deepEqual(Object.keys(withLabel).slice(-3), ["pdfIdentifier", "pdfLabel", "pdfLabelSource"]);
  assert.equal(withLabel.pdfLabel, "My Notes.pdf");
  assert.equal(withLabel.pdfLabelSource, "filename");
});

test("a local PDF event never reports a file permission other than enabled", () => {
  const event = buildEvent({ ...common, eventType: "tabActivated",
    fields: page("file:///tmp/x.pdf"), localFilePermission: "permissionRequired" });
  assert.equal("localFilePermission" in event, false);
});

test("a local PDF without identity is reported as a page that cannot be tracked", () => {
  const fields = describePage({ tab: { id: 7, incognito: false }, page: classifyUrl("file:///tmp/x.pdf"),
    pdfIdentifier: undefined, runPrefix: "k3x9q2ab", filenameLabelsEnabled: true });
  const event = buildEvent({ ...common, eventType: "tabActivated", fields });
  assert.equal(event.resourceType, "website");
  for (const key of ["hostname", "pdfIdentifier", "pdfLabel", "pdfLabelSource"]) {
    assert.equal(key in event, false, key);
  }
});

test("a private tab is the flag alone, whatever it shows", () => {
  for (const url of ["https://docs.example.com/", "file:///home/ada/secret.pdf", "about:blank"]) {
    const event = buildEvent({ ...common, eventType: "tabActivated",
      fields: page(url, { incognito: true, labels: true }), localFilePermission: "enabled" });
    assert.deepEqual(Object.keys(event), ["id", "browserDisplayName", "browserBundleIdentifier",
      "timestamp", "eventType", "isPrivate", "resourceType", "localFilePermission"], url);
    assert.equal(event.isPrivate, true);
    assert.equal(event.resourceType, "website");
  }
});

test("restricted pages are websites without hostname but with their tab", () => {
  const event = buildEvent({ ...common, eventType: "tabActivated", fields: page("chrome://newtab/") });
  assert.equal("hostname" in event, false);
  assert.equal(event.temporaryTabIdentifier, "k3x9q2ab-7");
  assert.equal(event.resourceType, "website");
});

test("a blur carries no page field and no tab", () => {
  const event = buildEvent({ ...common, eventType: "browserWindowBlurred", localFilePermission: "enabled" });
  assert.deepEqual(Object.keys(event), ["id", "browserDisplayName", "browserBundleIdentifier",
    "timestamp", "eventType", "isPrivate", "resourceType", "localFilePermission"]);
  assert.equal(event.isPrivate, false);
  assert.equal(event.resourceType, "website");
});

test("a closed tab is named unless it was private", () => {
  const closed = buildEvent({ ...common, eventType: "tabClosed",
    fields: describeClosedTab({ tabId: 12, wasPrivate: false, runPrefix: "k3x9q2ab" }) });
  assert.equal(closed.temporaryTabIdentifier, "k3x9q2ab-12");
  const closedPrivate = buildEvent({ ...common, eventType: "tabClosed",
    fields: describeClosedTab({ tabId: 12, wasPrivate: true, runPrefix: "k3x9q2ab" }) });
  assert.equal("temporaryTabIdentifier" in closedPrivate, false);
  assert.equal(closedPrivate.isPrivate, true);
});

test("an event type the recorder does not know is refused before it is sent", () => {
  assert.throws(() => buildEvent({ ...common, eventType: "pageLoaded" }), RangeError);
});

test("the document serialises to JSON with the same key order", () => {
  const event = buildEvent({ ...common, eventType: "heartbeat", fields: page("https://a.example/") });
  assert.match(JSON.stringify(event),
    /^\{"id":.*,"browserDisplayName":.*,"browserBundleIdentifier":.*,"hostname":"a\.example","temporaryTabIdentifier":.*,"timestamp":.*,"eventType":"heartbeat","isPrivate":false,"resourceType":"website"\}$/);
});

test("a navigation that shows the same tab's page again is a repeat; anything else is not", () => {
  const site = page("https://a.example/one");
  const last = { eventType: "tabNavigated", fields: site };
  assert.ok(repeatsLastEvent(last, "tabNavigated", page("https://a.example/two#x")));
  assert.ok(repeatsLastEvent({ eventType: "heartbeat", fields: site }, "tabNavigated", site));
  assert.ok(!repeatsLastEvent(last, "tabNavigated", page("https://b.example/")));
  assert.ok(!repeatsLastEvent(last, "tabNavigated", page("https://a.example/", { incognito: true })));
  assert.ok(!repeatsLastEvent(last, "heartbeat", site));
  assert.ok(!repeatsLastEvent(last, "tabActivated", site));
  assert.ok(!repeatsLastEvent(undefined, "tabNavigated", site));
  assert.ok(!repeatsLastEvent({ eventType: "browserWindowBlurred", fields: {} }, "tabNavigated", site));
  const otherTab = describePage({ tab: { id: 8, incognito: false }, page: classifyUrl("https://a.example/"),
    runPrefix: "k3x9q2ab", filenameLabelsEnabled: false });
  assert.ok(!repeatsLastEvent(last, "tabNavigated", otherTab));
});
