// What the desktop lets the recorder observe, checked without recording.
#pragma once

#include <string>

namespace lumenote::runtime {

// One line per part, each marked "ok" or "gap" with what is missing and what
// it costs.
struct SetupCheck {
    std::string report;
    bool complete = true;  // no gap
};
// Runs inside the process's application object when there is one, else in
// one of its own for the duration of the check.
SetupCheck checkSetup();

}  // namespace lumenote::runtime
