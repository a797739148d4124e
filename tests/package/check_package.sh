#!/usr/bin/env bash
# Checks the Debian package that `make package` built: its control fields and
# dependencies, its contents, that it carries no maintainer scripts, lintian
# (no errors), desktop-file-validate and appstreamcli on the files it ships;
# then installs it with dpkg into a throw-away root, runs the programs from
# there as installed_programs.sh does for any prefix (the version must be the
# package's; no update check and no network library), and removes it again,
# leaving nothing behind.
#
# Usage: check_package.sh BUILD_DIR (the package preset's folder). Every
# process runs under timeout.
set -euo pipefail

build=${1:?usage: check_package.sh BUILD_DIR}
shopt -s nullglob
packages=("$build"/lumenote_*.deb)
((${#packages[@]} == 1)) || { echo "FAIL: expected one package in $build" >&2; exit 1; }
deb=${packages[0]}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$here/installed_programs.sh"
fail() {
    echo "FAIL: $*" >&2
    exit 1
}
field() { dpkg-deb --field "$deb" "$1"; }

# ---- control fields
[[ "$(field Package)" == lumenote ]] || fail "package name $(field Package)"
[[ "$(field Architecture)" == "$(dpkg --print-architecture)" ]] || fail "architecture $(field Architecture)"
[[ "$(field Version)" =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "version $(field Version)"
depends=$(field Depends)
for library in libc6 libqt6widgets6 libqt6svg6 libqt6dbus6 libsqlite3-0 libx11-6 libxss1; do
    [[ "$depends" == *"$library"* ]] || fail "Depends misses $library: $depends"
done

# ---- no maintainer scripts: installing registers nothing on its own
dpkg-deb --control "$deb" "$work/control"
for script in preinst postinst prerm postrm config; do
    [[ ! -e "$work/control/$script" ]] || fail "the package carries a $script script"
done

# ---- contents
dpkg-deb --contents "$deb" | awk '{print $6}' >"$work/contents"
for file in ./usr/bin/lumenote ./usr/bin/lumenote-cli ./usr/libexec/lumenote/TallywiseBrowserHost \
    ./usr/lib/lumenote/private/liblumenote-kde-idle.so.1 \
    ./usr/share/applications/com.tallywise.Lumenote.desktop \
    ./usr/share/metainfo/com.tallywise.Lumenote.metainfo.xml \
    ./usr/share/icons/hicolor/scalable/apps/com.tallywise.Lumenote.svg \
    ./usr/share/icons/hicolor/512x512/apps/com.tallywise.Lumenote.png \
    ./usr/share/lumenote/extension/lumenote-firefox.xpi \
    ./usr/share/lumenote/extension/lumenote-chromium.zip \
    ./usr/share/lumenote/extension/chromium/manifest.json \
    ./usr/share/man/man1/lumenote.1.gz ./usr/share/man/man1/lumenote-cli.1.gz \
    ./usr/share/bash-completion/completions/lumenote-cli \
    ./usr/share/doc/lumenote/copyright ./usr/share/doc/lumenote/changelog.gz; do
    grep -qxF "$file" "$work/contents" || fail "the package lacks $file"
done
! grep -v '^\./usr/' "$work/contents" | grep -qv '^\./$' || fail "files outside /usr: $(grep -v '^\./usr/' "$work/contents")"

# ---- lintian: no errors (warnings are printed for the reader)
timeout 300 lintian --fail-on error --tag-display-limit 0 "$deb" >"$work/lintian.out" 2>&1 ||
    fail "lintian found errors: $(cat "$work/lintian.out")"
cat "$work/lintian.out"

# ---- the shipped desktop files validate
dpkg-deb --extract "$deb" "$work/unpacked"
validated=$(timeout 60 desktop-file-validate \
    "$work/unpacked/usr/share/applications/com.tallywise.Lumenote.desktop" 2>&1 || true)
! grep -qE ": (error|warning): " <<<"$validated" || fail "desktop-file-validate: $validated"
timeout 60 appstreamcli validate --no-net \
    "$work/unpacked/usr/share/metainfo/com.tallywise.Lumenote.metainfo.xml" >"$work/appstream.out" 2>&1 ||
    fail "appstreamcli: $(cat "$work/appstream.out")"
! grep -qE "^[EWI]: " "$work/appstream.out" || fail "appstreamcli: $(cat "$work/appstream.out")"

# ---- installed with dpkg into a throw-away root, run from there, removed
root="$work/root"
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
dpkg_root() {
    timeout 120 dpkg --root="$root" --force-depends --force-not-root --log=/dev/null "$@"
}
dpkg_root --install "$deb" >"$work/dpkg.out" 2>&1 || fail "dpkg --install: $(cat "$work/dpkg.out")"
check_installed_programs "$root/usr"
[[ "$version" == "lumenote-cli $(field Version) "* ]] ||
    fail "the installed version is not the package's: $version"
cli="$root/usr/bin/lumenote-cli"
# The package manager updates the package: no update check is built in, and
# no program links a network library.
[[ "$(timeout 20 "$cli" update check 2>&1 || true)" == *"updated by your system's package manager"* ]] ||
    fail "the packaged update check does not name the package manager"
for program in "$root/usr/bin/lumenote" "$root/usr/bin/lumenote-cli" \
    "$root/usr/libexec/lumenote/TallywiseBrowserHost"; do
    ! ldd "$program" | grep -qiE 'libQt6Network|libssl|libcurl' ||
        fail "$(basename "$program") links a network library: $(ldd "$program" | grep -iE 'network|ssl|curl')"
done
dpkg_root --remove lumenote >"$work/dpkg.out" 2>&1 || fail "dpkg --remove: $(cat "$work/dpkg.out")"
left=$(find "$root/usr" -type f 2>/dev/null || true)
[[ -z "$left" ]] || fail "files left after removal: $left"
# The user's own registration is theirs to remove.
[[ -f "$HOME/.mozilla/native-messaging-hosts/com.tallywise.browser_host.json" ]] ||
    fail "removing the package touched the user's manifest"
echo "package check passed: $(basename "$deb")"
