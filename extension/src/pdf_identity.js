// The identity of a local PDF: a UUID derived from the file's URL with an
// HMAC-SHA-256 keyed by a random salt made once per installation. The same
// file gets the same identity in every session, so the recorder can tell
// "the same PDF again" and ask to show it, while the identity reveals
// neither the path nor whether two installations saw the same file.

const SALT_BYTES = 32;

// A new salt as lower-case hex, from `random` (crypto.getRandomValues).
export function newSalt(random) {
  const bytes = random(new Uint8Array(SALT_BYTES));
  return Array.from(bytes, (byte) => byte.toString(16).padStart(2, "0")).join("");
}

// Whether `salt` is one that newSalt() makes; anything else found in storage
// is replaced rather than trusted.
export function isSalt(salt) {
  return typeof salt === "string" && /^[0-9a-f]{64}$/.test(salt);
}

function hexToBytes(hex) {
  return Uint8Array.from(hex.match(/../g), (pair) => parseInt(pair, 16));
}

// The first 16 bytes of the digest as a UUID in its lower-case hyphenated
// form, with the version and variant bits of a version 8 (custom) UUID.
export function uuidFromDigest(digest) {
  const bytes = new Uint8Array(digest).slice(0, 16);
  bytes[6] = (bytes[6] & 0x0f) | 0x80;
  bytes[8] = (bytes[8] & 0x3f) | 0x80;
  const hex = Array.from(bytes, (byte) => byte.toString(16).padStart(2, "0")).join("");
  return `${hex.slice(0, 8)}-${hex.slice(8, 12)}-${hex.slice(12, 16)}-${hex.slice(16, 20)}-${hex.slice(20)}`;
}

// The identity of the PDF at `fileURL` (see page_classification.js) under
// `salt`, computed with `subtle` (crypto.subtle).
export async function pdfIdentifier(salt, fileURL, subtle) {
  const key = await subtle.importKey("raw", hexToBytes(salt), { name: "HMAC", hash: "SHA-256" },
    false, ["sign"]);
  const digest = await subtle.sign("HMAC", key, new TextEncoder().encode(fileURL));
  return uuidFromDigest(digest);
}

// Whether two identities name the same PDF: the recorder writes UUIDs in
// upper case, the extension in lower case.
export function samePDF(left, right) {
  return typeof left === "string" && typeof right === "string" &&
    left.toLowerCase() === right.toLowerCase();
}
