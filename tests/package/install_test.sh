#!/usr/bin/env bash
# Installs the build tree into a temporary prefix and runs the programs from
# there, as a packager or `sudo cmake --install` would leave them: every file
# lands where the desktop looks for it, the installed lumenote-cli reports its
# version, registers the browser helper with a manifest whose path points into
# <prefix>/libexec/lumenote/, finds the extension packages under
# <prefix>/share/lumenote/extension, and the installed helper answers a
# browser's hello.
#
# Usage: install_test.sh BUILD_DIR. Every process runs under timeout.
set -euo pipefail

build=${1:?usage: install_test.sh BUILD_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$here/installed_programs.sh"
prefix="$work/prefix"
fail() {
    echo "FAIL: $*" >&2
    exit 1
}

timeout 120 cmake --install "$build" --prefix "$prefix" >"$work/install.log" ||
    fail "cmake --install failed: $(tail -n 5 "$work/install.log")"

expected=(
    bin/lumenote
    bin/lumenote-cli
    libexec/lumenote/TallywiseBrowserHost
    share/lumenote/extension/chromium/manifest.json
    share/lumenote/extension/lumenote-chromium.zip
    share/lumenote/extension/lumenote-firefox.xpi
    share/lumenote/gnome-shell/legacy/lumenote@tallywise.com/metadata.json
    share/lumenote/gnome-shell/legacy/lumenote@tallywise.com/extension.js
    share/lumenote/gnome-shell/modules/lumenote@tallywise.com/metadata.json
    share/lumenote/gnome-shell/modules/lumenote@tallywise.com/extension.js
    share/lumenote/kwin/lumenote-activation.js
    lib/lumenote/private/liblumenote-kde-idle.so.1
    share/applications/com.tallywise.Lumenote.desktop
    share/metainfo/com.tallywise.Lumenote.metainfo.xml
    share/icons/hicolor/scalable/apps/com.tallywise.Lumenote.svg
    share/doc/lumenote/copyright
    share/doc/lumenote/changelog.gz
    share/man/man1/lumenote.1.gz
    share/man/man1/lumenote-cli.1.gz
    share/bash-completion/completions/lumenote
    share/bash-completion/completions/lumenote-cli
)
for size in 16 22 24 32 48 64 128 256 512; do
    expected+=("share/icons/hicolor/${size}x${size}/apps/com.tallywise.Lumenote.png")
done
for file in "${expected[@]}"; do
    [[ -s "$prefix/$file" ]] || fail "not installed: $file"
done
for program in bin/lumenote bin/lumenote-cli libexec/lumenote/TallywiseBrowserHost; do
    [[ -x "$prefix/$program" ]] || fail "not executable: $program"
done
# The installed programs find Lumenote's private library through their RUNPATH.
env -u LD_LIBRARY_PATH ldd "$prefix/bin/lumenote-cli" | grep -qF "$prefix/bin/../lib/lumenote/private/liblumenote-kde-idle.so.1" ||
    fail "lumenote-cli does not find its private library: $(ldd "$prefix/bin/lumenote-cli" | grep lumenote)"

# Each PNG is the size its folder names.
python3 - "$prefix/share/icons/hicolor" <<'CHECK' || fail "an icon has the wrong size"
import pathlib, struct, sys
for png in pathlib.Path(sys.argv[1]).glob("*x*/apps/com.tallywise.Lumenote.png"):
    data = png.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", png
    width, height = struct.unpack(">II", data[16:24])
    size = int(png.parent.parent.name.split("x")[0])
    assert (width, height) == (size, size), (png, width, height)
CHECK

# The installed desktop entry starts the program on the PATH with the
# theme's icon, not this build tree's.
entry="$prefix/share/applications/com.tallywise.Lumenote.desktop"
grep -qx "Exec=lumenote" "$entry" || fail "the installed entry does not run lumenote: $(grep Exec "$entry")"
grep -qx "Icon=com.tallywise.Lumenote" "$entry" || fail "the installed entry names another icon"

check_installed_programs "$prefix"

# The installed manual renders from the prefix.
MANWIDTH=80 timeout 20 man -l "$prefix/share/man/man1/lumenote-cli.1.gz" 2>/dev/null |
    grep -q "lumenote-cli" || fail "the installed manual page does not render"
echo "install test passed"
