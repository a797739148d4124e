import assert from "node:assert/strict";
import { test } from "node:test";

import { connectionProblem, reconnectDelay } from "../src/connection.js";

test("the delay doubles from one second and stays at one minute", () => {
  assert.deepEqual([0, 1, 2, 3, 4, 5, 6, 7, 100, 5000].map(reconnectDelay),
    [1000, 2000, 4000, 8000, 16000, 32000, 60000, 60000, 60000, 60000]);
});

test("the remembered problem keeps the browser's message and the time", () => {
  const at = new Date("2026-03-01T10:00:00Z");
  assert.deepEqual(connectionProblem("Specified native messaging host not found.", at),
    { message: "Specified native messaging host not found.", at: "2026-03-01T10:00:00.000Z" });
  assert.equal(connectionProblem(undefined, at).message, "The native host disconnected.");
});
