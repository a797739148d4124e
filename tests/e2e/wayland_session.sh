# A headless sway for end-to-end runs, sourced after desktop_session.sh (its
# $work, `background`, poll_until and fail): sway with no bar and no
# Xwayland, and foot terminals with chosen app ids focused through swaymsg.
#
# Compositors refuse to run as root or keep their clients' settings in the
# user's home: as root, the compositor and its clients run as the
# unprivileged user "nobody" (for_compositor_user), and the process under
# test connects to their socket by its absolute path.

# start_sway: exports WAYLAND_DISPLAY (absolute), SWAYSOCK,
# XDG_SESSION_TYPE=wayland and XDG_CURRENT_DESKTOP=sway, and unsets DISPLAY;
# the compositor's job (its timeout) in $sway_job.
start_sway() {
    sway_runtime="$work/sway-runtime"
    mkdir -m 0700 "$sway_runtime" "$work/sway-home"
    for_compositor_user "$sway_runtime" "$work/sway-home"
    compositor_env=(env -i PATH=/usr/bin:/bin "HOME=$work/sway-home"
        "XDG_RUNTIME_DIR=$sway_runtime")
    # A small output: the compositor's and its clients' buffers stay small.
    printf '%s\n' 'xwayland disable' 'output * mode --custom 640x480@60Hz' >"$work/sway.conf"
    "${as_compositor_user[@]}" "${compositor_env[@]}" WLR_BACKENDS=headless \
        WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman timeout 600 sway -c "$work/sway.conf" \
        >"$work/sway.log" 2>&1 &
    sway_job=$!
    background+=($!)
    poll_until "sway's sockets" sway_sockets_exist
    export SWAYSOCK WAYLAND_DISPLAY XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=sway
    SWAYSOCK=$(compgen -G "$sway_runtime/sway-ipc.*.sock" | head -n 1)
    WAYLAND_DISPLAY=$(compgen -G "$sway_runtime/wayland-*[0-9]" | head -n 1)
    unset DISPLAY
    poll_until "sway's answer" sway_answers
}

sway_sockets_exist() {
    compgen -G "$sway_runtime/wayland-*[0-9]" >/dev/null &&
        compgen -G "$sway_runtime/sway-ipc.*.sock" >/dev/null
}
sway_answers() { timeout 5 swaymsg -t get_version >/dev/null 2>&1; }

# start_foot APP_ID: a foot terminal with that app id and a title that must
# never be recorded; waits until sway has focused it (sway focuses new
# windows). Its job in $foot_job.
start_foot() {
    "${as_compositor_user[@]}" "${compositor_env[@]}" "WAYLAND_DISPLAY=$(basename "$WAYLAND_DISPLAY")" \
        timeout 600 foot --app-id="$1" --title="private title of $1" sleep 600 \
        >"$work/foot-$1.log" 2>&1 &
    foot_job=$!
    background+=($!)
    poll_until "foot $1 in front" sway_focused "$1"
}

# sway_focused APP_ID: the focused window has that app id.
sway_focused() {
    timeout 5 swaymsg -t get_tree 2>/dev/null |
        "$python" -c '
import json, sys
def walk(node):
    if node.get("focused"):
        return node.get("app_id")
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        found = walk(child)
        if found:
            return found
sys.exit(0 if walk(json.load(sys.stdin)) == sys.argv[1] else 1)' "$1"
}

# focus_window APP_ID: moves the focus there and waits until sway says so.
focus_window() {
    timeout 5 swaymsg "[app_id=\"$1\"] focus" >/dev/null || fail "swaymsg could not focus $1"
    poll_until "the focus on $1" sway_focused "$1"
}

# for_compositor_user FOLDER...: as root, sets as_compositor_user to run a
# compositor and its clients as "nobody", opens $work to that user and hands
# it FOLDER... (recursively); as anyone else, as_compositor_user is empty.
for_compositor_user() {
    as_compositor_user=()
    if [ "$(id -u)" -eq 0 ]; then
        as_compositor_user=(setpriv --reuid=nobody --regid="$(id -g nobody)" --clear-groups)
        chmod 0755 "$work"
        chown -R nobody:"$(id -g nobody)" "$@"
    fi
}
