// The terminal recorder's texts: the question about time without input, the
// live line and the summary use the product's own words for away study.
#include "terminal/record_view.hpp"

#include <gtest/gtest.h>

#include "foundation/text.hpp"

namespace lumenote::terminal {
namespace {

recording::NoInputClassificationPrompt promptOf(double seconds) {
    recording::NoInputClassificationPrompt prompt;
    prompt.startDate = *parseIso8601("2026-11-16T09:50:00Z");
    prompt.endDate = prompt.startDate.addingSeconds(seconds);
    return prompt;
}

TEST(RecordView, ShortRunsAskWhatTheUserWasDoingWithoutOfferingTheEnd) {
    EXPECT_EQ(promptQuestion(promptOf(2699), LocalCalendar::utc()),
              "What were you doing?\n"
              "You had no computer input for 45 minutes. What were you doing?\n"
              "[s] Studying away from Mac  [b] Break  [l] Leave Unconfirmed");
}

TEST(RecordView, LongRunsAlsoOfferToEndTheSessionThere) {
    EXPECT_EQ(promptQuestion(promptOf(2700), LocalCalendar::utc()),
              "What were you doing?\n"
              "No meaningful activity was recorded after 09:50. End the session there?\n"
              "This looks like a session that may have been left running. Lumenote will not "
              "change it unless you confirm.\n"
              "[x] End the Session There  [s] Studying away from Mac  [b] Break  "
              "[l] Leave Unconfirmed");
}

TEST(RecordView, KeysAndLiveLineNameTheAwayState) {
    EXPECT_EQ(keyHelp(false, false), "[p] pause  [a] Study away from Mac  [e] end  [q] quit");
    EXPECT_EQ(keyHelp(true, true), "[p] resume  [a] Back to Computer Study  [e] end  [q] quit");
    RecordingSnapshot snapshot;
    snapshot.subject = "Biology";
    snapshot.timingMode = recording::SessionTimingMode::openEnded;
    snapshot.timerValue = 1500;
    snapshot.liveState = recording::LiveStudyState::passiveStudy;
    EXPECT_EQ(statusLine(snapshot), "Biology · 0:25:00 · Studying away from Mac");
}

TEST(RecordView, SummaryListsAwayStudyUnderItsName) {
    recording::StudySession session(Uuid::generate(), "Biology", "", 1500, Date{0});
    session.timerDuration = 1500;
    session.focusedDuration = 1200;
    session.setPassiveStudyDuration(300);
    const std::string summary = sessionSummary(session);
    EXPECT_NE(summary.find("    Studying away from Mac      0:05:00\n"), std::string::npos)
        << summary;
    EXPECT_EQ(summary.find("computer"), std::string::npos) << summary;
}

// The live line never wraps: the goal goes first, then the activity name
// shrinks, and only then is the line cut.
TEST(RecordView, LiveLineFitsTheTerminalWidth) {
    RecordingSnapshot snapshot;
    snapshot.subject = "Biology";
    snapshot.goal = "Finish\nchapter 3";
    snapshot.plannedDuration = 1500;
    snapshot.timerValue = 600;
    snapshot.activityName = "A document with a very long name.pdf";
    snapshot.classification = classification::ActivityClassification::focused;
    const std::string full =
        "Biology · 0:15:00 left · A document with a very long name.pdf · Focused · Goal: Finish "
        "chapter 3";
    EXPECT_EQ(statusLine(snapshot), full);
    EXPECT_EQ(statusLine(snapshot, text::characterCount(full)), full);
    EXPECT_EQ(statusLine(snapshot, 80),
              "Biology · 0:15:00 left · A document with a very long name.pdf · Focused");
    EXPECT_EQ(statusLine(snapshot, 60),
              "Biology · 0:15:00 left · A document with a very l… · Focused");
    EXPECT_EQ(statusLine(snapshot, 48), "Biology · 0:15:00 left · A document w… · Focused");
    EXPECT_EQ(statusLine(snapshot, 30), "Biology · 0:15:00 left · A do…");
    for (const std::size_t width : {1u, 2u, 10u, 47u, 59u, 61u, 79u, 81u}) {
        EXPECT_LE(text::characterCount(statusLine(snapshot, width)), width) << width;
    }
}

TEST(RecordView, TheBrowserWarningFollowsTheClassificationAndOutranksTheGoal) {
    RecordingSnapshot snapshot;
    snapshot.subject = "Biology";
    snapshot.goal = "Chapter 3";
    snapshot.plannedDuration = 1500;
    snapshot.activityName = "Chromium";
    snapshot.browserWarning =
        "Websites in Chromium are not recorded: the Lumenote extension is disconnected.";
    const std::string line =
        "Biology · 0:25:00 left · Chromium · Unclassified · Websites in Chromium are not "
        "recorded: the Lumenote extension is disconnected.";
    EXPECT_EQ(statusLine(snapshot, text::characterCount(line)), line) << "the goal goes first";
    EXPECT_EQ(statusLine(snapshot), line + " · Goal: Chapter 3");
}

TEST(RecordView, SummaryLeadsWithStudyTimeAndLeavesOutUnconfirmedTime) {
    recording::StudySession session(Uuid::generate(), "Biology", "", 3600, Date{0});
    session.setStatus(recording::StudySessionStatus::completed);
    session.timerDuration = 3600;
    session.focusedDuration = 2400;
    session.inactiveDuration = 1200;
    session.setPassiveStudyDuration(600);
    const std::string summary = sessionSummary(session);
    EXPECT_NE(summary.find("  Study time                    0:50:00\n"), std::string::npos)
        << summary;
    EXPECT_NE(summary.find("    No input, unconfirmed       0:10:00\n"), std::string::npos)
        << summary;
    EXPECT_LT(summary.find("Study time"), summary.find("Focused")) << summary;
}

TEST(RecordView, SummaryEndsWithALinePerBestInItsOrder) {
    recording::StudySession session(Uuid::generate(), "Biology", "", 3600, Date{0});
    session.setStatus(recording::StudySessionStatus::completed);
    session.timerDuration = 3600;
    using Kind = recording::PersonalBestKind;
    const std::string summary = sessionSummary(session, {{Kind::dailyGoalComplete, 3900},
                                                         {Kind::longestFocus, 2530},
                                                         {Kind::highestFocusScore, 87.4},
                                                         {Kind::longestSession, 3600}});
    const std::string expected =
        "★ Daily goal complete: 1:05:00 of study today\n"
        "★ New longest focus: 0:42:10\n"
        "★ New highest focus score: 87%\n"
        "★ New longest session: 1:00:00\n";
    ASSERT_GE(summary.size(), expected.size());
    EXPECT_EQ(summary.substr(summary.size() - expected.size()), expected) << summary;
    EXPECT_EQ(sessionSummary(session).find("★"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::terminal
