// The local-file permission the extension reports with its events.
//
// Local PDFs are recognised from the tab's file:// URL, which the "tabs"
// permission shows in every supported browser. Chromium-family browsers also
// have a per-extension "Allow access to file URLs" switch: it is reported as
// `enabled` or `permissionRequired`, so that the recorder's diagnostics can
// point at it. Firefox has no such switch and always shows file:// URLs of
// tabs to an extension with "tabs", so local PDFs can always be tracked
// there: Firefox reports `enabled`.

export function localFilePermission({ engine, fileSchemeAccessAllowed }) {
  if (engine === "firefox") {
    return "enabled";
  }
  return fileSchemeAccessAllowed ? "enabled" : "permissionRequired";
}
