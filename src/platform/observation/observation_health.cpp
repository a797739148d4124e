#include "platform/observation/observation_health.hpp"

namespace lumenote::platform::observation {

namespace {

bool reliesOnDesktopHelper(FrontmostBackend backend) {
    return backend == FrontmostBackend::gnomeShellExtension ||
           backend == FrontmostBackend::kwinScript;
}

std::string frontmostLine(const ObservationHealth& health) {
    const std::string name(displayName(health.frontmost));
    if (health.frontmost == FrontmostBackend::none) {
        return "Lumenote cannot see which application is in front.";
    }
    if (!health.frontmostReporting) {
        return reliesOnDesktopHelper(health.frontmost)
                   ? "The application in front would be seen through " + name +
                         ", which does not report now."
                   : "The connection to the display was lost, so the application in front is "
                     "not seen.";
    }
    return "The application in front is seen through " + name + ".";
}

std::string idleLine(IdleBackend idle) {
    if (idle == IdleBackend::none) {
        return "Lumenote cannot tell how long ago you last gave input.";
    }
    return "The time since your last input comes from " + std::string(displayName(idle)) + ".";
}

}  // namespace

std::string_view displayName(FrontmostBackend backend) {
    switch (backend) {
        case FrontmostBackend::x11:
            return "the X display";
        case FrontmostBackend::wlrootsForeignToplevel:
            return "the compositor's foreign-toplevel protocol";
        case FrontmostBackend::gnomeShellExtension:
            return "Lumenote's GNOME Shell extension";
        case FrontmostBackend::kwinScript:
            return "Lumenote's KWin script";
        case FrontmostBackend::none:
            return "nothing";
    }
    return "";
}

std::string_view displayName(IdleBackend backend) {
    switch (backend) {
        case IdleBackend::x11ScreenSaver:
            return "the X screen saver extension";
        case IdleBackend::extIdleNotify:
            return "the compositor's idle notification";
        case IdleBackend::kdeIdle:
            return "KDE's idle protocol";
        case IdleBackend::gnomeIdleMonitor:
            return "GNOME's idle monitor";
        case IdleBackend::kdeScreenSaver:
            return "KDE's screen locker";
        case IdleBackend::none:
            return "nothing";
    }
    return "";
}

bool frontmostObservable(const ObservationHealth& health) {
    return health.frontmost != FrontmostBackend::none && health.frontmostReporting;
}

std::vector<HealthLine> healthLines(const ObservationHealth& health,
                                    const LocalCalendar& calendar) {
    std::vector<HealthLine> lines;
    lines.push_back({frontmostObservable(health), frontmostLine(health)});
    lines.push_back({health.idle != IdleBackend::none, idleLine(health.idle)});
    if (health.lastActivation) {
        lines.push_back({true, "The application in front last changed at " +
                                   calendar.formatDateTime(*health.lastActivation) + "."});
    }
    for (const MissingPiece piece : health.choice.missing) {
        lines.push_back({false, std::string(describe(piece))});
    }
    for (const std::string& failure : health.openFailures) {
        lines.push_back({false, failure});
    }
    return lines;
}

namespace {

// Every missing piece and opening failure, in the order the health lists them.
std::vector<std::string> reasons(const ObservationHealth& health) {
    std::vector<std::string> sentences;
    for (const MissingPiece piece : health.choice.missing) {
        sentences.emplace_back(describe(piece));
    }
    sentences.insert(sentences.end(), health.openFailures.begin(), health.openFailures.end());
    return sentences;
}

}  // namespace

std::string frontmostWarning(const ObservationHealth& health) {
    if (frontmostObservable(health)) {
        return {};
    }
    // Each reason already says that the application in front cannot be seen.
    const std::string recorded = "This time is recorded as \"Unknown application\". ";
    if (const auto sentences = reasons(health); !sentences.empty()) {
        return recorded + sentences.front();
    }
    if (reliesOnDesktopHelper(health.frontmost)) {
        return recorded + std::string(displayName(health.frontmost)) +
               " stopped reporting, so Lumenote cannot see which application is in front; run "
               "\"lumenote-cli check\" to see why.";
    }
    return recorded +
           "The connection to the display was lost, so Lumenote cannot see which "
           "application is in front.";
}

std::vector<std::string> startWarnings(const ObservationHealth& health) {
    std::vector<std::string> warnings;
    auto sentences = reasons(health);
    if (std::string warning = frontmostWarning(health); !warning.empty()) {
        warnings.push_back(std::move(warning));
        if (!sentences.empty()) {
            sentences.erase(sentences.begin());
        }
    }
    warnings.insert(warnings.end(), sentences.begin(), sentences.end());
    return warnings;
}

}  // namespace lumenote::platform::observation
