// The two manifests built from the one source tree: Manifest V3 for the
// Chromium family (a module service worker, and the fixed public key that
// keeps the extension id stable wherever the folder is loaded from) and for
// Firefox (module background scripts and the fixed add-on id).

const NAME = "Lumenote";
const DESCRIPTION =
  "Tells Lumenote which website or local PDF is in front while a study session records. " +
  "Nothing leaves this computer.";
const PERMISSIONS = ["nativeMessaging", "tabs", "storage"];

// From Chromium 110 an extension's service worker stays alive for as long as
// its native-messaging port is open; it also has storage.session and the
// promise-returning APIs the background uses.
const MINIMUM_CHROMIUM_VERSION = "110";
// Firefox 128 ESR is the oldest release with every API the background uses
// (module background scripts, storage.session, Manifest V3); Debian 12
// ships a later ESR.
const MINIMUM_FIREFOX_VERSION = "128.0";

// Browsers take versions of one to four dot-separated numbers.
export function isExtensionVersion(version) {
  return typeof version === "string" && /^(0|[1-9]\d{0,8})(\.(0|[1-9]\d{0,8})){0,3}$/.test(version);
}

export function chromiumManifest({ version, publicKey }) {
  return {
    manifest_version: 3,
    name: NAME,
    version,
    description: DESCRIPTION,
    minimum_chrome_version: MINIMUM_CHROMIUM_VERSION,
    key: publicKey,
    background: { service_worker: "background.js", type: "module" },
    permissions: PERMISSIONS,
  };
}

export function firefoxManifest({ version, addonId }) {
  return {
    manifest_version: 3,
    name: NAME,
    version,
    description: DESCRIPTION,
    browser_specific_settings: {
      gecko: {
        id: addonId,
        strict_min_version: MINIMUM_FIREFOX_VERSION,
        // Events go to the native host on this computer and nowhere else.
        data_collection_permissions: { required: ["none"] },
      },
    },
    background: { scripts: ["background.js"], type: "module" },
    permissions: PERMISSIONS,
  };
}
