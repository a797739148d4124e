# Sourced by the install test and the package check: the checks that hold
# for the programs wherever they are installed. The sourcing script sets
# $work (a temporary folder) and defines fail.

# check_installed_programs PREFIX: runs the programs installed under PREFIX
# with a home of their own in $work/home. Both report the same version; the
# installed lumenote-cli registers the browser helper with manifests whose
# path is PREFIX/libexec/lumenote/TallywiseBrowserHost and finds the
# extension packages under PREFIX/share/lumenote/extension; the installed
# helper answers a browser's hello and ends when its input closes, as it
# does when a browser starts it from the manifest. Leaves the version line
# of lumenote-cli in $version.
check_installed_programs() {
    local prefix=$1 host manifest extension
    export HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" XDG_DATA_HOME="$work/home/data"
    mkdir -p "$HOME"
    version=$(timeout 20 "$prefix/bin/lumenote-cli" --version)
    [[ "$version" =~ ^lumenote-cli\ [0-9]+\.[0-9]+\.[0-9]+\ \(build\ [0-9]+\)$ ]] ||
        fail "unexpected version line: $version"
    [[ "$(timeout 20 "$prefix/bin/lumenote" --version)" == "lumenote ${version#lumenote-cli }" ]] ||
        fail "the two programs disagree on the version"

    timeout 20 "$prefix/bin/lumenote-cli" browser register firefox chromium >"$work/register.out" 2>&1 ||
        fail "browser register failed: $(cat "$work/register.out")"
    host="$prefix/libexec/lumenote/TallywiseBrowserHost"
    for manifest in "$HOME/.mozilla/native-messaging-hosts/com.tallywise.browser_host.json" \
        "$XDG_CONFIG_HOME/chromium/NativeMessagingHosts/com.tallywise.browser_host.json"; do
        [[ -f "$manifest" ]] || fail "no manifest at $manifest: $(ls -R "$HOME")"
        python3 - "$manifest" "$host" <<'CHECK' || fail "the manifest $manifest points elsewhere"
import json, os, sys
path = json.load(open(sys.argv[1]))["path"]
assert os.path.realpath(path) == os.path.realpath(sys.argv[2]), path
CHECK
    done

    extension=$(timeout 20 "$prefix/bin/lumenote-cli" extension path)
    [[ "$extension" == *"$prefix/share/lumenote/extension"* ]] ||
        fail "extension path does not name the installed packages: $extension"

    timeout 30 python3 - "$host" <<'CHECK' || fail "the installed helper did not answer"
import json, select, struct, subprocess, sys
host = subprocess.Popen([sys.argv[1], "--browser=org.mozilla.firefox"],
                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
hello = json.dumps({"bridgeMessage": "hello", "extensionVersion": "0.1.0",
                    "protocolVersion": 1}).encode()
host.stdin.write(struct.pack("=I", len(hello)) + hello)
host.stdin.flush()
ready, _, _ = select.select([host.stdout], [], [], 20)
assert ready, "no answer within 20 s"
(length,) = struct.unpack("=I", host.stdout.read(4))
json.loads(host.stdout.read(length))
host.stdin.close()
assert host.wait(timeout=10) == 0, host.returncode
CHECK
}
