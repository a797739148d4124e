// Debian's Chromium with the unpacked extension, headed on the test's X
// display so that its window is the frontmost one, driven by puppeteer-core
// over the DevTools protocol. Chromium is started directly (not through
// puppeteer's launcher) with the flags that keep it off the network, and
// closed through the protocol.

import { spawn } from "node:child_process";
import puppeteer from "puppeteer-core";

const EXECUTABLE = "/usr/lib/chromium/chromium";
const START_TIMEOUT_MS = 30_000;
const EXIT_TIMEOUT_MS = 10_000;

function chromiumArguments({ userDataDir, extensionDir }) {
  return [
    "--no-sandbox",
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--no-default-browser-check",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--disable-dev-shm-usage",
    "--password-store=basic",
    `--user-data-dir=${userDataDir}`,
    `--load-extension=${extensionDir}`,
    `--disable-extensions-except=${extensionDir}`,
    "--remote-debugging-port=0",
    "about:blank",
  ];
}

function devToolsEndpoint(child) {
  return new Promise((resolve, reject) => {
    let output = "";
    const timer = setTimeout(() => {
      reject(new Error(`Chromium did not open DevTools within ${START_TIMEOUT_MS} ms:\n${output}`));
    }, START_TIMEOUT_MS);
    child.stderr.on("data", (chunk) => {
      output += chunk;
      const match = /DevTools listening on (ws:\/\/\S+)/.exec(output);
      if (match) {
        clearTimeout(timer);
        resolve(match[1]);
      }
    });
    child.once("exit", (code, signal) => {
      clearTimeout(timer);
      reject(new Error(`Chromium exited (${code ?? signal}) before DevTools opened:\n${output}`));
    });
    child.once("error", (error) => {
      clearTimeout(timer);
      reject(error);
    });
  });
}

function exited(child, timeoutMs) {
  if (child.exitCode !== null || child.signalCode !== null) {
    return Promise.resolve(true);
  }
  return new Promise((resolve) => {
    const timer = setTimeout(() => resolve(false), timeoutMs);
    child.once("exit", () => {
      clearTimeout(timer);
      resolve(true);
    });
  });
}

// Starts Chromium; resolves to { browser, close() }. A Chromium that cannot
// start rejects with its output.
export async function launchChromium({ userDataDir, extensionDir }) {
  // timeout bounds a Chromium the test fails to close; a TERM sent to it
  // reaches Chromium, and a KILL follows five seconds later.
  const child = spawn("timeout", ["-k", "5", "300", EXECUTABLE, ...chromiumArguments({ userDataDir, extensionDir })],
    { stdio: ["ignore", "ignore", "pipe"] });
  let browser;
  try {
    browser = await puppeteer.connect({ browserWSEndpoint: await devToolsEndpoint(child),
      defaultViewport: null });
  } catch (error) {
    child.kill("SIGTERM");
    await exited(child, EXIT_TIMEOUT_MS);
    throw error;
  }
  child.stderr.resume();
  return {
    browser,
    async close() {
      await browser.close().catch(() => {});
      if (!(await exited(child, EXIT_TIMEOUT_MS))) {
        child.kill("SIGTERM");
        await exited(child, EXIT_TIMEOUT_MS);
      }
    },
  };
}

// Turns on developer mode and lets the extension run in incognito windows,
// as a user does on chrome://extensions. Chromium reloads the extension for
// the change; the caller starts the browser again to work with it settled.
export async function allowExtensionInIncognito(browser, extensionId) {
  const page = await browser.newPage();
  await page.goto("chrome://extensions/");
  const access = await page.evaluate(async (id) => {
    await chrome.developerPrivate.updateProfileConfiguration({ inDeveloperMode: true });
    await chrome.developerPrivate.updateExtensionConfiguration({ extensionId: id, incognitoAccess: true });
    return (await chrome.developerPrivate.getExtensionInfo(id)).incognitoAccess.isActive;
  }, extensionId);
  if (!access) {
    throw new Error("Chromium did not let the extension run in incognito windows");
  }
}

// The extension's service worker, once its APIs are there.
async function extensionWorker(browser, extensionId, timeoutMs) {
  const target = await browser.waitForTarget((candidate) => candidate.type() === "service_worker" &&
    candidate.url().startsWith(`chrome-extension://${extensionId}/`), { timeout: timeoutMs });
  const worker = await target.worker();
  const deadline = Date.now() + timeoutMs;
  while (!(await worker.evaluate(() => globalThis.chrome?.windows !== undefined))) {
    if (Date.now() > deadline) {
      throw new Error("the extension's service worker never got its APIs");
    }
    await new Promise((resolve) => setTimeout(resolve, 50));
  }
  return worker;
}

// Opens an incognito window on `url`, as the user would with Ctrl+Shift+N.
// DevTools cannot open one (its browser contexts are separate profiles that
// extensions never see), so the extension's own worker asks for it.
export async function openIncognitoWindow(browser, extensionId, url) {
  const worker = await extensionWorker(browser, extensionId, 10_000);
  await worker.evaluate((address) => chrome.windows.create({ incognito: true, url: address }), url);
}
