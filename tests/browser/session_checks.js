// What the stored session and the recorder's event log must show after the
// scenario: the two websites with their rules' classes (the first again once
// the second one's tab closed, and again after tracking was paused and
// resumed, with the paused time recorded without a page), the local PDF by
// its identity and file name, the private window without any hostname, and
// no event refused by the recorder's validation.

import assert from "node:assert/strict";

const UUID = /^[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}$/;
const MINIMUM_SECONDS = 1;

export function checkBrowserEvents(log) {
  assert.ok(!/\brefused\b/.test(log), `the recorder refused events:\n${log}`);
  for (const expected of [/accepted .* website 127\.0\.0\.1/, /accepted .* website localhost/,
    /accepted .* tabClosed/, /accepted .* localPDF/, /accepted .* private/]) {
    assert.match(log, expected);
  }
}

// The browser's segments in order, consecutive ones that show the same page
// merged (a focus change may split a stretch).
function browserStretches(segments, browserBundleIdentifier) {
  const stretches = [];
  for (const segment of segments) {
    if (segment.browserBundleIdentifier !== browserBundleIdentifier) {
      continue;
    }
    const key = segment.hostname ?? segment.pdfIdentifier ?? `(${segment.browserFallbackReason})`;
    const last = stretches.at(-1);
    if (last && last.key === key) {
      last.duration += segment.duration;
    } else {
      stretches.push({ key, duration: segment.duration, first: segment });
    }
  }
  return stretches;
}

export function checkSegments(segments, { browserBundleIdentifier }) {
  const stretches = browserStretches(segments, browserBundleIdentifier);
  const describe = JSON.stringify(segments, null, 1);
  const index = (predicate, what) => {
    const found = stretches.findIndex(predicate);
    assert.ok(found >= 0, `no ${what} among the segments:\n${describe}`);
    assert.ok(stretches[found].duration >= MINIMUM_SECONDS,
      `the ${what} lasted only ${stretches[found].duration} s:\n${describe}`);
    return found;
  };

  const first = index((s) => s.first.hostname === "127.0.0.1", "first website");
  const firstSegment = stretches[first].first;
  assert.equal(firstSegment.activitySource, "website");
  assert.equal(firstSegment.classification, "focused");

  const second = index((s) => s.first.hostname === "localhost", "second website");
  assert.equal(stretches[second].first.classification, "distracting");
  const firstAgain = stretches.findIndex((s, at) => at > second && s.first.hostname === "127.0.0.1");
  assert.ok(firstAgain > second, `the first website did not come back after its tab:\n${describe}`);

  const pdf = index((s) => s.first.activitySource === "localPDF", "local PDF");
  const pdfSegment = stretches[pdf].first;
  assert.match(pdfSegment.pdfIdentifier, UUID);
  assert.equal(pdfSegment.pdfDisplayLabel, "notes.pdf");
  assert.equal(pdfSegment.hostname, undefined);

  const afterPDF = stretches.slice(pdf + 1);
  const privateWindow = afterPDF.find((s) => s.first.browserFallbackReason === "privateOrRestricted");
  assert.ok(privateWindow && privateWindow.duration >= MINIMUM_SECONDS,
    `no private stretch after the PDF:\n${describe}`);
  for (const stretch of afterPDF) {
    assert.equal(stretch.first.hostname, undefined, `a hostname after the private window opened:\n${describe}`);
  }
  const paused = stretches.findIndex((s, at) => at > firstAgain && s.first.browserFallbackReason === "paused");
  assert.ok(paused > firstAgain && stretches[paused].duration >= MINIMUM_SECONDS,
    `no paused stretch after the first website came back:\n${describe}`);
  const resumed = stretches.findIndex((s, at) => at > paused && s.first.hostname === "127.0.0.1");
  assert.ok(first < second && second < firstAgain && firstAgain < paused && paused < resumed &&
    resumed < pdf, `the pages are out of order:\n${describe}`);

  const hostnames = new Set(segments.map((segment) => segment.hostname).filter(Boolean));
  assert.deepEqual([...hostnames].sort(), ["127.0.0.1", "localhost"]);
}
