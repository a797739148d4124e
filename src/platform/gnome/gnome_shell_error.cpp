#include "platform/gnome/gnome_shell_error.hpp"

namespace lumenote::platform::gnome {

std::string_view describe(GnomeShellError error) {
    switch (error) {
        case GnomeShellError::noSessionBus:
            return "The session bus cannot be reached, so Lumenote cannot ask GNOME Shell which "
                   "application is in front.";
        case GnomeShellError::extensionNotRunning:
            return "The Lumenote extension is not running in GNOME Shell: install it with "
                   "\"lumenote-cli setup wayland\", then log out and in.";
        case GnomeShellError::extensionNotAnswering:
            return "The Lumenote extension in GNOME Shell does not answer as this version of "
                   "Lumenote expects: reinstall it with \"lumenote-cli setup wayland\", then log "
                   "out and in.";
    }
    return {};
}

}  // namespace lumenote::platform::gnome
