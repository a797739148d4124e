// The History page's list over a real store: newest first, a heading at each
// new week (also where a page boundary falls inside a week), the store's
// search and filters, and weeks that span a daylight-saving change.
#include "ui/models/history_list.hpp"

#include <gtest/gtest.h>

#include "store/sqlite_recording_store.hpp"

namespace lumenote::ui::models {
namespace {

using recording::StudySessionStatus;

constexpr unsigned kMonday = 1;

class HistoryPagerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::openInMemory();
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
    }

    // A finished session starting at the local wall time `day` + `hour`.
    void addSession(std::string subject, const std::string& day, double hour,
                    StudySessionStatus status = StudySessionStatus::completed) {
        Uuid::Bytes bytes{};
        bytes[15] = static_cast<std::uint8_t>(++count_);
        const Date start = calendar_.startOfDayKey(day)->addingSeconds(hour * 3600.0);
        recording::StudySession session(Uuid(bytes), std::move(subject), "", 0.0, start);
        session.timerDuration = 3900.0;
        session.endDate = start.addingSeconds(3900.0);
        session.setStatus(status);
        recording::StoreChangeSet changes;
        changes.sessions.push_back(session);
        ASSERT_TRUE(store_->apply(changes).ok());
    }

    // Every entry of every page, a heading written as "week <day key>".
    std::vector<std::string> readAll(HistoryPager& pager) {
        std::vector<std::string> lines;
        while (!pager.atEnd()) {
            auto page = pager.nextPage();
            EXPECT_TRUE(page.ok());
            if (!page.ok()) {
                break;
            }
            for (const HistoryEntry& entry : *page) {
                if (const auto* heading = std::get_if<HistoryWeekHeading>(&entry)) {
                    lines.push_back("week " + calendar_.dayKey(heading->weekStart));
                } else {
                    lines.push_back(std::get<HistorySessionRow>(entry).subject);
                }
            }
        }
        return lines;
    }

    LocalCalendar calendar_ = *LocalCalendar::named("Europe/Berlin");
    std::unique_ptr<store::SqliteRecordingStore> store_;
    int count_ = 0;
};

TEST_F(HistoryPagerTest, AnEmptyHistoryIsOneEmptyPage) {
    HistoryPager pager(*store_, calendar_, kMonday, {});
    auto page = pager.nextPage();
    ASSERT_TRUE(page.ok());
    EXPECT_TRUE(page->empty());
    EXPECT_TRUE(pager.atEnd());
}

TEST_F(HistoryPagerTest, HeadsEachWeekOnceAcrossPageBoundaries) {
    addSession("Mon A", "2026-11-16", 9);
    addSession("Sun", "2026-11-22", 23.5);
    addSession("Mon B", "2026-11-23", 0.25);
    addSession("Tue", "2026-11-24", 10);
    addSession("Wed", "2026-11-25", 10);
    // Two sessions a page: the page boundaries fall inside both weeks.
    HistoryPager pager(*store_, calendar_, kMonday, {}, 2);
    EXPECT_EQ(readAll(pager), (std::vector<std::string>{"week 2026-11-23", "Wed", "Tue", "Mon B",
                                                        "week 2026-11-16", "Sun", "Mon A"}));
    EXPECT_EQ(pager.sessionsRead(), 5u);
    // A further page after the end is empty and stays so.
    EXPECT_TRUE(pager.nextPage()->empty());
}

TEST_F(HistoryPagerTest, WeeksFollowTheFirstWeekdayAndSpanADaylightSavingChange) {
    // Summer time ends in Berlin on Sunday 25 October 2026: that day has 25
    // hours, and its last hour still belongs to the week starting Monday 19th.
    addSession("Mon", "2026-10-19", 8);
    addSession("Sun late", "2026-10-25", 23.5);
    addSession("Next Mon", "2026-10-26", 0.5);
    HistoryPager mondays(*store_, calendar_, kMonday, {});
    EXPECT_EQ(readAll(mondays), (std::vector<std::string>{"week 2026-10-26", "Next Mon",
                                                          "week 2026-10-19", "Sun late", "Mon"}));
    // Weeks starting on Sunday put the Sunday with the Monday after it.
    HistoryPager sundays(*store_, calendar_, 0, {});
    EXPECT_EQ(readAll(sundays), (std::vector<std::string>{"week 2026-10-25", "Next Mon", "Sun late",
                                                          "week 2026-10-18", "Mon"}));
}

TEST_F(HistoryPagerTest, SearchesAndFiltersInTheStore) {
    addSession("Linear Algebra", "2026-11-16", 9);
    addSession("History", "2026-11-17", 9, StudySessionStatus::interrupted);
    addSession("Abstract algebra", "2026-11-18", 9, StudySessionStatus::interrupted);
    HistoryPager text(*store_, calendar_, kMonday, {.text = "ALGEBRA"});
    EXPECT_EQ(readAll(text),
              (std::vector<std::string>{"week 2026-11-16", "Abstract algebra", "Linear Algebra"}));
    HistoryPager both(*store_, calendar_, kMonday,
                      {.text = "algebra", .status = StudySessionStatus::interrupted});
    EXPECT_EQ(readAll(both), (std::vector<std::string>{"week 2026-11-16", "Abstract algebra"}));
    const Date from = *calendar_.startOfDayKey("2026-11-17");
    HistoryPager range(
        *store_, calendar_, kMonday,
        {.startingAtOrAfter = from, .startingBefore = calendar_.addingDays(from, 1)});
    EXPECT_EQ(readAll(range), (std::vector<std::string>{"week 2026-11-16", "History"}));
}

TEST(HistorySessionRowTest, ShowsAScoreOnlyWithEnoughEvidenceAndKeepsAnUnknownStatusAbsent) {
    recording::StudySession session(Uuid(), "Physics", "Problem set", 0.0, Date{1000});
    session.timerDuration = 59.6;
    session.focusedDuration = 40.0;
    session.distractedDuration = 10.0;
    session.focusScore = 80.0;
    session.statusRawValue = "archived-by-a-later-release";
    const HistorySessionRow thin = historySessionRow(session);
    EXPECT_EQ(thin.durationText, "1 min");
    EXPECT_EQ(thin.focusScoreText, "—");
    EXPECT_FALSE(thin.status.has_value());

    session.focusedDuration = 400.0;
    session.distractedDuration = 100.0;
    session.setStatus(StudySessionStatus::completed);
    const HistorySessionRow scored = historySessionRow(session);
    EXPECT_EQ(scored.focusScoreText, "80%");
    EXPECT_EQ(scored.status, StudySessionStatus::completed);
}

}  // namespace
}  // namespace lumenote::ui::models
