#!/usr/bin/env bash
# The recorder on a terminal, driven through a pseudo-terminal by keys: it
# asks for the subject, pauses and resumes on `p`, studies away on `a`, asks
# the quit question on `q` (keep running, then quit marking the session
# interrupted), and at the next start offers the unfinished session left by
# a SIGKILL before asking anything else, continuing it on `c` and ending it
# with `e`; a third start ends such a session on `e` and then asks for the
# subject of a new one. The subject prompt takes editing keys, asks again
# for an empty subject and leaves on Ctrl-D.
#
# Usage: recorder_terminal_test.sh BIN_DIR
set -euo pipefail

bin=${1:?usage: recorder_terminal_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
trap cleanup EXIT
start_desktop_session
start_client LumenoteAlpha
activate "$window"

drive() {
    local name=$1
    cat >"$work/$name.steps"
    timeout 120 "$python" "$here/terminal_driver.py" "$work/$name.steps" -- \
        "$cli" record --duration 10m >"$work/$name.out" 2>&1 ||
        fail "the terminal session $name did not go as expected"
}

# The subject prompt edits like a shell: an empty line asks again, arrows
# move, Backspace deletes before the cursor, Up is ignored.
drive first <<'STEPS'
expect Subject:
send \n
expect Add a subject.
expect Subject:
send Chemxistry\x1b[D\x1b[D\x1b[D\x1b[D\x1b[D\x7f\x1b[F\x1b[A\n
expect Recording "Chemistry" for 0:10:00.
expect [p] pause
send p
expect Paused.
expect Chemistry · Paused
send p
expect Resumed.
send a
expect Working away from your Mac?
expect Studying away from Mac.
send a
expect Back to Computer Study.
send q
expect A study session is active
send k
expect Still recording.
send q
expect Quit and Mark Session Interrupted
send i
expect Chemistry — interrupted after
exit 0
STEPS
summary=$("$cli" sessions)
[[ "$summary" == *Chemistry*interrupted* ]] || fail "the quit did not mark the session interrupted: $summary"

# A recorder killed without warning leaves its session for the next start.
timeout 100 "$cli" record --subject Biology --open-ended >"$work/killed.out" 2>&1 &
killed_job=$!
background+=("$killed_job")
recording() { "$cli" status >/dev/null 2>&1; }
poll_until "the recorder to be killed" recording
pkill -9 -P "$killed_job" -x lumenote-cli
wait "$killed_job" 2>/dev/null || true

drive second <<'STEPS'
expect Lumenote found an unfinished session.
expect "Biology"
send c
expect Continuing from now
expect Biology ·
send e
expect Biology — completed after
exit 0
STEPS
summary=$("$cli" sessions)
[[ "$summary" == *Biology*completed* ]] || fail "the recovered session did not continue: $summary"
[[ "$(grep -c . <<<"$summary")" == 3 ]] ||
    fail "a new session started although one was continued: $summary"
timeout 100 "$cli" record --subject Geology --open-ended >"$work/killed2.out" 2>&1 &
killed_job=$!
background+=("$killed_job")
poll_until "the recorder to be killed again" recording
pkill -9 -P "$killed_job" -x lumenote-cli
wait "$killed_job" 2>/dev/null || true

drive third <<'STEPS'
expect "Geology"
send e
expect The unfinished session was ended as interrupted.
expect Subject:
send Hisx\x7ftory\n
expect Recording "History"
send e
expect History — completed after
exit 0
STEPS
summary=$("$cli" sessions)
[[ "$summary" == *Geology*interrupted* && "$summary" == *History*completed* ]] ||
    fail "ending the offered session and starting a new one went wrong: $summary"
# Ctrl-D at an empty prompt leaves without starting anything.
drive abandon <<'STEPS'
expect Subject:
send \x04
expect No session was started.
exit 0
STEPS
[[ "$("$cli" sessions)" != *"waits for recovery"* ]] || fail "leaving the prompt left a session"
echo "recorder terminal test passed"
