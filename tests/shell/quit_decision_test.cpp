// The quit decision table and the application-wide commands' names.
#include "shell/quit_decision.hpp"

#include <gtest/gtest.h>

#include <set>

#include "shell/app_commands.hpp"

namespace lumenote::shell {
namespace {

TEST(QuitDecisionTable, OnlyTheUserIsAskedAndOnlyAboutAnActiveSession) {
    struct Row {
        QuitReason reason;
        bool active;
        bool deciding;
        QuitDecision expected;
    };
    const Row rows[] = {
        {QuitReason::userQuit, false, false, QuitDecision::quitNow},
        {QuitReason::userQuit, true, false, QuitDecision::askAboutSession},
        {QuitReason::userQuit, true, true, QuitDecision::alreadyAsking},
        {QuitReason::userQuit, false, true, QuitDecision::alreadyAsking},
        {QuitReason::logout, false, false, QuitDecision::quitNow},
        {QuitReason::logout, true, false, QuitDecision::leaveForRecovery},
        // A logout while the question is on screen does not wait for it.
        {QuitReason::logout, true, true, QuitDecision::leaveForRecovery},
        {QuitReason::terminationSignal, true, false, QuitDecision::leaveForRecovery},
        {QuitReason::terminationSignal, false, true, QuitDecision::quitNow},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(quitDecision(row.reason, row.active, row.deciding), row.expected)
            << static_cast<int>(row.reason) << " active " << row.active << " deciding "
            << row.deciding;
    }
}

TEST(QuitQuestion, OffersItsThreeChoicesInOrder) {
    ASSERT_EQ(kQuitChoices.size(), 3u);
    EXPECT_EQ(quitChoiceTitle(kQuitChoices[0]), "End Session and Quit");
    EXPECT_EQ(quitChoiceTitle(kQuitChoices[1]), "Keep Lumenote Running");
    EXPECT_EQ(quitChoiceTitle(kQuitChoices[2]), "Quit and Mark Session Interrupted");
}

TEST(AppCommandNames, AreUniqueAndRoundTrip) {
    std::set<std::string_view> names;
    for (const AppCommandInfo& info : appCommands()) {
        EXPECT_TRUE(names.insert(info.notificationName).second) << info.notificationName;
        EXPECT_EQ(appCommandFromNotificationName(info.notificationName), info.command);
        EXPECT_EQ(&appCommandInfo(info.command), &info);
    }
    EXPECT_EQ(names.size(), 11u);
    EXPECT_EQ(appCommandInfo(AppCommand::togglePause).menuTitle, "Pause or Resume Session");
    EXPECT_EQ(appCommandInfo(AppCommand::startPassiveStudy).notificationName,
              "Tallywise.StartPassiveStudy");
    EXPECT_EQ(appCommandInfo(AppCommand::navigateToday).menuTitle, "");
    EXPECT_EQ(appCommandFromNotificationName("Tallywise.Navigate.today"), std::nullopt);
    EXPECT_EQ(appCommandFromNotificationName(""), std::nullopt);
}

}  // namespace
}  // namespace lumenote::shell
