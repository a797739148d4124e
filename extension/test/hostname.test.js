import assert from "node:assert/strict";
import { test } from "node:test";

import { normalisedHostname } from "../src/hostname.js";

const label63 = "a".repeat(63);
// Four labels of 63 and one of 1, joined by dots: 253 characters in all.
const name253 = [label63, label63, label63, "a".repeat(61)].join(".");

test("hostnames the recorder accepts come out in its normalised form", () => {
  const cases = [
    ["example.com", "example.com"],
    ["Docs.Example.COM", "docs.example.com"],
    ["example.com.", "example.com"],
    ["127.0.0.1", "127.0.0.1"],
    ["localhost", "localhost"],
    ["xn--bcher-kva.example", "xn--bcher-kva.example"],
    [`${label63}.com`, `${label63}.com`],
    [name253, name253],
  ];
  for (const [input, expected] of cases) {
    assert.equal(normalisedHostname(input), expected, input);
  }
});

test("names the recorder would refuse give no hostname", () => {
  const cases = [
    "",
    ".",
    "[::1]",
    "[2001:db8::1]",
    "my_host.local",
    "-example.com",
    "example-.com",
    "a..b",
    "example.com..",
    `${"a".repeat(64)}.com`,
    `${name253}a`,
    "exa mple.com",
    "bücher.example",
  ];
  for (const input of cases) {
    assert.equal(normalisedHostname(input), undefined, input);
  }
});
