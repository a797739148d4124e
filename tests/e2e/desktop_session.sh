# A private desktop for end-to-end runs, sourced by test and benchmark
# scripts: an isolated home, a private session bus and a second private bus
# standing in for the system bus (with a test logind and a test notification
# server that own the real names), and an Xvfb server with openbox.
#
# The sourcing script sets $work (a temporary folder it removes) and
# $deadline_seconds, and keeps the `background` array of processes to kill
# on exit; every process started here runs under timeout.

python=/usr/bin/python3

# cleanup: kills what was started, runs the script's own before_removal if
# it has one, and removes $work; scripts trap it on EXIT.
cleanup() {
    local pid
    for pid in "${background[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    for pid in "${background[@]}"; do
        wait "$pid" 2>/dev/null || true
    done
    if declare -F before_removal >/dev/null; then
        before_removal
    fi
    rm -rf "$work"
}
desktop_here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

fail() {
    echo "FAIL: $*" >&2
    local file
    for file in "$work"/*.out "$work"/*.err "$work"/*.log; do
        if [[ -s "$file" ]]; then
            echo "--- $file" >&2
            tail -n 40 "$file" >&2
        fi
    done
    exit 1
}

# poll_until DESCRIPTION COMMAND...: runs COMMAND until it succeeds.
poll_until() {
    local description=$1 until=$((SECONDS + deadline_seconds))
    shift
    until "$@"; do
        ((SECONDS < until)) || fail "timed out waiting for $description"
        sleep 0.05
    done
}

has_owner() {
    local answer
    answer=$(timeout 5 dbus-send --bus="$1" --print-reply --dest=org.freedesktop.DBus \
        /org/freedesktop/DBus org.freedesktop.DBus.NameHasOwner "string:$2" 2>/dev/null) ||
        return 1
    [[ "$answer" == *"boolean true"* ]]
}

# write_bus_config: a bus configuration of our own, with no service folders,
# so that nothing installed on this machine can be activated into a test.
write_bus_config() {
    cat >"$work/bus.conf" <<'CONF'
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONF
}

# start_bus NAME: a bus on $work/NAME.sock (write_bus_config first); its
# address in $bus_address.
start_bus() {
    local name=$1
    timeout 600 dbus-daemon --config-file="$work/bus.conf" --nofork \
        --address="unix:path=$work/$name.sock" --print-address=3 \
        3>"$work/$name.address" 2>"$work/$name-bus.log" &
    background+=($!)
    poll_until "the $name bus" test -s "$work/$name.address"
    bus_address=$(head -n1 "$work/$name.address")
}

# start_desktop_session: exports HOME, XDG_*, DBUS_*_BUS_ADDRESS and DISPLAY.
start_desktop_session() {
    export HOME="$work/home" XDG_DATA_HOME="$work/home/data" XDG_CONFIG_HOME="$work/home/config"
    export TZ=UTC
    mkdir -p "$HOME"
    unset XDG_SESSION_ID WAYLAND_DISPLAY

    write_bus_config
    start_bus session
    export DBUS_SESSION_BUS_ADDRESS=$bus_address
    start_bus system
    export DBUS_SYSTEM_BUS_ADDRESS=$bus_address

    timeout 600 "$python" "$desktop_here/fake_login1.py" >"$work/login1.log" 2>&1 &
    background+=($!)
    poll_until "the test logind" has_owner "$DBUS_SYSTEM_BUS_ADDRESS" org.freedesktop.login1
    timeout 600 "$python" "$desktop_here/fake_notifications.py" \
        --record "$work/notifications.txt" >"$work/notifications.log" 2>&1 &
    background+=($!)
    poll_until "the test notification server" has_owner "$DBUS_SESSION_BUS_ADDRESS" \
        org.freedesktop.Notifications

    timeout 600 Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset \
        3>"$work/display" >"$work/xvfb.log" 2>&1 &
    xvfb_job=$!
    background+=($!)
    poll_until "Xvfb" test -s "$work/display"
    export DISPLAY=":$(head -n1 "$work/display")"
    poll_until "the display" display_ready
    timeout 600 openbox --sm-disable >"$work/openbox.log" 2>&1 &
    background+=($!)
    poll_until "openbox" window_manager_ready
}

display_ready() { timeout 5 xprop -root >/dev/null 2>&1; }
window_manager_ready() {
    timeout 5 xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id"
}

# start_client CLASS: a focusable xterm of that class; its window id in $window.
start_client() {
    timeout 600 xterm -class "$1" -T "$1" -e sleep 600 >/dev/null 2>&1 &
    background+=($!)
    poll_until "the $1 window" window_found "$1"
}
window_found() {
    window=$(timeout 5 xdotool search --onlyvisible --class "^$1\$" 2>/dev/null | head -n1)
    [[ -n "$window" ]]
}
activate() {
    timeout 5 xdotool windowactivate --sync "$1" || fail "could not activate window $1"
}

# What `lumenote-cli status` says (the script sets $cli), whether it says
# $1, and the session's seconds so far as it shows them.
status_text() { "$cli" status 2>/dev/null || true; }
status_matches() { [[ "$(status_text)" == *"$1"* ]]; }
elapsed() {
    local text
    text=$(status_text)
    [[ "$text" =~ ([0-9]+):([0-9]{2}):([0-9]{2}) ]] || { echo 0; return; }
    echo $((10#${BASH_REMATCH[1]} * 3600 + 10#${BASH_REMATCH[2]} * 60 + 10#${BASH_REMATCH[3]}))
}
elapsed_at_least() { (($(elapsed) >= $1)); }
# The id of the newest stored session.
newest_session_id() {
    "$cli" sessions --json | "$python" -c 'import json, sys; print(json.load(sys.stdin)[0]["id"])'
}

# The application ids of the newest session's segments, in order, on one
# line ("None" for a stretch with nothing in front).
newest_session_applications() {
    "$cli" show "$(newest_session_id)" --json | "$python" -c '
import json, sys
print(" ".join(str(g["bundleIdentifier"]) for g in json.load(sys.stdin)["segments"]))'
}

# login1 METHOD [ARGS...]: drives the test logind.
login1() {
    timeout 5 dbus-send --bus="$DBUS_SYSTEM_BUS_ADDRESS" --print-reply \
        --dest=org.freedesktop.login1 /org/freedesktop/login1 \
        "test.FakeLogin1.Control.$1" "${@:2}" >/dev/null || fail "the test logind refused $1"
}

# recording_loses_its_display SUBJECT DISPLAY_JOB: records an open-ended
# session named SUBJECT, kills DISPLAY_JOB (the X server or the compositor)
# two seconds in, and checks that the recorder says the display was lost,
# leaves, and that its session waits for recovery, as at a shutdown.
recording_loses_its_display() {
    timeout 150 "$cli" record --subject "$1" --open-ended >"$work/lost.out" 2>"$work/lost.err" &
    lost_job=$!
    background+=("$lost_job")
    poll_until "the recorder of \"$1\"" status_matches "$1"
    poll_until "2 seconds of \"$1\"" elapsed_at_least 2
    kill "$2"
    poll_until "the recorder to leave without its display" recorder_gone
    grep -q "The connection to the display was lost" "$work/lost.err" "$work/lost.out" ||
        fail "the recorder did not say that the display was lost"
    [[ "$("$cli" recovery status)" == *"Lumenote found an unfinished session."* ]] ||
        fail "the session without a display is not offered for recovery"
}
recorder_gone() { ! kill -0 "$lost_job" 2>/dev/null; }
