#!/usr/bin/env bash
# The global shortcut against a real X server: Xvfb with openbox and a
# focused xterm, keys typed with xdotool. Checks that the registered
# Ctrl+Alt+S is triggered whatever the state of Num Lock and Caps Lock, and
# only by its own combination; that a second registration of the same
# combination is refused with its sentence, and so is one of which another
# client holds a single lock variant, without keeping the variants it did
# get; that a released shortcut can be taken by another client; that a
# desktop without X11 and a binding without a modifier are explained; and
# that a probe ends normally on end of input, on SIGTERM and when the server
# goes away.
#
# Usage: global_hotkey_test.sh BIN_DIR. Waits poll with deadlines; every
# external process runs under timeout and is killed on exit.
set -euo pipefail

bin=${1:?usage: global_hotkey_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
probe="$bin/lumenote-hotkey-probe"
keyboard="$bin/lumenote-x11-keyboard"

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
trap cleanup EXIT

[[ -x "$probe" ]] || fail "no probe at $probe"
[[ -x "$keyboard" ]] || fail "no lumenote-x11-keyboard at $keyboard"

# Key codes 1 and 2 are S and D; control is 0x1000 and option 0x800.
ctrl_alt_s=(1 0x1800)
ctrl_alt_d=(2 0x1800)
taken_sentence="Ctrl+Alt+S is already used by macOS or another app. Choose a different shortcut."

# Only the X server and a window manager: the shortcut needs nothing else.
export HOME="$work/home"
mkdir -p "$HOME"
unset WAYLAND_DISPLAY
timeout 600 Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset \
    3>"$work/display" >"$work/xvfb.log" 2>&1 &
xvfb=$!
background+=("$xvfb")
poll_until "Xvfb" test -s "$work/display"
export DISPLAY=":$(head -n1 "$work/display")"
poll_until "the display" display_ready
timeout 600 openbox --sm-disable >"$work/openbox.log" 2>&1 &
background+=($!)
poll_until "openbox" window_manager_ready
# Keys typed anywhere go to this window, unless a grab takes them.
start_client LumenoteNotes
activate "$window"

# start_probe NAME KEY_CODE MODIFIERS: a probe registering that binding,
# with its input held open by this script (end_input ends it); waits for its
# registration line. Sets probe_pid.
declare -A probe_input
start_probe() {
    local name=$1 fd
    shift
    mkfifo "$work/$name.in"
    # Read-write, so that opening never waits for the reader.
    exec {fd}<>"$work/$name.in"
    probe_input[$name]=$fd
    # The probe holds no probe's input open for writing, its own included:
    # end of input must reach each probe when this script closes its end.
    (
        for fd in "${probe_input[@]}"; do
            exec {fd}>&-
        done
        exec timeout 120 "$probe" "$@" <"$work/$name.in" >"$work/$name.out" 2>"$work/$name.err"
    ) &
    probe_pid=$!
    background+=("$probe_pid")
    poll_until "the $name probe's registration" grep -qs '"event":"registration"' "$work/$name.out"
}
end_input() {
    local fd=${probe_input[$1]}
    exec {fd}>&-
}
count_of() { grep -c "\"event\":\"$2\"" "$work/$1.out" || true; }
has_count() { (($(count_of "$1" "$2") == $3)); }

# expect_registration NAME STATE [MESSAGE]
expect_registration() {
    local expected
    if (($# > 2)); then
        expected="{\"event\":\"registration\",\"message\":\"$3\",\"state\":\"$2\"}"
    else
        expected="{\"event\":\"registration\",\"message\":null,\"state\":\"$2\"}"
    fi
    [[ "$(head -n1 "$work/$1.out")" == "$expected" ]] ||
        fail "$1 registered as $(head -n1 "$work/$1.out"), not $expected"
}

press() { timeout 5 xdotool key "$@" || fail "xdotool could not type $*"; }

# press_and_count NAME COUNT KEYS...: types KEYS, then waits until NAME has
# been triggered COUNT times in all.
press_and_count() {
    local name=$1 count=$2
    shift 2
    press "$@"
    poll_until "$name triggered $count times by $*" has_count "$name" triggered "$count"
}

# expect_untouched NAME COUNT: once NAME has handled every key event typed so
# far (the probe answers a line of input with "synced" after a round trip to
# the server), it has still been triggered COUNT times.
expect_untouched() {
    local synced
    synced=$(($(count_of "$1" synced) + 1))
    echo >&"${probe_input[$1]}"
    poll_until "$1 to handle the keys typed" has_count "$1" synced "$synced"
    has_count "$1" triggered "$2" || fail "$1 was triggered $(count_of "$1" triggered) times, not $2"
}

# locks_are TEXT: the lock modifiers in force, as another client sees them.
locks_are() {
    local locks
    locks=$(timeout 5 "$keyboard" modifiers) || fail "could not read the modifiers"
    [[ "$locks" == "$1" ]] || fail "the locks in force are \"$locks\", not \"$1\""
}

start_probe first "${ctrl_alt_s[@]}"
first=$probe_pid
expect_registration first registered
press_and_count first 1 ctrl+alt+s

# Every lock state: the shortcut's grab has a variant for each.
press Num_Lock
locks_are mod2
press_and_count first 2 ctrl+alt+s
press Caps_Lock
locks_are "lock mod2"
press_and_count first 3 ctrl+alt+s
press Num_Lock
locks_are lock
press_and_count first 4 ctrl+alt+s
press Caps_Lock
locks_are ""

# Other combinations, each a modifier more, fewer or different, leave it be.
for keys in ctrl+alt+d ctrl+shift+s alt+s ctrl+s s ctrl+alt+shift+s super+ctrl+alt+s; do
    press "$keys"
done
expect_untouched first 4

# The same combination again is refused with its sentence; the first keeps
# every press.
start_probe second "${ctrl_alt_s[@]}"
second=$probe_pid
expect_registration second unavailable "$taken_sentence"
press_and_count first 5 ctrl+alt+s

# A second shortcut beside the first: each hears only its own.
start_probe beside "${ctrl_alt_d[@]}"
beside=$probe_pid
expect_registration beside registered
press_and_count beside 1 ctrl+alt+d
expect_untouched first 5
press_and_count first 6 ctrl+alt+s
expect_untouched beside 1

# SIGTERM and end of input end a probe normally; once the first has released
# Ctrl+Alt+S another client can take it.
kill -TERM "$second"
wait "$second" || fail "the refused probe ended with status $? on SIGTERM"
end_input first
wait "$first" || fail "the first probe ended with status $? at end of input"
timeout 60 "$keyboard" grab s control mod1 >"$work/holder.out" 2>&1 &
holder=$!
background+=("$holder")
poll_until "another client's grab" grep -qsxE 'grabbed|refused' "$work/holder.out"
[[ "$(cat "$work/holder.out")" == grabbed ]] || fail "Ctrl+Alt+S stayed held after the probe ended"
kill "$holder"
wait "$holder" 2>/dev/null || true

# Another client holds only the Num Lock variant of Ctrl+Alt+S: the grab
# fails part-way and gives back the variants it had, so the plain
# combination is still free for others.
timeout 60 "$keyboard" grab s control mod1 mod2 >"$work/numlock-holder.out" 2>&1 &
background+=($!)
poll_until "the Num Lock variant's holder" grep -qsx grabbed "$work/numlock-holder.out"
start_probe partial "${ctrl_alt_s[@]}"
expect_registration partial unavailable "$taken_sentence"
timeout 60 "$keyboard" grab s control mod1 >"$work/plain.out" 2>&1 &
background+=($!)
poll_until "a grab of the plain combination" grep -qsxE 'grabbed|refused' "$work/plain.out"
[[ "$(cat "$work/plain.out")" == grabbed ]] || fail "the refused probe kept a variant of Ctrl+Alt+S"

# Explained without a display, and without a modifier.
set +e
no_display=$(env -u DISPLAY -u WAYLAND_DISPLAY timeout 10 "$probe" "${ctrl_alt_s[@]}" </dev/null)
no_display_status=$?
no_modifier=$(timeout 10 "$probe" 1 0 </dev/null)
no_modifier_status=$?
set -e
expected='{"event":"registration","message":"This desktop does not let applications use global shortcuts, so Lumenote'"'"'s shortcut is unavailable.","state":"unavailable"}'
[[ $no_display_status -eq 0 && "$no_display" == "$expected" ]] ||
    fail "without a display: status $no_display_status, $no_display"
expected='{"event":"registration","message":"A global shortcut needs at least one modifier key.","state":"unavailable"}'
[[ $no_modifier_status -eq 0 && "$no_modifier" == "$expected" ]] ||
    fail "without a modifier: status $no_modifier_status, $no_modifier"

# The server goes away: the probe says so and ends normally.
kill "$xvfb"
poll_until "the lost connection to be reported" grep -q '"event":"connectionLost"' "$work/beside.out"
wait "$beside" || fail "the probe ended with status $? when the server went away"

echo "PASS"
