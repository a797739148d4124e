#!/usr/bin/env node
// Builds the browser extension's packages from extension/src into OUTPUT_DIR:
//   chromium/                 the Chromium-family package, unpacked (load it
//                             with "Load unpacked" or --load-extension)
//   lumenote-chromium.zip     the same folder zipped
//   firefox/                  the Firefox package, unpacked (for web-ext lint)
//   lumenote-firefox.xpi      the same folder zipped, to install or side-load
// Fails when the committed public key does not give the Chromium id of
// extension/ids.json, so that the id the native host's manifest allows and
// the id the browser gives the extension cannot drift apart.

import { execFileSync } from "node:child_process";
import { copyFileSync, mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

import { chromiumExtensionId, derFromPem } from "./extension_id.js";
import { chromiumManifest, firefoxManifest, isExtensionVersion } from "./manifests.js";

const USAGE = `usage: build.js --version X.Y.Z OUTPUT_DIR

Builds the Chromium-family package (unpacked folder and .zip) and the Firefox
package (.xpi) of the browser extension into OUTPUT_DIR. The version is the
project's version, one to four dot-separated numbers.`;

const extensionRoot = resolve(dirname(fileURLToPath(import.meta.url)), "..");

function parseArguments(argv) {
  const options = { version: undefined, output: undefined };
  for (let index = 0; index < argv.length; index += 1) {
    const argument = argv[index];
    if (argument === "--help" || argument === "-h") {
      return { help: true };
    }
    if (argument === "--version") {
      options.version = argv[++index];
    } else if (argument.startsWith("--version=")) {
      options.version = argument.slice("--version=".length);
    } else if (options.output === undefined && !argument.startsWith("-")) {
      options.output = argument;
    } else {
      throw new Error(`unexpected argument ${argument}`);
    }
  }
  if (!isExtensionVersion(options.version)) {
    throw new Error(`--version needs one to four dot-separated numbers, not ${options.version}`);
  }
  if (options.output === undefined) {
    throw new Error("the output folder is missing");
  }
  return options;
}

function checkedPublicKey() {
  const ids = JSON.parse(readFileSync(join(extensionRoot, "ids.json"), "utf8"));
  const der = derFromPem(readFileSync(join(extensionRoot, "chromium-public-key.pem"), "utf8"));
  const derived = chromiumExtensionId(der);
  if (derived !== ids.chromiumExtensionId) {
    throw new Error(`chromium-public-key.pem gives the id ${derived}, but ids.json says ` +
      `${ids.chromiumExtensionId}`);
  }
  return { ids, publicKey: der.toString("base64") };
}

function writePackage(folder, manifest) {
  rmSync(folder, { recursive: true, force: true });
  mkdirSync(folder, { recursive: true });
  const sources = join(extensionRoot, "src");
  for (const name of readdirSync(sources).filter((file) => file.endsWith(".js"))) {
    copyFileSync(join(sources, name), join(folder, name));
  }
  writeFileSync(join(folder, "manifest.json"), `${JSON.stringify(manifest, null, 2)}\n`);
}

function zipFolder(folder, archive) {
  rmSync(archive, { force: true });
  const files = readdirSync(folder).sort();
  execFileSync("zip", ["-q", "-X", "-D", archive, ...files], { cwd: folder, stdio: "inherit" });
}

function main() {
  const options = parseArguments(process.argv.slice(2));
  if (options.help) {
    console.log(USAGE);
    return;
  }
  const output = resolve(options.output);
  const { ids, publicKey } = checkedPublicKey();

  const chromium = join(output, "chromium");
  writePackage(chromium, chromiumManifest({ version: options.version, publicKey }));
  zipFolder(chromium, join(output, "lumenote-chromium.zip"));

  const firefox = join(output, "firefox");
  writePackage(firefox, firefoxManifest({ version: options.version, addonId: ids.firefoxAddonId }));
  zipFolder(firefox, join(output, "lumenote-firefox.xpi"));
}

try {
  main();
} catch (error) {
  console.error(`build.js: ${error.message}\n\n${USAGE}`);
  process.exit(1);
}
