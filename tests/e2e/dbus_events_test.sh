#!/usr/bin/env bash
# End-to-end test of the D-Bus platform parts: two private buses (a session bus
# and one playing the system bus), test services that own the real names
# (logind, the notification server, two screen savers), and lumenote-dbus-probe
# printing one JSON line per event. Checks that each notice becomes the right
# sleep/wake/terminate call, that logind's sleep inhibitor is released in
# time, that notifications reach the server (and report "unavailable" without
# one), that the command service answers and refuses like a recorder, that a
# second recorder cannot take its name, and that signals end the probe cleanly.
#
# Usage: dbus_events_test.sh BIN_DIR
#
# Helpers that wait never sleep for a fixed time: they poll with a deadline.
# Results come back in globals (not through $(...)), so that a failure inside
# a helper ends the whole test.
set -euo pipefail

bin=${1:?usage: dbus_events_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
probe="$bin/lumenote-dbus-probe"
deadline_seconds=20

work=$(mktemp -d)
background=()
# cleanup, fail, poll_until, has_owner, write_bus_config, start_bus and
# $python come from the shared private-desktop script.
source "$here/desktop_session.sh"
trap cleanup EXIT

# ---- buses ----
write_bus_config
start_bus session
session_bus=$bus_address
start_bus system
system_bus=$bus_address
export DBUS_SESSION_BUS_ADDRESS=$session_bus
export DBUS_SYSTEM_BUS_ADDRESS=$system_bus
unset XDG_SESSION_ID

has_no_owner() {
    ! has_owner "$@"
}

# ---- test services ----
# start_service LOG BUS OWNED-NAME SCRIPT [ARGS...]: returns once OWNED-NAME
# has an owner; the service's job in $service_pid.
start_service() {
    local log=$1 bus=$2 owned=$3 script=$4
    shift 4
    timeout 170 "$python" "$here/$script" "$@" >"$work/$log.log" 2>&1 &
    service_pid=$!
    background+=("$service_pid")
    poll_until "$owned on its bus" has_owner "$bus" "$owned"
}

stop_service() {
    kill "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

# login1 METHOD [ARGS...]: drives the fake logind; returns once it has emitted.
login1() {
    timeout 5 dbus-send --bus="$system_bus" --print-reply --dest=org.freedesktop.login1 \
        /org/freedesktop/login1 "test.FakeLogin1.Control.$1" "${@:2}" >/dev/null ||
        fail "fake logind refused $1"
}

# screensaver NAME PATH true|false
screensaver() {
    timeout 5 dbus-send --bus="$session_bus" --print-reply --dest="$1" "$2" \
        test.FakeScreenSaver.Control.EmitActiveChanged "boolean:$3" >/dev/null ||
        fail "fake screen saver $1 refused"
}

inhibitors_are() {
    local counts
    counts=$(timeout 5 dbus-send --bus="$system_bus" --print-reply \
        --dest=org.freedesktop.login1 /org/freedesktop/login1 \
        test.FakeLogin1.Control.Inhibitors | awk '/uint32/ {printf "%s ", $2}') || return 1
    [[ "$counts" == "$1 $2 " ]]
}

# expect_inhibitors TAKEN HELD: what the fake logind counts.
expect_inhibitors() {
    poll_until "inhibitors taken $1, held $2" inhibitors_are "$1" "$2"
}

# ---- the probe's output ----
# nth_line FILE PATTERN N: sets $line to the Nth line matching the extended
# regular expression PATTERN; fails when there is none.
nth_line() {
    line=$(grep -E -- "$2" "$1" 2>/dev/null | sed -n "${3}p" || true)
    [[ -n "$line" ]]
}

# wait_for_line NAME PATTERN [N]: sets $line to the Nth line (default first)
# of probe NAME's output matching PATTERN.
wait_for_line() {
    poll_until "line ${3:-1} matching $2 from $1" nth_line "$work/$1.out" "$2" "${3:-1}"
}

count_lines() {
    grep -cE -- "$2" "$work/$1.out" || true
}

# field JSON KEY: prints the value of KEY as JSON (strings keep their quotes).
field() {
    "$python" -c 'import json, sys; print(json.dumps(json.loads(sys.argv[1])[sys.argv[2]], ensure_ascii=False))' "$1" "$2"
}

expect_field() {
    local actual
    actual=$(field "$1" "$2") || fail "no $2 in $1"
    [[ "$actual" == "$3" ]] || fail "$2: expected $3, got $actual in $1"
}

# The system events of the main probe, in order: each expect_event waits for
# the next one and compares it whole.
event_pattern='"event":"(sleep|wake|terminate)"'
events_seen=0
expect_event() {
    events_seen=$((events_seen + 1))
    wait_for_line main "$event_pattern" "$events_seen"
    [[ "$line" == "$1" ]] || fail "event $events_seen: expected $1, got $line"
}

# start_probe NAME [ARGS...]: output in $work/NAME.out; its job in $probe_job,
# the probe itself (not timeout) in $probe_pid, its ready line in $ready.
start_probe() {
    local name=$1
    shift
    timeout 120 "$probe" serve "$@" >"$work/$name.out" 2>"$work/$name.err" &
    probe_job=$!
    background+=("$probe_job")
    wait_for_line "$name" '"event":"ready"'
    ready=$line
    probe_pid=$(field "$ready" pid)
}

# finish_probe SIGNAL NAME: sends SIGNAL; the probe must say so and exit 0.
finish_probe() {
    kill "-$1" "$probe_pid"
    wait_for_line "$2" "\"signal\":\"SIG$1\""
    local status=0
    wait "$probe_job" || status=$?
    ((status == 0)) || fail "$2 exited with $status after SIG$1"
}

# call METHOD: the client's JSON line in $reply, its exit status in $call_status.
call() {
    call_status=0
    reply=$(timeout 10 "$probe" call "$1" 2>>"$work/call.err") || call_status=$?
}

expect_call() {
    call "$1"
    ((call_status == $2)) || fail "$1 exited with $call_status (expected $2): $reply"
}

# ======== 1. everything present ========
start_service login1 "$system_bus" org.freedesktop.login1 fake_login1.py --session-id c7
login1_pid=$service_pid
start_service notifications "$session_bus" org.freedesktop.Notifications \
    fake_notifications.py --record "$work/notifications.jsonl"
notifications_pid=$service_pid
start_service screensaver "$session_bus" org.freedesktop.ScreenSaver fake_screensaver.py
screensaver_pid=$service_pid
start_service gnome-screensaver "$session_bus" org.gnome.ScreenSaver fake_screensaver.py \
    --name org.gnome.ScreenSaver --path /org/gnome/ScreenSaver --interface org.gnome.ScreenSaver
gnome_screensaver_pid=$service_pid

notice_body='Lumenote paused your session after a long Mac sleep. – ünï'
XDG_SESSION_ID=c7 start_probe main --notify Lumenote "$notice_body"
for key in systemBusAvailable logindAvailable sessionFound inhibitorHeld sessionBusAvailable \
    screenSaverAvailable; do
    expect_field "$ready" "$key" true
done
expect_field "$ready" sessionPath '"/org/freedesktop/login1/session/c7"'
expect_field "$ready" gaps '[]'
expect_field "$ready" notifications '"authorized"'
expect_field "$ready" commandService '"running"'
poll_until "the command service's name" has_owner "$session_bus" com.tallywise.Lumenote
expect_inhibitors 1 1

# The notice reaches the server whole.
poll_until "the notice at the server" test -s "$work/notifications.jsonl"
notice=$(head -n1 "$work/notifications.jsonl")
expect_field "$notice" appName '"Lumenote"'
expect_field "$notice" summary '"Lumenote"'
expect_field "$notice" body "\"$notice_body\""
expect_field "$notice" expireTimeout -1

# Sleep: the probe hears it before logind is let go, and takes a new
# inhibitor after waking.
login1 EmitPrepareForSleep boolean:true
expect_event '{"cause":"prepareForSleep","event":"sleep"}'
expect_inhibitors 1 0
login1 EmitPrepareForSleep boolean:false
expect_event '{"cause":"prepareForSleep","event":"wake"}'
expect_inhibitors 2 1

login1 EmitLock
expect_event '{"cause":"sessionLock","event":"sleep"}'
login1 EmitUnlock
expect_event '{"cause":"sessionLock","event":"wake"}'

login1 SetActive boolean:false
expect_event '{"cause":"sessionActive","event":"sleep"}'
login1 SetActive boolean:true
expect_event '{"cause":"sessionActive","event":"wake"}'

# LockedHint is announced as invalidated: the probe must read it back.
login1 SetLockedHint boolean:true
expect_event '{"cause":"sessionLockedHint","event":"sleep"}'
login1 SetLockedHint boolean:false
expect_event '{"cause":"sessionLockedHint","event":"wake"}'

screensaver org.freedesktop.ScreenSaver /org/freedesktop/ScreenSaver true
expect_event '{"cause":"screenSaver","event":"sleep"}'
screensaver org.freedesktop.ScreenSaver /org/freedesktop/ScreenSaver false
expect_event '{"cause":"screenSaver","event":"wake"}'
screensaver org.gnome.ScreenSaver /org/gnome/ScreenSaver true
expect_event '{"cause":"screenSaver","event":"sleep"}'
screensaver org.gnome.ScreenSaver /org/gnome/ScreenSaver false
expect_event '{"cause":"screenSaver","event":"wake"}'

# Signals from a sender that does not own logind's name are not logind's:
# the next real notice must be the next event.
timeout 5 dbus-send --bus="$system_bus" --type=signal /org/freedesktop/login1 \
    org.freedesktop.login1.Manager.PrepareForShutdown boolean:true
timeout 5 dbus-send --bus="$system_bus" --type=signal /org/freedesktop/login1/session/c7 \
    org.freedesktop.login1.Session.Lock
login1 EmitLock
expect_event '{"cause":"sessionLock","event":"sleep"}'
login1 EmitUnlock
expect_event '{"cause":"sessionLock","event":"wake"}'

# Commands, through the client and straight over the bus.
expect_call Status 0
expect_field "$reply" state '"running"'
expect_field "$reply" subject '"Étude – Ω"'
status_document=$(field "$reply" reply)
for expected in '\"elapsedSeconds\":61' '\"remainingSeconds\":1439' \
    '\"classification\":\"focused\"'; do
    [[ "$status_document" == *"$expected"* ]] || fail "status lacks $expected: $status_document"
done
bus_reply=$(timeout 10 dbus-send --session --print-reply --dest=com.tallywise.Lumenote \
    /com/tallywise/Lumenote com.tallywise.Lumenote.Status)
[[ "$bus_reply" == *'"state":"running"'* ]] || fail "dbus-send Status: $bus_reply"

expect_call TogglePause 0
expect_field "$reply" state '"paused"'
expect_call StartPassiveStudy 1
expect_field "$reply" message '"Resume the session first – it is paused."'
expect_call TogglePause 0
expect_field "$reply" state '"running"'
expect_call StartPassiveStudy 0
expect_field "$reply" studyState '"passiveStudy"'
expect_call ReturnToComputerStudy 0
expect_field "$reply" studyState '"computerActivity"'
commands=$(grep -o '"command":"[A-Za-z]*"' "$work/main.out" | tr '\n' ' ')
[[ "$commands" == '"command":"TogglePause" "command":"StartPassiveStudy" "command":"TogglePause" "command":"StartPassiveStudy" "command":"ReturnToComputerStudy" ' ]] ||
    fail "the recorder was commanded: $commands"

# A second recorder cannot take the name; the first keeps answering. The
# second one's inhibitor goes with it.
main_probe_pid=$probe_pid
main_probe_job=$probe_job
start_probe second
expect_field "$ready" commandService \
    '"Another Lumenote recorder already takes commands on the session bus."'
expect_inhibitors 3 2
finish_probe TERM second
expect_inhibitors 3 1
probe_pid=$main_probe_pid
probe_job=$main_probe_job
expect_call Status 0

# Shutdown: terminate, inhibitor released; cancelled: taken again.
login1 EmitPrepareForShutdown boolean:true
expect_event '{"cause":"prepareForShutdown","event":"terminate"}'
expect_inhibitors 3 0
login1 EmitPrepareForShutdown boolean:false
expect_inhibitors 4 1

# logind restarting: the probe notices, finds the session again and hears
# the new owner's signals.
statuses=$(count_lines main '"event":"status"')
stop_service "$login1_pid"
wait_for_line main '"event":"status"' $((statuses + 1))
expect_field "$line" logindAvailable false
expect_field "$line" inhibitorHeld false
start_service login1-again "$system_bus" org.freedesktop.login1 fake_login1.py --session-id c7
login1_pid=$service_pid
wait_for_line main '"event":"status"' $((statuses + 2))
expect_field "$line" sessionFound true
expect_field "$line" inhibitorHeld true
login1 EmitLock
expect_event '{"cause":"sessionLock","event":"sleep"}'

# Ending the session releases the name while the process goes on.
expect_call EndSession 0
expect_field "$reply" state '"idle"'
wait_for_line main '"event":"commandServiceStopped"'
poll_until "the name released" has_no_owner "$session_bus" com.tallywise.Lumenote
expect_call Status 1
expect_field "$reply" message '"Nothing is recording: no Lumenote session is active."'

finish_probe TERM main
total=$(count_lines main "$event_pattern")
((total == events_seen)) || fail "expected $events_seen system events, saw $total"

# ======== 2. no system bus, no notification server, no screen saver ========
for pid in "$login1_pid" "$notifications_pid" "$screensaver_pid" "$gnome_screensaver_pid"; do
    stop_service "$pid"
done
poll_until "the notification server gone" has_no_owner "$session_bus" org.freedesktop.Notifications
DBUS_SYSTEM_BUS_ADDRESS="unix:path=$work/no-such-bus.sock" \
    start_probe bare --notify Lumenote "nobody listens"
expect_field "$ready" systemBusAvailable false
expect_field "$ready" sessionBusAvailable true
expect_field "$ready" screenSaverAvailable false
expect_field "$ready" notifications '"unavailable"'
expect_field "$ready" commandService '"running"'
expect_field "$ready" gaps '["The system bus cannot be reached, so Lumenote cannot notice sleep, screen locking or shutdown.", "No screen saver service is running; screen locking is noticed through logind only."]'
# Posting to nobody neither blocks nor breaks the loop: commands still answer.
wait_for_line bare '"event":"notified"'
expect_call Status 0
expect_field "$reply" state '"running"'
finish_probe INT bare
expect_call Status 1
expect_field "$reply" message '"Nothing is recording: no Lumenote session is active."'

# ======== 3. logind arrives late, without a session or inhibitors ========
start_probe late
expect_field "$ready" systemBusAvailable true
expect_field "$ready" logindAvailable false
expect_field "$ready" gaps '["logind is not running, so Lumenote cannot notice sleep, screen locking or shutdown.", "No screen saver service is running; screen locking is noticed through logind only."]'
start_service login1-late "$system_bus" org.freedesktop.login1 fake_login1.py \
    --no-session --refuse-inhibitors
wait_for_line late '"event":"status"'
expect_field "$line" logindAvailable true
expect_field "$line" sessionFound false
expect_field "$line" gaps '["logind does not know this login session, so Lumenote cannot notice screen locking or a switch to another user.", "logind did not let Lumenote delay sleep for a moment, so the last seconds before a sleep may count for the application in front.", "No screen saver service is running; screen locking is noticed through logind only."]'
login1 EmitPrepareForSleep boolean:true
wait_for_line late '"event":"sleep"'
[[ "$line" == '{"cause":"prepareForSleep","event":"sleep"}' ]] || fail "late logind: $line"
finish_probe HUP late

echo "dbus_events_test: all checks passed"
