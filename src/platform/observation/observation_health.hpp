// What the recorder can observe on this desktop right now, turned into the
// lines of the setup check and the Tracking settings and into the one
// warning a session shows while the application in front cannot be seen.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "platform/observation/observation_backends.hpp"

namespace lumenote::platform::observation {

struct ObservationHealth {
    // What the environment called for, with the pieces it lacks.
    ObservationChoice choice;
    // What observes now: none where the chosen backend could not be opened.
    FrontmostBackend frontmost = FrontmostBackend::none;
    IdleBackend idle = IdleBackend::none;
    // Why a chosen backend could not be opened, one sentence each.
    std::vector<std::string> openFailures;
    // False while a backend that relies on a helper inside the desktop (the
    // GNOME Shell extension, the KWin script) has no helper reporting, and
    // once the display connection is lost.
    bool frontmostReporting = false;
    // When the backend last announced a change of the application in front
    // (UTC); nullopt before the first one.
    std::optional<Date> lastActivation;

    friend bool operator==(const ObservationHealth&, const ObservationHealth&) = default;
};

// How the user reads a backend's name ("Lumenote's GNOME Shell extension").
std::string_view displayName(FrontmostBackend backend);
std::string_view displayName(IdleBackend backend);

// True when the application in front is being observed now.
bool frontmostObservable(const ObservationHealth& health);

struct HealthLine {
    bool ok;  // false: a gap the user may fix, said in the text
    std::string text;

    friend bool operator==(const HealthLine&, const HealthLine&) = default;
};

// The frontmost application's line, the idle time's line, the time of the
// last activation (when one was seen), then each missing piece and each
// opening failure with its fix. Times are shown in `calendar`'s zone.
std::vector<HealthLine> healthLines(const ObservationHealth& health, const LocalCalendar& calendar);

// The sentence a running session shows in the panel and the summary while
// the application in front cannot be observed (its time is recorded as
// "Unknown application"); empty while it can.
std::string frontmostWarning(const ObservationHealth& health);

// What the recorder says once at start when something cannot be observed:
// the frontmost warning when it applies, then every other missing piece and
// opening failure, each once.
std::vector<std::string> startWarnings(const ObservationHealth& health);

}  // namespace lumenote::platform::observation
