import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

import { chromiumExtensionId, derFromPem } from "../tools/extension_id.js";
import { isExtensionVersion } from "../tools/manifests.js";

const root = new URL("../", import.meta.url);

test("the committed public key gives the committed Chromium id", () => {
  const ids = JSON.parse(readFileSync(new URL("ids.json", root), "utf8"));
  const der = derFromPem(readFileSync(new URL("chromium-public-key.pem", root), "utf8"));
  assert.equal(chromiumExtensionId(der), ids.chromiumExtensionId);
});

test("the id maps each hex digit of the key's SHA-256 to a letter a-p", () => {
  // SHA-256 of the empty input starts e3b0c44298fc1c149afbf4c8996fb924.
  assert.equal(chromiumExtensionId(Buffer.alloc(0)), "odlameecjipmbmbejkplpemijjgpljce");
});

test("versions are one to four dot-separated numbers without leading zeros", () => {
  for (const version of ["0", "1.2", "0.1.0", "1.2.3.4", "10.0.200"]) {
    assert.ok(isExtensionVersion(version), version);
  }
  for (const version of [undefined, "", "1.2.3.4.5", "01.2", "1..2", "1.2-beta", "v1", "1.2."]) {
    assert.equal(isExtensionVersion(version), false, String(version));
  }
});
