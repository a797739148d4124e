// Debian's Firefox ESR with the packed extension side-loaded into a fresh
// test profile, headed on the test's X display so that its window is the
// frontmost one, driven by puppeteer-core over WebDriver BiDi (there is no
// geckodriver here).

import { copyFileSync, mkdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import puppeteer from "puppeteer-core";

const EXECUTABLE = "/usr/lib/firefox-esr/firefox-esr";
const START_TIMEOUT_MS = 30_000;

// Unsigned add-ons load in ESR once signatures are not required; an add-on
// found in the profile's extensions folder is enabled without asking.
const PREFERENCES = {
  "xpinstall.signatures.required": false,
  "extensions.autoDisableScopes": 0,
  "extensions.enabledScopes": 15,
};

// Places the add-on in a new profile. With `allowInPrivate`, the profile
// also holds the permission a user grants with "Run in Private Windows":
// Firefox reads extension permissions from extension-preferences.json when
// it has no newer permission store yet.
export function prepareFirefoxProfile({ profileDir, xpiPath, addonId, allowInPrivate }) {
  mkdirSync(join(profileDir, "extensions"), { recursive: true });
  copyFileSync(xpiPath, join(profileDir, "extensions", `${addonId}.xpi`));
  if (allowInPrivate) {
    const permissions = { [addonId]: { permissions: ["internal:privateBrowsingAllowed"], origins: [] } };
    writeFileSync(join(profileDir, "extension-preferences.json"), JSON.stringify(permissions));
  }
}

// Starts Firefox on the prepared profile; resolves to { browser, close() }.
export async function launchFirefox({ profileDir }) {
  const browser = await puppeteer.launch({
    browser: "firefox",
    executablePath: EXECUTABLE,
    headless: false,
    userDataDir: profileDir,
    extraPrefsFirefox: PREFERENCES,
    defaultViewport: null,
    timeout: START_TIMEOUT_MS,
    protocolTimeout: START_TIMEOUT_MS,
  });
  return {
    browser,
    async close() {
      await browser.close();
    },
  };
}
