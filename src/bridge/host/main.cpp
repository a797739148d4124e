// TallywiseBrowserHost: the native-messaging host that browsers start for the
// Lumenote extension. It relays between the extension (frames on standard
// input and output) and the recorder (files in the bridge directory).
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/host/browser_host_relay.hpp"
#include "bridge/host/browser_identity.hpp"
#include "bridge/host/host_loop.hpp"
#include "platform/system/system_clocks.hpp"

namespace {

using namespace lumenote;
using namespace lumenote::bridge;

constexpr std::string_view kBrowserOption = "--browser=";

constexpr const char* kHelp =
    "Usage: TallywiseBrowserHost [--browser=IDENTIFIER] [BROWSER ARGUMENTS...]\n"
    "\n"
    "The helper that a web browser starts for the Lumenote extension. It reads\n"
    "the extension's messages on standard input, drops each browser event into\n"
    "the bridge directory for the Lumenote recorder, and sends the recorder's\n"
    "status and commands back on standard output. It writes nothing unless the\n"
    "recorder is running, and exits when the browser closes its input.\n"
    "\n"
    "You do not run it yourself: the browser starts it through the manifest that\n"
    "'lumenote-cli browser register' installs.\n"
    "\n"
    "Options:\n"
    "  --browser=IDENTIFIER  the browser that starts the helper, when it cannot be\n"
    "                        told from the parent process (for example\n"
    "                        org.chromium.Chromium or org.mozilla.firefox)\n"
    "  --help                show this text\n"
    "  --version             show the version\n"
    "\n"
    "Environment:\n"
    "  TALLYWISE_BRIDGE_DIR  the bridge directory, instead of\n"
    "                        $XDG_DATA_HOME/Tallywise/BrowserBridge\n";

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> browserArguments;
    std::optional<std::string> browserOverride;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            std::fputs(kHelp, stdout);
            return 0;
        }
        if (argument == "--version") {
            std::printf("TallywiseBrowserHost %s (build %s)\n", LUMENOTE_VERSION,
                        LUMENOTE_BUILD_NUMBER);
            return 0;
        }
        if (argument.substr(0, kBrowserOption.size()) == kBrowserOption) {
            browserOverride = std::string(argument.substr(kBrowserOption.size()));
        } else {
            browserArguments.emplace_back(argument);
        }
    }
    std::optional<SupportedBrowser> browser;
    if (browserOverride) {
        browser = supportedBrowser(*browserOverride);
        if (!browser) {
            std::fprintf(stderr, "TallywiseBrowserHost: --browser names no supported browser: %s\n",
                         browserOverride->c_str());
            return 2;
        }
    } else {
        browser = host::identifyBrowser(browserArguments, host::parentProcessExecutable());
    }

    // A browser that stops reading ends the host through a failed write, not
    // through SIGPIPE.
    std::signal(SIGPIPE, SIG_IGN);
    BrowserBridgeStore store(BrowserBridgeStore::defaultRoot(UserPaths::fromProcessEnvironment(),
                                                             processEnvironmentValue));
    platform::system::SystemWallClock clock;
    host::SystemProcessProbe processes;
    host::DescriptorFrameSink output(STDOUT_FILENO);
    host::BrowserHostRelay relay(store, clock, processes, output, browser, LUMENOTE_VERSION);
    host::runHostLoop(relay, store);
    return 0;
}
