#!/usr/bin/env bash
# End-to-end test of the terminal recorder: `lumenote-cli record` without a
# terminal on a real X server (Xvfb, openbox, two xterms switched with
# xdotool), over a private session bus and a second private bus standing in
# for the system bus, with a test logind and a test notification server.
# Checks that window switches become classified segments (a switch through
# a moment with no active window among them; a window that a desktop entry
# on XDG_DATA_DIRS maps to a well-known desktop id is classified by the
# starter rows, without any rule), that `rules recent` lists what was
# recorded and `rules set-app` warns about a name that is not a recorded id,
# that logind's
# PrepareForSleep(true/false) becomes a "Mac asleep" stretch, that `pause`,
# `resume`, `status` and `end` reach the recorder, and that the stored totals
# add up. Then kills a recorder with SIGKILL and checks `recovery status` and
# `recovery end`. Last, takes the X server away from a recorder, which saves
# what it saw and exits instead of spinning on the dead connection.
#
# Usage: recorder_test.sh BIN_DIR. Waits poll with deadlines; every external
# process runs under timeout and is killed on exit.
set -euo pipefail

bin=${1:?usage: recorder_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
trap cleanup EXIT
start_desktop_session
start_client LumenoteAlpha
alpha=$window
start_client LumenoteBeta
beta=$window
# A document viewer as its package installs it: the desktop entry names the
# window class, so the window is recorded as org.gnome.Evince. The recorder
# reads the data folders when it starts.
mkdir -p "$work/system/applications"
cat >"$work/system/applications/org.gnome.Evince.desktop" <<'ENTRY'
[Desktop Entry]
Type=Application
Name=Document Viewer
Exec=evince %U
StartupWMClass=Evince
ENTRY
export XDG_DATA_DIRS="$work/system:/usr/local/share:/usr/share"
start_client Evince
viewer=$window

# The setup check sees the display, its idle time, logind and notifications.
check=$("$cli" check || true)
for part in "seen through the X display" "comes from the X screen saver extension" \
    "A notification server shows"; do
    grep -F "$part" <<<"$check" | grep -q "^ok" ||
        fail "the setup check misses \"$part\": $check"
done

"$cli" rules set-app LumenoteAlpha focused >/dev/null
"$cli" rules set-app LumenoteBeta distracting >/dev/null

# ---- the recorder ----

activate "$alpha"
timeout 150 "$cli" record --subject "End to end" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
recorder_job=$!
background+=("$recorder_job")
poll_until "the recorder's status" status_matches "LumenoteAlpha (focused)"

poll_until "3 seconds of recording" elapsed_at_least 3
activate "$beta"
poll_until "the switch to beta" status_matches "LumenoteBeta (distracting)"
poll_until "6 seconds of recording" elapsed_at_least 6

login1 EmitPrepareForSleep boolean:true
poll_until "sleep" status_matches "asleep"
poll_until "8 seconds of recording" elapsed_at_least 8
login1 EmitPrepareForSleep boolean:false
poll_until "the wake" status_matches "LumenoteBeta (distracting)"
activate "$viewer"
poll_until "the switch to the document viewer" status_matches "Document Viewer (focused)"

activate "$alpha"
poll_until "the switch back to alpha" status_matches "LumenoteAlpha (focused)"
poll_until "11 seconds of recording" elapsed_at_least 11
# A switch through a moment with no active window, as some window managers
# leave while focus moves: it must become neither an "Unknown application"
# stretch nor one of zero length (checked with the segments below).
timeout 10 "$bin/lumenote-x11-set-active" --through-none "$beta" 0.3 ||
    fail "could not switch to beta through no active window"
poll_until "the switch to beta through no active window" \
    status_matches "LumenoteBeta (distracting)"
[[ "$("$cli" pause)" == "Paused." ]] || fail "pause did not answer Paused."
poll_until "the pause" status_matches "paused"
[[ "$("$cli" pause)" == "The session is already paused." ]] || fail "a second pause toggled"
"$cli" resume >/dev/null
poll_until "the resume" status_matches "recording"
"$cli" away >/dev/null
poll_until "studying away" status_matches "Studying away from Mac"
"$cli" back >/dev/null
grep -q "Working away from your Mac?" "$work/recorder.out" ||
    fail "the away-study introduction was not shown on first use"
poll_until "12 seconds of recording" elapsed_at_least 12
"$cli" end >/dev/null
wait "$recorder_job" || fail "the recorder ended with status $?"
[[ "$(status_text)" == "" ]] || true
"$cli" status >/dev/null 2>&1 && fail "status answered with nothing recording"

session=$("$cli" sessions --json)
"$python" - "$session" <<'CHECK' || fail "the stored session does not match the switches"
import json, sys
sessions = json.loads(sys.argv[1])
assert len(sessions) == 1, sessions
s = sessions[0]
assert s["status"] == "completed", s["status"]
timer = s["timerDuration"]
assert timer >= 12, timer
focused, distracted, asleep = s["focusedDuration"], s["distractedDuration"], s["systemExcludedDuration"]
assert focused >= 4 and distracted >= 2 and asleep >= 1.5, (focused, distracted, asleep)
total = sum(s[k] for k in ("focusedDuration", "distractedDuration", "neutralDuration",
                           "unclassifiedDuration", "inactiveDuration", "ignoredDuration",
                           "systemExcludedDuration"))
assert abs(total - timer) < 1.0, (total, timer)
CHECK
id=$("$python" -c 'import json,sys; print(json.loads(sys.argv[1])[0]["id"])' "$session")
"$python" - "$("$cli" show "$id" --json)" <<'CHECK' || fail "the segments do not match the switches"
import json, sys
segments = json.loads(sys.argv[1])["segments"]
names = [(g["bundleIdentifier"], g["classification"], g.get("activitySource")) for g in segments]
assert ("LumenoteAlpha", "focused", "application") in names, names
assert ("LumenoteBeta", "distracting", "application") in names, names
assert ("org.gnome.Evince", "focused", "application") in names, names
sleep = [g for g in segments if g["bundleIdentifier"] == "com.apple.system.sleep"]
assert len(sleep) == 1 and sleep[0]["applicationName"] == "Mac asleep", sleep
assert sleep[0]["activitySource"] == "system", sleep
unknown = [g for g in segments if g["applicationName"] == "Unknown application"]
assert not unknown, unknown
empty = [g for g in segments if g["duration"] <= 0]
assert not empty, empty
assert names[-1][0] == "LumenoteBeta", names
CHECK

# openbox still gives alpha the focus; the property follows it again, so that
# activating beta below is a switch once more.
timeout 10 "$bin/lumenote-x11-set-active" "$alpha" || fail "could not set alpha active again"

# ---- rules for what was recorded ----
recent=$("$cli" rules recent)
grep -Eq '^  org\.gnome\.Evince +Document Viewer +focused$' <<<"$recent" ||
    fail "rules recent does not list the document viewer: $recent"
grep -Eq '^  LumenoteBeta +LumenoteBeta +distracting$' <<<"$recent" ||
    fail "rules recent does not list beta with its rule: $recent"
warning=$("$cli" rules set-app "document viewer" neutral 2>&1 >/dev/null)
[[ "$warning" == *"Recorded with a similar id or name: Document Viewer (org.gnome.Evince)."* ]] ||
    fail "a rule for a display name was not pointed at the recorded id: $warning"
[[ "$("$cli" rules remove "document viewer")" == \
    "Removed the application rule for document viewer." ]] || fail "the rule was not removed"

# ---- a crash: SIGKILL, then recovery from the command line ----
timeout 150 "$cli" record --subject "Crashed" --open-ended \
    >"$work/crashed.out" 2>"$work/crashed.err" &
crashed_job=$!
background+=("$crashed_job")
poll_until "the second recorder" status_matches "Crashed"
poll_until "2 seconds of the second recording" elapsed_at_least 2
activate "$beta"
poll_until "a saved boundary" status_matches "LumenoteBeta"
poll_until "4 seconds of the second recording" elapsed_at_least 4
recorder_pid=$(pgrep -P "$crashed_job" -x lumenote-cli || true)
[[ -n "$recorder_pid" ]] || fail "no recorder process under its timeout"
killed_at=$(elapsed)
kill -9 "$recorder_pid"
wait "$crashed_job" 2>/dev/null || true

# Until it is settled, every command tells of the waiting session, and a
# recorder without a terminal leaves it alone: with a bad request first of all.
status_err=$("$cli" status 2>&1 >/dev/null) && fail "status answered with nothing recording"
[[ "$status_err" == *'"Crashed"'*"waits for recovery"* ]] ||
    fail "status did not tell of the session waiting for recovery: $status_err"
listed=$("$cli" sessions)
[[ "$listed" == *"Crashed"*"waits for recovery"* ]] ||
    fail "sessions did not show the session waiting for recovery: $listed"
refused=$(timeout 20 "$cli" record --subject "" --recovery end </dev/null 2>&1) &&
    fail "a recorder started with an empty subject"
[[ "$refused" == *"Add a subject."* ]] || fail "the empty subject was not refused: $refused"
refused=$(timeout 20 "$cli" record --subject "Next" </dev/null 2>&1) &&
    fail "a recorder without a terminal started over an unfinished session"
[[ "$refused" == *"waits for recovery, so nothing was started"*"--recovery continue"* ]] ||
    fail "the waiting session was not explained: $refused"

recovery=$("$cli" recovery status)
[[ "$recovery" != *"[c]"* && "$recovery" == *"Uncertain:"* ]] ||
    fail "recovery status is not plain text: $recovery"
[[ "$recovery" == *"Lumenote found an unfinished session."* ]] ||
    fail "recovery status did not offer the session: $recovery"
"$cli" recovery end >/dev/null || fail "recovery end failed"
"$python" - "$("$cli" sessions --json)" "$killed_at" <<'CHECK' || fail "the recovered session is wrong"
import json, sys
sessions = {s["subject"]: s for s in json.loads(sys.argv[1])}
crashed = sessions["Crashed"]
assert crashed["status"] == "interrupted", crashed["status"]
timer = crashed["timerDuration"]
# Confirmed time only: never more than had passed when the process died.
assert 2 <= timer <= int(sys.argv[2]) + 1, (timer, sys.argv[2])
total = sum(crashed[k] for k in ("focusedDuration", "distractedDuration", "neutralDuration",
                                 "unclassifiedDuration", "inactiveDuration", "ignoredDuration",
                                 "systemExcludedDuration"))
assert total <= timer + 0.001, (total, timer)
CHECK
[[ "$("$cli" recovery status)" == *"No unfinished session was found."* ]] ||
    fail "the recovered session is still offered"

# ---- the display goes away: the recorder saves what it saw and exits ----
recording_loses_its_display "Display lost" "$xvfb_job"
"$cli" recovery end >/dev/null || fail "recovery end failed after the display was lost"
"$python" - "$("$cli" sessions --json)" <<'CHECK' || fail "the session without a display is wrong"
import json, sys
lost = {s["subject"]: s for s in json.loads(sys.argv[1])}["Display lost"]
assert lost["status"] == "interrupted", lost["status"]
assert lost["timerDuration"] >= 2, lost["timerDuration"]
CHECK
echo "recorder end-to-end test passed"
