#include "platform/kde/kwin_script_error.hpp"

namespace lumenote::platform::kde {

std::string_view describe(KWinScriptError error) {
    switch (error) {
        case KWinScriptError::noSessionBus:
            return "The session bus cannot be reached, so Lumenote cannot hear from KWin which "
                   "window is in front.";
        case KWinScriptError::observerNameTaken:
            return "Another Lumenote process already observes KWin on this session bus.";
        case KWinScriptError::observerNotExported:
            return "Lumenote could not offer the object KWin reports the active window to.";
        case KWinScriptError::kwinNotOnBus:
            return "KWin is not on the session bus, so the window in front cannot be observed.";
        case KWinScriptError::scriptNotFound:
            return "Lumenote's KWin script is missing from this installation or could not be "
                   "copied to the runtime folder.";
        case KWinScriptError::loadRefused:
            return "KWin refused to load Lumenote's script, so the window in front cannot be "
                   "observed.";
        case KWinScriptError::runFailed:
            return "KWin loaded Lumenote's script but did not run it, so the window in front "
                   "cannot be observed.";
    }
    return {};
}

}  // namespace lumenote::platform::kde
