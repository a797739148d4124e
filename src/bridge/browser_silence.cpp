#include "bridge/browser_silence.hpp"

namespace lumenote::bridge {

std::string browserSilenceSentence(SupportedBrowser browser,
                                   const NativeHostSetupSnapshot& registration,
                                   BrowserExtensionConnectionState extension) {
    const std::string start =
        "Websites in " + std::string(displayName(browser)) + " are not recorded: ";
    if (!registration.isReady()) {
        return start + "the native host is not registered (lumenote-cli browser register).";
    }
    if (extension == BrowserExtensionConnectionState::notInstalled) {
        return start + "the Lumenote extension is not installed (lumenote-cli extension path).";
    }
    return start + "the Lumenote extension is disconnected.";
}

}  // namespace lumenote::bridge
