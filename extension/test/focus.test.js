import assert from "node:assert/strict";
import { test } from "node:test";

import { focusEvent } from "../src/focus.js";

const NONE = -1;

test("each change of the focused window is the event the recorder expects", () => {
  const cases = [
    [NONE, 3, "browserBecameActive"],
    [3, 4, "browserWindowFocused"],
    [3, NONE, "browserWindowBlurred"],
    [NONE, NONE, undefined],
  ];
  for (const [previous, next, expected] of cases) {
    assert.equal(focusEvent(previous, next, NONE), expected, `${previous} -> ${next}`);
  }
});

test("focus reported again for the focused window means the browser came back unannounced", () => {
  assert.equal(focusEvent(3, 3, NONE), "browserBecameActive");
});
