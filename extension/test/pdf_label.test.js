import assert from "node:assert/strict";
import { test } from "node:test";

import { labelFromFileURL } from "../src/pdf_label.js";

test("the label is the decoded file name", () => {
  assert.equal(labelFromFileURL("file:///home/ada/My%20Notes.pdf"), "My Notes.pdf");
  assert.equal(labelFromFileURL("file:///home/ada/R%C3%A9sum%C3%A9%20%E2%80%94%20v2.pdf"),
    "Résumé — v2.pdf");
  assert.equal(labelFromFileURL("file:///home/ada/100%25.pdf"), "100%.pdf");
});

test("a name that is not valid percent-encoded UTF-8 is kept as it is", () => {
  assert.equal(labelFromFileURL("file:///tmp/bad%E0%A4.pdf"), "bad%E0%A4.pdf");
});

test("control characters and line separators are removed", () => {
  assert.equal(labelFromFileURL("file:///tmp/a%0Ab%09c%7Fd%C2%85e%E2%80%A8f%E2%80%A9g.pdf"),
    "abcdefg.pdf");
});

test("a name of only white space and control characters gives no label", () => {
  assert.equal(labelFromFileURL("file:///tmp/%20%0A%20"), undefined);
  assert.equal(labelFromFileURL("file:///tmp/"), undefined);
});

test("a long name is cut at 200 characters without splitting a character", () => {
  const name = "📘".repeat(250);
  const label = labelFromFileURL(`file:///tmp/${encodeURIComponent(name)}.pdf`);
  assert.equal(Array.from(label).length, 200);
  assert.equal(label, "📘".repeat(200));
  const exact = "a".repeat(196);
  assert.equal(labelFromFileURL(`file:///tmp/${exact}.pdf`), `${exact}.pdf`);
});

test("white space left at the end by the cut is trimmed", () => {
  const name = `${"a".repeat(199)} b.pdf`;
  assert.equal(labelFromFileURL(`file:///tmp/${encodeURIComponent(name)}`), "a".repeat(199));
});
