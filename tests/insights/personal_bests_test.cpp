// The record rules of personal bests: how many earlier sessions, which margin,
// and which figures a session without a score can still beat.
#include "insights/personal_bests.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace lumenote::insights {
namespace {

using recording::PersonalBestKind;

struct Case {
    const char* name;
    SessionBestFigures session;
    EarlierRecords earlier;
    std::vector<PersonalBestKind> expected;
};

// Three earlier sessions, each with a score: the longest run 600 s, the
// highest score 80, the longest session 1800 s.
EarlierRecords history() {
    return EarlierRecords{.sessions = 3,
                          .longestFocusedRun = 600.0,
                          .scoredSessions = 3,
                          .highestFocusScore = 80.0,
                          .longestSession = 1800.0};
}

EarlierRecords with(EarlierRecords records, void (*change)(EarlierRecords&)) {
    change(records);
    return records;
}

TEST(PersonalBestRules, RecordsAreBeatenOnlyByTheMarginOverEnoughHistory) {
    const std::vector<Case> cases = {
        {"ties earn nothing", {600.0, 80.0, 1800.0}, history(), {}},
        {"just under the margins", {600.999, 80.49, 1800.999}, history(), {}},
        {"exactly the margins",
         {601.0, 80.5, 1801.0},
         history(),
         {PersonalBestKind::longestFocus, PersonalBestKind::highestFocusScore,
          PersonalBestKind::longestSession}},
        {"two earlier sessions are not enough",
         {5000.0, 99.0, 9000.0},
         with(history(), [](EarlierRecords& r) { r.sessions = 2; }),
         {}},
        {"no score, no score best",
         {601.0, std::nullopt, 1801.0},
         history(),
         {PersonalBestKind::longestFocus, PersonalBestKind::longestSession}},
        {"two scored sessions are not enough for the score",
         {0.0, 99.0, 0.0},
         with(history(), [](EarlierRecords& r) { r.scoredSessions = 2; }),
         {}},
        {"an unsettled run claims no focus best",
         {5000.0, 50.0, 1000.0},
         with(history(), [](EarlierRecords& r) { r.longestFocusedRun.reset(); }),
         {}},
        {"a run of zero never beats an empty record",
         {0.0, std::nullopt, 61.0},
         with(history(),
              [](EarlierRecords& r) {
                  r.longestFocusedRun = 0.0;
                  r.longestSession = 60.0;
              }),
         {PersonalBestKind::longestSession}},
    };
    for (const Case& c : cases) {
        std::vector<PersonalBestKind> kinds;
        for (const auto& best : recordBests(c.session, c.earlier)) {
            kinds.push_back(best.kind);
        }
        EXPECT_EQ(kinds, c.expected) << c.name;
    }
}

TEST(PersonalBestRules, ABestCarriesTheSessionsOwnFigure) {
    const auto bests = recordBests({700.0, 90.0, 2000.0}, history());
    ASSERT_EQ(bests.size(), 3u);
    EXPECT_DOUBLE_EQ(bests[0].value, 700.0);
    EXPECT_DOUBLE_EQ(bests[1].value, 90.0);
    EXPECT_DOUBLE_EQ(bests[2].value, 2000.0);
}

}  // namespace
}  // namespace lumenote::insights
