// The Chromium extension id that a public key gives: the first 32 hex digits
// of the SHA-256 of the key's DER form, each digit 0-f written as a-p.

import { createHash, createPublicKey } from "node:crypto";

export function chromiumExtensionId(derKey) {
  const hex = createHash("sha256").update(derKey).digest("hex").slice(0, 32);
  return Array.from(hex, (digit) => String.fromCharCode(97 + parseInt(digit, 16))).join("");
}

// The DER form (SubjectPublicKeyInfo) of a PEM public key.
export function derFromPem(pem) {
  return createPublicKey(pem).export({ type: "spki", format: "der" });
}
