#!/usr/bin/env bash
# The kill -9 campaign: the real recorders, the terminal one and the desktop
# application by turns of two rounds, record over a real store on a real
# X server while windows switch, and are killed with SIGKILL at random
# moments, half of them right after a switch, while the recorder saves the
# closed stretch. After every kill:
#   - SQLite's integrity check of the store is "ok";
#   - `recovery status` offers the unfinished session;
#   - `recovery end` leaves an interrupted session whose time never passes
#     what had passed when it was killed, with no segment overlapping
#     another or reaching outside the session.
#
# Usage: kill_campaign_test.sh BIN_DIR [KILLS]. KILLS (default 8, as the
# test suite runs it; say 200 for the full campaign) or $LUMENOTE_KILLS.
# Seeded by $LUMENOTE_KILL_SEED (default: the time), printed for a replay.
set -euo pipefail

bin=${1:?usage: kill_campaign_test.sh BIN_DIR [KILLS]}
kills=${2:-${LUMENOTE_KILLS:-8}}
seed=${LUMENOTE_KILL_SEED:-$(date +%s)}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
source "$here/desktop_app.sh"
trap cleanup EXIT
start_desktop_session
app="$bin/lumenote"
"$cli" prefs set onboarding.completedVersion 1 >/dev/null
start_tray_host
start_client LumenoteAlpha
alpha=$window
start_client LumenoteBeta
beta=$window
"$cli" rules set-app LumenoteAlpha focused >/dev/null 2>&1
store="$XDG_DATA_HOME/Lumenote/lumenote.sqlite"
RANDOM=$seed
echo "kill campaign: $kills kills, seed $seed"

# check_recovered KILLED_AFTER_SECONDS: the newest session after `recovery end`.
check_recovered() {
    "$cli" sessions --json >"$work/sessions.json"
    "$cli" show "$(newest_session_id)" --json >"$work/session.json"
    PYTHONPATH="$here" "$python" - "$work/sessions.json" "$work/session.json" "$1" <<'CHECK'
import sys
from stored_session import assert_inside_and_apart, load, stamp
newest = load(sys.argv[1])[0]
session = load(sys.argv[2])
limit = float(sys.argv[3])
assert newest["status"] == "interrupted", newest["status"]
assert session["timerDuration"] <= limit + 1.0, (session["timerDuration"], limit)
begin, end = stamp(session["startDate"]), stamp(session["endDate"])
assert (end - begin).total_seconds() <= limit + 1.0, (begin, end, limit)
assert_inside_and_apart(session)
CHECK
}

# start_recorder ROUND: a session named for the round, in the terminal
# recorder or the desktop application; the process to kill is then a child
# of $job (its timeout), named $recorder_name.
start_recorder() {
    if (($1 % 4 < 2)); then
        timeout 120 "$cli" record --subject "Kill $1" --open-ended \
            >"$work/recorder.out" 2>"$work/recorder.err" &
        job=$!
        recorder_name=lumenote-cli
    else
        start_app --hidden
        job=$app_pid
        recorder_name=lumenote
        # Rounds only count up, so no earlier subject starts with this one's
        # and the form's completion has nothing to offer at Return.
        start_from_panel "Kill $1"
    fi
    poll_until "recorder $1" status_matches "Kill $1"
}

survived=0
for ((round = 1; round <= kills; round++)); do
    activate "$alpha"
    started=$(date +%s.%N)
    start_recorder "$round"
    # Up to three seconds of recording with a switch or two, then the kill:
    # on odd rounds right after a switch, when the stretch is being saved.
    for ((switch = RANDOM % 3; switch > 0; switch--)); do
        sleep "0.$((RANDOM % 9 + 1))"
        if ((switch % 2)); then activate "$beta"; else activate "$alpha"; fi
    done
    if ((round % 2)); then
        activate "$beta"
        sleep "0.0$((RANDOM % 5))"
    else
        sleep "0.$((RANDOM % 10))"
    fi
    recorder=$(pgrep -P "$job" -x "$recorder_name" || true)
    [[ -n "$recorder" ]] || fail "round $round: no recorder under its timeout"
    kill -9 "$recorder"
    killed_after=$("$python" -c 'import sys,time; print(time.time() - float(sys.argv[1]))' "$started")
    wait "$job" 2>/dev/null || true

    integrity=$(timeout 30 sqlite3 "$store" "PRAGMA integrity_check;")
    [[ "$integrity" == ok ]] || fail "round $round (seed $seed): integrity check says $integrity"
    [[ "$("$cli" recovery status)" == *"Lumenote found an unfinished session."* ]] ||
        fail "round $round (seed $seed): the killed session is not offered for recovery"
    "$cli" recovery end >/dev/null || fail "round $round: recovery end failed"
    check_recovered "$killed_after" || fail "round $round (seed $seed): the recovered session is wrong"
    survived=$((survived + 1))
done
echo "kill campaign: $survived of $kills kills survived (seed $seed)"
