// Why the GNOME Shell observers cannot start, with the sentence for the user.
#pragma once

#include <string_view>

namespace lumenote::platform::gnome {

enum class GnomeShellError {
    noSessionBus,           // the session bus cannot be reached
    extensionNotRunning,    // nobody owns the extension's bus name
    extensionNotAnswering,  // the owner did not answer in time, or answered
                            // in a form this version does not read
};

// The fixed sentence for the user.
std::string_view describe(GnomeShellError error);

}  // namespace lumenote::platform::gnome
