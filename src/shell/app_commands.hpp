// The application-wide commands: each is posted by name inside the process
// (the tray menu, the global shortcut, the main window's menu) and carried out
// by whoever observes it; the menu shows the titles given here.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace lumenote::shell {

enum class AppCommand {
    navigateToday,
    navigateReplay,
    navigateHistory,
    navigateInsights,
    navigateSettings,
    newSession,
    reviewUnclassified,
    startPassiveStudy,
    returnToComputerStudy,
    togglePause,
    endSession,
};

struct AppCommandInfo {
    AppCommand command;
    std::string_view notificationName;  // "Tallywise.NewSession"
    std::string_view menuTitle;         // empty for commands without a menu item
};

// Every command, in the order above.
std::span<const AppCommandInfo> appCommands();
const AppCommandInfo& appCommandInfo(AppCommand command);
std::optional<AppCommand> appCommandFromNotificationName(std::string_view name);

// The application menu's own items.
inline constexpr std::string_view kRunSetupAssistantAgainTitle = "Run Setup Assistant Again…";
inline constexpr std::string_view kCheckForUpdatesTitle = "Check for Updates…";
inline constexpr std::string_view kOpenLumenoteTitle = "Open Lumenote";
inline constexpr std::string_view kQuitTitle = "Quit";
// What "Check for Updates…" says where updates come with the system's
// packages.
inline constexpr std::string_view kUpdatesFromPackageManager =
    "Lumenote is updated by your system's package manager. Install updates there to get the "
    "newest version.";

}  // namespace lumenote::shell
