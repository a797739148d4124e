// What the history says was recorded: the fold of segments into applications
// and websites (order, cap, what counts), and the reads over a real SQLite
// file (the 30-day boundary, the never-recorded check and its suggestions).
#include "cli/recorded_activity.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::cli {
namespace {

using C = classification::ActivityClassification;
using recording::ActivitySourceType;

const Date kNow = Date{800000000.0};
constexpr double kDay = 24 * 60 * 60;

recording::ActivitySegment segment(std::string bundle, std::string name, Date end,
                                   ActivitySourceType source = ActivitySourceType::application,
                                   std::optional<std::string> hostname = std::nullopt) {
    recording::ActivitySegment result(Uuid::generate(), end.addingSeconds(-10), end, 10,
                                      std::move(name), std::move(bundle), C::unclassified, false);
    result.setActivitySource(source);
    result.hostname = std::move(hostname);
    return result;
}

std::vector<std::string> idsOf(const std::vector<RecordedApplication>& applications) {
    std::vector<std::string> ids;
    for (const auto& application : applications) {
        ids.push_back(application.bundleIdentifier);
    }
    return ids;
}

TEST(RecordedActivityCollectorTest, OnlyApplicationsAndWebsitesCount) {
    RecordedActivityCollector collector;
    collector.add(
        segment("com.apple.system.sleep", "Mac asleep", kNow, ActivitySourceType::system));
    collector.add(segment("", "Unknown application", kNow));
    collector.add(segment("org.chromium.Chromium", "Chromium", kNow.addingSeconds(7),
                          ActivitySourceType::website, "en.wikipedia.org"));
    collector.add(segment("org.chromium.Chromium", "Chromium", kNow.addingSeconds(9),
                          ActivitySourceType::browserFallback));
    // A hostname on anything but a website segment is not a website visit.
    collector.add(segment("org.chromium.Chromium", "Chromium", kNow, ActivitySourceType::localPDF,
                          "files.example.org"));

    const RecordedActivity activity = collector.mostRecent(10);
    ASSERT_EQ(activity.applications.size(), 1u);
    EXPECT_EQ(activity.applications.front(),
              (RecordedApplication{"org.chromium.Chromium", "Chromium", kNow.addingSeconds(9)}));
    ASSERT_EQ(activity.websites.size(), 1u);
    EXPECT_EQ(activity.websites.front(),
              (RecordedWebsite{"en.wikipedia.org", kNow.addingSeconds(7)}));
}

TEST(RecordedActivityCollectorTest, NewestFirstWithTheLatestNameCutToTheCap) {
    RecordedActivityCollector collector;
    // Added out of time order, as a walk orders segments by session.
    collector.add(segment("code", "Code (new name)", kNow.addingSeconds(50)));
    collector.add(segment("code", "Code (old name)", kNow.addingSeconds(20)));
    collector.add(segment("b.tie", "B", kNow.addingSeconds(10)));
    collector.add(segment("a.tie", "A", kNow.addingSeconds(10)));
    collector.add(segment("oldest", "Oldest", kNow));

    const RecordedActivity activity = collector.mostRecent(3);
    // Equal times keep key order, so the list is the same on every run.
    EXPECT_EQ(idsOf(activity.applications), (std::vector<std::string>{"code", "a.tie", "b.tie"}));
    EXPECT_EQ(activity.applications.front().applicationName, "Code (new name)");
    EXPECT_EQ(activity.applicationCount, 4u);
}

class RecordedHistoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(store::storePath(home_.paths()));
        ASSERT_TRUE(opened.ok()) << opened.error().description;
        store_ = std::move(opened).value();
    }

    // A session starting at `start` with one segment per application given.
    void recordSession(Date start, const std::vector<recording::ActivitySegment>& segments) {
        recording::StoreChangeSet changes;
        recording::StudySession session(Uuid::generate(), "Study", "", 3600, start);
        changes.sessions.push_back(session);
        for (recording::ActivitySegment piece : segments) {
            piece.session = session.id;
            changes.segments.push_back(std::move(piece));
        }
        auto applied = store_->apply(changes);
        ASSERT_TRUE(applied.ok()) << applied.error().description;
    }

    lumenote::testing::TemporaryHome home_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
};

TEST_F(RecordedHistoryTest, RecentMeansSessionsStartedInTheLastThirtyDays) {
    const Date boundary = kNow.addingSeconds(-kRecentActivityDays * kDay);
    // Its segment ends inside the window, but the session started a second
    // before it.
    recordSession(boundary.addingSeconds(-1),
                  {segment("old.app", "Old", boundary.addingSeconds(600))});
    recordSession(boundary, {segment("edge.app", "Edge", boundary.addingSeconds(60))});
    recordSession(kNow.addingSeconds(-60),
                  {segment("new.app", "New", kNow.addingSeconds(-30)),
                   segment("org.chromium.Chromium", "Chromium", kNow.addingSeconds(-20),
                           ActivitySourceType::website, "overleaf.com")});

    const auto activity = readRecentActivity(*store_, kNow);
    ASSERT_TRUE(activity.ok()) << activity.error().description;
    EXPECT_EQ(idsOf(activity->applications),
              (std::vector<std::string>{"org.chromium.Chromium", "new.app", "edge.app"}));
    ASSERT_EQ(activity->websites.size(), 1u);
    EXPECT_EQ(activity->websites.front().hostname, "overleaf.com");
}

TEST_F(RecordedHistoryTest, ANeverRecordedIdNamesTheApplicationsItResembles) {
    recordSession(kNow.addingSeconds(-400 * kDay),
                  {segment("debian-xterm", "XTerm", kNow.addingSeconds(-400 * kDay)),
                   segment("com.apple.system.sleep", "Mac asleep", kNow.addingSeconds(-399 * kDay),
                           ActivitySourceType::system)});
    recordSession(kNow.addingSeconds(-60),
                  {segment("org.gnome.Evince", "Document Viewer", kNow.addingSeconds(-30)),
                   segment("xterm", "XTerm", kNow.addingSeconds(-20))});

    struct Case {
        const char* given;
        bool recorded;
        std::vector<std::string> similar;
    };
    const Case cases[] = {
        // Recorded long before the recent window still counts as recorded.
        {"debian-xterm", true, {}},
        {"org.gnome.Evince", true, {}},
        // Rules match exactly: another letter case was never recorded.
        {"ORG.GNOME.EVINCE", false, {"org.gnome.Evince"}},
        // A window class typed as an id: the ids recorded under that name.
        {"XTerm", false, {"xterm", "debian-xterm"}},
        {"document viewer", false, {"org.gnome.Evince"}},
        {"com.apple.system.sleep", false, {}},
        {"org.gnome", false, {}},
    };
    for (const Case& c : cases) {
        const auto check = checkRecordedApplication(*store_, c.given);
        ASSERT_TRUE(check.ok()) << check.error().description;
        EXPECT_EQ(check->recorded, c.recorded) << c.given;
        EXPECT_EQ(idsOf(check->similar), c.similar) << c.given;
    }
}

}  // namespace
}  // namespace lumenote::cli
