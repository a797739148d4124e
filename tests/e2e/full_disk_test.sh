#!/usr/bin/env bash
# A full disk: the home folder (the store, the checkpoint, the preferences)
# is a small tmpfs of its own, in a private mount namespace, filled to the
# brim while the terminal recorder records on a real X server. Window
# switches then cannot be saved: the recorder says so with its sentence and
# keeps recording. A preference changed meanwhile is refused and the file
# stays as it was. Once space returns, nothing is lost: the session ends
# with every switch made while the disk was full, its segments tile its time,
# the store passes SQLite's integrity check, and no half-written file or
# temporary sibling is left anywhere.
#
# Usage: full_disk_test.sh BIN_DIR. Mounting needs root (as CI runs) on a
# machine that allows mounts; without either the test says so and exits 77,
# which CTest counts as skipped. The mount is taken away on exit.
set -euo pipefail

bin=${1:?usage: full_disk_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
if ((EUID != 0)); then
    echo "skipped: mounting the small file system needs root"
    exit 77
fi

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
before_removal() { umount "$work/home" 2>/dev/null || true; }
trap cleanup EXIT
mkdir -p "$work/home"
if ! mount -t tmpfs -o size=8m,mode=0700 tmpfs "$work/home" 2>"$work/mount.err"; then
    echo "skipped: this machine lets no small file system be mounted: $(cat "$work/mount.err")"
    exit 77
fi
start_desktop_session
start_client LumenoteAlpha
alpha=$window
start_client LumenoteBeta
beta=$window
"$cli" rules set-app LumenoteAlpha focused >/dev/null 2>&1
"$cli" prefs set session.defaultDuration 3000 >/dev/null
preferences=$(find "$XDG_CONFIG_HOME" -name defaults.json)
[[ -f "$preferences" ]] || fail "no preferences file under $XDG_CONFIG_HOME"

activate "$alpha"
timeout 150 "$cli" record --subject "Full disk" --open-ended \
    >"$work/recorder.out" 2>"$work/recorder.err" &
recorder_job=$!
background+=("$recorder_job")
poll_until "the recorder" status_matches "LumenoteAlpha"
poll_until "two seconds of recording" elapsed_at_least 2

# ---- fill the disk to the brim, then switch: nothing can be saved
dd if=/dev/zero of="$HOME/filler" bs=4k 2>/dev/null || true
before=$(sha256sum "$preferences")
full_order=(LumenoteBeta LumenoteAlpha LumenoteBeta)
for name in "${full_order[@]}"; do
    if [[ "$name" == LumenoteBeta ]]; then activate "$beta"; else activate "$alpha"; fi
    poll_until "$name in front" status_matches "$name"
    sleep 1.2
done
save_failed() { grep -q "could not be saved" "$work/recorder.out"; }
poll_until "the save-failure sentence" save_failed
kill -0 "$recorder_job" 2>/dev/null || fail "the recorder stopped on a full disk"
"$cli" prefs set session.defaultDuration 600 >"$work/prefs.out" 2>&1 &&
    fail "a preference was written to a full disk: $(cat "$work/prefs.out")"
[[ "$(sha256sum "$preferences")" == "$before" ]] || fail "the refused preference changed the file"

# ---- space returns: the queued changes are saved, nothing is lost
rm -f "$HOME/filler"
activate "$alpha"
poll_until "the editor in front again" status_matches "LumenoteAlpha"
sleep 1.2
"$cli" end >/dev/null
wait "$recorder_job" || fail "the recorder ended with status $?"

integrity=$(timeout 30 sqlite3 "$XDG_DATA_HOME/Lumenote/lumenote.sqlite" "PRAGMA integrity_check;")
[[ "$integrity" == ok ]] || fail "integrity check after the full disk: $integrity"
"$cli" show "$(newest_session_id)" --json >"$work/session.json"
PYTHONPATH="$here" "$python" - "$work/session.json" <<'CHECK' ||
import sys
from stored_session import assert_each_begins_where_the_last_ended, load, ordered_segments
session = load(sys.argv[1])
assert session["status"] == "completed", session["status"]
segments = ordered_segments(session)
order = [s.get("bundleIdentifier") for s in segments if s.get("bundleIdentifier")]
merged = [name for index, name in enumerate(order) if index == 0 or order[index - 1] != name]
expected = ["LumenoteAlpha", "LumenoteBeta", "LumenoteAlpha", "LumenoteBeta", "LumenoteAlpha"]
assert merged == expected, merged
assert_each_begins_where_the_last_ended(segments)
assert abs(sum(s["duration"] for s in segments) - session["timerDuration"]) < 0.01
CHECK
    fail "the session lost what was recorded on the full disk"
# (An empty lumenote.lock is the advisory lock of the one recorder.)
leftovers=$(find "$HOME" \( -name '*.temporary*' -o -name '*.tmp' -o \( -size 0 -type f ! -name '*.lock' \) \) -print)
[[ -z "$leftovers" ]] || fail "half-written or temporary files were left behind: $leftovers"
grep -q "$("$python" -c 'print(50 * 60)')" "$preferences" || fail "the preferences file lost its value"
echo "full disk end to end: ok"
