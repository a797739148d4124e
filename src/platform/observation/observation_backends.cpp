#include "platform/observation/observation_backends.hpp"

#include <algorithm>
#include <cctype>

namespace lumenote::platform::observation {

namespace {

enum class Desktop { gnome, kde, other };

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) ==
               std::tolower(static_cast<unsigned char>(b));
    });
}

bool isSet(const std::optional<std::string>& value) {
    return value && !value->empty();
}

// XDG_CURRENT_DESKTOP lists the desktop and the desktops it derives from
// ("ubuntu:GNOME", "GNOME-Classic:GNOME"); any GNOME or KDE entry decides.
Desktop desktopOf(const std::optional<std::string>& currentDesktop) {
    if (!currentDesktop) {
        return Desktop::other;
    }
    std::string_view rest = *currentDesktop;
    while (!rest.empty()) {
        const auto separator = rest.find(':');
        const auto entry = rest.substr(0, separator);
        if (equalIgnoringCase(entry, "GNOME")) {
            return Desktop::gnome;
        }
        if (equalIgnoringCase(entry, "KDE")) {
            return Desktop::kde;
        }
        rest =
            separator == std::string_view::npos ? std::string_view() : rest.substr(separator + 1);
    }
    return Desktop::other;
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

FrontmostBackend waylandFrontmost(const SessionFacts& facts, Desktop desktop,
                                  std::vector<MissingPiece>& missing) {
    if (contains(facts.waylandGlobals, "zwlr_foreign_toplevel_manager_v1")) {
        return FrontmostBackend::wlrootsForeignToplevel;
    }
    if (desktop == Desktop::gnome) {
        if (contains(facts.sessionBusNames, kGnomeShellExtensionBusName)) {
            return FrontmostBackend::gnomeShellExtension;
        }
        missing.push_back(MissingPiece::gnomeShellExtensionNotRunning);
        return FrontmostBackend::none;
    }
    if (desktop == Desktop::kde) {
        if (contains(facts.sessionBusNames, "org.kde.KWin")) {
            return FrontmostBackend::kwinScript;
        }
        missing.push_back(MissingPiece::kwinNotOnSessionBus);
        return FrontmostBackend::none;
    }
    missing.push_back(MissingPiece::foreignToplevelUnavailable);
    return FrontmostBackend::none;
}

IdleBackend waylandIdle(const SessionFacts& facts, Desktop desktop,
                        std::vector<MissingPiece>& missing) {
    // Both idle protocols ask for notifications on a seat.
    const bool hasSeat = contains(facts.waylandGlobals, "wl_seat");
    if (hasSeat && contains(facts.waylandGlobals, "ext_idle_notifier_v1")) {
        return IdleBackend::extIdleNotify;
    }
    if (hasSeat && contains(facts.waylandGlobals, "org_kde_kwin_idle")) {
        return IdleBackend::kdeIdle;
    }
    if (desktop == Desktop::gnome &&
        contains(facts.sessionBusNames, "org.gnome.Mutter.IdleMonitor")) {
        return IdleBackend::gnomeIdleMonitor;
    }
    // The screen locker's count: the older way, which a Plasma session
    // without either idle protocol may still answer.
    if (desktop == Desktop::kde && contains(facts.sessionBusNames, "org.freedesktop.ScreenSaver")) {
        return IdleBackend::kdeScreenSaver;
    }
    missing.push_back(MissingPiece::idleProtocolUnavailable);
    return IdleBackend::none;
}

}  // namespace

std::string_view backendName(FrontmostBackend backend) {
    switch (backend) {
        case FrontmostBackend::x11:
            return "x11";
        case FrontmostBackend::wlrootsForeignToplevel:
            return "wlrootsForeignToplevel";
        case FrontmostBackend::gnomeShellExtension:
            return "gnomeShellExtension";
        case FrontmostBackend::kwinScript:
            return "kwinScript";
        case FrontmostBackend::none:
            return "none";
    }
    return "";
}

std::string_view backendName(IdleBackend backend) {
    switch (backend) {
        case IdleBackend::x11ScreenSaver:
            return "x11ScreenSaver";
        case IdleBackend::extIdleNotify:
            return "extIdleNotify";
        case IdleBackend::kdeIdle:
            return "kdeIdle";
        case IdleBackend::gnomeIdleMonitor:
            return "gnomeIdleMonitor";
        case IdleBackend::kdeScreenSaver:
            return "kdeScreenSaver";
        case IdleBackend::none:
            return "none";
    }
    return "";
}

std::string_view describe(MissingPiece piece) {
    switch (piece) {
        case MissingPiece::noDisplay:
            return "Lumenote found no display (neither WAYLAND_DISPLAY nor DISPLAY is set), so it "
                   "cannot see which application is in front or when you step away.";
        case MissingPiece::waylandDisplayUnset:
            return "This is a Wayland session but WAYLAND_DISPLAY is not set, so Lumenote would "
                   "see "
                   "only X11 programs. Start Lumenote from your desktop session.";
        case MissingPiece::foreignToplevelUnavailable:
            return "Your desktop does not tell other programs which window is active (it lacks the "
                   "foreign-toplevel protocol), so Lumenote cannot see which application is in "
                   "front.";
        case MissingPiece::gnomeShellExtensionNotRunning:
            return "On GNOME, Lumenote sees the application in front through its GNOME Shell "
                   "extension, which is not running. Run \"lumenote-cli setup wayland\" (or the "
                   "setup assistant) to install and enable it, then log out and back in.";
        case MissingPiece::kwinNotOnSessionBus:
            return "KWin does not answer on the session bus, so Lumenote cannot load its KWin "
                   "script to see the application in front.";
        case MissingPiece::idleProtocolUnavailable:
            return "Your desktop offers no idle notification, so Lumenote cannot tell when you "
                   "step "
                   "away; time away from the computer is recorded as study.";
    }
    return "";
}

bool reportsOverSessionBus(FrontmostBackend backend) {
    return backend == FrontmostBackend::gnomeShellExtension ||
           backend == FrontmostBackend::kwinScript;
}

bool reportsOverSessionBus(IdleBackend backend) {
    return backend == IdleBackend::gnomeIdleMonitor || backend == IdleBackend::kdeScreenSaver;
}

SessionEnvironment SessionEnvironment::fromEnvironment(const EnvironmentLookup& lookup) {
    const auto read = [&](const char* name) -> std::optional<std::string> {
        const char* value = lookup(name);
        if (value == nullptr) {
            return std::nullopt;
        }
        return std::string(value);
    };
    return {read("XDG_SESSION_TYPE"), read("WAYLAND_DISPLAY"), read("DISPLAY"),
            read("XDG_CURRENT_DESKTOP")};
}

ObservationChoice chooseObservationBackends(const SessionFacts& facts) {
    const SessionEnvironment& environment = facts.environment;
    ObservationChoice choice;
    if (isSet(environment.waylandDisplay)) {
        const Desktop desktop = desktopOf(environment.currentDesktop);
        choice.frontmost = waylandFrontmost(facts, desktop, choice.missing);
        choice.idle = waylandIdle(facts, desktop, choice.missing);
        return choice;
    }
    const bool waylandSession =
        environment.sessionType && equalIgnoringCase(*environment.sessionType, "wayland");
    if (waylandSession && isSet(environment.display)) {
        choice.missing.push_back(MissingPiece::waylandDisplayUnset);
        return choice;
    }
    if (isSet(environment.display)) {
        return {FrontmostBackend::x11, IdleBackend::x11ScreenSaver, {}};
    }
    choice.missing.push_back(MissingPiece::noDisplay);
    return choice;
}

}  // namespace lumenote::platform::observation
