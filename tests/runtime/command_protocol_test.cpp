#include "runtime/command_protocol.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

#include "foundation/raw_enum.hpp"

namespace lumenote::runtime {
namespace {

RecorderStatus runningStatus() {
    RecorderStatus status;
    status.sessionActive = true;
    status.subject = "Organic chemistry";
    status.elapsedSeconds = 600.0;
    status.remainingSeconds = 900.0;
    status.currentActivity = "Text Editor";
    status.currentClassification = classification::ActivityClassification::focused;
    return status;
}

TEST(RecorderCommandMethod, EveryCommandRoundTripsThroughItsMethodName) {
    for (const RecorderCommand command :
         {RecorderCommand::togglePause, RecorderCommand::endSession,
          RecorderCommand::startPassiveStudy, RecorderCommand::returnToComputerStudy,
          RecorderCommand::status, RecorderCommand::browserEvents, RecorderCommand::browserStatus,
          RecorderCommand::present}) {
        const auto method = recorderCommandMethod(command);
        ASSERT_FALSE(method.empty());
        EXPECT_EQ(recorderCommandFromMethod(method), command) << method;
    }
    for (const char* unknown : {"", "togglepause", "Pause", "Status ", "Quit"}) {
        EXPECT_EQ(recorderCommandFromMethod(unknown), std::nullopt) << unknown;
    }
}

TEST(RecorderStatusJson, SessionsRoundTripInWholeSeconds) {
    std::vector<RecorderStatus> cases;
    cases.push_back(runningStatus());

    RecorderStatus paused = runningStatus();
    paused.state = recording::StudySessionStatus::paused;
    paused.remainingSeconds.reset();  // open-ended
    paused.asleep = true;
    cases.push_back(paused);

    RecorderStatus away = runningStatus();
    away.subject = "Études – 日本語 🎓";
    away.currentActivity = "";
    away.currentClassification = classification::ActivityClassification::unclassified;
    away.studyState = recording::LiveStudyState::passiveStudy;
    cases.push_back(away);

    for (const recording::LiveStudyState state : allCases<recording::LiveStudyState>()) {
        RecorderStatus status = runningStatus();
        status.studyState = state;
        cases.push_back(status);
    }
    for (const classification::ActivityClassification classification :
         allCases<classification::ActivityClassification>()) {
        RecorderStatus status = runningStatus();
        status.currentClassification = classification;
        cases.push_back(status);
    }

    RecorderStatus warned = runningStatus();
    warned.browserWarning =
        "Websites in Chromium are not recorded: the Lumenote extension is disconnected.";
    cases.push_back(warned);

    RecorderStatus unobserved = runningStatus();
    unobserved.observationWarning =
        "This time is recorded as \"Unknown application\". KWin does not answer.";
    unobserved.lastActivation = Date::fromUnixSeconds(1795687452.25);
    cases.push_back(unobserved);

    for (const RecorderStatus& status : cases) {
        const std::string json = recorderStatusJson(status);
        const auto parsed = parseRecorderStatus(json);
        ASSERT_TRUE(parsed.ok()) << json;
        EXPECT_EQ(*parsed, status) << json;
    }
}

TEST(RecorderStatusJson, IdleIsOnlyTheState) {
    RecorderStatus idle = runningStatus();
    idle.sessionActive = false;
    EXPECT_EQ(recorderStatusJson(idle), R"({"state":"idle"})");
    const auto parsed = parseRecorderStatus(R"({"state":"idle","subject":"ignored"})");
    ASSERT_TRUE(parsed.ok());
    EXPECT_EQ(*parsed, RecorderStatus{});
}

// The last activation travels without a session too, and only as a number
// of seconds between 1970 and the end of the year 9999: anything else reads
// as never seen.
TEST(RecorderStatusJson, TheLastActivationTravelsWhenIdleAndIsReadOnlyAsANumber) {
    RecorderStatus idle;
    idle.lastActivation = Date::fromUnixSeconds(1795687452.5);
    const auto parsed = parseRecorderStatus(recorderStatusJson(idle));
    ASSERT_TRUE(parsed.ok());
    EXPECT_EQ(*parsed, idle);
    for (const char* json :
         {R"({"state":"idle","lastActivation":"yesterday"})",
          R"({"state":"idle","lastActivation":null})", R"({"state":"idle","lastActivation":-1})",
          R"({"state":"idle","lastActivation":1e300})"}) {
        const auto read = parseRecorderStatus(json);
        ASSERT_TRUE(read.ok()) << json;
        EXPECT_FALSE(read->lastActivation) << json;
    }
}

TEST(RecorderStatusJson, ElapsedRoundsDownAndRemainingUpSoTheyNeverExceedThePlan) {
    struct Case {
        double elapsed;
        std::optional<double> remaining;
        long long expectedElapsed;
        std::optional<long long> expectedRemaining;
    };
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Case> cases{
        {10.4, 14.6, 10, 15},  // 25 s planned: 10 + 15
        {0.999, 1499.001, 0, 1500},
        {1500.0, 0.0, 1500, 0},
        {1500.2, -0.2, 1500, 0},  // a late tick past the plan: never negative
        {-0.5, 3.0, 0, 3},
        {nan, nan, 0, 0},
        {7200.9, std::nullopt, 7200, std::nullopt},
        // Read from another process's answer: capped at a century, never
        // converted out of range.
        {1e300, 1e300, 3155760000, 3155760000},
        {9.3e18, std::nullopt, 3155760000, std::nullopt},
    };
    for (const Case& test : cases) {
        RecorderStatus status = runningStatus();
        status.elapsedSeconds = test.elapsed;
        status.remainingSeconds = test.remaining;
        const auto parsed = parseRecorderStatus(recorderStatusJson(status));
        ASSERT_TRUE(parsed.ok());
        EXPECT_EQ(parsed->elapsedSeconds, static_cast<double>(test.expectedElapsed))
            << test.elapsed;
        ASSERT_EQ(parsed->remainingSeconds.has_value(), test.expectedRemaining.has_value());
        if (test.expectedRemaining) {
            EXPECT_EQ(*parsed->remainingSeconds, static_cast<double>(*test.expectedRemaining))
                << *test.remaining;
        }
    }
}

TEST(RecorderStatusJson, InvalidUtf8InAnApplicationNameIsReplacedNotThrown) {
    RecorderStatus status = runningStatus();
    status.currentActivity = std::string("Caf\xC3", 4) + "\xFF" + "editor";
    std::string json;
    ASSERT_NO_THROW(json = recorderStatusJson(status));
    const auto parsed = parseRecorderStatus(json);
    ASSERT_TRUE(parsed.ok()) << json;
    EXPECT_EQ(parsed->currentActivity, "Caf\uFFFD\uFFFDeditor");
    EXPECT_EQ(parsed->subject, status.subject);
}

TEST(RecorderStatusJson, NewerFieldsAreIgnored) {
    const std::string json = recorderStatusJson(runningStatus());
    const std::string withExtra = R"({"goal":"Chapter 3",)" + json.substr(1);
    const auto parsed = parseRecorderStatus(withExtra);
    ASSERT_TRUE(parsed.ok()) << withExtra;
    EXPECT_EQ(*parsed, runningStatus());
}

TEST(RecorderStatusJson, MalformedDocumentsAreRefused) {
    const std::string good = recorderStatusJson(runningStatus());
    const auto replaced = [&good](const std::string& from, const std::string& to) {
        std::string text = good;
        const auto at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    const std::vector<std::pair<const char*, std::string>> cases{
        {"empty", ""},
        {"not JSON", "paused"},
        {"truncated", good.substr(0, good.size() - 5)},
        {"an array", "[]"},
        {"no state", "{}"},
        {"state not text", R"({"state":3})"},
        {"unknown state", replaced(R"("state":"running")", R"("state":"sleeping")")},
        {"unknown classification",
         replaced(R"("classification":"focused")", R"("classification":"great")")},
        {"unknown study state",
         replaced(R"("studyState":"computerActivity")", R"("studyState":"napping")")},
        {"elapsed as text", replaced(R"("elapsedSeconds":600)", R"("elapsedSeconds":"600")")},
        {"remaining as text", replaced(R"("remainingSeconds":900)", R"("remainingSeconds":"900")")},
        {"no remaining", replaced(R"("remainingSeconds":900,)", "")},
        {"subject not text", replaced(R"("subject":"Organic chemistry")", R"("subject":null)")},
        {"asleep not a flag", replaced(R"("asleep":false)", R"("asleep":0)")},
    };
    for (const auto& [label, text] : cases) {
        const auto parsed = parseRecorderStatus(text);
        ASSERT_FALSE(parsed.ok()) << label;
        EXPECT_EQ(parsed.error(), RecorderStatusParseError::malformed) << label;
    }
}

TEST(BrowserStatusTexts, KeepsTheSentencesAndSkipsOtherValues) {
    const auto texts = parseBrowserStatusTexts(
        R"({"org.chromium.Chromium":"Connected","org.mozilla.firefox":null,"x":3,"":"Empty"})");
    ASSERT_TRUE(texts.has_value());
    EXPECT_EQ(*texts, (std::map<std::string, std::string>{{"org.chromium.Chromium", "Connected"},
                                                          {"", "Empty"}}));
    for (const char* refused : {"", "[]", "\"Connected\"", "{\"a\":"}) {
        EXPECT_FALSE(parseBrowserStatusTexts(refused).has_value()) << refused;
    }
}

}  // namespace
}  // namespace lumenote::runtime
