# Reading the log of an observer probe's --watch run ($work/watch.log, one
# JSON object per line), sourced after desktop_session.sh by the real
# compositor tests.

watch_lines() { wc -l <"$work/watch.log"; }

# activated_since LINE IDENTITY NAME: an activation line after line LINE
# names IDENTITY and NAME.
activated_since() {
    tail -n +"$(($1 + 1))" "$work/watch.log" | grep -F '"event":"activated"' |
        grep -F "\"bundleIdentifier\":\"$2\"" | grep -qF "\"localizedName\":\"$3\""
}

# reported_since LINE TEXT: a line after line LINE contains TEXT.
reported_since() { tail -n +"$(($1 + 1))" "$work/watch.log" | grep -qF "$2"; }

# The idle seconds of a tick line, the newest tick line, and whether that
# tick's idle time is at least $1 seconds.
idle_of() { sed -n 's/.*"idleSeconds":\([0-9.eE+-]*\).*/\1/p' <<<"$1"; }
last_tick() { grep -F '"event":"tick"' "$work/watch.log" | tail -n 1; }
tick_seen() { [ -n "$(last_tick)" ]; }
tick_idle_at_least() {
    local tick
    tick="$(last_tick)"
    [ -n "$tick" ] && awk -v idle="$(idle_of "$tick")" -v least="$1" 'BEGIN { exit !(idle >= least) }'
}
# The idle time $1 seconds beyond $2.
seconds_after() { awk -v from="$2" -v more="$1" 'BEGIN { print from + more }'; }
