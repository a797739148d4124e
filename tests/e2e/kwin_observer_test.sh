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
# new KWin, that the script is unloaded when the probe exits, and that
# `lumenote-cli record` loads the script itself and records the windows.
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

here=$(cd "$(dirname "$0")" && pwd)
PROBE="$1/lumenote-kwin-probe"
CLI="$1/lumenote-cli"
work=$(mktemp -d)
deadline_seconds=60
background=()
began=$SECONDS
# shellcheck source=desktop_session.sh
source "$here/desktop_session.sh"
# shellcheck source=wayland_session.sh
source "$here/wayland_session.sh"
# shellcheck source=probe_watch.sh
source "$here/probe_watch.sh"
trap cleanup EXIT

[ -x "$PROBE" ] || fail "no probe at $PROBE"
command -v xterm >/dev/null || fail "xterm is not installed"
command -v Xwayland >/dev/null || fail "Xwayland is not installed"

RUNTIME="$work/runtime"
mkdir -m 0700 "$RUNTIME"
mkdir "$work/home"
mkdir -p "$work/data/applications/study" "$work/system/applications"
for_compositor_user "$RUNTIME" "$work/home"
cp "$(command -v kwin_wayland)" "$work/kwin_wayland"

cat >"$work/data/applications/study/alpha.desktop" <<'ENTRY'
[Desktop Entry]
Type=Application
Name=Écrire Ünïcode
Name[de]=Schreiben
Exec=xterm
ENTRY

write_bus_config
"${as_compositor_user[@]}" timeout 170 dbus-daemon --config-file="$work/bus.conf" --nofork \
    --print-address=1 >"$work/bus.address" 2>"$work/bus.log" &
background+=($!)
poll_until "the session bus" test -s "$work/bus.address"
BUS="$(head -n 1 "$work/bus.address")"
USER_ENV=(env -i PATH=/usr/bin:/bin "HOME=$work/home" "XDG_RUNTIME_DIR=$RUNTIME"
    "DBUS_SESSION_BUS_ADDRESS=$BUS" "XDG_DATA_HOME=$work/data" "XDG_DATA_DIRS=$work/system")

bus_call() {
    "${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 5 dbus-send --session --print-reply "$@"
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
    rm -f "$work/home/display"
    "${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 170 "$work/kwin_wayland" --virtual --no-lockscreen \
        --xwayland --width 1024 --height 768 --socket wayland-lumenote --exit-with-session \
        "sh -c 'echo \$DISPLAY >$work/home/display; exec sleep 170'" >>"$work/kwin.log" 2>&1 &
    KWIN=$!
    background+=("$KWIN")
    poll_until "KWin on the bus" kwin_owns_its_name
    poll_until "KWin's Xwayland" test -s "$work/home/display"
}
start_kwin
X_DISPLAY="$(cat "$work/home/display")"

# Everything sent to the observer, to check that no title is among it.
"${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 170 dbus-monitor --session \
    "interface='com.tallywise.Lumenote.KWinObserver'" >"$work/monitor.log" 2>&1 &
background+=($!)

"${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 170 "$PROBE" --watch >"$work/watch.log" 2>&1 &
PROBE_PID=$!
background+=("$PROBE_PID")
poll_until "the probe's readiness" grep -qs '"event":"ready"' "$work/watch.log"
script_loaded lumenote-activation || fail "KWin does not have the script loaded"
# The script reports the window active at load time: none yet.
poll_until "the first report" grep -qs '"event":"activated"' "$work/watch.log"
grep -F '"event":"activated"' "$work/watch.log" | head -n 1 | grep -qF '"bundleIdentifier":null' ||
    fail "a window was reported before any existed"

# open_xterm CLASS: an xterm of that class with a title that must never
# show; KWin activates new windows.
open_xterm() {
    "${as_compositor_user[@]}" env -i PATH=/usr/bin:/bin "HOME=$work/home" "DISPLAY=$X_DISPLAY" timeout 170 \
        xterm -class "$1" -T "private title of $1" -e sleep 170 >"$work/xterm-$1.log" 2>&1 &
    background+=($!)
}
# start_client CLASS IDENTITY NAME: open_xterm, and wait until the probe
# reports the new window.
start_client() {
    local before
    before="$(watch_lines)"
    open_xterm "$1"
    poll_until "the activation of new $2" activated_since "$before" "$2" "$3"
}

# focus KWIN_CLASS IDENTITY NAME: a throwaway KWin script activates the
# window whose resourceClass is KWIN_CLASS.
focus_count=0
focus() {
    local before plugin script id
    before="$(watch_lines)"
    focus_count=$((focus_count + 1))
    plugin="lumenote-test-focus-$focus_count"
    script="$work/home/$plugin.js"
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
    poll_until "the activation of $2" activated_since "$before" "$2" "$3"
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
grep -q 'member=WindowActivated' "$work/monitor.log" || fail "no WindowActivated call was seen"
# kwin_wayland started without its lock screen owns no screen saver: every
# idle reading is 0 (the user counts as present), marked unavailable.
if grep -F '"event":"activated"' "$work/watch.log" | grep -vF '"idleAvailable":false,"idleSeconds":0.0' |
    grep -q .; then
    fail "an idle reading without a screen saver is not 0"
fi

# Titles are never read: none reaches the bus or the output.
if grep -qF "private title" "$work/watch.log" "$work/monitor.log"; then
    fail "a window title reached the bus or the output"
fi

# KWin restarts: the probe reports that it no longer observes, then loads
# and runs its script in the new KWin, which reports the window active then.
before="$(watch_lines)"
kill "$KWIN"
wait "$KWIN" 2>/dev/null || true
poll_until "the probe to see KWin go" reported_since "$before" '"observing":false'
before="$(watch_lines)"
start_kwin
poll_until "the probe to observe the new KWin" reported_since "$before" '"observing":true'
script_loaded lumenote-activation || fail "the new KWin does not have the script loaded"
X_DISPLAY="$(cat "$work/home/display")"
start_client LumenoteBeta "lumenotebeta" "lumenotebeta"

# The probe exits on SIGTERM and takes its script out of KWin.
kill -TERM "$PROBE_PID"
set +e
wait "$PROBE_PID"
probe_status=$?
set -e
[ "$probe_status" -eq 0 ] || fail "the probe ended with status $probe_status"
grep -qF '"event":"stopped"' "$work/watch.log" || fail "the probe did not stop cleanly"
if script_loaded lumenote-activation; then
    fail "the script is still loaded after the probe exited"
fi
kill -0 "$KWIN" 2>/dev/null || fail "KWin ended during the test"

# The recorder loads the script itself and records the windows KWin
# activates; desktop_session.sh's status readers call "$cli", here run by
# the session's user, who keeps Lumenote's data in the test home and finds
# the test's desktop entries among the system's.
RECORDER_ENV=("${USER_ENV[@]}" "XDG_DATA_HOME=$work/home/data" "XDG_DATA_DIRS=$work/data:$work/system")
user_cli() { "${as_compositor_user[@]}" "${RECORDER_ENV[@]}" timeout 10 "$CLI" "$@"; }
cli=user_cli
"${as_compositor_user[@]}" "${RECORDER_ENV[@]}" WAYLAND_DISPLAY=wayland-lumenote XDG_SESSION_TYPE=wayland \
    XDG_CURRENT_DESKTOP=KDE timeout 120 "$CLI" record --subject "KDE" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
recorder_job=$!
background+=("$recorder_job")
poll_until "the recorder to see lumenotebeta" status_matches "lumenotebeta"
script_loaded lumenote-activation || fail "the recorder did not load its script"
poll_until "2 seconds of recording" elapsed_at_least 2
open_xterm Study-Alpha
poll_until "the recorder to see study-alpha" status_matches "Écrire Ünïcode"
user_cli end >/dev/null || fail "the session did not end"
wait "$recorder_job" || fail "the recorder ended with status $?"
recorded=$(newest_session_applications)
[[ "$recorded" == "lumenotebeta study-alpha" ]] || fail "recorded $recorded"
if script_loaded lumenote-activation; then
    fail "the script is still loaded after the recorder ended"
fi
! grep -rqa "private title" "$work/home" || fail "a window title was stored"

echo "real KWin test took $((SECONDS - began)) s"
echo "PASS"
