// The browsers the recorder accepts events from: one row per browser with
// the canonical identifier the whole system uses for it and its display
// name, and the fallback that guesses the browser from what the browser
// itself says when the native host has not named it yet.

export const SUPPORTED_BROWSERS = Object.freeze([
  { bundleIdentifier: "com.google.Chrome", displayName: "Google Chrome" },
  { bundleIdentifier: "com.microsoft.edgemac", displayName: "Microsoft Edge" },
  { bundleIdentifier: "com.brave.Browser", displayName: "Brave" },
  { bundleIdentifier: "company.thebrowser.Browser", displayName: "Arc" },
  { bundleIdentifier: "com.operasoftware.Opera", displayName: "Opera" },
  { bundleIdentifier: "com.vivaldi.Vivaldi", displayName: "Vivaldi" },
  { bundleIdentifier: "com.apple.Safari", displayName: "Safari" },
  { bundleIdentifier: "org.mozilla.firefox", displayName: "Firefox" },
  { bundleIdentifier: "org.chromium.Chromium", displayName: "Chromium" },
]);

const CHROMIUM = "org.chromium.Chromium";
const FIREFOX = "org.mozilla.firefox";

// The row of exactly `bundleIdentifier`, or undefined for any other value.
export function supportedBrowser(bundleIdentifier) {
  return SUPPORTED_BROWSERS.find((row) => row.bundleIdentifier === bundleIdentifier);
}

// Brand names of the User-Agent Client Hints, in the order they are tried:
// a browser lists its own brand beside "Chromium", so the specific brands
// come first.
const BRANDS = [
  ["Google Chrome", "com.google.Chrome"],
  ["Microsoft Edge", "com.microsoft.edgemac"],
  ["Brave", "com.brave.Browser"],
  ["Opera", "com.operasoftware.Opera"],
  ["Vivaldi", "com.vivaldi.Vivaldi"],
];

// Tokens of the User-Agent string of browsers that name themselves there.
const USER_AGENT_TOKENS = [
  [/\bFirefox\//, FIREFOX],
  [/\bEdg\//, "com.microsoft.edgemac"],
  [/\bOPR\//, "com.operasoftware.Opera"],
  [/\bVivaldi\//, "com.vivaldi.Vivaldi"],
];

// The browser this extension most likely runs in, from `userAgent`
// (navigator.userAgent), `brands` (navigator.userAgentData.brands, absent
// outside Chromium-family browsers) and `isBrave` (navigator.brave exists).
// Chrome and Chromium send the same User-Agent string; only the brands tell
// them apart, and a Chromium-family browser that names no known brand is
// taken for Chromium. The native host identifies the browser from its parent
// process, and its answer replaces this guess.
export function browserFromUserAgent({ userAgent = "", brands = [], isBrave = false } = {}) {
  if (isBrave) {
    return "com.brave.Browser";
  }
  const brandNames = new Set(brands.map((entry) => entry && entry.brand));
  for (const [brand, identifier] of BRANDS) {
    if (brandNames.has(brand)) {
      return identifier;
    }
  }
  for (const [token, identifier] of USER_AGENT_TOKENS) {
    if (token.test(userAgent)) {
      return identifier;
    }
  }
  return CHROMIUM;
}

// The browser to name in events: the host's identification when it is a
// supported browser, else the fallback guess.
export function effectiveBrowser(hostIdentifier, fallbackIdentifier) {
  return supportedBrowser(hostIdentifier) ?? supportedBrowser(fallbackIdentifier) ??
    supportedBrowser(CHROMIUM);
}
