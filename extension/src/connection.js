// How the extension keeps its connection to the native host: the open port
// is what keeps the background alive, so when it drops the extension
// connects again after a delay that doubles with every failed attempt, from
// one second up to one minute (a host that is not installed is retried
// rarely, a host that restarted is back within a second). An attempt counts
// as successful once the host answered with its status.

export const NATIVE_HOST_NAME = "com.tallywise.browser_host";

const FIRST_DELAY_MS = 1000;
const LONGEST_DELAY_MS = 60_000;

// The delay before connection attempt number `failedAttempts` + 1.
export function reconnectDelay(failedAttempts) {
  return Math.min(FIRST_DELAY_MS * 2 ** Math.max(0, failedAttempts), LONGEST_DELAY_MS);
}

// The record of why the connection dropped, kept for diagnostics ("Specified
// native messaging host not found." when the host is not registered).
export function connectionProblem(message, now) {
  return { message: message || "The native host disconnected.", at: now.toISOString() };
}
