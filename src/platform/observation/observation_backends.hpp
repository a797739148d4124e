// Which backend observes the frontmost application and which one the idle
// time on the desktop this process runs in, chosen from plain facts about the
// session so that the choice is a pure, tested function.
//
// A Wayland session is one whose WAYLAND_DISPLAY is set (non-empty). The
// desktop is read from XDG_CURRENT_DESKTOP, a colon-separated list compared
// ignoring case ("ubuntu:GNOME" is GNOME, "KDE" is KDE Plasma 5 and 6).
// Empty variables count as unset. The rules, first match wins:
//
// Frontmost application:
// | session                  | condition                                 | backend, else missing |
// |--------------------------|-------------------------------------------|-----------------------|
// | Wayland, any desktop     | zwlr_foreign_toplevel_manager_v1 global   | wlrootsForeignToplevel|
// | Wayland, GNOME           | kGnomeShellExtensionBusName on the bus    | gnomeShellExtension   |
// | Wayland, GNOME           | otherwise                                 | gnomeShellExtension-  |
// |                          |                                           |   NotRunning          |
// | Wayland, KDE             | org.kde.KWin on the bus                   | kwinScript            |
// | Wayland, KDE             | otherwise                                 | kwinNotOnSessionBus   |
// | Wayland, other desktop   | otherwise                                 | foreignToplevel-      |
// |                          |                                           |   Unavailable         |
// | XDG_SESSION_TYPE=wayland | DISPLAY only (seen through Xwayland)      | waylandDisplayUnset   |
// | not Wayland              | DISPLAY set                               | x11                   |
// | no display               |                                           | noDisplay             |
//
// Idle time:
// | session                  | condition                                 | backend, else missing |
// |--------------------------|-------------------------------------------|-----------------------|
// | Wayland, any desktop     | ext_idle_notifier_v1 and wl_seat globals  | extIdleNotify         |
// | Wayland, any desktop     | org_kde_kwin_idle and wl_seat globals     | kdeIdle               |
// | Wayland, GNOME           | org.gnome.Mutter.IdleMonitor on the bus   | gnomeIdleMonitor      |
// | Wayland, KDE             | org.freedesktop.ScreenSaver on the bus    | kdeScreenSaver        |
// | Wayland, any desktop     | otherwise                                 | idleProtocol-         |
// |                          |                                           |   Unavailable         |
// | XDG_SESSION_TYPE=wayland | DISPLAY only (seen through Xwayland)      | waylandDisplayUnset   |
// | not Wayland              | DISPLAY set                               | x11ScreenSaver        |
// | no display               |                                           | noDisplay             |
//
// A missing piece is reported once: in a Wayland session seen only through
// Xwayland, or with no display, both backends are none for the same reason.
//
// The X11 observers are never used in a Wayland session even when Xwayland
// provides DISPLAY: they would see only the windows of X11 programs and take
// every native window for "nothing in front", and Xwayland's idle counter
// only counts input delivered to X11 programs.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/user_paths.hpp"

namespace lumenote::platform::observation {

enum class FrontmostBackend { x11, wlrootsForeignToplevel, gnomeShellExtension, kwinScript, none };

enum class IdleBackend {
    x11ScreenSaver,
    extIdleNotify,
    kdeIdle,
    gnomeIdleMonitor,
    kdeScreenSaver,
    none
};

// The enumeration case's name, for diagnostics ("wlrootsForeignToplevel").
std::string_view backendName(FrontmostBackend backend);
std::string_view backendName(IdleBackend backend);

// What keeps a backend from being used. Each case has one fixed sentence for
// the user (describe()).
enum class MissingPiece {
    noDisplay,                      // neither WAYLAND_DISPLAY nor DISPLAY
    waylandDisplayUnset,            // a Wayland session seen only through Xwayland
    foreignToplevelUnavailable,     // a compositor without the foreign-toplevel protocol
    gnomeShellExtensionNotRunning,  // GNOME without the extension on the session bus
    kwinNotOnSessionBus,            // KDE without KWin on the session bus
    idleProtocolUnavailable         // a compositor with no idle notification
};

std::string_view describe(MissingPiece piece);

// The bus name the GNOME Shell extension owns while it runs.
inline constexpr std::string_view kGnomeShellExtensionBusName =
    "com.tallywise.Lumenote.GnomeShellExtension";

// The session bus names the choice reads. While a backend is none on a
// Wayland desktop, one of them coming onto the bus (the extension enabled,
// KWin or the shell started) may offer it.
inline constexpr std::array<std::string_view, 4> kBusNamesTheChoiceReads = {
    kGnomeShellExtensionBusName, "org.kde.KWin", "org.gnome.Mutter.IdleMonitor",
    "org.freedesktop.ScreenSaver"};

// Whether the backend talks to a service on the session bus, which may not
// answer yet while the desktop starts: its failure to open is worth another
// try, where a display connection's is not.
bool reportsOverSessionBus(FrontmostBackend backend);
bool reportsOverSessionBus(IdleBackend backend);

// The variables the choice reads; nullopt when unset.
struct SessionEnvironment {
    std::optional<std::string> sessionType;     // XDG_SESSION_TYPE
    std::optional<std::string> waylandDisplay;  // WAYLAND_DISPLAY
    std::optional<std::string> display;         // DISPLAY
    std::optional<std::string> currentDesktop;  // XDG_CURRENT_DESKTOP

    static SessionEnvironment fromEnvironment(const EnvironmentLookup& lookup);
};

struct SessionFacts {
    SessionEnvironment environment;
    // The interface names of the compositor's globals (empty when there is no
    // Wayland connection).
    std::vector<std::string> waylandGlobals;
    // The names present on the session bus (empty without a session bus).
    std::vector<std::string> sessionBusNames;
};

struct ObservationChoice {
    FrontmostBackend frontmost = FrontmostBackend::none;
    IdleBackend idle = IdleBackend::none;
    // Why a backend is none, frontmost application first, each piece once.
    std::vector<MissingPiece> missing;

    friend bool operator==(const ObservationChoice&, const ObservationChoice&) = default;
};

ObservationChoice chooseObservationBackends(const SessionFacts& facts);

}  // namespace lumenote::platform::observation
