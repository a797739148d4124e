// Why the KWin script observer could not start, each case with its fixed
// sentence for the user.
#pragma once

#include <string_view>

namespace lumenote::platform::kde {

enum class KWinScriptError {
    noSessionBus,         // the session bus cannot be reached
    observerNameTaken,    // another process owns the observer's bus name
    observerNotExported,  // the object receiving the script's calls could not be registered
    kwinNotOnBus,         // org.kde.KWin is not on the session bus
    scriptNotFound,       // the shipped script is missing or could not be copied
    loadRefused,          // KWin refused loadScript (error or id -1)
    runFailed,            // KWin did not run the loaded script
};

std::string_view describe(KWinScriptError error);

}  // namespace lumenote::platform::kde
