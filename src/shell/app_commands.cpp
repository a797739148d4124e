#include "shell/app_commands.hpp"

#include <array>
#include <cstdlib>

namespace lumenote::shell {

namespace {

constexpr std::array<AppCommandInfo, 11> kCommands{{
    {AppCommand::navigateToday, "Tallywise.Navigate.Today", ""},
    {AppCommand::navigateReplay, "Tallywise.Navigate.Replay", ""},
    {AppCommand::navigateHistory, "Tallywise.Navigate.History", ""},
    {AppCommand::navigateInsights, "Tallywise.Navigate.Insights", ""},
    {AppCommand::navigateSettings, "Tallywise.Navigate.Settings", ""},
    {AppCommand::newSession, "Tallywise.NewSession", "New Study Session"},
    {AppCommand::reviewUnclassified, "Tallywise.ReviewUnclassified",
     "Review Unclassified Activity"},
    {AppCommand::startPassiveStudy, "Tallywise.StartPassiveStudy", "Study away from Mac"},
    {AppCommand::returnToComputerStudy, "Tallywise.ReturnToComputerStudy",
     "Return to Computer Study"},
    {AppCommand::togglePause, "Tallywise.TogglePause", "Pause or Resume Session"},
    {AppCommand::endSession, "Tallywise.EndSession", ""},
}};

}  // namespace

std::span<const AppCommandInfo> appCommands() {
    return kCommands;
}

const AppCommandInfo& appCommandInfo(AppCommand command) {
    for (const AppCommandInfo& info : kCommands) {
        if (info.command == command) {
            return info;
        }
    }
    std::abort();  // every case is in the table
}

std::optional<AppCommand> appCommandFromNotificationName(std::string_view name) {
    for (const AppCommandInfo& info : kCommands) {
        if (info.notificationName == name) {
            return info.command;
        }
    }
    return std::nullopt;
}

}  // namespace lumenote::shell
