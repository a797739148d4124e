// The terminal recorder as the browser tests drive it: `lumenote-cli` run
// with a deadline, the recorder started in the background, and waits on what
// `lumenote-cli status` says.

import { execFile, spawn } from "node:child_process";
import { openSync } from "node:fs";
import { join } from "node:path";

const COMMAND_TIMEOUT_MS = 15_000;
const POLL_INTERVAL_MS = 100;

export function recorderCli(binDir) {
  const executable = join(binDir, "lumenote-cli");

  // Runs one command; resolves to its standard output, rejects when it fails.
  function run(...args) {
    return new Promise((resolve, reject) => {
      execFile(executable, args, { timeout: COMMAND_TIMEOUT_MS }, (error, stdout, stderr) => {
        if (error) {
          reject(new Error(`lumenote-cli ${args.join(" ")}: ${error.message}\n${stderr}`));
        } else {
          resolve(stdout);
        }
      });
    });
  }

  async function statusText() {
    try {
      return await run("status");
    } catch {
      return "";
    }
  }

  // Polls `status` until `accept(text)` (which may be asynchronous) holds;
  // rejects after `timeoutMs` with the last text seen.
  async function waitForStatus(description, accept, timeoutMs = 20_000) {
    const deadline = Date.now() + timeoutMs;
    let text = "";
    while (Date.now() < deadline) {
      text = await statusText();
      if (await accept(text)) {
        return text;
      }
      await new Promise((resolve) => setTimeout(resolve, POLL_INTERVAL_MS));
    }
    throw new Error(`timed out waiting for ${description}; the status said: ${text.trim()}`);
  }

  // The session's elapsed seconds as the status line shows them (h:mm:ss).
  function elapsedSeconds(text) {
    const match = /(\d+):(\d{2}):(\d{2})/.exec(text);
    return match ? Number(match[1]) * 3600 + Number(match[2]) * 60 + Number(match[3]) : 0;
  }

  // Waits until the status shows what `shows(text)` looks for, then until
  // the recorder has counted `seconds` more of the session while it keeps
  // showing it, so that the stretch becomes a segment of at least that
  // length. Fails as soon as the status shows something else.
  async function holdWhileShown(description, seconds, shows) {
    const from = elapsedSeconds(await waitForStatus(description, shows));
    await waitForStatus(`${seconds} s on ${description}`, (text) => {
      if (!shows(text)) {
        throw new Error(`the status stopped showing ${description}: ${text.trim()}`);
      }
      return elapsedSeconds(text) >= from + seconds;
    });
  }

  // Starts `record` in the background, its output in `logFolder`; the
  // returned process is bounded by `timeout`.
  function startRecording(subject, logFolder) {
    const out = openSync(join(logFolder, "recorder.out"), "w");
    const err = openSync(join(logFolder, "recorder.err"), "w");
    return spawn("timeout", ["300", executable, "record", "--subject", subject, "--open-ended"],
      { stdio: ["ignore", out, err] });
  }

  // Resolves once the recording process ended with status 0; rejects when it
  // failed or is still running after `timeoutMs`.
  function recorderExited(recorder, timeoutMs = 20_000) {
    return new Promise((resolve, reject) => {
      const settle = (code) => (code === 0 ? resolve() : reject(new Error(`the recorder ended with ${code}`)));
      if (recorder.exitCode !== null) {
        settle(recorder.exitCode);
        return;
      }
      const timer = setTimeout(() => reject(new Error("the recorder did not end")), timeoutMs);
      recorder.once("exit", (code) => {
        clearTimeout(timer);
        settle(code);
      });
    });
  }

  return { run, statusText, waitForStatus, holdWhileShown, startRecording, recorderExited };
}
