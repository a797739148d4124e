#!/usr/bin/env bash
# Readers while the recorder writes: a scripted recorder (lumenote-scenario on
# a simulated clock, so that it saves as fast as the disk lets it) records
# many identical sessions into a real store, while `lumenote-cli sessions`,
# `show`, `export` and `week` read the same store in a loop. No reader may fail
# (a busy or locked database included), and no reader may see a half-saved
# session: every finished session it sees has the script's exact totals and
# segments that tile its time, and the history only ever grows.
#
# Usage: concurrent_readers_test.sh BIN_DIR. Every process runs under timeout.
set -euo pipefail

bin=${1:?usage: concurrent_readers_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
work=$(mktemp -d)
writer=
cleanup() {
    [[ -z "$writer" ]] || kill "$writer" 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
fail() {
    echo "FAIL: $*" >&2
    exit 1
}
export HOME="$work/home" XDG_DATA_HOME="$work/data" XDG_CONFIG_HOME="$work/config" TZ=UTC
mkdir -p "$HOME"

# Each session: five minutes, switching every 30 s between a focused editor
# and an unclassified browser, so 150 s of each; then a gap before the next.
sessions=120
python3 - "$sessions" >"$work/script.jsonl" <<'SCRIPT'
import json, sys
say = lambda **step: print(json.dumps(step))
say(at=0, do="classifyApp", bundle="org.gnome.TextEditor", name="Text Editor",
    classification="focused")
editor = dict(bundle="org.gnome.TextEditor", name="Text Editor")
browser = dict(bundle="org.mozilla.firefox", name="Firefox")
for index in range(int(sys.argv[1])):
    begin = index * 400
    say(at=begin, do="frontmost", **editor)
    say(at=begin, do="start", subject="Reading %d" % index, duration=86400)
    for switch in range(1, 10):
        say(at=begin + switch * 30, do="frontmost", **(browser if switch % 2 else editor))
    say(at=begin + 300, do="end")
SCRIPT

timeout 300 "$bin/lumenote-scenario" "$work/script.jsonl" --data-dir "$XDG_DATA_HOME" \
    >"$work/writer.out" 2>"$work/writer.err" &
writer=$!

# check_snapshot SESSIONS_JSON: the invariants of one reader's view; prints
# the number of finished sessions and one finished session's id.
check_snapshot() {
    python3 - "$1" <<'CHECK'
import json, sys
sessions = json.load(open(sys.argv[1]))
finished = [s for s in sessions if s["status"] == "completed"]
for s in sessions:
    assert s["status"] in ("completed", "running"), s["status"]
for s in finished:
    figures = (s["timerDuration"], s["focusedDuration"], s["unclassifiedDuration"])
    assert figures == (300.0, 150.0, 150.0), (s["subject"], figures)
print(len(finished), finished[0]["id"] if finished else "")
CHECK
}

check_session() {
    PYTHONPATH="$here" python3 - "$1" <<'CHECK'
import sys
from stored_session import assert_each_begins_where_the_last_ended, load, ordered_segments, stamp
session = load(sys.argv[1])
segments = ordered_segments(session)
assert len(segments) == 10, len(segments)
assert stamp(segments[0]["startDate"]) == stamp(session["startDate"])
assert_each_begins_where_the_last_ended(segments)
assert stamp(segments[-1]["endDate"]) == stamp(session["endDate"])
assert sum(s["duration"] for s in segments) == 300.0
CHECK
}

rounds=0
previous=0
while kill -0 "$writer" 2>/dev/null; do
    timeout 30 "$cli" sessions --json >"$work/sessions.json" 2>"$work/reader.err" ||
        fail "sessions failed while the recorder wrote: $(cat "$work/reader.err")"
    read -r finished id < <(check_snapshot "$work/sessions.json") ||
        fail "sessions showed a half-saved session"
    ((finished >= previous)) || fail "the history shrank from $previous to $finished sessions"
    previous=$finished
    if [[ -n "$id" ]]; then
        timeout 30 "$cli" show "$id" --json >"$work/session.json" 2>"$work/reader.err" ||
            fail "show failed while the recorder wrote: $(cat "$work/reader.err")"
        check_session "$work/session.json" || fail "show gave a session whose segments do not tile it"
    fi
    timeout 30 "$cli" export --format json --output - >"$work/export.json" 2>"$work/reader.err" ||
        fail "export failed while the recorder wrote: $(cat "$work/reader.err")"
    python3 -c 'import json, sys; json.load(open(sys.argv[1]))' "$work/export.json" ||
        fail "export wrote a document that does not parse"
    timeout 30 "$cli" week --json >"$work/week.json" 2>"$work/reader.err" ||
        fail "week failed while the recorder wrote: $(cat "$work/reader.err")"
    rounds=$((rounds + 1))
done
wait "$writer" || fail "the scripted recorder failed: $(tail -n 20 "$work/writer.err")"
writer=
((rounds >= 3)) || fail "only $rounds reading rounds ran while the recorder wrote"
timeout 30 "$cli" sessions --json >"$work/sessions.json"
read -r finished _ < <(check_snapshot "$work/sessions.json")
((finished == sessions)) || fail "$finished of $sessions sessions were stored"
echo "concurrent readers test passed: $rounds reading rounds while $sessions sessions were saved"
