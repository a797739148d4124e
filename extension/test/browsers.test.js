import assert from "node:assert/strict";
import { test } from "node:test";

import { browserFromUserAgent, effectiveBrowser } from "../src/browsers.js";

const CHROME_UA = "Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537.36 (KHTML, like Gecko) " +
  "Chrome/126.0.0.0 Safari/537.36";
const brands = (...names) => names.map((brand) => ({ brand, version: "126" }));

test("the browser is guessed from its brands first, then from its User-Agent string", () => {
  const cases = [
    [{ userAgent: CHROME_UA, brands: brands("Not/A)Brand", "Chromium", "Google Chrome") }, "com.google.Chrome"],
    [{ userAgent: CHROME_UA, brands: brands("Chromium", "Not/A)Brand") }, "org.chromium.Chromium"],
    [{ userAgent: `${CHROME_UA} Edg/126.0.0.0`, brands: brands("Microsoft Edge", "Chromium") },
      "com.microsoft.edgemac"],
    [{ userAgent: `${CHROME_UA} Edg/126.0.0.0` }, "com.microsoft.edgemac"],
    [{ userAgent: `${CHROME_UA} OPR/111.0.0.0`, brands: brands("Chromium", "Opera") },
      "com.operasoftware.Opera"],
    [{ userAgent: `${CHROME_UA} Vivaldi/6.7`, brands: brands("Chromium") }, "com.vivaldi.Vivaldi"],
    [{ userAgent: CHROME_UA, brands: brands("Chromium"), isBrave: true }, "com.brave.Browser"],
    [{ userAgent: "Mozilla/5.0 (X11; Linux x86_64; rv:128.0) Gecko/20100101 Firefox/128.0" },
      "org.mozilla.firefox"],
    [{ userAgent: CHROME_UA }, "org.chromium.Chromium"],
    [{}, "org.chromium.Chromium"],
  ];
  for (const [hints, expected] of cases) {
    assert.equal(browserFromUserAgent(hints), expected, JSON.stringify(hints));
  }
});

test("the host's identification wins over the guess, unless it is no supported browser", () => {
  assert.deepEqual(effectiveBrowser("org.mozilla.firefox", "org.chromium.Chromium"),
    { bundleIdentifier: "org.mozilla.firefox", displayName: "Firefox" });
  assert.deepEqual(effectiveBrowser(undefined, "com.google.Chrome"),
    { bundleIdentifier: "com.google.Chrome", displayName: "Google Chrome" });
  assert.deepEqual(effectiveBrowser("com.google.Chrome.beta", "com.brave.Browser"),
    { bundleIdentifier: "com.brave.Browser", displayName: "Brave" });
});
