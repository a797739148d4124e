// The History list for Qt's views over a real store: one page read on
// opening, more as the view asks, headings never selectable and never taken
// for sessions, and a new filter starting again from the newest session.
#include "ui/history_list_model.hpp"

#include <QItemSelectionModel>

#include <gtest/gtest.h>

#include "store/sqlite_recording_store.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {
namespace {

using Model = HistoryListModel;

class HistoryListModelTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::openInMemory();
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
        // One session a day for 450 days: more than two pages.
        recording::StoreChangeSet changes;
        for (int day = 0; day < kSessions; ++day) {
            Uuid::Bytes bytes{};
            bytes[14] = static_cast<std::uint8_t>(day >> 8);
            bytes[15] = static_cast<std::uint8_t>(day & 0xff);
            const Date start{day * 86400.0 + 36000.0};
            recording::StudySession session(Uuid(bytes), day % 2 == 0 ? "Even" : "Odd", "", 0.0,
                                            start);
            session.timerDuration = 1500.0;
            session.setStatus(recording::StudySessionStatus::completed);
            changes.sessions.push_back(session);
        }
        ASSERT_TRUE(store_->apply(changes).ok());
    }

    int sessionRows(const Model& model) {
        int count = 0;
        for (int row = 0; row < model.rowCount(); ++row) {
            count += model.index(row).data(Model::isHeadingRole).toBool() ? 0 : 1;
        }
        return count;
    }

    static constexpr int kSessions = 450;
    LocalCalendar calendar_ = LocalCalendar::utc();
    std::unique_ptr<store::SqliteRecordingStore> store_;
};

TEST_F(HistoryListModelTest, ReadsOnePageOnOpeningAndTheRestAsTheViewAsks) {
    Model model(*store_, calendar_, 1);
    EXPECT_EQ(sessionRows(model), static_cast<int>(models::HistoryPager::kDefaultPageSize));
    EXPECT_TRUE(model.index(0).data(Model::isHeadingRole).toBool());
    EXPECT_EQ(model.index(1).data(Model::subjectRole).toString(), "Odd");  // day 449
    int fetches = 0;
    while (model.canFetchMore({})) {
        model.fetchMore({});
        ++fetches;
    }
    EXPECT_EQ(fetches, 2);
    EXPECT_EQ(sessionRows(model), kSessions);
    // 450 days from a Thursday: each of the weeks touched has one heading.
    const int headings = model.rowCount() - kSessions;
    EXPECT_EQ(headings, 65);
}

TEST_F(HistoryListModelTest, HeadingsAreNeitherSelectableNorTakenForSessions) {
    Model model(*store_, calendar_, 1);
    const QModelIndex heading = model.index(0);
    const QModelIndex first = model.index(1);
    EXPECT_FALSE(model.flags(heading) & Qt::ItemIsSelectable);
    EXPECT_TRUE(model.flags(first) & Qt::ItemIsSelectable);
    EXPECT_TRUE(model.index(0).data(Model::sessionIdRole).isNull());
    // A selection given in any order, with a heading and a repeat, names each
    // session once, in row order.
    const QModelIndex later = model.index(20);
    ASSERT_FALSE(later.data(Model::isHeadingRole).toBool());
    const std::vector<Uuid> ids = model.sessionIds({later, heading, first, first});
    ASSERT_EQ(ids.size(), 2u);
    EXPECT_EQ(qt(ids[0].upperString()), first.data(Model::sessionIdRole).toString());
    EXPECT_EQ(qt(ids[1].upperString()), later.data(Model::sessionIdRole).toString());
}

TEST_F(HistoryListModelTest, ANewFilterStartsAgainFromTheNewest) {
    Model model(*store_, calendar_, 1);
    while (model.canFetchMore({})) {
        model.fetchMore({});
    }
    model.setFilter({.text = "odd"});
    EXPECT_EQ(sessionRows(model), static_cast<int>(models::HistoryPager::kDefaultPageSize));
    EXPECT_EQ(model.index(1).data(Model::subjectRole).toString(), "Odd");
    model.setFilter({.text = "no such subject"});
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(model.canFetchMore({}));
}

TEST_F(HistoryListModelTest, RowsSpeakTheirFiguresAndStatus) {
    Model model(*store_, calendar_, 1);
    const QModelIndex first = model.index(1);
    EXPECT_EQ(first.data(Model::durationRole).toString(), "25 min");
    EXPECT_EQ(first.data(Model::focusScoreRole).toString(), "—");
    EXPECT_EQ(first.data(Model::statusTextRole).toString(), "Completed");
    EXPECT_EQ(first.data(Model::statusRole).toInt(),
              static_cast<int>(recording::StudySessionStatus::completed));
    EXPECT_TRUE(first.data(Qt::AccessibleTextRole).toString().startsWith("Odd, "));
    EXPECT_TRUE(model.index(0).data(Qt::DisplayRole).toString().startsWith("Week of "));
}

}  // namespace
}  // namespace lumenote::ui
