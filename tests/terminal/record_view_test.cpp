// The terminal recorder's texts: the question about time without input, the
// live line and the summary use the product's own words for away study.
#include "terminal/record_view.hpp"

#include <gtest/gtest.h>

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
    EXPECT_NE(summary.find("  Studying away from Mac          0:05:00\n"), std::string::npos)
        << summary;
    EXPECT_EQ(summary.find("computer"), std::string::npos) << summary;
}

}  // namespace
}  // namespace lumenote::terminal
