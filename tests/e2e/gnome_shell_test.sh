#!/usr/bin/env bash
# The GNOME Shell observers and the extension against a real GNOME Shell:
# headless, Wayland only (--no-x11), with a virtual monitor, on a private
# session bus (with the dconf settings service) and system bus. The
# extension is installed the way users get it, into a running session: the
# probe runs the installer, which runs gnome-extensions enable; the running
# shell does not load it, the next one ("log out and in") does. Then foot
# terminals with distinct app ids are opened and closed so that the focus
# moves: a new window takes the focus, closing it gives the focus back.
# Checks that each focus change is announced with the right identity and
# display name (a desktop entry the shell matches, a window it matches to
# none, a browser's app id), that idle time from Mutter's watches grows
# without input, that disabling and enabling the extension in the running
# shell is followed, that `lumenote-cli record` started while the extension
# is off warns, then takes the extension up once it is enabled and records
# the windows, that a vanished shell is reported, and that window titles
# appear neither in the probe's output nor on the bus.
#
# GNOME Shell refuses nothing as root but its clients and settings belong to
# the user: as root, the buses, the shell and its clients run as the
# unprivileged user "nobody". The shell segfaults when stopped with SIGTERM
# on this version (43); that is tolerated. It starts in the overview, where
# no window has the focus: the test leaves it through the shell's own
# OverviewActive property.
#
# Exit 77 (skipped) only when gnome-shell is not installed.
#
# Usage: gnome_shell_test.sh BINARY_FOLDER
set -euo pipefail

if ! command -v gnome-shell >/dev/null; then
    echo "SKIP: gnome-shell is not installed"
    exit 77
fi

STARTED_AT=$SECONDS
here=$(cd "$(dirname "$0")" && pwd)
PROBE="$1/lumenote-gnome-probe"
CLI="$1/lumenote-cli"
SHIPPED="$(cd "$1/.." && pwd)/gnome-shell"
work=$(mktemp -d)
deadline_seconds=60
background=()
# shellcheck source=desktop_session.sh
source "$here/desktop_session.sh"
# shellcheck source=wayland_session.sh
source "$here/wayland_session.sh"
# shellcheck source=probe_watch.sh
source "$here/probe_watch.sh"
trap cleanup EXIT

[ -x "$PROBE" ] || fail "no probe at $PROBE"
[ -f "$SHIPPED/legacy/lumenote@tallywise.com/metadata.json" ] || fail "no extension built in $SHIPPED"
command -v foot >/dev/null || fail "foot is not installed"
[ -x /usr/libexec/dconf-service ] || fail "dconf-service is not installed"

RUNTIME="$work/runtime"
HOME_DIR="$work/home"
mkdir -m 0700 "$RUNTIME"
mkdir -p "$HOME_DIR/.local/share/applications" "$work/system/applications"
# A desktop entry both the shell and the probe see: the shell names the
# window study-alpha by it, the probe takes its name from it.
cat >"$HOME_DIR/.local/share/applications/study-alpha.desktop" <<'ENTRY'
[Desktop Entry]
Type=Application
Name=Écrire Ünïcode
Exec=foot --app-id=study-alpha
ENTRY
for_compositor_user "$RUNTIME" "$HOME_DIR"

write_bus_config
SESSION_BUS="unix:path=$RUNTIME/bus"
SYSTEM_BUS="unix:path=$RUNTIME/system_bus"
for bus in bus system_bus; do
    "${as_compositor_user[@]}" timeout 170 dbus-daemon --config-file="$work/bus.conf" --nofork \
        --address="unix:path=$RUNTIME/$bus" >"$work/$bus.log" 2>&1 &
    background+=($!)
done
bus_ready() { [ -S "$RUNTIME/bus" ] && [ -S "$RUNTIME/system_bus" ]; }
poll_until "the buses" bus_ready

# Everything of the session runs with this environment.
USER_ENV=(env -i PATH=/usr/bin:/bin "HOME=$HOME_DIR" "XDG_RUNTIME_DIR=$RUNTIME"
    "DBUS_SESSION_BUS_ADDRESS=$SESSION_BUS" "DBUS_SYSTEM_BUS_ADDRESS=$SYSTEM_BUS"
    "XDG_DATA_DIRS=$work/system:/usr/share" XDG_CURRENT_DESKTOP=GNOME XDG_SESSION_TYPE=wayland
    LANG=C.UTF-8)
# For commands waited for; one started in the background is spelled out, so
# that $! is its process and not a subshell's.
as_user() { "${as_compositor_user[@]}" "${USER_ENV[@]}" "$@"; }

user_bus_has_owner() {
    as_user timeout 5 gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.NameHasOwner "$1" 2>/dev/null | grep -qF "(true,)"
}

# The probe sees the test's desktop entries only (and the system's, for the
# browser's entry if one is installed).
probe_env=("${USER_ENV[@]}" "XDG_DATA_DIRS=$work/system")
probe_watch() {
    "${as_compositor_user[@]}" "${probe_env[@]}" timeout 170 "$PROBE" --watch >"$work/watch.log" 2>&1 &
    WATCH=$!
    background+=("$WATCH")
}

start_shell_without_extension() {
    "${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 170 gnome-shell --headless --no-x11 --wayland --virtual-monitor 1280x800 \
        >>"$work/shell.log" 2>&1 &
    SHELL_PID=$!
    background+=("$SHELL_PID")
    poll_until "the shell on the bus" user_bus_has_owner org.gnome.Shell
    poll_until "the shell's Wayland socket" test -S "$RUNTIME/wayland-0"
}
start_shell() {
    start_shell_without_extension
    poll_until "the extension on the bus" user_bus_has_owner com.tallywise.Lumenote.GnomeShellExtension
    # The shell shows the overview once it has started up; leaving it
    # before then would be undone.
    poll_until "the overview" overview_is true
    as_user timeout 5 gdbus call --session --dest org.gnome.Shell --object-path /org/gnome/Shell \
        --method org.freedesktop.DBus.Properties.Set org.gnome.Shell OverviewActive "<false>" \
        >/dev/null || fail "could not leave the overview"
    poll_until "the overview to close" overview_is false
}
overview_is() {
    as_user timeout 5 gdbus call --session --dest org.gnome.Shell --object-path /org/gnome/Shell \
        --method org.freedesktop.DBus.Properties.Get org.gnome.Shell OverviewActive 2>/dev/null |
        grep -qF "(<$1>,)"
}
# The settings service, as in a real session: the shell, gnome-extensions
# and gsettings share the settings through it (the database is in the test
# home).
"${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 170 /usr/libexec/dconf-service >"$work/dconf.log" 2>&1 &
background+=($!)
poll_until "the settings service" user_bus_has_owner ca.desrt.dconf

# A session that runs before the extension is installed.
shell_started_at=$SECONDS
start_shell_without_extension
echo "the shell was up after $((SECONDS - shell_started_at)) s"

# Installing, as a user would with "lumenote-cli setup wayland".
installed="$(as_user timeout 30 "$PROBE" --install "$SHIPPED")" || fail "installing failed: $installed"
grep -qF '"format":"legacy"' <<<"$installed" || fail "not the legacy format for shell 43: $installed"
grep -qF '"enabled":true' <<<"$installed" || fail "gnome-extensions did not enable it: $installed"
grep -qF 'Log out and log in again' <<<"$installed" || fail "no sentence for the user: $installed"
enabled="$(as_user timeout 10 gsettings get org.gnome.shell enabled-extensions)"
grep -qF "lumenote@tallywise.com" <<<"$enabled" || fail "the extension is not in enabled-extensions: $enabled"
again="$(as_user timeout 30 "$PROBE" --install "$SHIPPED")" || fail "installing again failed: $again"
grep -qF '"replacedPrevious":true' <<<"$again" || fail "the second install did not replace the first: $again"

# GNOME Shell on Wayland loads a new extension only at login: not now...
user_bus_has_owner com.tallywise.Lumenote.GnomeShellExtension && fail "the running shell loaded the new extension"
# ...but after the user logs out and in. The shell leaves a marker in the
# runtime folder for its first minute and starts without extensions when
# it finds one (its guard against an extension that crashes it); logging
# out clears the runtime folder, so the test clears the marker.
kill "$SHELL_PID"
wait "$SHELL_PID" 2>/dev/null || true
rm -f "$RUNTIME/gnome-shell-disable-extensions"
start_shell
echo "the shell and the extension were up after $((SECONDS - shell_started_at)) s"

# Everything the extension says on the bus, to look for titles in.
"${as_compositor_user[@]}" "${USER_ENV[@]}" timeout 170 gdbus monitor --session --dest com.tallywise.Lumenote.GnomeShellExtension \
    >"$work/monitor.log" 2>&1 &
background+=($!)

probe_watch
poll_until "the probe's readiness" grep -qs '"event":"ready"' "$work/watch.log"
grep -F '"event":"ready"' "$work/watch.log" | grep -qF '"observing":true' ||
    fail "the probe does not observe: $(cat "$work/watch.log")"

# open APP_ID IDENTITY NAME: starts foot with APP_ID and a title that must
# never show, and waits until its focus is announced. Sets CLIENT_PID.
open_client() {
    local before
    before="$(watch_lines)"
    "${as_compositor_user[@]}" "${USER_ENV[@]}" "WAYLAND_DISPLAY=wayland-0" timeout 170 foot --app-id="$1" \
        --title="private title of $1" sleep 600 >"$work/foot-$1.log" 2>&1 &
    CLIENT_PID=$!
    background+=("$CLIENT_PID")
    poll_until "the announced focus on new $2" activated_since "$before" "$2" "$3"
}
# close PID IDENTITY NAME: closes a window and waits until the focus on the
# one beneath it is announced.
close_client() {
    local before
    before="$(watch_lines)"
    kill "$1"
    poll_until "the focus back on $2" activated_since "$before" "$2" "$3"
}

open_client study-alpha "study-alpha" "Écrire Ünïcode"
open_client LumenoteBeta "LumenoteBeta" "LumenoteBeta"
BETA="$CLIENT_PID"
open_client firefox-esr "org.mozilla.firefox" "Firefox"
FIREFOX="$CLIENT_PID"
close_client "$FIREFOX" "LumenoteBeta" "LumenoteBeta"
close_client "$BETA" "study-alpha" "Écrire Ünïcode"

# Idle time: the headless shell has no input devices, so the user has been
# idle since it started, and the readings grow with the clock.
poll_until "a tick of the probe" tick_seen
grep -qF '"idleAvailable":true,"idleSeconds"' <<<"$(last_tick)" ||
    fail "Mutter's idle monitor did not answer: $(last_tick)"
grep -qF '"idleWatched":true' <<<"$(last_tick)" || fail "Mutter refused the idle watches: $(last_tick)"
first="$(idle_of "$(last_tick)")"
poll_until "two more seconds of idle time after $first" tick_idle_at_least "$(seconds_after 2 "$first")"

# The extension disabled and enabled again in the running shell: the probe
# follows its name.
before="$(watch_lines)"
as_user timeout 10 gnome-extensions disable lumenote@tallywise.com || fail "could not disable the extension"
poll_until "the probe to notice the extension gone" reported_since "$before" '"observing":false'
before="$(watch_lines)"
as_user timeout 10 gnome-extensions enable lumenote@tallywise.com || fail "could not enable the extension"
poll_until "the extension's report after enabling it" activated_since "$before" "study-alpha" "Écrire Ünïcode"

# The recorder, started while the extension is off, takes it up once it is
# enabled in the middle of the session, and says until then why the time
# goes to "Unknown application".
before="$(watch_lines)"
as_user timeout 10 gnome-extensions disable lumenote@tallywise.com || fail "could not disable the extension"
poll_until "the probe to notice the extension gone" reported_since "$before" '"observing":false'
"${as_compositor_user[@]}" "${USER_ENV[@]}" WAYLAND_DISPLAY=wayland-0 timeout 120 "$CLI" record \
    --subject "GNOME" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
recorder_job=$!
background+=("$recorder_job")
# desktop_session.sh's status readers call "$cli": here the session's user
# runs it.
user_cli() { as_user timeout 10 "$CLI" "$@"; }
cli=user_cli
poll_until "the recorder's warning" status_matches 'This time is recorded as "Unknown application".'
poll_until "2 seconds of unknown time" elapsed_at_least 2
as_user timeout 10 gnome-extensions enable lumenote@tallywise.com || fail "could not enable the extension"
poll_until "the recorder to see study-alpha" status_matches "Écrire Ünïcode"
status_matches "Unknown application" && fail "the recorder still warns with the extension running"
open_client LumenoteBeta "LumenoteBeta" "LumenoteBeta"
poll_until "the recorder to see LumenoteBeta" status_matches "LumenoteBeta"
user_cli end >/dev/null || fail "the session did not end"
wait "$recorder_job" || fail "the recorder ended with status $?"
# Unknown time first, then the two windows.
recorded=$(newest_session_applications)
[[ "$recorded" == *" study-alpha LumenoteBeta" && "$recorded" != study-alpha* ]] ||
    fail "recorded $recorded"
kill "$CLIENT_PID"

# The cost of a sample, for the record.
bench="$("${as_compositor_user[@]}" "${probe_env[@]}" timeout 60 "$PROBE" --bench 1000)" || fail "benchmark failed: $bench"
grep -qF '"samplesWithFrontmost":1000' <<<"$bench" || fail "benchmark lost the frontmost window: $bench"
echo "sample cost: $bench"

# The shell goes away: the probe reports it and carries on.
before="$(watch_lines)"
kill "$SHELL_PID"
wait "$SHELL_PID" 2>/dev/null || true
poll_until "the probe to notice the shell gone" reported_since "$before" '"observing":false'
kill -0 "$WATCH" 2>/dev/null || fail "the probe ended with the shell"
tail -n 1 "$work/watch.log" | grep -qF '"bundleIdentifier":null' || fail "a frontmost application without a shell"

# Titles are never read: none reaches the probe's output or the bus.
if grep -qF "private title" "$work/watch.log" "$work/monitor.log"; then
    fail "a window title was seen"
fi
grep -qF "FocusedWindowChanged" "$work/monitor.log" || fail "the bus monitor saw no signal"

echo "PASS in $((SECONDS - STARTED_AT)) s"
