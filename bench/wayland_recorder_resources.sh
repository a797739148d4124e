#!/usr/bin/env bash
# The real recorder's CPU time and resident memory while it records on a
# Wayland desktop: a headless sway with two foot terminals focused in turn
# at a fixed interval, over a private session bus. The same measure as
# recorder_resources.sh takes on X11, so the two observers compare directly.
#
# Usage: wayland_recorder_resources.sh BIN_DIR [SECONDS [SWITCH_SECONDS]]:
# measure for SECONDS (default 120), switching every SWITCH_SECONDS (default
# 30). Target: no more CPU per hour than the X11 recorder (under 2 seconds).
set -euo pipefail

bin=${1:?usage: wayland_recorder_resources.sh BIN_DIR [SECONDS [SWITCH_SECONDS]]}
seconds=${2:-120}
switch_seconds=${3:-30}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/../tests/e2e/desktop_session.sh"
source "$here/../tests/e2e/wayland_session.sh"
source "$here/switching_windows.sh"
trap cleanup EXIT

export HOME="$work/home" XDG_DATA_HOME="$work/home/data" XDG_CONFIG_HOME="$work/home/config"
mkdir -p "$HOME"
write_bus_config
start_bus session
export DBUS_SESSION_BUS_ADDRESS=$bus_address
start_sway
start_foot LumenoteAlpha
start_foot LumenoteBeta
# measure_while_switching activates its windows by name: here, app ids.
activate() { focus_window "$1"; }

timeout $((seconds + 120)) "$cli" record --subject "Resources" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
job=$!
background+=("$job")
recording() { "$cli" status >/dev/null 2>&1; }
poll_until "the recorder" recording
pid=$(pgrep -P "$job" -x lumenote-cli)

measure_while_switching "$pid" "$seconds" "$switch_seconds" LumenoteAlpha LumenoteBeta
"$cli" end >/dev/null
wait "$job"

report_resources "Wayland recorder" "no more than on X11, under 2 s"
