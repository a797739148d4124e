#!/usr/bin/env bash
# The real recorder's resident memory and CPU time while it records, on a
# private desktop (Xvfb, openbox, two xterms switched at a fixed interval,
# private buses with a test logind). Prints the peak resident set and the
# CPU time per hour extrapolated from the measured stretch.
#
# Usage: recorder_resources.sh BIN_DIR [SECONDS [SWITCH_SECONDS]]: measure for
# SECONDS (default 120), switching windows every SWITCH_SECONDS (default 30).
# Targets: under 25 MB resident, under 2 seconds of CPU per hour.
set -euo pipefail

bin=${1:?usage: recorder_resources.sh BIN_DIR [SECONDS]}
seconds=${2:-120}
switch_seconds=${3:-30}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/../tests/e2e/desktop_session.sh"
source "$here/switching_windows.sh"
trap cleanup EXIT

start_desktop_session
start_client LumenoteAlpha
alpha=$window
start_client LumenoteBeta
beta=$window
activate "$alpha"

timeout $((seconds + 120)) "$cli" record --subject "Resources" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
job=$!
background+=("$job")
recording() { "$cli" status >/dev/null 2>&1; }
poll_until "the recorder" recording
pid=$(pgrep -P "$job" -x lumenote-cli)

measure_while_switching "$pid" "$seconds" "$switch_seconds" "$alpha" "$beta"
"$cli" end >/dev/null
wait "$job"

report_resources "recorder" "under 2 s"
