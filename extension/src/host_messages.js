// The messages exchanged with the native host besides browser events.
//
// To the host: the hello, sent once on connecting. From the host: the status
// (on connecting, on every change and periodically) and commands. Anything
// else the host sends is ignored.

export const PROTOCOL_VERSION = 1;

export function helloMessage({ extensionVersion, browserBundleIdentifier }) {
  return {
    bridgeMessage: "hello",
    extensionVersion,
    protocolVersion: PROTOCOL_VERSION,
    browserBundleIdentifier,
  };
}

// The status before the host said anything: nothing is recording.
export const SILENT_STATUS = Object.freeze({
  applicationRunning: false,
  sessionRunning: false,
  trackingPaused: false,
  filenameLabelsEnabled: false,
  browserBundleIdentifier: undefined,
});

function status(message) {
  const flag = (key) => message[key] === true;
  return {
    applicationRunning: flag("applicationRunning"),
    sessionRunning: flag("sessionRunning"),
    trackingPaused: flag("trackingPaused"),
    filenameLabelsEnabled: flag("filenameLabelsEnabled"),
    browserBundleIdentifier: typeof message.browserBundleIdentifier === "string"
      ? message.browserBundleIdentifier
      : undefined,
  };
}

function command(body) {
  if (body === null || typeof body !== "object" || typeof body.type !== "string") {
    return undefined;
  }
  return body;
}

// One message of the host as {kind: "status", status}, {kind: "command",
// command} or {kind: "ignored"}. A status flag that is missing or not a
// boolean reads as false, which keeps the extension quiet rather than
// reporting on a guess.
export function readHostMessage(message) {
  if (message === null || typeof message !== "object") {
    return { kind: "ignored" };
  }
  if (message.bridgeMessage === "status") {
    return { kind: "status", status: status(message) };
  }
  if (message.bridgeMessage === "command") {
    const body = command(message.command);
    return body === undefined ? { kind: "ignored" } : { kind: "command", command: body };
  }
  return { kind: "ignored" };
}

// Whether events may be sent: only while the recorder runs a session with
// browser tracking on. Otherwise the extension sends nothing at all.
export function isRecording(status) {
  return status.applicationRunning && status.sessionRunning && !status.trackingPaused;
}
