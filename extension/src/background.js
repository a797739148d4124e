// The extension's background: wires the browser's tab, window, storage and
// native-messaging APIs to the pure modules beside it. It connects to the
// native host at start, says hello, and then reports only while the host's
// last status says that a session records with browser tracking on; it never
// reports anything else of a page than events.js allows.
//
// Every browser callback is queued on one promise chain, so that events go
// out in the order the browser reported them, with increasing timestamps,
// even though describing a tab takes asynchronous steps.

import { browserFromUserAgent, effectiveBrowser } from "./browsers.js";
import { commandAction, findPDFTab } from "./commands.js";
import { connectionProblem, NATIVE_HOST_NAME, reconnectDelay } from "./connection.js";
import { buildEvent, describeClosedTab, describePage, repeatsLastEvent } from "./events.js";
import { localFilePermission } from "./file_access.js";
import { focusEvent } from "./focus.js";
import { helloMessage, isRecording, readHostMessage, SILENT_STATUS } from "./host_messages.js";
import { classifyUrl } from "./page_classification.js";
import { isSalt, newSalt, pdfIdentifier } from "./pdf_identity.js";

const api = globalThis.browser ?? globalThis.chrome;
const NO_WINDOW = api.windows.WINDOW_ID_NONE;

// The recorder takes an event as current for 60 seconds; a heartbeat every
// 15 seconds keeps a page that stays in front fresh even when one or two
// heartbeats are late.
const HEARTBEAT_INTERVAL_MS = 15_000;

const SALT_KEY = "pdfIdentitySalt";
const RUN_PREFIX_KEY = "tabRunPrefix";
const PROBLEM_KEY = "nativeHostProblem";

const state = {
  port: undefined,
  failedAttempts: 0,
  status: SILENT_STATUS,
  filenameLabelsEnabled: false,
  focusedWindowId: NO_WINDOW,
  lastFocusedWindowId: undefined,
  privateTabs: new Set(),
  heartbeat: undefined,
  lastSent: undefined,
  // Loaded once at start (start() below).
  salt: undefined,
  runPrefix: undefined,
  fallbackBrowser: undefined,
  permission: undefined,
};

let chain = Promise.resolve();

function enqueue(task) {
  chain = chain.then(task).catch((error) => {
    // A tab or window that went away meanwhile leaves nothing to report.
    console.warn("Lumenote extension:", error);
  });
  return chain;
}

// ---- start ----

async function loadSalt() {
  const stored = (await api.storage.local.get(SALT_KEY))[SALT_KEY];
  if (isSalt(stored)) {
    return stored;
  }
  const salt = newSalt((bytes) => crypto.getRandomValues(bytes));
  await api.storage.local.set({ [SALT_KEY]: salt });
  return salt;
}

// A prefix for tab identifiers that lasts as long as the browser runs: kept
// in session storage, which outlives a restart of the background but not of
// the browser.
async function loadRunPrefix() {
  const stored = (await api.storage.session.get(RUN_PREFIX_KEY))[RUN_PREFIX_KEY];
  if (typeof stored === "string" && /^[a-z0-9]{8}$/.test(stored)) {
    return stored;
  }
  const prefix = crypto.randomUUID().replace(/-/g, "").slice(0, 8);
  await api.storage.session.set({ [RUN_PREFIX_KEY]: prefix });
  return prefix;
}

async function loadFilePermission() {
  const engine = typeof api.runtime.getBrowserInfo === "function" ? "firefox" : "chromium";
  const allowed = engine === "chromium" && await api.extension.isAllowedFileSchemeAccess();
  return localFilePermission({ engine, fileSchemeAccessAllowed: allowed });
}

// The window that had focus last, or undefined while the browser has none.
async function lastFocusedWindow() {
  try {
    return await api.windows.getLastFocused();
  } catch {
    return undefined;
  }
}

async function loadWindows() {
  const focused = await lastFocusedWindow();
  state.lastFocusedWindowId = focused?.id;
  state.focusedWindowId = focused?.focused ? focused.id : NO_WINDOW;
  for (const tab of await api.tabs.query({})) {
    if (tab.incognito) {
      state.privateTabs.add(tab.id);
    }
  }
}

async function start() {
  state.fallbackBrowser = browserFromUserAgent({
    userAgent: navigator.userAgent,
    brands: navigator.userAgentData?.brands ?? [],
    isBrave: navigator.brave !== undefined,
  });
  state.salt = await loadSalt();
  state.runPrefix = await loadRunPrefix();
  state.permission = await loadFilePermission();
  await loadWindows();
  connect();
}

// ---- the native host ----

function connect() {
  const port = api.runtime.connectNative(NATIVE_HOST_NAME);
  state.port = port;
  port.onMessage.addListener((message) => enqueue(() => receive(port, message)));
  port.onDisconnect.addListener((closed) => {
    const message = api.runtime.lastError?.message ?? closed.error?.message;
    enqueue(() => disconnected(port, message));
  });
  port.postMessage(helloMessage({
    extensionVersion: api.runtime.getManifest().version,
    browserBundleIdentifier: state.fallbackBrowser,
  }));
}

async function disconnected(port, message) {
  if (state.port !== port) {
    return;
  }
  state.port = undefined;
  applyStatus(SILENT_STATUS);
  await api.storage.local.set({ [PROBLEM_KEY]: connectionProblem(message, new Date()) });
  setTimeout(connect, reconnectDelay(state.failedAttempts));
  state.failedAttempts += 1;
}

async function receive(port, message) {
  if (state.port !== port) {
    return;
  }
  const read = readHostMessage(message);
  if (read.kind === "status") {
    if (state.failedAttempts > 0) {
      state.failedAttempts = 0;
      await api.storage.local.remove(PROBLEM_KEY);
    }
    await adoptStatus(read.status);
  } else if (read.kind === "command") {
    await runCommand(read.command);
  }
}

function applyStatus(status) {
  state.status = status;
  if (!isRecording(status)) {
    state.lastSent = undefined;
  }
  if (isRecording(status) && state.heartbeat === undefined) {
    state.heartbeat = setInterval(() => enqueue(sendHeartbeat), HEARTBEAT_INTERVAL_MS);
  } else if (!isRecording(status) && state.heartbeat !== undefined) {
    clearInterval(state.heartbeat);
    state.heartbeat = undefined;
  }
}

async function adoptStatus(status) {
  const wasRecording = isRecording(state.status);
  const labelsChanged = status.filenameLabelsEnabled !== state.filenameLabelsEnabled;
  state.filenameLabelsEnabled = status.filenameLabelsEnabled;
  applyStatus(status);
  if (isRecording(status) && (!wasRecording || labelsChanged)) {
    await reportActiveTab("tabActivated");
  }
}

async function runCommand(command) {
  const action = commandAction(command);
  if (action.action === "setFilenameLabelsEnabled" &&
      action.enabled !== state.filenameLabelsEnabled) {
    state.filenameLabelsEnabled = action.enabled;
    await reportActiveTab("tabActivated");
  } else if (action.action === "showLocalPDF") {
    const tab = await findPDFTab(await api.tabs.query({}), action.pdfIdentifier,
      (fileURL) => pdfIdentifier(state.salt, fileURL, crypto.subtle));
    if (tab !== undefined) {
      await api.tabs.update(tab.id, { active: true });
      await api.windows.update(tab.windowId, { focused: true });
    }
  }
}

// ---- events ----

function send(eventType, fields) {
  if (state.port === undefined || !isRecording(state.status) ||
      repeatsLastEvent(state.lastSent, eventType, fields)) {
    return;
  }
  state.lastSent = { eventType, fields };
  state.port.postMessage(buildEvent({
    id: crypto.randomUUID(),
    timestamp: new Date().toISOString(),
    browser: effectiveBrowser(state.status.browserBundleIdentifier, state.fallbackBrowser),
    eventType,
    fields,
    localFilePermission: state.permission,
  }));
}

async function describeTab(tab) {
  const page = classifyUrl(tab.url || tab.pendingUrl || "");
  const identity = page.kind === "localPDF" && !tab.incognito
    ? await pdfIdentifier(state.salt, page.fileURL, crypto.subtle)
    : undefined;
  return describePage({
    tab,
    page,
    pdfIdentifier: identity,
    runPrefix: state.runPrefix,
    filenameLabelsEnabled: state.filenameLabelsEnabled,
  });
}

async function report(eventType, tab) {
  if (!isRecording(state.status)) {
    return;
  }
  if (tab.incognito) {
    state.privateTabs.add(tab.id);
  }
  send(eventType, await describeTab(tab));
}

async function activeTab(windowId) {
  const [tab] = await api.tabs.query({ active: true, windowId });
  return tab;
}

async function reportActiveTab(eventType) {
  const windowId = state.lastFocusedWindowId;
  const tab = windowId === undefined ? undefined : await activeTab(windowId);
  if (tab !== undefined) {
    await report(eventType, tab);
  }
}

// A heartbeat describes the active tab while a browser window has focus.
// While none has, the last event was a blur, which stays true however old it
// gets, so nothing needs refreshing; a blur the browser did not report (see
// focus.js) is sent here.
async function sendHeartbeat() {
  const focused = await lastFocusedWindow();
  if (!focused?.focused) {
    if (state.focusedWindowId !== NO_WINDOW) {
      state.focusedWindowId = NO_WINDOW;
      send("browserWindowBlurred", {});
    }
    return;
  }
  state.focusedWindowId = focused.id;
  state.lastFocusedWindowId = focused.id;
  const tab = await activeTab(focused.id);
  if (tab !== undefined) {
    await report("heartbeat", tab);
  }
}

// The window that has focus now, or NO_WINDOW.
async function focusedWindow() {
  const window = await lastFocusedWindow();
  return window?.focused ? window.id : NO_WINDOW;
}

// Chromium under some window managers reports "no window" late, after the
// next window already has focus: a blur is only believed when no window has
// focus by the time it is handled.
async function focusChanged(reportedWindowId) {
  const windowId = reportedWindowId === NO_WINDOW ? await focusedWindow() : reportedWindowId;
  if (reportedWindowId === NO_WINDOW && windowId === state.focusedWindowId) {
    return;
  }
  const eventType = focusEvent(state.focusedWindowId, windowId, NO_WINDOW);
  state.focusedWindowId = windowId;
  if (windowId !== NO_WINDOW) {
    state.lastFocusedWindowId = windowId;
  }
  if (eventType === "browserWindowBlurred") {
    send(eventType, {});
  } else if (eventType !== undefined) {
    const tab = await activeTab(windowId);
    if (tab !== undefined) {
      await report(eventType, tab);
    }
  }
}

async function tabActivated({ tabId, windowId }) {
  if (windowId === state.lastFocusedWindowId) {
    await report("tabActivated", await api.tabs.get(tabId));
  }
}

async function tabUpdated(changeInfo, tab) {
  if (tab.incognito) {
    state.privateTabs.add(tab.id);
  }
  if (changeInfo.url !== undefined && tab.active && tab.windowId === state.lastFocusedWindowId) {
    await report("tabNavigated", tab);
  }
}

// The closed tab is reported, then the tab that is now in front: the
// recorder waits for a fresh event after a tab closes, and the browser does
// not always report the activation of the next tab after the closing.
async function tabRemoved(tabId, { isWindowClosing }) {
  const wasPrivate = state.privateTabs.delete(tabId);
  send("tabClosed", describeClosedTab({ tabId, wasPrivate, runPrefix: state.runPrefix }));
  if (!isWindowClosing) {
    await reportActiveTab("tabActivated");
  }
}

// Listeners are registered synchronously at the top level, as a background
// that the browser may restart at any event requires.
api.windows.onFocusChanged.addListener((windowId) => enqueue(() => focusChanged(windowId)));
api.tabs.onActivated.addListener((activeInfo) => enqueue(() => tabActivated(activeInfo)));
api.tabs.onUpdated.addListener((_tabId, changeInfo, tab) => enqueue(() => tabUpdated(changeInfo, tab)));
api.tabs.onRemoved.addListener((tabId, removeInfo) => enqueue(() => tabRemoved(tabId, removeInfo)));
api.tabs.onCreated.addListener((tab) => {
  if (tab.incognito) {
    state.privateTabs.add(tab.id);
  }
});

enqueue(start);
