#!/usr/bin/env bash
# The terminal recorder on a Wayland desktop: `lumenote-cli record` without
# a terminal under a headless sway (no X display at all), over a private
# session bus. Two foot terminals are focused in turn with swaymsg; the
# recorder must choose the foreign-toplevel observer, record both windows
# with their identities (one named by a desktop entry), never an "Unknown
# application" stretch, and never a window title. `lumenote-cli check`
# names the backends that observe and, while the recorder runs, when it last
# saw the application in front change. A compositor that goes away ends the
# recorder as a lost X display does: what it saw waits for recovery.
#
# Usage: wayland_recorder_test.sh BIN_DIR. Exit 77 (skipped) only when sway
# is not installed.
set -euo pipefail

if ! command -v sway >/dev/null || ! command -v foot >/dev/null; then
    echo "SKIP: sway or foot is not installed"
    exit 77
fi

bin=${1:?usage: wayland_recorder_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
source "$here/wayland_session.sh"
trap cleanup EXIT

export HOME="$work/home" XDG_DATA_HOME="$work/home/data" XDG_CONFIG_HOME="$work/home/config"
export XDG_DATA_DIRS="$work/system" TZ=UTC
unset XDG_SESSION_ID
mkdir -p "$XDG_DATA_HOME/applications" "$XDG_DATA_DIRS/applications"
cat >"$XDG_DATA_HOME/applications/study-alpha-notes.desktop" <<'ENTRY'
[Desktop Entry]
Type=Application
Name=Alpha Notes
Exec=foot
ENTRY
write_bus_config
start_bus session
export DBUS_SESSION_BUS_ADDRESS=$bus_address
start_sway

start_foot study-alpha-notes
start_foot LumenoteBeta
"$cli" rules set-app LumenoteBeta distracting >/dev/null

check=$("$cli" check || true)
[[ "$check" == *"ok   The application in front is seen through the compositor's foreign-toplevel protocol."* ]] ||
    fail "check did not name the foreign-toplevel observer: $check"
[[ "$check" == *"ok   The time since your last input comes from"* ]] ||
    fail "check did not name an idle observer: $check"

timeout 150 "$cli" record --subject "Wayland" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
recorder_job=$!
background+=("$recorder_job")
poll_until "the recorder's status" status_matches "LumenoteBeta (distracting)"
poll_until "3 seconds of recording" elapsed_at_least 3
focus_window study-alpha-notes
poll_until "the switch to alpha" status_matches "Alpha Notes"
poll_until "6 seconds of recording" elapsed_at_least 6
focus_window LumenoteBeta
poll_until "the switch back to beta" status_matches "LumenoteBeta (distracting)"
poll_until "8 seconds of recording" elapsed_at_least 8
# The running recorder tells the check when it last saw a focus change.
[[ "$("$cli" check || true)" == *"ok   The application in front last changed at "* ]] ||
    fail "check did not show the recorder's last activation"
"$cli" end >/dev/null
wait "$recorder_job" || fail "the recorder ended with status $?"
grep -q "Unknown application" "$work/recorder.out" "$work/recorder.err" &&
    fail "the recorder warned that it cannot see the application in front"

id=$(newest_session_id)
"$python" - "$("$cli" show "$id" --json)" <<'CHECK' || fail "the segments do not match the focus changes"
import json, sys
segments = json.loads(sys.argv[1])["segments"]
order = [(g["bundleIdentifier"], g["applicationName"]) for g in segments]
wanted = [("LumenoteBeta", "LumenoteBeta"), ("study-alpha-notes", "Alpha Notes"),
          ("LumenoteBeta", "LumenoteBeta")]
assert order == wanted, order
assert all(g["duration"] >= 1 for g in segments), segments
CHECK
! grep -rqa "private title" "$HOME" || fail "a window title was stored"

# ---- the compositor goes away: the recorder saves what it saw and exits ----
recording_loses_its_display "Compositor lost" "$sway_job"
