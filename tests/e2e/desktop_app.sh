# The desktop application on the private desktop of desktop_session.sh,
# sourced after it by the end-to-end test and the desktop benchmark: a test
# tray host (a StatusNotifierWatcher on the session bus) and helpers that
# read and drive the tray item and the panel. The sourcing script sets $bin
# (the executables) and $app (the lumenote executable).

# start_tray_host: the watcher that makes Qt put its tray icon on the bus as
# a StatusNotifierItem; each registered item is appended to
# $work/items.jsonl. Started before the application, which asks once.
start_tray_host() {
    export QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR="$work/runtime"
    unset QT_STYLE_OVERRIDE
    mkdir -p -m 700 "$work/runtime"
    : >"$work/items.jsonl"
    timeout 600 "$python" "$desktop_here/fake_status_notifier_watcher.py" \
        --record "$work/items.jsonl" >"$work/watcher.log" 2>&1 &
    background+=($!)
    poll_until "the test tray host" has_owner "$DBUS_SESSION_BUS_ADDRESS" \
        org.kde.StatusNotifierWatcher
}

# tray COMMAND...: tray_driver.py on the registered item.
tray() { timeout 10 "$python" "$desktop_here/tray_driver.py" "$work/items.jsonl" "$@"; }
tooltip_is() { [[ "$(tray tooltip 2>/dev/null)" == "$1" ]]; }
tooltip_starts() { [[ "$(tray tooltip 2>/dev/null)" == "$1"* ]]; }
item_registered() { [[ -s "$work/items.jsonl" ]]; }
panel_window() {
    panel=$(timeout 5 xdotool search --onlyvisible --name '^Lumenote$' 2>/dev/null | head -n1)
    [[ -n "$panel" ]]
}
panel_hidden() { ! panel_window; }
window_named() {
    named=$(timeout 5 xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n1)
    [[ -n "$named" ]]
}
# shot WINDOW NAME: a screenshot of the window as $shots/NAME.png.
shot() { timeout 10 "$bin/lumenote-window-shot" "$1" "$shots/$2.png" || fail "no screenshot $2"; }
app_gone() { ! kill -0 "$app_pid" 2>/dev/null; }

# start_app [ARGS...]: lumenote under timeout; its process id (the timeout's)
# in $app_pid once its tray item is registered.
start_app() {
    : >"$work/items.jsonl"
    timeout 600 "$app" "$@" >>"$work/app.out" 2>>"$work/app.err" &
    app_pid=$!
    background+=($app_pid)
    poll_until "the tray item" item_registered
}

# start_from_panel SUBJECT: a session from the panel's form.
start_from_panel() {
    tray click "New Study Session"
    poll_until "the panel" panel_window
    activate "$panel"
    timeout 5 xdotool type --delay 20 "$1"
    timeout 5 xdotool key Return
    poll_until "a running session" tooltip_starts "Lumenote. Recording, "
}
