// The options of the `lumenote` executable: the one definition that start-up
// parses with and that the manual page and shell completion are written from.
#pragma once

#include <CLI/CLI.hpp>

namespace lumenote::app {

// What the options chose.
struct DesktopCommandLine {
    bool hidden = false;  // --hidden: start in the tray without opening the panel
};

// Names `options` lumenote and adds --hidden (bound to `chosen`, which must
// outlive `options`) and --version.
void buildDesktopCommandLine(CLI::App& options, DesktopCommandLine& chosen);

}  // namespace lumenote::app
