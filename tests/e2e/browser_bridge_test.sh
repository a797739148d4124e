#!/usr/bin/env bash
# End-to-end test of the browser bridge: the terminal recorder on a real X
# server with a window recorded as Chromium, the real TallywiseBrowserHost
# started as a browser starts it, and a driver that speaks the extension's
# side of native messaging. Checks that the host learns of the running
# session, that the reported website becomes what the recorder shows and
# stores (a `website` segment of the browser, classified by the starter rows),
# that switching away from the browser closes the website stretch, and that
# `browser events` lists the accepted events.
#
# Usage: browser_bridge_test.sh BIN_DIR. Waits poll with deadlines; every
# external process runs under timeout and is killed on exit.
set -euo pipefail

bin=${1:?usage: browser_bridge_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
trap cleanup EXIT
unset TALLYWISE_BRIDGE_DIR
start_desktop_session
start_client chromium
browser=$window
start_client LumenoteAlpha
alpha=$window


activate "$alpha"
timeout 120 "$cli" record --subject "Reading" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
background+=($!)
recorder_job=$!
poll_until "the recorder's status" status_matches "LumenoteAlpha"
activate "$browser"
poll_until "the browser in front" status_matches "Chromium"
# With no extension heard from, the recorder says why websites go unrecorded
# instead of silently recording the browser's name.
poll_until "the browser watchdog" status_matches \
    "Websites in Chromium are not recorded: the native host is not registered"
recorder_warned() { grep -q "Unclassified · Websites in Chromium are not recorded" "$work/recorder.out"; }
poll_until "the watchdog in the recorder's status line" recorder_warned

timeout 60 "$python" "$here/extension_driver.py" "$bin/TallywiseBrowserHost" \
    org.chromium.Chromium docs.google.com 10 >"$work/extension.out" 2>"$work/extension.err" &
driver_job=$!
background+=("$driver_job")
poll_until "the website in the status" status_matches "docs.google.com"
status_matches "are not recorded" && fail "the watchdog still warns with the website recorded"
live=$("$cli" browser status chromium)
[[ "$live" == *"Last event:   "*"(Website)"* ]] ||
    fail "browser status does not show the running recorder's last event: $live"
on_site_from=$(elapsed)
poll_until "three seconds on the website" elapsed_at_least $((on_site_from + 3))
activate "$alpha"
poll_until "the switch away from the browser" status_matches "LumenoteAlpha"
wait "$driver_job" || fail "the extension driver failed: $(cat "$work/extension.err")"
grep -q '"sessionRunning": true' "$work/extension.out" ||
    fail "the host never told the extension of the session: $(cat "$work/extension.out")"

events=$("$cli" browser events)
[[ "$events" == *"docs.google.com"* ]] || fail "browser events does not list the website: $events"

"$cli" end >/dev/null
wait "$recorder_job" || fail "the recorder ended with status $?"

session=$("$cli" sessions --json)
id=$("$python" -c 'import json,sys; print(json.loads(sys.argv[1])[0]["id"])' "$session")
"$python" - "$("$cli" show "$id" --json)" <<'CHECK' || fail "the segments do not show the website"
import json, sys
segments = json.loads(sys.argv[1])["segments"]
websites = [g for g in segments if g.get("activitySource") == "website"]
assert len(websites) == 1, segments
site = websites[0]
assert site["hostname"] == "docs.google.com", site
assert site["classification"] == "focused", site
assert site["browserBundleIdentifier"] == "org.chromium.Chromium", site
assert site["duration"] >= 2, site
after = segments[segments.index(site) + 1:]
assert after and after[0]["bundleIdentifier"] == "LumenoteAlpha", segments
CHECK
# The setup test reads this desktop: the X display answers, and the report
# holds nothing but the permitted characters.
report=$("$cli" setup-test --report || true)
grep -qx -- "- Frontmost application observation: Available; no additional permission required" \
    <<<"$report" || fail "the setup report does not see the X display: $report"
if LC_ALL=C grep -q "[^-a-zA-Z0-9 ._()+:;,]" <<<"$report"; then
    fail "the setup report holds characters outside the permitted sets: $report"
fi
echo "browser bridge end to end: ok"
