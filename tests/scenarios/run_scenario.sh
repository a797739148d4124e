#!/usr/bin/env bash
# Runs one scenario script with --check in a fresh data and config folder,
# removed afterwards. Usage: run_scenario.sh LUMENOTE_SCENARIO SCRIPT
set -euo pipefail
runner=$1
script=$2
home=$(mktemp -d "${TMPDIR:-/tmp}/lumenote-scenario.XXXXXX")
trap 'rm -rf "$home"' EXIT
export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data"
timeout 120 "$runner" --check "$script" --data-dir "$home/data" >"$home/output.json"
