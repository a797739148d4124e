#!/usr/bin/env bash
# The CPU cost of one real sample on X11 (the frontmost application and the
# idle time, with their round trips to the server) on a private Xvfb with
# openbox and a focused xterm. Target: under 100 microseconds.
#
# Usage: x11_sample_cost.sh BIN_DIR [SAMPLES] (default 5000).
set -euo pipefail

bin=${1:?usage: x11_sample_cost.sh BIN_DIR [SAMPLES]}
samples=${2:-5000}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/../tests/e2e/desktop_session.sh"
trap cleanup EXIT

start_desktop_session
start_client LumenoteSample
activate "$window"
for run in 1 2 3; do
    echo "X11 sample cost, run $run: $(timeout 120 "$bin/lumenote-x11-probe" --bench "$samples")"
done
