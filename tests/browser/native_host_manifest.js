// Registers the native host with one browser profile by writing the
// native-messaging host manifest where that browser looks for it. Chromium
// with its own --user-data-dir reads <user data dir>/NativeMessagingHosts/;
// Firefox reads $HOME/.mozilla/native-messaging-hosts/ and names the add-on
// in allowed_extensions instead of an origin.

import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";

export const NATIVE_HOST_NAME = "com.tallywise.browser_host";

const ids = JSON.parse(readFileSync(new URL("../../extension/ids.json", import.meta.url), "utf8"));

// `browser` is "chromium" or "firefox"; `hostPath` the absolute path of
// TallywiseBrowserHost; `userDataDir` Chromium's profile folder, `home` the
// home folder Firefox runs with. Returns the manifest's path.
export function registerNativeHost({ browser, hostPath, userDataDir, home }) {
  const manifest = {
    name: NATIVE_HOST_NAME,
    description: "Lumenote privacy-first browser activity bridge",
    path: hostPath,
    type: "stdio",
    ...(browser === "firefox"
      ? { allowed_extensions: [ids.firefoxAddonId] }
      : { allowed_origins: [`chrome-extension://${ids.chromiumExtensionId}/`] }),
  };
  const folder = browser === "firefox"
    ? join(home, ".mozilla", "native-messaging-hosts")
    : join(userDataDir, "NativeMessagingHosts");
  mkdirSync(folder, { recursive: true });
  const path = join(folder, `${NATIVE_HOST_NAME}.json`);
  writeFileSync(path, `${JSON.stringify(manifest, null, 2)}\n`);
  return path;
}
