// The browser event documents the extension sends, one per event, with the
// recorder's keys in its order and optional keys left out when absent.
//
// What a page event may say about a tab (describePage):
// - a private tab: the flag alone, never its hostname, tab identifier or
//   anything of a PDF, and always as a `website` so the kind of page is not
//   told either;
// - a website: its hostname when it has one the recorder accepts, and the
//   tab's temporary identifier;
// - a local PDF: its derived identity, the label from its file name only
//   while the user allows filename labels, and the tab's identifier;
// - anything else: a `website` without hostname (a page nobody can track).

import { labelFromFileURL } from "./pdf_label.js";

export const EVENT_TYPES = Object.freeze([
  "browserBecameActive",
  "tabActivated",
  "tabNavigated",
  "browserWindowFocused",
  "browserWindowBlurred",
  "tabClosed",
  "extensionDisconnected",
  "heartbeat",
]);

// The events that describe the active tab.
const PAGE_EVENTS = new Set(["browserBecameActive", "tabActivated", "tabNavigated",
  "browserWindowFocused", "heartbeat"]);

const KEY_ORDER = [
  "id",
  "browserDisplayName",
  "browserBundleIdentifier",
  "hostname",
  "temporaryTabIdentifier",
  "timestamp",
  "eventType",
  "isPrivate",
  "resourceType",
  "pdfIdentifier",
  "pdfLabel",
  "pdfLabelSource",
  "localFilePermission",
];

// The temporary identifier of a tab: the browser's tab number behind a
// prefix chosen once per browser run, so that tab 5 of today's run is not
// taken for tab 5 of yesterday's.
export function temporaryTabIdentifier(runPrefix, tabId) {
  return `${runPrefix}-${tabId}`;
}

// What a page event says about one tab. `tab` holds `id`, `incognito` and
// the classification of its URL (page_classification.js); `pdfIdentifier`
// is the derived identity when the page is a local PDF outside private
// browsing (without it the PDF is reported as a page that cannot be
// tracked, since the recorder needs the identity).
export function describePage({ tab, page, pdfIdentifier, runPrefix, filenameLabelsEnabled }) {
  if (tab.incognito) {
    return { isPrivate: true, resourceType: "website" };
  }
  const tabIdentifier = temporaryTabIdentifier(runPrefix, tab.id);
  if (page.kind === "localPDF" && pdfIdentifier !== undefined) {
    const label = filenameLabelsEnabled ? labelFromFileURL(page.fileURL) : undefined;
    return {
      temporaryTabIdentifier: tabIdentifier,
      isPrivate: false,
      resourceType: "localPDF",
      pdfIdentifier,
      ...(label === undefined ? {} : { pdfLabel: label, pdfLabelSource: "filename" }),
    };
  }
  return {
    ...(page.kind === "website" && page.hostname ? { hostname: page.hostname } : {}),
    temporaryTabIdentifier: tabIdentifier,
    isPrivate: false,
    resourceType: "website",
  };
}

// What a tabClosed event says about the closed tab: its identifier, unless
// it was private.
export function describeClosedTab({ tabId, wasPrivate, runPrefix }) {
  return wasPrivate
    ? { isPrivate: true, resourceType: "website" }
    : { temporaryTabIdentifier: temporaryTabIdentifier(runPrefix, tabId), isPrivate: false,
      resourceType: "website" };
}

// The event document of `eventType` for `browser` (a row of browsers.js),
// with `fields` from describePage() or describeClosedTab() (none for a
// window that lost focus). `localFilePermission` is left out of a local-PDF
// event unless it is `enabled`: having seen the PDF, nothing else is true.
export function buildEvent({ id, timestamp, browser, eventType, fields = {}, localFilePermission }) {
  if (!EVENT_TYPES.includes(eventType)) {
    throw new RangeError(`unknown event type ${eventType}`);
  }
  const resourceType = fields.resourceType ?? "website";
  const permission = resourceType === "localPDF" && localFilePermission !== "enabled"
    ? undefined
    : localFilePermission;
  const values = {
    isPrivate: false,
    ...fields,
    id,
    browserDisplayName: browser.displayName,
    browserBundleIdentifier: browser.bundleIdentifier,
    timestamp,
    eventType,
    resourceType,
    localFilePermission: permission,
  };
  const event = {};
  for (const key of KEY_ORDER) {
    if (values[key] !== undefined) {
      event[key] = values[key];
    }
  }
  return event;
}

// Whether a navigation would only repeat the last event sent (`last`: its
// eventType and fields): the same tab still showing what that event said,
// as after a change of the fragment, another page of the same site, or a
// PDF viewer rewriting its URL. Such navigations are not sent; heartbeats
// keep the page fresh.
export function repeatsLastEvent(last, eventType, fields) {
  return eventType === "tabNavigated" && last !== undefined && PAGE_EVENTS.has(last.eventType) &&
    JSON.stringify(last.fields) === JSON.stringify(fields);
}
