#!/usr/bin/env bash
# The KWin script observer against a real KWin: a headless kwin_wayland
# (virtual output, Xwayland, no lock screen) on a private session bus, the
# probe loading Lumenote's script into it, and xterm windows of distinct
# classes activated in turn by a test script of KWin's own. Checks that the
# script is loaded and run, that each activation reaches the probe with the
# right identity and display name (a desktop entry with a non-ASCII name in a
# subfolder, a bare class, a browser's class), that no window title appears
# on the bus or in the output, that the idle reading is 0 where no screen
# saver answers, that a KWin restart is followed by the script running in the
# new KWin, and that the script is unloaded when the probe exits.
#
# The installed kwin_wayland carries a file capability (cap_sys_resource or
# cap_sys_nice) that keeps it from starting here; a plain copy carries none
# and runs. Foot, the test's Wayland terminal elsewhere, ends with SIGFPE on
# KWin's virtual output, so the windows are X11 ones through Xwayland: KWin
# reports them the same way (class lower-cased).
#
# As root, the bus, KWin, the probe and the windows run as "nobody".
# Exit 77 (skipped) only when kwin_wayland is not installed.
#
# Usage: kwin_observer_test.sh BINARY_FOLDER
set -euo pipefail

if ! command -v kwin_wayland >/dev/null; then
    echo "SKIP: kwin_wayland is not installed"
    exit 77
fi

PROBE="$1/lumenote-kwin-probe"
WORK="$(mktemp -d)"
STARTED=()
began=$SECONDS

cleanup() {
    local pid
    for pid in "${STARTED[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    for pid in "${STARTED[@]}"; do
        wait "$pid" 2>/dev/null || true
    done
    rm -rf "$WORK"
}
trap cleanup EXIT

fail() {
    echo "FAIL: $*" >&2
    local log
    for log in "$WORK"/*.log; do
        [ -e "$log" ] && { echo "--- $(basename "$log")" >&2; tail -n 40 "$log" >&2; }
    done
    exit 1
}

# wait_until SECONDS DESCRIPTION COMMAND...: polls COMMAND until it succeeds.
wait_until() {
    local deadline=$((SECONDS + $1)) description="$2"
    shift 2
    until "$@"; do
        [ "$SECONDS" -lt "$deadline" ] || fail "timed out waiting until $description"
        sleep 0.1
    done
}

[ -x "$PROBE" ] || fail "no probe at $PROBE"
command -v xterm >/dev/null || fail "xterm is not installed"
command -v Xwayland >/dev/null || fail "Xwayland is not installed"

AS_USER=()
if [ "$(id -u)" -eq 0 ]; then
    AS_USER=(setpriv --reuid=nobody --regid="$(id -g nobody)" --clear-groups)
    chmod 0755 "$WORK"
fi
RUNTIME="$WORK/runtime"
mkdir -m 0700 "$RUNTIME"
mkdir "$WORK/home"
mkdir -p "$WORK/data/applications/study" "$WORK/system/applications"
if [ "$(id -u)" -eq 0 ]; then
    chown nobody:"$(id -g nobody)" "$RUNTIME" "$WORK/home"
fi
cp "$(command -v kwin_wayland)" "$WORK/kwin_wayland"

cat >"$WORK/data/applications/study/alpha.desktop" <<'ENTRY'
[Desktop Entry]
Type=Application
Name=Écrire Ünïcode
Name[de]=Schreiben
Exec=xterm
ENTRY

cat >"$WORK/bus.conf" <<'CONF'
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
"${AS_USER[@]}" timeout 170 dbus-daemon --config-file="$WORK/bus.conf" --nofork \
    --print-address=1 >"$WORK/bus.address" 2>"$WORK/bus.log" &
STARTED+=($!)
wait_until 10 "the session bus starts" test -s "$WORK/bus.address"
BUS="$(head -n 1 "$WORK/bus.address")"
USER_ENV=(env -i PATH=/usr/bin:/bin "HOME=$WORK/home" "XDG_RUNTIME_DIR=$RUNTIME"
    "DBUS_SESSION_BUS_ADDRESS=$BUS" "XDG_DATA_HOME=$WORK/data" "XDG_DATA_DIRS=$WORK/system")

bus_call() {
    "${AS_USER[@]}" "${USER_ENV[@]}" timeout 5 dbus-send --session --print-reply "$@"
}
kwin_owns_its_name() {
    bus_call --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.NameHasOwner string:org.kde.KWin 2>/dev/null | grep -q "boolean true"
}
script_loaded() {
    bus_call --dest=org.kde.KWin /Scripting org.kde.kwin.Scripting.isScriptLoaded \
        "string:$1" | grep -q "boolean true"
}

# start_kwin: a headless KWin with Xwayland; its pid in KWIN. The session
# program tells the X display that Xwayland serves.
start_kwin() {
    rm -f "$WORK/home/display"
    "${AS_USER[@]}" "${USER_ENV[@]}" timeout 170 "$WORK/kwin_wayland" --virtual --no-lockscreen \
        --xwayland --width 1024 --height 768 --socket wayland-lumenote --exit-with-session \
        "sh -c 'echo \$DISPLAY >$WORK/home/display; exec sleep 170'" >>"$WORK/kwin.log" 2>&1 &
    KWIN=$!
    STARTED+=("$KWIN")
    wait_until 60 "KWin owns org.kde.KWin" kwin_owns_its_name
    wait_until 60 "KWin starts Xwayland" test -s "$WORK/home/display"
}
start_kwin
X_DISPLAY="$(cat "$WORK/home/display")"

# Everything sent to the observer, to check that no title is among it.
"${AS_USER[@]}" "${USER_ENV[@]}" timeout 170 dbus-monitor --session \
    "interface='com.tallywise.Lumenote.KWinObserver'" >"$WORK/monitor.log" 2>&1 &
STARTED+=($!)

"${AS_USER[@]}" "${USER_ENV[@]}" timeout 170 "$PROBE" --watch >"$WORK/watch.log" 2>&1 &
PROBE_PID=$!
STARTED+=("$PROBE_PID")
wait_until 30 "the probe is ready" grep -qs '"event":"ready"' "$WORK/watch.log"
script_loaded lumenote-activation || fail "KWin does not have the script loaded"
# The script reports the window active at load time: none yet.
wait_until 10 "the first report arrives" grep -qs '"event":"activated"' "$WORK/watch.log"
grep -F '"event":"activated"' "$WORK/watch.log" | head -n 1 | grep -qF '"bundleIdentifier":null' ||
    fail "a window was reported before any existed"

# activated_since LINE IDENTITY NAME: an activation line after line LINE
# names IDENTITY and NAME.
activated_since() {
    tail -n +"$(($1 + 1))" "$WORK/watch.log" | grep -F '"event":"activated"' |
        grep -F "\"bundleIdentifier\":\"$2\"" | grep -qF "\"localizedName\":\"$3\""
}

# start_client CLASS IDENTITY NAME: an xterm of that class with a title the
# output must never show; KWin activates new windows.
start_client() {
    local before
    before="$(wc -l <"$WORK/watch.log")"
    "${AS_USER[@]}" env -i PATH=/usr/bin:/bin "HOME=$WORK/home" "DISPLAY=$X_DISPLAY" timeout 170 \
        xterm -class "$1" -T "private title of $1" -e sleep 170 >"$WORK/xterm-$1.log" 2>&1 &
    STARTED+=($!)
    wait_until 30 "$2 starts and is activated" activated_since "$before" "$2" "$3"
}

# focus KWIN_CLASS IDENTITY NAME: a throwaway KWin script activates the
# window whose resourceClass is KWIN_CLASS.
focus_count=0
focus() {
    local before plugin script id
    before="$(wc -l <"$WORK/watch.log")"
    focus_count=$((focus_count + 1))
    plugin="lumenote-test-focus-$focus_count"
    script="$WORK/home/$plugin.js"
    cat >"$script" <<SCRIPT
var windows = workspace.clientList();
for (var i = 0; i < windows.length; ++i) {
    if (windows[i].resourceClass == "$1") {
        workspace.activeClient = windows[i];
    }
}
SCRIPT
    chmod 0644 "$script"
    id="$(bus_call --dest=org.kde.KWin /Scripting org.kde.kwin.Scripting.loadScript \
        "string:$script" "string:$plugin" | sed -n 's/.*int32 \([0-9-]*\).*/\1/p')"
    [ -n "$id" ] && [ "$id" -ge 0 ] || fail "KWin refused the focus script ($id)"
    bus_call --dest=org.kde.KWin "/$id" org.kde.kwin.Script.run >/dev/null ||
        bus_call --dest=org.kde.KWin "/Scripting/Script$id" org.kde.kwin.Script.run >/dev/null ||
        fail "KWin did not run the focus script"
    wait_until 10 "the activation of $2 is reported" activated_since "$before" "$2" "$3"
    bus_call --dest=org.kde.KWin /Scripting org.kde.kwin.Scripting.unloadScript \
        "string:$plugin" >/dev/null
}

start_client Study-Alpha "study-alpha" "Écrire Ünïcode"
start_client LumenoteBeta "lumenotebeta" "lumenotebeta"
start_client firefox-esr "org.mozilla.firefox" "Firefox"

focus study-alpha "study-alpha" "Écrire Ünïcode"
focus lumenotebeta "lumenotebeta" "lumenotebeta"
focus firefox-esr "org.mozilla.firefox" "Firefox"
focus study-alpha "study-alpha" "Écrire Ünïcode"

# The calls on the bus carry the class, instance, desktop file name and pid.
grep -q 'member=WindowActivated' "$WORK/monitor.log" || fail "no WindowActivated call was seen"
# kwin_wayland started without its lock screen owns no screen saver: every
# idle reading is 0 (the user counts as present), marked unavailable.
if grep -F '"event":"activated"' "$WORK/watch.log" | grep -vF '"idleAvailable":false,"idleSeconds":0.0' |
    grep -q .; then
    fail "an idle reading without a screen saver is not 0"
fi

# Titles are never read: none reaches the bus or the output.
if grep -qF "private title" "$WORK/watch.log" "$WORK/monitor.log"; then
    fail "a window title reached the bus or the output"
fi

# KWin restarts: the probe reports that it no longer observes, then loads
# and runs its script in the new KWin, which reports the window active then.
before="$(wc -l <"$WORK/watch.log")"
kill "$KWIN"
wait "$KWIN" 2>/dev/null || true
stopped_observing() {
    tail -n +"$((before + 1))" "$WORK/watch.log" | grep -qF '"observing":false'
}
wait_until 30 "the probe sees KWin go" stopped_observing
before="$(wc -l <"$WORK/watch.log")"
start_kwin
observing_again() {
    tail -n +"$((before + 1))" "$WORK/watch.log" | grep -qF '"observing":true'
}
wait_until 30 "the probe observes the new KWin" observing_again
script_loaded lumenote-activation || fail "the new KWin does not have the script loaded"
X_DISPLAY="$(cat "$WORK/home/display")"
start_client LumenoteBeta "lumenotebeta" "lumenotebeta"

# The probe exits on SIGTERM and takes its script out of KWin.
kill -TERM "$PROBE_PID"
set +e
wait "$PROBE_PID"
probe_status=$?
set -e
[ "$probe_status" -eq 0 ] || fail "the probe ended with status $probe_status"
grep -qF '"event":"stopped"' "$WORK/watch.log" || fail "the probe did not stop cleanly"
if script_loaded lumenote-activation; then
    fail "the script is still loaded after the probe exited"
fi
kill -0 "$KWIN" 2>/dev/null || fail "KWin ended during the test"

echo "real KWin test took $((SECONDS - began)) s"
echo "PASS"
