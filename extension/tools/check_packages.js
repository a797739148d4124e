#!/usr/bin/env node
// Checks the packages that build.js wrote into OUTPUT_DIR, as a browser
// would find them: each manifest is Manifest V3 with its background present
// and the permissions the background uses; the Chromium key gives the id of
// extension/ids.json and the Firefox id is the one of ids.json; every module
// a package's scripts import is in the package; each archive holds exactly
// the files of its folder. Prints one line per problem and exits 1 if any.
// (Firefox's package is also linted by web-ext.)

import { execFileSync } from "node:child_process";
import { existsSync, readdirSync, readFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

import { chromiumExtensionId } from "./extension_id.js";

const USAGE = `usage: check_packages.js OUTPUT_DIR

Checks the Chromium and Firefox packages that build.js wrote into OUTPUT_DIR.`;

const REQUIRED_PERMISSIONS = ["nativeMessaging", "tabs", "storage"];
const IMPORT = /^\s*import\s[^"']*["'](\.\/[^"']+)["'];?\s*$/gm;

function importsOf(source) {
  return Array.from(source.matchAll(IMPORT), (match) => match[1].slice(2));
}

function archiveFiles(archive) {
  const listing = execFileSync("zip", ["-sf", archive], { encoding: "utf8" });
  return listing.split("\n").map((line) => line.trim())
    .filter((line) => line.length > 0 && !/^(Archive contains:|Total \d+ entries)/.test(line))
    .sort();
}

function checkPackage(folder, archive, backgroundFiles, problems) {
  const manifest = JSON.parse(readFileSync(join(folder, "manifest.json"), "utf8"));
  const name = `${folder}:`;
  if (manifest.manifest_version !== 3) {
    problems.push(`${name} manifest_version is ${manifest.manifest_version}, not 3`);
  }
  for (const permission of REQUIRED_PERMISSIONS) {
    if (!manifest.permissions?.includes(permission)) {
      problems.push(`${name} the permission ${permission} is missing`);
    }
  }
  if (manifest.background?.type !== "module") {
    problems.push(`${name} the background is not a module`);
  }
  const files = readdirSync(folder).sort();
  for (const file of backgroundFiles(manifest)) {
    if (!files.includes(file)) {
      problems.push(`${name} the background ${file} is missing`);
    }
  }
  for (const script of files.filter((file) => file.endsWith(".js"))) {
    for (const imported of importsOf(readFileSync(join(folder, script), "utf8"))) {
      if (!files.includes(imported)) {
        problems.push(`${name} ${script} imports ${imported}, which the package lacks`);
      }
    }
  }
  const archived = archiveFiles(archive);
  if (JSON.stringify(archived) !== JSON.stringify(files)) {
    problems.push(`${archive} holds ${archived.join(", ")} instead of ${files.join(", ")}`);
  }
  return manifest;
}

function main(argv) {
  if (argv.length !== 1 || argv[0] === "--help" || argv[0] === "-h") {
    console.log(USAGE);
    return argv.length === 1 ? 0 : 2;
  }
  const output = resolve(argv[0]);
  const extensionRoot = resolve(dirname(fileURLToPath(import.meta.url)), "..");
  const ids = JSON.parse(readFileSync(join(extensionRoot, "ids.json"), "utf8"));
  const problems = [];
  for (const file of ["chromium/manifest.json", "lumenote-chromium.zip", "firefox/manifest.json",
    "lumenote-firefox.xpi"]) {
    if (!existsSync(join(output, file))) {
      problems.push(`${join(output, file)} is missing`);
    }
  }
  if (problems.length === 0) {
    const chromium = checkPackage(join(output, "chromium"), join(output, "lumenote-chromium.zip"),
      (manifest) => [manifest.background?.service_worker], problems);
    if (typeof chromium.key !== "string" ||
        chromiumExtensionId(Buffer.from(chromium.key, "base64")) !== ids.chromiumExtensionId) {
      problems.push(`the Chromium key does not give the id ${ids.chromiumExtensionId}`);
    }
    const firefox = checkPackage(join(output, "firefox"), join(output, "lumenote-firefox.xpi"),
      (manifest) => manifest.background?.scripts ?? [], problems);
    if (firefox.browser_specific_settings?.gecko?.id !== ids.firefoxAddonId) {
      problems.push(`the Firefox add-on id is not ${ids.firefoxAddonId}`);
    }
  }
  for (const problem of problems) {
    console.error(problem);
  }
  if (problems.length === 0) {
    console.log(`${output}: both packages are complete`);
  }
  return problems.length === 0 ? 0 : 1;
}

process.exitCode = main(process.argv.slice(2));
