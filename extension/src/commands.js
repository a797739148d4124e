// What the extension does with a command the recorder queued for it:
// - setFilenameLabelsEnabled: adopt the new value and report the current tab
//   again, so that a PDF label appears or disappears at once;
// - showLocalPDF: bring the tab that shows the PDF of that identity to the
//   front, with its window.
// A command missing what it needs, or of a type this version does not know,
// is ignored.

import { classifyUrl } from "./page_classification.js";
import { samePDF } from "./pdf_identity.js";

export function commandAction(command) {
  if (command.type === "setFilenameLabelsEnabled" && typeof command.filenameLabelsEnabled === "boolean") {
    return { action: "setFilenameLabelsEnabled", enabled: command.filenameLabelsEnabled };
  }
  if (command.type === "showLocalPDF" && typeof command.pdfIdentifier === "string") {
    return { action: "showLocalPDF", pdfIdentifier: command.pdfIdentifier };
  }
  return { action: "ignore" };
}

// The first of `tabs` (tabs.Tab objects, in the browser's order) that shows
// the local PDF `pdfIdentifier`, or undefined. `identify(fileURL)` derives a
// PDF's identity; private tabs never have one, so they never match.
export async function findPDFTab(tabs, pdfIdentifier, identify) {
  for (const tab of tabs) {
    if (tab.incognito) {
      continue;
    }
    const page = classifyUrl(tab.url ?? "");
    if (page.kind === "localPDF" && samePDF(await identify(page.fileURL), pdfIdentifier)) {
      return tab;
    }
  }
  return undefined;
}
