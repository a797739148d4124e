// What kind of page a tab's URL shows, which decides what an event may say
// about it:
// - `website`: an http or https page; its hostname goes into events when the
//   recorder's hostname rule accepts it, and nothing else of the URL ever does;
// - `localPDF`: a file:// URL whose path ends in ".pdf" (any case); its
//   identity is derived from `fileURL`, the URL without query and fragment;
// - `restricted`: everything else (the browser's own pages, new tabs,
//   about:blank, extension pages, other local files, data: and blob: URLs,
//   an empty or unparsable URL), reported as a website without hostname.

import { normalisedHostname } from "./hostname.js";

const RESTRICTED = Object.freeze({ kind: "restricted" });

export function classifyUrl(urlText) {
  let url;
  try {
    url = new URL(urlText);
  } catch {
    return RESTRICTED;
  }
  if (url.protocol === "http:" || url.protocol === "https:") {
    const hostname = normalisedHostname(url.hostname);
    return hostname === undefined ? { kind: "website" } : { kind: "website", hostname };
  }
  if (url.protocol === "file:" && url.pathname.toLowerCase().endsWith(".pdf")) {
    return { kind: "localPDF", fileURL: `file://${url.host}${url.pathname}` };
  }
  return RESTRICTED;
}
