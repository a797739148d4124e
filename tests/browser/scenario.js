#!/usr/bin/env node
// One browser's end-to-end scenario: the terminal recorder records while a
// real browser with the extension and the real native host shows a website
// already open when recording starts, a second one in a new tab that is
// closed again, browser tracking paused and resumed from the command line,
// a local PDF, another application and back, and a private window. The stored session must hold exactly what the extension may tell:
// the two hostnames with the classes their rules give, the PDF by its
// identity and file name, and the private window without any hostname. Runs
// inside the private desktop of browser_bridge_test.sh (X display, buses,
// HOME, TMPDIR).

import { mkdirSync } from "node:fs";
import { join } from "node:path";
import { parseArgs } from "node:util";

import { activateWindow, activeWindow } from "./desktop.js";
import { chromiumDriver, firefoxDriver } from "./drivers.js";
import { recorderCli } from "./recorder_cli.js";
import { checkBrowserEvents, checkSegments } from "./session_checks.js";
import { startTestSite, writeLocalPDF } from "./test_site.js";

const OTHER_APPLICATION = "LumenoteAlpha";
const USAGE = `usage: scenario.js --browser chromium|firefox --bin BIN_DIR --extension PACKAGES_DIR
                   --work DIR --other-window X_WINDOW_ID

Runs the recorder and the browser with the extension from PACKAGES_DIR (the
output of extension/tools/build.js) and the native host from BIN_DIR, in DIR,
and checks the stored session. X_WINDOW_ID is a window of another
application, named "${OTHER_APPLICATION}", to switch to and back. Exits 1
with the reason when a check fails.`;

const DRIVERS = { chromium: chromiumDriver, firefox: firefoxDriver };
const SECONDS_PER_PAGE = 2;

function options() {
  const { values } = parseArgs({
    options: {
      browser: { type: "string" },
      bin: { type: "string" },
      extension: { type: "string" },
      work: { type: "string" },
      "other-window": { type: "string" },
      help: { type: "boolean" },
    },
  });
  if (values.help) {
    console.log(USAGE);
    process.exit(0);
  }
  if (!DRIVERS[values.browser] || !values.bin || !values.extension || !values.work ||
      !values["other-window"]) {
    console.error(USAGE);
    process.exit(2);
  }
  return values;
}

const shows = (activity) => (text) => text.includes(` · ${activity} (`);
// The browser in front, named by itself rather than by a page.
const showsNoPage = (text) => {
  const activity = / · recording · [\d:]+ · (.+) \(/.exec(text)?.[1];
  return activity !== undefined && !["127.0.0.1", "localhost", "notes.pdf"].includes(activity);
};

function step(description) {
  console.log(`${(performance.now() / 1000).toFixed(1)} s: ${description}`);
}

async function run({ browser: browserName, bin, extension, work, "other-window": otherWindow }) {
  const cli = recorderCli(bin);
  const site = await startTestSite();
  const pdfURL = writeLocalPDF(work, "notes.pdf");
  let driver;
  let recorder;
  try {
    await cli.run("rules", "set-website", "127.0.0.1", "focused");
    await cli.run("rules", "set-website", "localhost", "distracting");

    // Chromium's profile is its default one under the test's XDG_CONFIG_HOME,
    // where `browser register` writes the manifest; Firefox reads the
    // manifest under the test's HOME whatever its profile.
    const profileDir = browserName === "chromium"
      ? join(process.env.XDG_CONFIG_HOME, "chromium")
      : join(work, `${browserName}-profile`);
    mkdirSync(profileDir, { recursive: true });
    await cli.run("browser", "register", browserName);
    step("preparing the browser profile");
    const prepared = await DRIVERS[browserName].prepare({ profileDir, packagesDir: extension });

    step("starting the browser before the recorder");
    driver = await prepared.launch();
    await driver.goto(site.url("127.0.0.1", "/first.html"));
    recorder = cli.startRecording("Reading", work);
    // The extension stays quiet until the host says a session records, then
    // reports the page at once: well before its first heartbeat.
    await cli.waitForStatus("the page already open reported when recording starts",
      shows("127.0.0.1"), 10_000);
    await cli.holdWhileShown("127.0.0.1", SECONDS_PER_PAGE, shows("127.0.0.1"));
    step("first website recorded");

    const tab = await driver.openTab(site.url("localhost", "/second.html"));
    await cli.holdWhileShown("localhost", SECONDS_PER_PAGE, shows("localhost"));
    step("second website recorded in a new tab");
    await tab.close();
    await cli.holdWhileShown("the first tab again", 1, shows("127.0.0.1"));
    step("the new tab closed; the first tab is back in front");

    // Pausing browser tracking from the command line reaches the running
    // recorder, the host and the extension: the browser is recorded by its
    // own name, a page opened meanwhile is not reported until tracking
    // resumes, and then at once.
    await cli.run("prefs", "set", "tracking.browser.paused", "true");
    await cli.holdWhileShown("the browser while tracking is paused", SECONDS_PER_PAGE, showsNoPage);
    await driver.goto(site.url("127.0.0.1", "/while-paused.html"));
    await cli.holdWhileShown("the browser after navigating while paused", 1, showsNoPage);
    await cli.run("prefs", "set", "tracking.browser.paused", "false");
    await cli.waitForStatus("the page reported when tracking resumes", shows("127.0.0.1"), 10_000);
    step("browser tracking paused and resumed");

    await driver.goto(pdfURL);
    await cli.holdWhileShown("notes.pdf", SECONDS_PER_PAGE, shows("notes.pdf"));
    step("local PDF recorded");

    const browserWindow = await activeWindow();
    await activateWindow(otherWindow);
    await cli.waitForStatus("the other application", shows(OTHER_APPLICATION));
    await activateWindow(browserWindow);
    await cli.holdWhileShown("the PDF again", 1, shows("notes.pdf"));
    step("switched to another application and back");

    await driver.openPrivateWindow(site.url("127.0.0.1", "/private.html"));
    await cli.waitForStatus("a private event", async () =>
      /accepted .* private/.test(await cli.run("browser", "events")));
    await cli.holdWhileShown("the private window without its page", SECONDS_PER_PAGE, showsNoPage);
    step("private window recorded");

    checkBrowserEvents(await cli.run("browser", "events"));
    await driver.close();
    driver = undefined;
    step("browser closed");

    await cli.run("end");
    await cli.recorderExited(recorder);
    recorder = undefined;
    const [session] = JSON.parse(await cli.run("sessions", "--json"));
    const stored = JSON.parse(await cli.run("show", session.id, "--json"));
    checkSegments(stored.segments, { browserBundleIdentifier: prepared.bundleIdentifier });
    step("the stored session holds what the extension reported");
  } finally {
    await driver?.close();
    if (recorder && recorder.exitCode === null) {
      recorder.kill("SIGTERM");
    }
    await site.close();
  }
}

run(options()).catch((error) => {
  console.error(`FAIL: ${error.stack ?? error}`);
  process.exit(1);
});
