import assert from "node:assert/strict";
import { createHmac, webcrypto } from "node:crypto";
import { test } from "node:test";

import { isSalt, newSalt, pdfIdentifier, samePDF, uuidFromDigest } from "../src/pdf_identity.js";

const { subtle } = webcrypto;
const random = (bytes) => webcrypto.getRandomValues(bytes);
const saltA = "00".repeat(32);
const saltB = "ff".repeat(32);
const file = "file:///home/ada/Thesis/notes.pdf";
const UUID_V8 = /^[0-9a-f]{8}-[0-9a-f]{4}-8[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$/;

test("the identity is the HMAC-SHA-256 of the file URL under the salt, as a version 8 UUID", async () => {
  const digest = createHmac("sha256", Buffer.from(saltB, "hex")).update(file).digest();
  const identity = await pdfIdentifier(saltB, file, subtle);
  assert.equal(identity, uuidFromDigest(digest));
  assert.match(identity, UUID_V8);
  const hex = digest.toString("hex");
  assert.equal(identity.replace(/-/g, "").slice(0, 12), hex.slice(0, 12));
});

test("the same file under the same salt keeps its identity; another file or salt changes it", async () => {
  const first = await pdfIdentifier(saltA, file, subtle);
  assert.equal(await pdfIdentifier(saltA, file, subtle), first);
  assert.notEqual(await pdfIdentifier(saltB, file, subtle), first);
  assert.notEqual(await pdfIdentifier(saltA, "file:///home/ada/Thesis/notes2.pdf", subtle), first);
});

test("version and variant bits are set whatever the digest's bytes", () => {
  assert.equal(uuidFromDigest(new Uint8Array(32).fill(0xff)), "ffffffff-ffff-8fff-bfff-ffffffffffff");
  assert.equal(uuidFromDigest(new Uint8Array(32)), "00000000-0000-8000-8000-000000000000");
});

test("a new salt is 32 random bytes in hex, and only such a value is taken from storage", () => {
  const salt = newSalt(random);
  assert.ok(isSalt(salt));
  assert.notEqual(newSalt(random), salt);
  for (const stored of [undefined, "", saltB.toUpperCase(), saltA.slice(2), `${saltA}00`, 42]) {
    assert.equal(isSalt(stored), false, String(stored));
  }
});

test("identities compare without regard to case, as the recorder writes them in upper case", () => {
  assert.ok(samePDF("0a1b2c3d-0000-8000-8000-00000000abcd", "0A1B2C3D-0000-8000-8000-00000000ABCD"));
  assert.ok(!samePDF("0a1b2c3d-0000-8000-8000-00000000abcd", "0a1b2c3d-0000-8000-8000-00000000abce"));
  assert.ok(!samePDF(undefined, undefined));
});
