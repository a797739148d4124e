#!/usr/bin/env bash
# End-to-end test of the desktop application `lumenote` on a real X server
# (Xvfb with openbox), private session and system buses with a test logind,
# a test notification server and a test StatusNotifierWatcher, so that the
# tray icon is a StatusNotifierItem on the bus that the test reads and
# drives as a tray host would (tray_driver.py).
#
# Checks: the tray item appears with the idle tooltip and its menu; a
# session started from the tray menu's "New Study Session" and the panel's
# form records window switches made with xdotool; the global shortcut
# pauses and resumes it; a combination another X client holds makes the
# shortcut unavailable with its sentence; `lumenote-cli end` completes the
# session and a notification reaches the test server; a second start of
# lumenote brings the first forward; quitting through the tray menu during a
# session asks the quit question and "Quit and Mark Session Interrupted"
# leaves an interrupted session; after kill -9 the next start offers
# recovery; SIGTERM leaves the session for recovery without a question;
# storage that cannot be opened shows the failure window; "Open Lumenote"
# opens the main window on Today, and each page in light and dark; the setup
# assistant opens at the first start and runs to its end. Screenshots of the
# assistant's steps, the panel in each state and every page of the main
# window, light and dark, and of the questions are written to
# BIN_DIR/../screenshots.
#
# Usage: desktop_app_test.sh BIN_DIR
set -euo pipefail

bin=${1:?usage: desktop_app_test.sh BIN_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cli="$bin/lumenote-cli"
app="$bin/lumenote"
shots=$(cd "$bin/.." && pwd)/screenshots
mkdir -p "$shots"

deadline_seconds=30
work=$(mktemp -d)
background=()
source "$here/desktop_session.sh"
source "$here/desktop_app.sh"
trap cleanup EXIT
start_desktop_session
unset QT_STYLE_OVERRIDE

start_tray_host

# shot_in_dark WINDOW NAME: the window's screenshot in the dark appearance,
# set as any other process sets it and adopted within a tick; then light again.
shot_in_dark() {
    "$cli" prefs set general.appearance dark >/dev/null
    sleep 2.2
    shot "$1" "$2"
    "$cli" prefs set general.appearance light >/dev/null
    sleep 1.2
}

# The shortcut is Ctrl+Alt+S (control 0x1000, option 0x800, key code 1).
"$cli" prefs set shortcuts.globalHotkeyEnabled true >/dev/null
"$cli" prefs set shortcuts.globalHotkeyKeyCode 1 >/dev/null
"$cli" prefs set shortcuts.globalHotkeyModifiers 6144 >/dev/null
"$cli" prefs set notifications.enabled true >/dev/null
"$cli" prefs set general.appearance light >/dev/null

start_client LumenoteAlpha
alpha=$window
start_client LumenoteBeta
beta=$window
"$cli" rules set-app LumenoteAlpha focused >/dev/null
"$cli" rules set-app LumenoteBeta distracting >/dev/null

# Firefox registered beforehand, Chromium not: the assistant's browser step
# shows each as it really is (see onboarding-browsers-*.png).
"$cli" browser register firefox >/dev/null

# ---- start-up: the tray item with the idle tooltip, and its menu
start_app --hidden
poll_until "the idle tooltip" tooltip_is "Lumenote. No session running."
menu=$(tray menu)
for title in "Open Lumenote" "New Study Session" "Pause or Resume Session" \
    "Review Unclassified Activity" "Run Setup Assistant Again…" "Check for Updates…" "Quit"; do
    grep -qF "\"label\": \"$title\"" <<<"$menu" || fail "the tray menu misses $title: $menu"
done
[[ "$("$cli" status)" == *"No study session"* || "$("$cli" status)" == *idle* ]] ||
    fail "status while idle: $("$cli" status)"

# ---- the setup assistant opens at the first start and runs to its end; each
# step reached is kept, so that it would resume there
poll_until "the setup assistant" window_named '^Set Up Lumenote$'
assistant=$named
last_step_is() { [[ "$("$cli" prefs get onboarding.lastStep)" == *"$1"* ]]; }
step=0
for name in welcome observation browsers classifications goal done; do
    poll_until "the assistant's step $name" last_step_is "$step"
    shot "$assistant" "onboarding-$name-light"
    if [[ $name == welcome || $name == browsers ]]; then
        shot_in_dark "$assistant" "onboarding-$name-dark"
    fi
    activate "$assistant"
    # Continue (and, on the last step, Finish) is the default button.
    timeout 5 xdotool key Return
    step=$((step + 1))
done
finished() { [[ "$("$cli" prefs get onboarding.completedVersion)" == *1* ]]; }
poll_until "the finished assistant" finished
poll_until "the assistant to close" eval '! window_named "^Set Up Lumenote$"'

# ---- a session from the tray menu's form
tray click "New Study Session"
poll_until "the panel" panel_window
shot "$panel" panel-start-light
shot_in_dark "$panel" panel-start-dark
activate "$panel"
timeout 5 xdotool type --delay 20 "Biology"
timeout 5 xdotool key Return
poll_until "a running session" tooltip_starts "Lumenote. Recording, "
[[ "$("$cli" status)" == *Biology* ]] || fail "status after the start: $("$cli" status)"

activate "$alpha"
sleep 2.2
activate "$beta"
sleep 2.2
activate "$alpha"
sleep 1.2

# ---- the global shortcut pauses and resumes without bringing anything forward
timeout 5 xdotool key ctrl+alt+s
poll_until "the shortcut's pause" tooltip_starts "Lumenote. Paused at "
timeout 5 xdotool key ctrl+alt+s
poll_until "the shortcut's resume" tooltip_starts "Lumenote. Recording, "

# ---- the panel during a session, light and dark
tray activate
poll_until "the panel" panel_window
shot "$panel" panel-session-light
shot_in_dark "$panel" panel-session-dark

# ---- a combination another client holds: unavailable with its sentence
# Ctrl+Alt+K (key code 40) held by another client first.
# The probe holds its grab while its input stays open.
timeout 60 "$bin/lumenote-hotkey-probe" 40 6144 < <(sleep 60) >"$work/probe.out" 2>&1 &
probe=$!
background+=($probe)
poll_until "the other client's grab" grep -q registered "$work/probe.out"
"$cli" prefs set shortcuts.globalHotkeyKeyCode 40 >/dev/null
sentence_logged() { grep -q "is already used by macOS or another app. Choose a different shortcut." "$work/app.err"; }
poll_until "the unavailable shortcut" sentence_logged
kill "$probe" 2>/dev/null || true

# ---- lumenote-cli end completes the session; a notification reaches the server
"$cli" end >/dev/null
poll_until "the idle tooltip after the end" tooltip_is "Lumenote. No session running."
notified() { grep -q '"appName": "Lumenote"' "$work/notifications.txt" 2>/dev/null; }
poll_until "the completion notification" notified
poll_until "the summary panel" panel_window
shot "$panel" panel-summary-light
shot_in_dark "$panel" panel-summary-dark
sessions=$("$cli" sessions)
[[ "$sessions" == *Biology* && "$sessions" == *completed* ]] || fail "sessions: $sessions"
first=$(newest_session_id)
shown=$("$cli" show "$first")
grep -q LumenoteAlpha <<<"$shown" || fail "the first window is not recorded: $shown"
grep -q LumenoteBeta <<<"$shown" || fail "the second window is not recorded: $shown"

# ---- "Open Lumenote" opens the main window on Today; each page in light and dark
timeout 10 xdotool key Escape || true
poll_until "the panel to close" panel_hidden
tray click "Open Lumenote"
poll_until "the main window" window_named "^Today — Lumenote$"
main=$named
shot "$main" main-today-light
shot_in_dark "$main" main-today-dark
# page_shots KEY TITLE NAME: the page a shortcut chooses, in light and dark.
page_shots() {
    activate "$main"
    timeout 5 xdotool key "$1"
    poll_until "the page $2" window_named "^$2 — Lumenote$"
    shot "$main" "main-$3-light"
    shot_in_dark "$main" "main-$3-dark"
}
page_shots ctrl+2 Replay replay
page_shots ctrl+3 History history
page_shots ctrl+4 Insights insights
page_shots ctrl+5 Settings settings
tray click "Review Unclassified Activity"
poll_until "the review" window_named "^Review — Lumenote$"
shot "$main" main-review-light
shot_in_dark "$main" main-review-dark
timeout 5 xdotool windowclose "$main" || fail "the main window would not close"
poll_until "the main window to hide" eval '! window_named " — Lumenote$"'

# ---- a second start brings the running application forward
timeout 20 "$app" >"$work/second.out" 2>&1 || fail "the second start failed"
grep -q "already running" "$work/second.out" || fail "second start: $(cat "$work/second.out")"
poll_until "the panel brought forward" panel_window
timeout 5 xdotool key Escape || true

# ---- quitting during a session asks; "Quit and Mark Session Interrupted"
start_from_panel "Chemistry"
tray click "Quit"
poll_until "the quit question" window_named '^Lumenote$'
question=$named
for candidate in $(timeout 5 xdotool search --onlyvisible --name '^Lumenote$'); do
    [[ "$candidate" != "$panel" ]] && question=$candidate
done
shot "$question" quit-question
activate "$question"
# The buttons in order: End Session and Quit, Keep Lumenote Running (the
# default, with the focus), Quit and Mark Session Interrupted.
timeout 5 xdotool key Tab space
poll_until "lumenote to quit" app_gone
sessions=$("$cli" sessions)
grep -q "Chemistry.*interrupted\|interrupted.*Chemistry" <<<"$sessions" ||
    grep -A2 Chemistry <<<"$sessions" | grep -q interrupted || fail "no interrupted session: $sessions"

# ---- kill -9 during a session: the next start offers recovery
start_app --hidden
poll_until "the idle tooltip" tooltip_is "Lumenote. No session running."
start_from_panel "Physics"
sleep 1.5
# The application itself, not the timeout around it.
recorder=$(pgrep -P "$app_pid" -x lumenote) || fail "no lumenote process under $app_pid"
kill -9 "$recorder"
poll_until "lumenote to die" app_gone
start_app --hidden
poll_until "the recovery offer" window_named '^Unfinished session$'
shot "$named" recovery-offer
activate "$named"
# Continue From Now is the default answer.
timeout 5 xdotool key Return
poll_until "the recovered session" tooltip_starts "Lumenote. Recording, "
[[ "$("$cli" status)" == *Physics* ]] || fail "status after recovery: $("$cli" status)"

# ---- SIGTERM (as at logout) asks nothing and leaves the session for recovery
kill -TERM "$(pgrep -P "$app_pid" -x lumenote)"
poll_until "lumenote to stop" app_gone
recovery=$("$cli" recovery status)
[[ "$recovery" == *"Lumenote found an unfinished session."* && "$recovery" == *Physics* ]] ||
    fail "SIGTERM did not leave the session for recovery: $recovery"
"$cli" recovery end >/dev/null

# ---- storage that cannot be opened: the failure window, and nothing records
broken="$work/broken-data"
mkdir -p "$broken"
: >"$broken/Lumenote"
XDG_DATA_HOME="$broken" timeout 60 "$app" >"$work/failed.out" 2>"$work/failed.err" &
failed=$!
background+=($failed)
poll_until "the failure window" window_named '^Lumenote could not start$'
shot "$named" startup-failure
grep -q "No study activity was recorded." "$work/failed.err" ||
    fail "the failure's sentence: $(cat "$work/failed.err")"
activate "$named"
timeout 5 xdotool key Return
failed_gone() { ! kill -0 "$failed" 2>/dev/null; }
poll_until "the failed start to quit" failed_gone
[[ ! -e "$broken/Lumenote.sqlite" && "$(find "$broken" | wc -l)" -eq 2 ]] ||
    fail "a failed start wrote: $(find "$broken")"

echo "desktop application end-to-end: ok"
