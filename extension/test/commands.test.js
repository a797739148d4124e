import assert from "node:assert/strict";
import { test } from "node:test";

import { commandAction, findPDFTab } from "../src/commands.js";

test("each known command with what it needs becomes its action", () => {
  assert.deepEqual(commandAction({ type: "setFilenameLabelsEnabled", filenameLabelsEnabled: false }),
    { action: "setFilenameLabelsEnabled", enabled: false });
  assert.deepEqual(commandAction({ type: "showLocalPDF", pdfIdentifier: "ABC" }),
    { action: "showLocalPDF", pdfIdentifier: "ABC" });
});

test("commands missing their value or of an unknown type are ignored", () => {
  for (const command of [
    { type: "setFilenameLabelsEnabled" },
    { type: "setFilenameLabelsEnabled", filenameLabelsEnabled: "true" },
    { type: "showLocalPDF" },
    { type: "showLocalPDF", pdfIdentifier: 5 },
    { type: "closeTab", pdfIdentifier: "ABC" },
  ]) {
    assert.deepEqual(commandAction(command), { action: "ignore" }, JSON.stringify(command));
  }
});

const identities = {
  "file:///tmp/a.pdf": "aaaaaaaa-0000-8000-8000-000000000001",
  "file:///tmp/b.pdf": "bbbbbbbb-0000-8000-8000-000000000002",
};

test("the tab showing the PDF is found by its identity, in any case", async () => {
  const identified = [];
  const identify = async (fileURL) => {
    identified.push(fileURL);
    return identities[fileURL];
  };
  const tabs = [
    { id: 1, incognito: false, url: "https://example.com/" },
    { id: 2, incognito: false, url: "file:///tmp/a.pdf#page=3" },
    { id: 3, incognito: false, url: "file:///tmp/b.pdf" },
  ];
  const found = await findPDFTab(tabs, "BBBBBBBB-0000-8000-8000-000000000002", identify);
  assert.equal(found.id, 3);
  assert.deepEqual(identified, ["file:///tmp/a.pdf", "file:///tmp/b.pdf"]);
});

test("private tabs and tabs without a URL never match", async () => {
  const tabs = [
    { id: 1, incognito: true, url: "file:///tmp/a.pdf" },
    { id: 2, incognito: false },
  ];
  assert.equal(await findPDFTab(tabs, identities["file:///tmp/a.pdf"], async (u) => identities[u]),
    undefined);
});
