#include "portability/data_export_service.hpp"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include "export_test_support.hpp"
#include "portability/csv_export_writer.hpp"
#include "recording/session_figures.hpp"
#include "recording/study_time.hpp"
#include "store/store_test_support.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::portability {
namespace {

using classification::ActivityClassification;
using lumenote::testing::uuidNumbered;
using nlohmann::json;
using testing::StringSink;

const Date kExportedAt = *parseIso8601("2026-11-20T12:30:00Z");

// Sessions stored out of order, each with segments that alternate between
// Focused and Distracting stretches; two sessions start at the same moment
// (id order decides) and two of a session's segments too.
class DataExportServiceTest : public lumenote::testing::TemporaryFolderTest {
  protected:
    void SetUp() override {
        TemporaryFolderTest::SetUp();
        store_ = openStore();
        ASSERT_TRUE(store_);
    }

    // A finished session numbered `number` starting `start` seconds after
    // the reference date, with `segments` stretches of 45 s each, numbered
    // from `firstSegmentNumber` (random ids when it is 0).
    void storeSession(std::uint8_t number, double start, int segments,
                      std::uint8_t firstSegmentNumber) {
        recording::StoreChangeSet changes;
        recording::StudySession session = lumenote::testing::fullSession(number, Date{start});
        session.subject = "Session " + std::to_string(number);
        session.calculationVersionStorage = 3;
        session.timerDuration = 45.0 * segments;
        session.endDate = Date{start + 45.0 * segments};
        for (int index = 0; index < segments; ++index) {
            const Date from{start + 45.0 * index};
            recording::ActivitySegment segment(
                firstSegmentNumber == 0
                    ? Uuid::generate()
                    : uuidNumbered(static_cast<std::uint8_t>(firstSegmentNumber + index)),
                from, from.addingSeconds(45), 45, "Text Editor", "org.gnome.TextEditor",
                index % 2 == 0 ? ActivityClassification::focused
                               : ActivityClassification::distracting,
                false);
            segment.session = session.id;
            changes.segments.push_back(segment);
        }
        changes.sessions.push_back(session);
        ASSERT_TRUE(store_->apply(changes).ok());
    }

    // Sessions 3 (t=100), 1 and 2 (both t=5000), 4 (t=9000, no segments).
    void storeHistory() {
        storeSession(2, 5000, 3, 20);
        storeSession(3, 100, 4, 30);
        storeSession(1, 5000, 2, 10);
        recording::StoreChangeSet empty;
        empty.sessions.push_back(lumenote::testing::bareSession(4, Date{9000}));
        ASSERT_TRUE(store_->apply(empty).ok());
        // Session 3 gets a segment starting together with its first one, with
        // a smaller id: it comes first.
        recording::StoreChangeSet tie;
        recording::ActivitySegment early(uuidNumbered(29), Date{100}, Date{110}, 10, "Files",
                                         "org.gnome.Nautilus", ActivityClassification::neutral,
                                         false);
        early.session = uuidNumbered(3);
        tie.segments.push_back(early);
        ASSERT_TRUE(store_->apply(tie).ok());
    }

    Result<ExportSummary, ExportError> exportTo(StringSink& sink, const ExportRequest& request,
                                                const DataExportService::Progress& progress = {}) {
        DataExportService service(*store_, *store_);
        return service.write(request, kExportedAt, sink, progress);
    }

    std::string exported(const ExportRequest& request) {
        StringSink sink;
        const auto written = exportTo(sink, request);
        EXPECT_TRUE(written.ok()) << (written.ok() ? "" : written.error().message());
        return sink.text;
    }

    std::vector<std::vector<std::string>> exportedTable(const ExportRequest& request) {
        const auto file = folder_ / "table.csv";
        lumenote::testing::writeFile(file, exported(request));
        return testing::readCsvWithPython(file);
    }

    std::unique_ptr<store::SqliteRecordingStore> store_;
};

std::vector<std::string> idsOf(const std::vector<std::uint8_t>& numbers) {
    std::vector<std::string> ids;
    for (const std::uint8_t number : numbers) {
        ids.push_back(uuidNumbered(number).upperString());
    }
    return ids;
}

TEST_F(DataExportServiceTest, JsonHoldsEverySessionInStartOrderWithItsSegmentsAndFigures) {
    storeHistory();
    const json document = json::parse(exported({.format = ExportFormat::json}));
    EXPECT_EQ(document["formatVersion"], 1);
    EXPECT_EQ(document["exportedAt"], "2026-11-20T12:30:00Z");
    std::vector<std::string> order;
    for (const json& session : document["sessions"]) {
        order.push_back(session["id"]);
        const recording::StudySession stored =
            store_->loadSession(*Uuid::parse(session["id"].get<std::string>()))->value();
        SCOPED_TRACE(stored.subject);
        const recording::SessionRuns runs = recording::sessionRuns(stored);
        EXPECT_EQ(session["longestFocusBlock"].get<double>(), runs.longestFocusedRun);
        EXPECT_EQ(session["meaningfulInterruptions"].get<int>(), runs.meaningfulInterruptions);
        EXPECT_EQ(session["totalConfirmedStudyDuration"].get<double>(),
                  recording::studyTime(stored));
        ASSERT_EQ(session["segments"].size(), stored.segments.size());
        for (std::size_t index = 0; index < stored.segments.size(); ++index) {
            EXPECT_EQ(session["segments"][index]["startDate"],
                      formatIso8601(stored.segments[index].startDate));
            EXPECT_EQ(session["segments"][index]["applicationDisplayName"],
                      stored.segments[index].applicationName);
        }
    }
    EXPECT_EQ(order, idsOf({3, 1, 2, 4}));
    // Session 3's tie: the smaller id first; its alternating stretches have
    // interruptions to count, so the comparison above means something.
    EXPECT_EQ(document["sessions"][0]["segments"][0]["applicationDisplayName"], "Files");
    EXPECT_GT(document["sessions"][0]["meaningfulInterruptions"].get<int>(), 0);
    // The session that was never finished has neither end nor score.
    const json& unfinished = document["sessions"][3];
    EXPECT_FALSE(unfinished.contains("endDate"));
    EXPECT_FALSE(unfinished.contains("focusScore"));
    EXPECT_EQ(unfinished["segments"], json::array());
}

TEST_F(DataExportServiceTest, TheSegmentTableWalksSegmentsInTheSameOrderAsOneSessionsTable) {
    storeHistory();
    const auto all = exportedTable({.format = ExportFormat::csv, .table = ExportTable::segments});
    ASSERT_EQ(all.size(), 1u + 10u);
    std::vector<std::string> owners;
    for (std::size_t row = 1; row < all.size(); ++row) {
        ASSERT_EQ(all[row].size(), kSegmentTableColumns.size());
        if (owners.empty() || owners.back() != all[row][1]) {
            owners.push_back(all[row][1]);
        }
    }
    EXPECT_EQ(owners, idsOf({3, 1, 2}));  // session 4 has no segments

    // One session's table, read through loadSession, holds the same rows.
    const auto one = exportedTable(
        {.format = ExportFormat::csv, .table = ExportTable::segments, .session = uuidNumbered(3)});
    ASSERT_EQ(one.size(), 1u + 5u);
    for (std::size_t row = 0; row < one.size(); ++row) {
        EXPECT_EQ(one[row], all[row]);
    }
}

TEST_F(DataExportServiceTest, TheSessionTableHasOneRowPerSessionWithItsUnconfirmedNoInputTime) {
    storeHistory();
    const auto table = exportedTable({.format = ExportFormat::csv});
    ASSERT_EQ(table.size(), 1u + 4u);
    for (std::size_t row = 1; row < table.size(); ++row) {
        ASSERT_EQ(table[row].size(), kSessionTableColumns.size());
    }
    const recording::StudySession stored = store_->loadSession(uuidNumbered(1))->value();
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.3f", recording::unconfirmedNoInputTime(stored));
    EXPECT_EQ(table[2][1], uuidNumbered(1).upperString());
    EXPECT_EQ(table[2][22], expected);
    EXPECT_EQ(table[4][7], "");  // session 4 has no end
}

TEST_F(DataExportServiceTest, OneSessionOrAnUnknownOne) {
    storeHistory();
    const json one =
        json::parse(exported({.format = ExportFormat::json, .session = uuidNumbered(2)}));
    ASSERT_EQ(one["sessions"].size(), 1u);
    EXPECT_EQ(one["sessions"][0]["id"], uuidNumbered(2).upperString());

    StringSink sink;
    const auto missing = exportTo(sink, {.format = ExportFormat::ics, .session = uuidNumbered(99)});
    ASSERT_FALSE(missing.ok());
    EXPECT_EQ(missing.error().failure, ExportFailure::sessionNotFound);
    EXPECT_EQ(missing.error().message(), "The session to export is no longer in the history.");
}

TEST_F(DataExportServiceTest, AChosenSetOfSessionsInEveryFormat) {
    storeHistory();
    const std::vector<Uuid> chosen{uuidNumbered(3), uuidNumbered(99), uuidNumbered(2)};
    const json document = json::parse(exported({.format = ExportFormat::json, .sessions = chosen}));
    std::vector<std::string> order;
    for (const json& session : document["sessions"]) {
        order.push_back(session["id"]);
    }
    // In the order given; the id of no stored session is passed over.
    EXPECT_EQ(order, idsOf({3, 2}));
    const auto rows = exportedTable({.format = ExportFormat::csv, .sessions = chosen});
    ASSERT_EQ(rows.size(), 1u + 2u);
    EXPECT_EQ(rows[2][1], uuidNumbered(2).upperString());
    const auto segments = exportedTable(
        {.format = ExportFormat::csv, .table = ExportTable::segments, .sessions = chosen});
    ASSERT_EQ(segments.size(), 1u + 5u + 3u);
    EXPECT_EQ(segments.back()[1], uuidNumbered(2).upperString());
    // Nothing chosen writes an empty document, not the whole history.
    const json none =
        json::parse(exported({.format = ExportFormat::json, .sessions = std::vector<Uuid>{}}));
    EXPECT_TRUE(none["sessions"].empty());
    EXPECT_EQ(defaultExportFileName({.format = ExportFormat::json, .sessions = chosen}),
              "Lumenote Sessions.json");
}

TEST_F(DataExportServiceTest, ProgressCountsEverySessionVisitedOnce) {
    storeHistory();
    for (const ExportRequest& request :
         {ExportRequest{.format = ExportFormat::json}, ExportRequest{.format = ExportFormat::ics},
          ExportRequest{.format = ExportFormat::csv, .table = ExportTable::segments}}) {
        std::vector<std::size_t> reported;
        StringSink sink;
        const auto written =
            exportTo(sink, request, [&](std::size_t done) { reported.push_back(done); });
        ASSERT_TRUE(written.ok());
        const std::vector<std::size_t> expected = request.format == ExportFormat::csv
                                                      ? std::vector<std::size_t>{1, 2, 3}
                                                      // the sessions with segments
                                                      : std::vector<std::size_t>{1, 2, 3, 4};
        EXPECT_EQ(reported, expected);
    }
}

TEST_F(DataExportServiceTest, AFailingDestinationStopsTheExportEarlyWithItsReason) {
    // Enough sessions for several blocks of output.
    for (std::uint8_t number = 1; number <= 60; ++number) {
        storeSession(number, 10000.0 * number, 100, 0);
    }
    std::size_t visited = 0;
    StringSink failing(1);
    const auto written = exportTo(failing, {.format = ExportFormat::json},
                                  [&](std::size_t done) { visited = done; });
    ASSERT_FALSE(written.ok());
    EXPECT_EQ(written.error().message(),
              "Lumenote could not write the export (No space left on device).");
    EXPECT_LT(visited, 60u);
    EXPECT_EQ(failing.writes, 1u);
}

}  // namespace
}  // namespace lumenote::portability
