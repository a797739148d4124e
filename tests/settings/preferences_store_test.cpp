#include "settings/preferences_store.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "settings/json_file_defaults_domain.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::settings {
namespace {

namespace fs = std::filesystem;
namespace keys = preference_keys;
using testing::readFile;
using testing::TemporaryHome;
using testing::writeFile;

const Date kNow = Date::fromUnixSeconds(1763280000.0);  // 2025-11-16T08:00:00Z

// Preferences over the real defaults file of a temporary home. `stored`
// writes the file as another process (or a hand edit) would.
class PreferencesStoreTest : public ::testing::Test {
  protected:
    fs::path path() const { return JsonFileDefaultsDomain::pathFor(home_.paths()); }

    void stored(const std::string& json) { writeFile(path(), json); }

    // A fresh domain and store, as at application start.
    PreferencesStore& open() {
        domain_.emplace(path(), [] { return kNow; });
        store_.emplace(*domain_);
        return *store_;
    }

    nlohmann::json fileContents() const { return nlohmann::json::parse(readFile(path())); }

    TemporaryHome home_;
    std::optional<JsonFileDefaultsDomain> domain_;
    std::optional<PreferencesStore> store_;
};

TEST_F(PreferencesStoreTest, NothingStoredReadsEveryDefaultAndWritesNothing) {
    const PreferencesStore& store = open();
    EXPECT_FALSE(store.launchAtLogin());
    EXPECT_EQ(store.appearance(), TallywiseAppearance::system);
    EXPECT_EQ(store.defaultDuration(), 1500.0);
    EXPECT_EQ(store.defaultStudyMode(), recording::StudySessionMode::mixedStudy);
    EXPECT_EQ(store.lastTimingMode(), recording::SessionTimingMode::timer);
    EXPECT_EQ(store.globalHotkey(), (GlobalHotkeyBinding{1, 0x300}));
    EXPECT_EQ(store.passiveStudyPromptThreshold(), 300.0);
    EXPECT_EQ(store.inactivityThreshold(), 90.0);
    EXPECT_EQ(store.longSleep(), LongSleepPreference::tenMinutes);
    EXPECT_TRUE(store.browserTrackingEnabled());
    EXPECT_TRUE(store.hostnameTrackingEnabled());
    EXPECT_TRUE(store.localPDFDetectionEnabled());
    EXPECT_TRUE(store.manualPDFLabelsEnabled());
    EXPECT_TRUE(store.sessionCelebrationsEnabled());
    EXPECT_EQ(store.dailyStudyGoalMinutes(), 0);
    EXPECT_EQ(store.insightsAIProviderIdentifier(), "none");
    EXPECT_EQ(store.derivedRevision(), 0);
    EXPECT_FALSE(store.updatesCheckEnabled());
    EXPECT_EQ(store.updatesFeedAddress(), "");
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(PreferencesStoreTest, UpdateChecksStayOffUnlessStoredAsTrueAndTheAddressIsTrimmed) {
    stored(R"({"updates.checkEnabled": "true", "updates.feedAddress": "  https://a.example/f  "})");
    PreferencesStore& store = open();
    EXPECT_FALSE(store.updatesCheckEnabled());
    EXPECT_EQ(store.updatesFeedAddress(), "https://a.example/f");

    store.setUpdatesCheckEnabled(true);
    store.setUpdatesFeedAddress("\thttps://b.example/feed\n");
    EXPECT_EQ(fileContents()["updates.checkEnabled"], true);
    EXPECT_EQ(fileContents()["updates.feedAddress"], "https://b.example/feed");
    EXPECT_TRUE(open().updatesCheckEnabled());
}

struct ThresholdCase {
    const char* stored;  // JSON text of the value, or nullptr for a missing key
    double expected;
};

TEST_F(PreferencesStoreTest, ThresholdsAreClampedOrDefaultedOnRead) {
    const std::vector<std::pair<std::string_view, std::vector<ThresholdCase>>> table{
        {keys::inactivityThreshold,
         {{"30", 90},
          {"5000", 1800},
          {"\"soon\"", 90},
          {nullptr, 90},
          {"90", 90},
          {"1800", 1800},
          {"600.5", 600.5},
          {"true", 90},
          {"null", 90}}},
        {keys::defaultDuration,
         {{nullptr, 1500}, {"10", 60}, {"200000", 86400}, {"-1", 60}, {"2700.0", 2700}}},
        {keys::passiveStudyPromptThreshold,
         {{"0", 300}, {"3601", 3600}, {"\"900\"", 300}, {"900", 900}}},
    };
    for (const auto& [key, cases] : table) {
        for (const auto& testCase : cases) {
            SCOPED_TRACE(std::string(key) + " = " + (testCase.stored ? testCase.stored : "absent"));
            stored(testCase.stored ? "{\"" + std::string(key) + "\": " + testCase.stored + "}"
                                   : "{}");
            const PreferencesStore& store = open();
            const double value = key == keys::inactivityThreshold ? store.inactivityThreshold()
                                 : key == keys::defaultDuration
                                     ? store.defaultDuration()
                                     : store.passiveStudyPromptThreshold();
            EXPECT_EQ(value, testCase.expected);
        }
    }
}

TEST_F(PreferencesStoreTest, AssigningAnOutOfRangeThresholdStoresTheClampedValueOnce) {
    PreferencesStore& store = open();
    std::vector<PreferenceProperty> announced;
    store.addObserver([&](PreferenceProperty property) { announced.push_back(property); });
    store.setInactivityThreshold(2400);
    EXPECT_EQ(store.inactivityThreshold(), 1800.0);
    EXPECT_EQ(fileContents()["tracking.inactivityThreshold"], 1800.0);
    EXPECT_EQ(announced, std::vector{PreferenceProperty::inactivityThreshold});

    store.setDefaultDuration(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(store.defaultDuration(), 1500.0);
    EXPECT_EQ(fileContents()["session.defaultDuration"], 1500.0);
    store.setPassiveStudyPromptThreshold(-std::numeric_limits<double>::infinity());
    EXPECT_EQ(store.passiveStudyPromptThreshold(), 300.0);
    EXPECT_EQ(open().inactivityThreshold(), 1800.0);
}

TEST_F(PreferencesStoreTest, LongSleepReadsOnlyTheThreeOtherChoicesExactly) {
    const std::vector<std::pair<const char*, LongSleepPreference>> cases{
        {"600", LongSleepPreference::tenMinutes},
        {"42", LongSleepPreference::tenMinutes},
        {nullptr, LongSleepPreference::tenMinutes},
        {"0", LongSleepPreference::never},
        {"300", LongSleepPreference::fiveMinutes},
        {"1800", LongSleepPreference::thirtyMinutes},
        {"1800.0", LongSleepPreference::thirtyMinutes},
        {"\"0\"", LongSleepPreference::tenMinutes},
        {"false", LongSleepPreference::tenMinutes},
        {"300.5", LongSleepPreference::tenMinutes},
    };
    for (const auto& [json, expected] : cases) {
        SCOPED_TRACE(json ? json : "absent");
        stored(json ? std::string("{\"tracking.longSleep\": ") + json + "}" : "{}");
        EXPECT_EQ(open().longSleep(), expected);
    }
    open().setLongSleep(LongSleepPreference::never);
    EXPECT_EQ(fileContents()["tracking.longSleep"], 0);
    EXPECT_EQ(open().longSleep(), LongSleepPreference::never);
}

TEST_F(PreferencesStoreTest, StringEnumerationsFallBackAsTheyAreDefined) {
    const std::vector<std::tuple<const char*, recording::StudySessionMode,
                                 recording::SessionTimingMode, TallywiseAppearance>>
        cases{
            {nullptr, recording::StudySessionMode::mixedStudy, recording::SessionTimingMode::timer,
             TallywiseAppearance::system},
            {"\"unknownWord\"", recording::StudySessionMode::computerBased,
             recording::SessionTimingMode::timer, TallywiseAppearance::system},
            {"\"\"", recording::StudySessionMode::computerBased,
             recording::SessionTimingMode::timer, TallywiseAppearance::system},
            {"7", recording::StudySessionMode::mixedStudy, recording::SessionTimingMode::timer,
             TallywiseAppearance::system},
        };
    for (const auto& [json, mode, timing, appearance] : cases) {
        SCOPED_TRACE(json ? json : "absent");
        if (json) {
            stored(std::string("{\"session.defaultStudyMode\": ") + json +
                   ", \"session.lastTimingMode\": " + json + ", \"general.appearance\": " + json +
                   "}");
        } else {
            stored("{}");
        }
        const PreferencesStore& store = open();
        EXPECT_EQ(store.defaultStudyMode(), mode);
        EXPECT_EQ(store.lastTimingMode(), timing);
        EXPECT_EQ(store.appearance(), appearance);
    }
    stored(R"({"session.defaultStudyMode": "offlineBookStudy",
               "session.lastTimingMode": "open_ended", "general.appearance": "dark"})");
    const PreferencesStore& store = open();
    EXPECT_EQ(store.defaultStudyMode(), recording::StudySessionMode::offlineBookStudy);
    EXPECT_EQ(store.lastTimingMode(), recording::SessionTimingMode::openEnded);
    EXPECT_EQ(store.appearance(), TallywiseAppearance::dark);
}

TEST_F(PreferencesStoreTest, TypedAndGenericBooleanReadsDiffer) {
    // Typed getters convert a number; generic reads of the true-by-default
    // switches treat any non-Boolean as unusable and keep the default.
    stored(R"({"general.launchAtLogin": 1, "notifications.enabled": "yes",
               "tracking.browser.enabled": 0, "personalisation.sessionCelebrations": "false",
               "insights.aiPhrasingEnabled": 1, "tracking.pdf.enabled": false})");
    const PreferencesStore& store = open();
    EXPECT_TRUE(store.launchAtLogin());
    EXPECT_TRUE(store.notificationsEnabled());
    EXPECT_TRUE(store.browserTrackingEnabled());
    EXPECT_TRUE(store.sessionCelebrationsEnabled());
    EXPECT_FALSE(store.insightsAIPhrasingEnabled());
    EXPECT_FALSE(store.localPDFDetectionEnabled());
}

TEST_F(PreferencesStoreTest, DailyGoalKeepsZeroAndClampsEverythingElse) {
    const std::vector<std::pair<const char*, long long>> cases{
        {"-5", 1}, {"0", 0}, {"1000", 720}, {"1", 1}, {"720", 720}, {"\"45\"", 45}, {"90.9", 90},
    };
    for (const auto& [json, expected] : cases) {
        SCOPED_TRACE(json);
        stored(std::string("{\"personalisation.dailyStudyGoalMinutes\": ") + json + "}");
        EXPECT_EQ(open().dailyStudyGoalMinutes(), expected);
    }
    PreferencesStore& store = open();
    store.setDailyStudyGoalMinutes(-30);
    EXPECT_EQ(fileContents()["personalisation.dailyStudyGoalMinutes"], 1);
    store.setDailyStudyGoalMinutes(0);
    EXPECT_EQ(fileContents()["personalisation.dailyStudyGoalMinutes"], 0);
}

TEST_F(PreferencesStoreTest, FirstNameIsNormalisedOnReadAndOnAssignment) {
    stored("{\"personalisation.firstName\": \"  \\n Ada \\t\\n  Lovelace \\u00a0\\n\"}");
    EXPECT_EQ(open().firstName(), "Ada Lovelace");

    PreferencesStore& store = open();
    const std::string sixty = std::string(30, 'a') + "\xC3\xA9" + std::string(29, 'b');
    store.setFirstName(sixty);
    const std::string expected = std::string(30, 'a') + "\xC3\xA9" + std::string(9, 'b');
    EXPECT_EQ(store.firstName(), expected);
    EXPECT_EQ(fileContents()["personalisation.firstName"], expected);
}

TEST_F(PreferencesStoreTest, AnUnusableShortcutReadsAsTheDefault) {
    const std::vector<std::pair<std::string, GlobalHotkeyBinding>> cases{
        {R"({"shortcuts.globalHotkeyKeyCode": 49, "shortcuts.globalHotkeyModifiers": 0})",
         {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": -1, "shortcuts.globalHotkeyModifiers": 4096})",
         {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": 49, "shortcuts.globalHotkeyModifiers": -256})",
         {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": 49})", {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": "49", "shortcuts.globalHotkeyModifiers": 256})",
         {1, 0x300}},
        // 0x0A (the ISO section key) and 0x47 (keypad clear) have no display name.
        {R"({"shortcuts.globalHotkeyKeyCode": 10, "shortcuts.globalHotkeyModifiers": 256})",
         {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": 71, "shortcuts.globalHotkeyModifiers": 256})",
         {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": 4294967297, "shortcuts.globalHotkeyModifiers": 256})",
         {1, 0x300}},
        // Only bits outside the four modifiers.
        {R"({"shortcuts.globalHotkeyKeyCode": 49, "shortcuts.globalHotkeyModifiers": 1024})",
         {1, 0x300}},
        {R"({"shortcuts.globalHotkeyKeyCode": 49, "shortcuts.globalHotkeyModifiers": 4096})",
         {49, 0x1000}},
        {R"({"shortcuts.globalHotkeyKeyCode": 126, "shortcuts.globalHotkeyModifiers": 2304.0})",
         {126, 0x900}},
    };
    for (const auto& [json, expected] : cases) {
        SCOPED_TRACE(json);
        stored(json);
        EXPECT_EQ(open().globalHotkey(), expected);
    }
}

TEST_F(PreferencesStoreTest, AUsableShortcutWithAModifierMaskBeyond32BitsStopsTheProgram) {
    stored(
        R"({"shortcuts.globalHotkeyKeyCode": 1, "shortcuts.globalHotkeyModifiers": 4294967552})");
    EXPECT_DEATH(open(), "");
}

TEST_F(PreferencesStoreTest, TheShortcutIsWrittenAsTwoIntegers) {
    open().setGlobalHotkey({0x31, kCarbonControlModifier | kCarbonOptionModifier});
    EXPECT_EQ(fileContents()["shortcuts.globalHotkeyKeyCode"], 0x31);
    EXPECT_EQ(fileContents()["shortcuts.globalHotkeyModifiers"], 0x1800);
    EXPECT_EQ(open().globalHotkey(), (GlobalHotkeyBinding{0x31, 0x1800}));
}

TEST_F(PreferencesStoreTest, TheAIProviderIdentifierStaysNone) {
    stored(R"({"insights.aiProviderIdentifier": "cloud"})");
    PreferencesStore& store = open();
    EXPECT_EQ(store.insightsAIProviderIdentifier(), "none");
    store.setInsightsAIProviderIdentifier("cloud");
    EXPECT_EQ(store.insightsAIProviderIdentifier(), "none");
    EXPECT_EQ(fileContents()["insights.aiProviderIdentifier"], "none");
}

TEST_F(PreferencesStoreTest, EveryAssignmentIsWrittenThroughAndAnnounced) {
    PreferencesStore& store = open();
    int announcements = 0;
    const auto token = store.addObserver([&](PreferenceProperty) { ++announcements; });
    store.setStartHidden(true);
    store.setAppearance(TallywiseAppearance::light);
    store.setDefaultStudyMode(recording::StudySessionMode::offlineBookStudy);
    store.setLastTimingMode(recording::SessionTimingMode::openEnded);
    store.setDefaultSubject("Physics");
    store.setDerivedRevision(4);
    store.setGlobalHotkeyStatusMessage("Registered");
    EXPECT_EQ(announcements, 7);
    store.removeObserver(token);
    store.setStartHidden(false);
    EXPECT_EQ(announcements, 7);

    const auto json = fileContents();
    EXPECT_EQ(json["general.appearance"], "light");
    EXPECT_EQ(json["session.defaultStudyMode"], "offlineBookStudy");
    EXPECT_EQ(json["session.lastTimingMode"], "open_ended");
    EXPECT_EQ(json["metrics.derivedRevision"], 4);
    EXPECT_FALSE(json.contains("shortcuts.globalHotkeyStatusMessage"));
    const PreferencesStore& reopened = open();
    EXPECT_EQ(reopened.defaultSubject(), "Physics");
    EXPECT_EQ(reopened.derivedRevision(), 4);
    EXPECT_FALSE(reopened.globalHotkeyStatusMessage().has_value());
}

TEST_F(PreferencesStoreTest, ChangesMadeByAnotherProcessAreAdoptedAndAnnouncedOnce) {
    PreferencesStore& running = open();
    running.setGlobalHotkeyStatusMessage("Registered");
    std::vector<PreferenceProperty> announced;
    running.addObserver([&](PreferenceProperty property) { announced.push_back(property); });

    running.adoptChangesMadeElsewhere();  // nothing changed elsewhere: nothing announced
    EXPECT_TRUE(announced.empty());

    JsonFileDefaultsDomain otherDomain(path(), [] { return kNow; });
    PreferencesStore other(otherDomain);
    other.setPauseAllBrowserTracking(true);
    other.setInactivityThreshold(300.0);
    other.setDefaultSubject(running.defaultSubject());  // rewritten with the same value
    EXPECT_FALSE(running.pauseAllBrowserTracking());    // held until adopted

    running.adoptChangesMadeElsewhere();
    EXPECT_TRUE(running.pauseAllBrowserTracking());
    EXPECT_EQ(running.inactivityThreshold(), 300.0);
    EXPECT_EQ(announced,
              (std::vector<PreferenceProperty>{PreferenceProperty::inactivityThreshold,
                                               PreferenceProperty::pauseAllBrowserTracking}));
    EXPECT_EQ(running.globalHotkeyStatusMessage(), "Registered");

    announced.clear();
    running.adoptChangesMadeElsewhere();
    EXPECT_TRUE(announced.empty());
}

TEST_F(PreferencesStoreTest, AChangeReadByAnEarlierWriteIsStillAnnounced) {
    PreferencesStore& running = open();
    std::vector<PreferenceProperty> announced;
    running.addObserver([&](PreferenceProperty property) { announced.push_back(property); });
    JsonFileDefaultsDomain otherDomain(path(), [] { return kNow; });
    PreferencesStore other(otherDomain);
    other.setAppearance(TallywiseAppearance::dark);

    // This process writes a setting of its own before it looks for changes:
    // the write reads the other process's version first and keeps it.
    running.setStartHidden(true);
    announced.clear();
    running.adoptChangesMadeElsewhere();
    EXPECT_EQ(running.appearance(), TallywiseAppearance::dark);
    EXPECT_EQ(announced, std::vector<PreferenceProperty>{PreferenceProperty::appearance});
    EXPECT_EQ(fileContents()["general.startHidden"], true);
}

TEST_F(PreferencesStoreTest, AFileReplacedByHandOrRemovedIsAdoptedLikeAnyOtherChange) {
    PreferencesStore& running = open();
    running.setManualPDFLabelsEnabled(false);
    std::vector<PreferenceProperty> announced;
    running.addObserver([&](PreferenceProperty property) { announced.push_back(property); });

    stored(R"({"tracking.browser.enabled": false, "tracking.pdf.manualLabels": false})");
    running.adoptChangesMadeElsewhere();
    EXPECT_FALSE(running.browserTrackingEnabled());
    EXPECT_EQ(announced,
              std::vector<PreferenceProperty>{PreferenceProperty::browserTrackingEnabled});

    announced.clear();
    fs::remove(path());
    running.adoptChangesMadeElsewhere();
    EXPECT_TRUE(running.browserTrackingEnabled());
    EXPECT_TRUE(running.manualPDFLabelsEnabled());
    EXPECT_EQ(announced,
              (std::vector<PreferenceProperty>{PreferenceProperty::browserTrackingEnabled,
                                               PreferenceProperty::manualPDFLabelsEnabled}));
}

recording::StudySession sessionStartedAt(Date start) {
    recording::StudySession session;
    session.id = Uuid::generate();
    session.subject = "Maths";
    session.startDate = start;
    session.endDate = start.addingSeconds(1800);
    session.setStatus(recording::StudySessionStatus::completed);
    session.timerDuration = 1800;
    return session;
}

TEST_F(PreferencesStoreTest, TheHundredAndFirstCelebratedSessionPushesOutTheOldest) {
    PreferencesStore& store = open();
    std::vector<recording::StudySession> sessions;
    for (int i = 0; i < 101; ++i) {
        sessions.push_back(sessionStartedAt(kNow.addingSeconds(-3600)));
        EXPECT_TRUE(store.shouldCelebrate(sessions.back(), kNow)) << i;
    }
    const auto list = fileContents()["personalisation.celebratedSessionIDs"];
    ASSERT_EQ(list.size(), 100U);
    EXPECT_EQ(list.front(), sessions[1].id.upperString());
    EXPECT_EQ(list.back(), sessions[100].id.upperString());
    EXPECT_FALSE(store.shouldCelebrate(sessions[100], kNow));
    // The dropped session has been forgotten and would be celebrated again.
    EXPECT_TRUE(store.shouldCelebrate(sessions[0], kNow));
}

TEST_F(PreferencesStoreTest, OnlySessionsThatCountForAnalyticsAreCelebrated) {
    PreferencesStore& store = open();
    EXPECT_FALSE(store.shouldCelebrate(sessionStartedAt(kNow.addingSeconds(-299.9)), kNow));
    EXPECT_TRUE(store.shouldCelebrate(sessionStartedAt(kNow.addingSeconds(-300)), kNow));
    EXPECT_FALSE(store.shouldCelebrate(
        sessionStartedAt(Date{std::numeric_limits<double>::quiet_NaN()}), kNow));
    EXPECT_FALSE(store.shouldCelebrate(
        sessionStartedAt(Date{-std::numeric_limits<double>::infinity()}), kNow));

    store.setSessionCelebrationsEnabled(false);
    const recording::StudySession eligible = sessionStartedAt(kNow.addingSeconds(-3600));
    EXPECT_FALSE(store.shouldCelebrate(eligible, kNow));
    store.setSessionCelebrationsEnabled(true);
    EXPECT_TRUE(store.shouldCelebrate(eligible, kNow));

    JsonFileDefaultsDomain domain(path(), [] { return kNow; });
    PreferencesStore withSetupTests(
        domain, [](const recording::StudySession& s) { return s.subject == "Set-up test"; });
    recording::StudySession setupTest = sessionStartedAt(kNow.addingSeconds(-3600));
    setupTest.subject = "Set-up test";
    EXPECT_FALSE(withSetupTests.shouldCelebrate(setupTest, kNow));
}

TEST_F(PreferencesStoreTest, AMalformedCelebratedListCountsAsEmpty) {
    stored(R"({"personalisation.celebratedSessionIDs": "not a list"})");
    PreferencesStore& store = open();
    EXPECT_TRUE(store.shouldCelebrate(sessionStartedAt(kNow.addingSeconds(-3600)), kNow));
    EXPECT_EQ(fileContents()["personalisation.celebratedSessionIDs"].size(), 1U);
}

TEST_F(PreferencesStoreTest, TheDailyGoalIsAcknowledgedOncePerDayAndGoal) {
    const auto berlin = LocalCalendar::named("Europe/Berlin");
    ASSERT_TRUE(berlin.has_value());
    // 23:30 UTC on 16 November is already 17 November in Berlin.
    const Date lateEvening = *parseIso8601("2025-11-16T23:30:00Z");
    PreferencesStore& store = open();
    EXPECT_FALSE(store.acknowledgeDailyGoalIfNeeded(lateEvening, *berlin));
    EXPECT_FALSE(fs::exists(path()));

    store.setDailyStudyGoalMinutes(60);
    EXPECT_TRUE(store.acknowledgeDailyGoalIfNeeded(lateEvening, *berlin));
    EXPECT_EQ(fileContents()["personalisation.dailyGoalAcknowledgement"], "1-2025-11-17-60");
    EXPECT_FALSE(store.acknowledgeDailyGoalIfNeeded(lateEvening.addingSeconds(3600), *berlin));
    store.setDailyStudyGoalMinutes(90);
    EXPECT_TRUE(store.acknowledgeDailyGoalIfNeeded(lateEvening, *berlin));
    EXPECT_FALSE(open().acknowledgeDailyGoalIfNeeded(lateEvening, *berlin));
    EXPECT_TRUE(open().acknowledgeDailyGoalIfNeeded(lateEvening.addingSeconds(86400), *berlin));
    EXPECT_TRUE(open().acknowledgeDailyGoalIfNeeded(lateEvening, LocalCalendar::utc()));
}

TEST_F(PreferencesStoreTest, ResetRemovesThePreferencesButKeepsTheDerivedRevision) {
    stored(R"({"receipt.includeGoal": false, "other.application.key": 3})");
    PreferencesStore& store = open();
    store.setInactivityThreshold(600);
    store.setBrowserTrackingEnabled(false);
    store.setDailyStudyGoalMinutes(60);
    store.setDerivedRevision(7);
    store.setUpdatesCheckEnabled(true);
    store.setUpdatesFeedAddress("https://updates.example/feed.json");
    ASSERT_TRUE(store.shouldCelebrate(sessionStartedAt(kNow.addingSeconds(-3600)), kNow));
    ASSERT_TRUE(store.acknowledgeDailyGoalIfNeeded(kNow, LocalCalendar::utc()));
    std::vector<PreferenceProperty> announced;
    store.addObserver([&](PreferenceProperty property) { announced.push_back(property); });

    store.resetToDefaults();
    EXPECT_EQ(store.inactivityThreshold(), 90.0);
    EXPECT_TRUE(store.browserTrackingEnabled());
    EXPECT_EQ(store.derivedRevision(), 7);
    EXPECT_FALSE(store.updatesCheckEnabled());
    EXPECT_EQ(store.updatesFeedAddress(), "");
    // Every property before the derived revision, which is last and kept.
    EXPECT_EQ(announced.size(), static_cast<std::size_t>(PreferenceProperty::derivedRevision));
    EXPECT_EQ(fileContents(), nlohmann::json::parse(
                                  R"({"metrics.derivedRevision": 7, "other.application.key": 3})"));
}

}  // namespace
}  // namespace lumenote::settings
