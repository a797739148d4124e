#include "app/desktop_command_line.hpp"

#include <fmt/format.h>

namespace lumenote::app {

void buildDesktopCommandLine(CLI::App& options, DesktopCommandLine& chosen) {
    options.name("lumenote");
    options.description(
        "Lumenote records study sessions on this computer and keeps them here. It "
        "lives in the tray; lumenote-cli controls it from a terminal.");
    options.set_version_flag("--version", fmt::format("lumenote {} (build {})", LUMENOTE_VERSION,
                                                      LUMENOTE_BUILD_NUMBER));
    options.add_flag("--hidden", chosen.hidden,
                     "Start in the tray only, without opening the panel (as the \"start hidden\" "
                     "setting does)");
}

}  // namespace lumenote::app
