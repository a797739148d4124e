// The test's X desktop as a user drives it, through xdotool: which window
// is in front, bringing one to the front, and keyboard shortcuts typed into
// the window in front. Every call is bounded by a timeout.

import { execFile } from "node:child_process";
import { promisify } from "node:util";

const run = promisify(execFile);

async function xdotool(...args) {
  const { stdout } = await run("timeout", ["5", "xdotool", ...args]);
  return stdout.trim();
}

export const activeWindow = () => xdotool("getactivewindow");
export const activateWindow = (window) => xdotool("windowactivate", "--sync", window);
export const pressKeys = (keys) => xdotool("key", keys);
