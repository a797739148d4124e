#!/usr/bin/env bash
# Real-browser end-to-end test of the extension: in a private desktop (Xvfb
# with openbox, private D-Bus buses, an isolated HOME, TMPDIR and bridge
# directory), scenario.js runs the terminal recorder and BROWSER (chromium or
# firefox) with the extension built into PACKAGES_DIR and the real native
# host from BIN_DIR, and checks the stored session. A browser that cannot
# start fails the test.
#
# Usage: browser_bridge_test.sh chromium|firefox BIN_DIR PACKAGES_DIR
set -euo pipefail

browser=${1:?usage: browser_bridge_test.sh chromium|firefox BIN_DIR PACKAGES_DIR}
bin=$(cd "${2:?usage: browser_bridge_test.sh chromium|firefox BIN_DIR PACKAGES_DIR}" && pwd)
packages=$(cd "${3:?usage: browser_bridge_test.sh chromium|firefox BIN_DIR PACKAGES_DIR}" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/../e2e/desktop_session.sh"
trap cleanup EXIT
unset TALLYWISE_BRIDGE_DIR
start_desktop_session
export TMPDIR="$work/tmp"
mkdir -p "$TMPDIR"
start_client LumenoteAlpha

timeout -k 5 100 node "$here/scenario.js" --browser "$browser" --bin "$bin" \
    --extension "$packages" --work "$work" --other-window "$window" ||
    fail "the $browser scenario failed"
echo "$browser with the extension end to end: ok"
