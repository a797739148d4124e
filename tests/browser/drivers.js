// The two browsers behind one shape, for the scenario:
//   prepare({profileDir, packagesDir}) -> { bundleIdentifier, launch() }
//   launch() -> { goto(url), openTab(url) -> { close() }, openPrivateWindow(url), close() }
// prepare() readies a fresh profile with the extension allowed in private
// windows (as a user allows it); launch() starts the browser on it, headed,
// so that its window comes to the front.

import { readFileSync } from "node:fs";
import { join } from "node:path";

import { allowExtensionInIncognito, launchChromium, openIncognitoWindow } from "./chromium.js";
import { pressKeys } from "./desktop.js";
import { launchFirefox, prepareFirefoxProfile } from "./firefox.js";

const ids = JSON.parse(readFileSync(new URL("../../extension/ids.json", import.meta.url), "utf8"));
const NAVIGATION_TIMEOUT_MS = 15_000;

function navigate(page, url) {
  return page.goto(url, { waitUntil: "domcontentloaded", timeout: NAVIGATION_TIMEOUT_MS });
}

// A new tab in front of the browser's window, showing `url`.
async function openTab(browser, url) {
  const page = await browser.newPage();
  await navigate(page, url);
  return { close: () => page.close() };
}

export const chromiumDriver = {
  async prepare({ profileDir, packagesDir }) {
    const extensionDir = join(packagesDir, "chromium");
    const setup = await launchChromium({ userDataDir: profileDir, extensionDir });
    try {
      await allowExtensionInIncognito(setup.browser, ids.chromiumExtensionId);
    } finally {
      await setup.close();
    }
    return {
      bundleIdentifier: "org.chromium.Chromium",
      async launch() {
        const chromium = await launchChromium({ userDataDir: profileDir, extensionDir });
        const [page] = await chromium.browser.pages();
        return {
          goto: (url) => navigate(page, url),
          openTab: (url) => openTab(chromium.browser, url),
          openPrivateWindow: (url) => openIncognitoWindow(chromium.browser, ids.chromiumExtensionId, url),
          close: chromium.close,
        };
      },
    };
  },
};

async function privatePage(browser, timeoutMs) {
  const deadline = Date.now() + timeoutMs;
  while (Date.now() < deadline) {
    const found = (await browser.pages()).find((page) => page.url() === "about:privatebrowsing");
    if (found) {
      return found;
    }
    await new Promise((resolve) => setTimeout(resolve, 50));
  }
  throw new Error("Firefox opened no private window");
}

export const firefoxDriver = {
  async prepare({ profileDir, packagesDir }) {
    prepareFirefoxProfile({ profileDir, xpiPath: join(packagesDir, "lumenote-firefox.xpi"),
      addonId: ids.firefoxAddonId, allowInPrivate: true });
    return {
      bundleIdentifier: "org.mozilla.firefox",
      async launch() {
        const firefox = await launchFirefox({ profileDir });
        const [page] = await firefox.browser.pages();
        return {
          goto: (url) => navigate(page, url),
          openTab: (url) => openTab(firefox.browser, url),
          // WebDriver BiDi opens no private windows: the user's shortcut
          // does, typed into the Firefox window in front.
          async openPrivateWindow(url) {
            await pressKeys("ctrl+shift+p");
            await navigate(await privatePage(firefox.browser, 10_000), url);
          },
          close: firefox.close,
        };
      },
    };
  },
};
