#!/usr/bin/env bash
# Proof that nothing leaves this computer and nothing private is kept: the
# terminal recorder, then the desktop application, and the native host run
# under strace during recorded sessions with browser events, and none opens
# any socket but Unix ones (D-Bus, X11). A private-window event that still names its host (as a
# faulty extension might send it) leaves that name nowhere on disk: not in
# the store, not in the bridge folder, not in the preferences. The diagnostic
# report and the setup test's report name none of the session's subject,
# goal, applications or websites.
#
# Usage: privacy_test.sh BIN_DIR. Waits poll with deadlines; every external
# process runs under timeout and is killed on exit.
set -euo pipefail

bin=${1:?usage: privacy_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
source "$here/desktop_app.sh"
trap cleanup EXIT
unset TALLYWISE_BRIDGE_DIR
start_desktop_session
start_client chromium
browser=$window
start_client SecretEditorAlpha
editor=$window

subject="Secret subject Quokka"
goal="Hidden goal Narwhal"
public_site=public-site.quokka-example.org
private_site=private-site.narwhal-example.net

"$cli" rules set-app SecretEditorAlpha focused >/dev/null 2>&1
activate "$editor"
timeout 120 strace -f -qq -e trace=socket,connect,bind -o "$work/recorder.trace" \
    "$cli" record --subject "$subject" --goal "$goal" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
background+=($!)
recorder_job=$!
poll_until "the recorder's status" status_matches "SecretEditorAlpha"
activate "$browser"
poll_until "the browser in front" status_matches "Chromium"

drive() {
    timeout 60 strace -f -qq -e trace=socket,connect,bind -o "$work/host-$2.trace" \
        "$python" "$here/extension_driver.py" "$bin/TallywiseBrowserHost" \
        org.chromium.Chromium "$1" 3 ${3:-} >"$work/extension-$2.out" 2>"$work/extension-$2.err" ||
        fail "the extension driver failed: $(cat "$work/extension-$2.err")"
}
drive "$public_site" public
poll_until "the public website in the status" status_matches "$public_site"
drive "$private_site" private private
events=$("$cli" browser events)
[[ "$events" == *"private"* ]] || fail "the private window's events never reached the recorder: $events"
activate "$editor"
poll_until "the switch back to the editor" status_matches "SecretEditorAlpha"
"$cli" end >/dev/null
wait "$recorder_job" || fail "the recorder ended with status $?"

# ---- the desktop application, traced the same way, records one more session
"$cli" prefs set onboarding.completedVersion 1 >/dev/null
cat >"$work/lumenote-traced" <<TRACED
#!/bin/sh
exec strace -f -qq -e trace=socket,connect,bind -o "$work/desktop.trace" "$bin/lumenote" "\$@"
TRACED
chmod +x "$work/lumenote-traced"
app="$work/lumenote-traced"
start_tray_host
start_app --hidden
activate "$browser"
# Another subject: the form would offer the first one as a completion.
start_from_panel "Desktop Quokka reading"
activate "$browser"
drive "$public_site" desktop-public
activate "$editor"
"$cli" end >/dev/null
poll_until "the desktop session's end" tooltip_is "Lumenote. No session running."
# This test's own application: the child of strace, itself the child of
# the timeout (other tests may run an application beside it).
tracer=$(pgrep -P "$app_pid" -x strace) || fail "no strace under the application's timeout"
traced=$(pgrep -P "$tracer" -x lumenote) || fail "no application under strace"
kill -TERM "$traced"
poll_until "the desktop application to quit" app_gone

# ---- no socket but Unix ones, in any process of the recorders or the host
for trace in "$work"/*.trace; do
    [[ -s "$trace" ]] || fail "strace wrote nothing to $trace"
    if grep -E '(socket|connect|bind)\(' "$trace" | grep -vE 'AF_UNIX|AF_LOCAL' |
        grep -E 'AF_|sa_family' >"$work/network.txt"; then
        fail "$(basename "$trace") shows a socket that is not a Unix one: $(head -n 5 "$work/network.txt")"
    fi
done
for trace in recorder desktop; do
    grep -q 'AF_UNIX' "$work/$trace.trace" || fail "the $trace trace saw no socket at all"
done

# ---- the private host name is nowhere on disk; the public one only in the store
grep -q "$public_site" <("$cli" show "$(newest_session_id)" --json) ||
    fail "the public website was not recorded, so the private one proves nothing"
if grep -rlaF "$private_site" "$XDG_DATA_HOME" "$XDG_CONFIG_HOME" >"$work/found.txt"; then
    fail "the private window's host name was kept in: $(cat "$work/found.txt")"
fi

# ---- the reports name nothing the user recorded
"$cli" report >"$work/report.txt" || fail "report failed"
"$cli" setup-test --report >"$work/setup-report.txt" || true
for word in "$subject" "$goal" Quokka Narwhal SecretEditorAlpha quokka-example narwhal-example; do
    if grep -qiF "$word" "$work/report.txt" "$work/setup-report.txt"; then
        fail "a report names \"$word\": $(grep -iF "$word" "$work/report.txt" "$work/setup-report.txt")"
    fi
done
echo "privacy end to end: ok"
