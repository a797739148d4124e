#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/cli_test_support.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preference_catalog.hpp"

namespace lumenote::cli {
namespace {

using testing::CliRun;
using ::testing::HasSubstr;

class PrefsCommandsTest : public ::testing::Test {
  protected:
    CliRun run(const std::vector<std::string>& arguments) {
        return testing::runIn(home_, arguments);
    }
    std::filesystem::path defaultsPath() const {
        return settings::JsonFileDefaultsDomain::pathFor(home_.paths());
    }
    nlohmann::json stored() const {
        return nlohmann::json::parse(lumenote::testing::readFile(defaultsPath()));
    }

    lumenote::testing::TemporaryHome home_;
};

TEST_F(PrefsCommandsTest, AnOutOfRangeThresholdIsClampedAndTheCommandSaysSo) {
    const CliRun set = run({"prefs", "set", "tracking.inactivityThreshold", "2400"});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.out,
              "tracking.inactivityThreshold = 1800\n"
              "tracking.inactivityThreshold is 30 minutes: the largest allowed (from 90 seconds "
              "to 30 minutes).\n");
    EXPECT_EQ(stored()["tracking.inactivityThreshold"], 1800.0);

    const CliRun get = run({"prefs", "get", "tracking.inactivityThreshold"});
    EXPECT_EQ(get.status, 0);
    EXPECT_EQ(get.out, "1800\n");
}

TEST_F(PrefsCommandsTest, EveryClampNamesTheBoundItStoredAndTheRange) {
    struct Case {
        std::string key;
        std::string value;
        std::string stored;
        std::string note;  // empty when the value is kept
    };
    const Case cases[] = {
        {"tracking.inactivityThreshold", "30", "90",
         "tracking.inactivityThreshold is 90 seconds: the smallest allowed (from 90 seconds to "
         "30 minutes)."},
        {"tracking.inactivityThreshold", "90", "90", ""},
        {"session.defaultDuration", "10", "60",
         "session.defaultDuration is 1 minute: the smallest allowed (from 1 minute to 24 "
         "hours)."},
        {"session.defaultDuration", "200000", "86400",
         "session.defaultDuration is 24 hours: the largest allowed (from 1 minute to 24 hours)."},
        {"tracking.passiveStudyPromptThreshold", "1h30m", "3600",
         "tracking.passiveStudyPromptThreshold is 1 hour: the largest allowed (from 5 minutes to "
         "1 hour)."},
        {"personalisation.dailyStudyGoalMinutes", "-5", "1",
         "personalisation.dailyStudyGoalMinutes is 1 minute: the smallest allowed (from 1 minute "
         "to 12 hours, or 0 for none)."},
        {"personalisation.dailyStudyGoalMinutes", "1000", "720",
         "personalisation.dailyStudyGoalMinutes is 12 hours: the largest allowed (from 1 minute "
         "to 12 hours, or 0 for none)."},
        {"personalisation.dailyStudyGoalMinutes", "0", "0", ""},
        {"personalisation.dailyStudyGoalMinutes", "720", "720", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key + " " + c.value);
        const CliRun set = run({"prefs", "set", c.key, c.value});
        EXPECT_EQ(set.status, 0);
        EXPECT_EQ(set.out, c.key + " = " + c.stored + "\n" + (c.note.empty() ? "" : c.note + "\n"));
        EXPECT_EQ(run({"prefs", "get", c.key}).out, c.stored + "\n");
    }
}

TEST_F(PrefsCommandsTest, TheStudyModeTakesTheRecordCommandsWordsToo) {
    const std::pair<const char*, const char*> cases[] = {
        {"offline", "offlineBookStudy"},
        {"MIXED", "mixedStudy"},
        {"computerbased", "computerBased"},
        {"offlineBookStudy", "offlineBookStudy"},
    };
    for (const auto& [given, raw] : cases) {
        const CliRun set = run({"prefs", "set", "session.defaultStudyMode", given});
        EXPECT_EQ(set.status, 0) << given;
        EXPECT_EQ(set.out, std::string("session.defaultStudyMode = ") + raw + "\n") << given;
        EXPECT_EQ(stored()["session.defaultStudyMode"], raw) << given;
    }
}

TEST_F(PrefsCommandsTest, AnInRangeValueIsStoredWithoutANote) {
    const CliRun set = run({"prefs", "set", "session.defaultDuration", "45m"});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.out, "session.defaultDuration = 2700\n");
    EXPECT_EQ(run({"prefs", "set", "general.startHidden", "YES"}).out,
              "general.startHidden = true\n");
    EXPECT_EQ(run({"prefs", "get", "general.startHidden"}).out, "true\n");
    EXPECT_EQ(run({"prefs", "set", "shortcuts.globalHotkeyModifiers", "0x1000"}).out,
              "shortcuts.globalHotkeyModifiers = 4096\n");
}

TEST_F(PrefsCommandsTest, ValuesThatCannotBeParsedAreRefusedWithoutWriting) {
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const std::vector<Case> cases{
        {{"prefs", "set", "general.startHidden", "maybe"},
         "\"maybe\" is not a valid value for general.startHidden: use true or false.\n"},
        {{"prefs", "set", "onboarding.lastStep", "2.5"},
         "\"2.5\" is not a valid value for onboarding.lastStep: use a whole number.\n"},
        {{"prefs", "set", "tracking.longSleep", "42"},
         "\"42\" is not a valid value for tracking.longSleep: use one of 300, 600, 1800, 0.\n"},
        {{"prefs", "set", "session.defaultStudyMode", "unknownWord"},
         "\"unknownWord\" is not a valid value for session.defaultStudyMode: use one of "
         "computerBased (or computer), mixedStudy (or mixed), offlineBookStudy (or offline).\n"},
        {{"prefs", "set", "shortcuts.globalHotkeyKeyCode", "-1"},
         "\"-1\" is not a valid value for shortcuts.globalHotkeyKeyCode: use a whole number from "
         "0 to 4294967295.\n"},
        {{"prefs", "set", "tracking.inactivityThreshold", "soon"},
         "\"soon\" is not a valid value for tracking.inactivityThreshold: use a number of "
         "seconds or a duration such as 25m (from 90 seconds to 30 minutes).\n"},
        {{"prefs", "set", "session.defaultDuration", "inf"},
         "\"inf\" is not a valid value for session.defaultDuration: use a number of seconds or "
         "a duration such as 25m (from 1 minute to 24 hours).\n"},
        {{"prefs", "set", "tracking.passiveStudyPromptThreshold", "nan"},
         "\"nan\" is not a valid value for tracking.passiveStudyPromptThreshold: use a number of "
         "seconds or a duration such as 25m (from 5 minutes to 1 hour).\n"},
        {{"prefs", "set", "personalisation.dailyStudyGoalMinutes", "1.5"},
         "\"1.5\" is not a valid value for personalisation.dailyStudyGoalMinutes: use a whole "
         "number (from 1 minute to 12 hours, or 0 for none).\n"},
        {{"prefs", "get", "no.such.key"},
         "There is no preference named \"no.such.key\". Run \"lumenote-cli prefs list\" to see "
         "them all.\n"},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.message);
        const CliRun result = run(testCase.arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, testCase.message);
        EXPECT_EQ(result.out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(defaultsPath()));
}

TEST_F(PrefsCommandsTest, NormalisedTextAndAnUnusableShortcutAreExplained) {
    const CliRun name = run({"prefs", "set", "personalisation.firstName", "  Ada \n Lovelace "});
    EXPECT_EQ(name.out,
              "personalisation.firstName = Ada Lovelace\n"
              "personalisation.firstName is \"Ada Lovelace\": white space at both ends is "
              "dropped, inner white space becomes one space, and only the first 40 characters "
              "are kept.\n");
    EXPECT_EQ(run({"prefs", "set", "personalisation.firstName", "Ada"}).out,
              "personalisation.firstName = Ada\n");
    const CliRun provider = run({"prefs", "set", "insights.aiProviderIdentifier", "cloud"});
    EXPECT_EQ(provider.out,
              "insights.aiProviderIdentifier = none\n"
              "insights.aiProviderIdentifier is \"none\": no phrasing provider is available, so "
              "it is always \"none\".\n");

    const CliRun shortcut = run({"prefs", "set", "shortcuts.globalHotkeyModifiers", "0"});
    EXPECT_EQ(shortcut.status, 0);
    EXPECT_THAT(shortcut.out, HasSubstr("Lumenote uses Shift+Super+S until it is changed."));
    EXPECT_EQ(stored()["shortcuts.globalHotkeyModifiers"], 0);
    EXPECT_EQ(run({"prefs", "get", "shortcuts.globalHotkeyModifiers"}).out, "768\n");
}

TEST_F(PrefsCommandsTest, ListShowsEveryKeyAndMarksDefaults) {
    ASSERT_EQ(run({"prefs", "set", "personalisation.dailyStudyGoalMinutes", "1000"}).status, 0);
    const CliRun list = run({"prefs", "list"});
    EXPECT_EQ(list.status, 0);
    std::istringstream lines(list.out);
    std::string line;
    std::size_t count = 0;
    for (const settings::PreferenceKeyInfo& info : settings::preferenceKeyCatalog()) {
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_EQ(line.rfind(std::string(info.key) + " ", 0), 0U) << line;
        const bool changed = info.key == "personalisation.dailyStudyGoalMinutes";
        EXPECT_EQ(line.find("(default)") == std::string::npos, changed) << line;
        ++count;
    }
    EXPECT_EQ(count, 35U);
    EXPECT_THAT(list.out, HasSubstr("= 720\n"));
    EXPECT_THAT(list.out, HasSubstr("= \"\"  (default)"));
}

TEST_F(PrefsCommandsTest, ResetRestoresTheDefaults) {
    ASSERT_EQ(run({"prefs", "set", "tracking.browser.enabled", "false"}).status, 0);
    ASSERT_EQ(run({"prefs", "set", "metrics.derivedRevision", "3"}).status, 0);
    const CliRun reset = run({"prefs", "reset"});
    EXPECT_EQ(reset.status, 0);
    EXPECT_EQ(reset.out, "Preferences were reset to their defaults.\n");
    EXPECT_EQ(run({"prefs", "get", "tracking.browser.enabled"}).out, "true\n");
    EXPECT_EQ(run({"prefs", "get", "metrics.derivedRevision"}).out, "3\n");
}

TEST_F(PrefsCommandsTest, AnUnreadableFileIsReportedAndDefaultsAreUsed) {
    lumenote::testing::writeFile(defaultsPath(), "{broken");
    const CliRun get = run({"prefs", "get", "tracking.inactivityThreshold"});
    EXPECT_EQ(get.status, 0);
    EXPECT_EQ(get.out, "90\n");
    EXPECT_THAT(get.err, HasSubstr("could not be read and was moved to"));
    EXPECT_EQ(lumenote::testing::filesContaining(defaultsPath().parent_path(), "corrupt").size(),
              1U);
}

TEST_F(PrefsCommandsTest, AChangeThatCannotBeWrittenIsRefused) {
    // A file where the preferences folder belongs: nothing can be written there.
    lumenote::testing::writeFile(defaultsPath().parent_path(), "in the way");
    const CliRun set = run({"prefs", "set", "general.startHidden", "true"});
    EXPECT_EQ(set.status, 1);
    EXPECT_THAT(set.err, HasSubstr("Lumenote could not save its preferences ("));
    EXPECT_EQ(set.out, "");
    EXPECT_EQ(lumenote::testing::readFile(defaultsPath().parent_path()), "in the way");
}

TEST_F(PrefsCommandsTest, EverySubcommandHasHelp) {
    for (const char* command : {"list", "get", "set", "reset"}) {
        const CliRun help = run({"prefs", command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_THAT(help.out, HasSubstr("Usage:")) << command;
    }
}

}  // namespace
}  // namespace lumenote::cli
