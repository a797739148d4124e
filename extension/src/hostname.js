// The recorder's rule for a website hostname, mirrored so that the extension
// never sends a hostname the recorder would refuse: one or more dot-separated
// labels of a-z, 0-9 and "-", no hyphen at a label's edge, at most 63
// characters a label and 253 in all, no final dot.

const MAXIMUM_LABEL_LENGTH = 63;
const MAXIMUM_NAME_LENGTH = 253;
const LABEL = /^[a-z0-9](?:[a-z0-9-]*[a-z0-9])?$/;

export function isValidHostname(name) {
  if (typeof name !== "string" || name.length === 0 || name.length > MAXIMUM_NAME_LENGTH) {
    return false;
  }
  return name.split(".").every((label) => label.length <= MAXIMUM_LABEL_LENGTH && LABEL.test(label));
}

// The hostname as the recorder keys websites (lower case, one final dot
// removed), or undefined when `urlHostname` (URL.hostname, already in its
// ASCII "xn--" form) is not a hostname the recorder accepts: IPv6 literals,
// names with "_" and empty names among them.
export function normalisedHostname(urlHostname) {
  const name = String(urlHostname).toLowerCase().replace(/\.$/, "");
  return isValidHostname(name) ? name : undefined;
}
