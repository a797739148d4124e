#include "portability/csv_export_writer.hpp"

#include <limits>

#include <gtest/gtest.h>

#include "export_test_support.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::portability {
namespace {

using testing::readCsvWithPython;
using testing::writtenBy;
using Rows = std::vector<std::vector<std::string>>;

const Date kStart = *parseIso8601("2026-11-16T08:00:00Z");
const Uuid kSessionId = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");

// Texts that break naive CSV: separators, quotes, every line break, edge
// white space, non-ASCII text and nothing at all.
const std::vector<std::string> kHostileTexts{
    "plain",
    "comma, inside",
    "say \"hi\"",
    "\"",
    "\"\"",
    "line\nbreak",
    "carriage\rreturn",
    "windows\r\nline",
    "\r\n",
    "  leading spaces",
    "trailing spaces  ",
    "\ttab first",
    " ",
    "Übung — 日本語 😀",
    "",
    "a,\"b\"\r\n c ",
    "=SUM(A1:A2)",
};

ExportSession sessionWithTexts(std::string_view subject, std::string_view goal,
                               std::string_view notes) {
    ExportSession session;
    session.id = kSessionId;
    session.subject = subject;
    session.goal = goal;
    session.notes = notes;
    session.plannedDuration = 1500;
    session.startDate = kStart;
    session.endDate = kStart.addingSeconds(1500);
    session.status = "completed";
    session.timerDuration = 1500;
    session.focusedDuration = 1000.25;
    session.distractedDuration = 200.0005;
    session.neutralDuration = 100;
    session.unclassifiedDuration = 50;
    session.ignoredDuration = 5;
    session.inactiveDuration = 40;
    session.studyMode = "computerBased";
    session.timingMode = "timer";
    session.totalConfirmedStudyDuration = 1350.25;
    session.focusScore = 83.33333333333333;
    session.longestFocusBlock = 600;
    session.meaningfulInterruptions = 3;
    return session;
}

ExportSegment segmentWithTexts(std::string_view application, std::string_view browser,
                               std::string_view hostname, std::string_view pdfLabel) {
    ExportSegment segment;
    segment.startDate = kStart;
    segment.endDate = kStart.addingSeconds(60);
    segment.duration = 59.75;
    segment.resourceType = "website";
    segment.applicationDisplayName = application;
    segment.browserDisplayName = browser;
    segment.hostname = hostname;
    segment.pdfLabel = pdfLabel;
    segment.classification = "distracting";
    return segment;
}

class CsvExportWriterTest : public ::testing::Test {
  protected:
    // The table `write` produces, as Python's csv module reads it back.
    template <typename Write>
    Rows readBack(Write write) {
        const std::string text = writtenBy([&](ExportOutput& output) {
            CsvExportWriter writer(output);
            write(writer);
        });
        const auto file = home_.root() / "table.csv";
        lumenote::testing::writeFile(file, text);
        return readCsvWithPython(file);
    }

    lumenote::testing::TemporaryHome home_;
};

TEST_F(CsvExportWriterTest, HostileSessionTextsComeBackCellForCellInRowsOf25) {
    const Rows rows = readBack([](CsvExportWriter& writer) {
        writer.writeSessionHeader();
        for (std::size_t i = 0; i < kHostileTexts.size(); ++i) {
            // Each text in each text column, next to the others.
            writer.writeSessionRow(
                sessionWithTexts(kHostileTexts[i], kHostileTexts[(i + 1) % kHostileTexts.size()],
                                 kHostileTexts[(i + 2) % kHostileTexts.size()]),
                40);
        }
    });
    ASSERT_EQ(rows.size(), kHostileTexts.size() + 1);
    EXPECT_EQ(rows[0],
              std::vector<std::string>(kSessionTableColumns.begin(), kSessionTableColumns.end()));
    for (std::size_t i = 0; i < kHostileTexts.size(); ++i) {
        SCOPED_TRACE(kHostileTexts[i]);
        const std::vector<std::string>& row = rows[i + 1];
        ASSERT_EQ(row.size(), 25u);
        EXPECT_EQ(row[2], kHostileTexts[i]);
        EXPECT_EQ(row[3], kHostileTexts[(i + 1) % kHostileTexts.size()]);
        EXPECT_EQ(row[4], kHostileTexts[(i + 2) % kHostileTexts.size()]);
    }
    const std::vector<std::string> expected{"1",
                                            "E621E1F8-C36C-495A-93FC-0C247A3E6E5F",
                                            "plain",
                                            "comma, inside",
                                            "say \"hi\"",
                                            "1500.000",
                                            "2026-11-16T08:00:00Z",
                                            "2026-11-16T08:25:00Z",
                                            "completed",
                                            "1500.000",
                                            "1000.250",
                                            "200.000",
                                            "100.000",
                                            "50.000",
                                            "5.000",
                                            "40.000",
                                            "83.333",
                                            "600.000",
                                            "3",
                                            "computerBased",
                                            "0.000",
                                            "0.000",
                                            "40.000",
                                            "1350.250",
                                            "timer"};
    EXPECT_EQ(rows[1], expected);
}

TEST_F(CsvExportWriterTest, HostileSegmentTextsComeBackCellForCellInRowsOf12) {
    const Rows rows = readBack([](CsvExportWriter& writer) {
        writer.writeSegmentHeader();
        const std::size_t n = kHostileTexts.size();
        for (std::size_t i = 0; i < n; ++i) {
            writer.writeSegmentRow(
                kSessionId,
                segmentWithTexts(kHostileTexts[i], kHostileTexts[(i + 1) % n],
                                 kHostileTexts[(i + 2) % n], kHostileTexts[(i + 3) % n]));
        }
    });
    const std::size_t n = kHostileTexts.size();
    ASSERT_EQ(rows.size(), n + 1);
    EXPECT_EQ(rows[0],
              std::vector<std::string>(kSegmentTableColumns.begin(), kSegmentTableColumns.end()));
    for (std::size_t i = 0; i < n; ++i) {
        SCOPED_TRACE(kHostileTexts[i]);
        const std::vector<std::string>& row = rows[i + 1];
        ASSERT_EQ(row.size(), 12u);
        EXPECT_EQ(row[6], kHostileTexts[i]);
        EXPECT_EQ(row[7], kHostileTexts[(i + 1) % n]);
        EXPECT_EQ(row[8], kHostileTexts[(i + 2) % n]);
        EXPECT_EQ(row[9], kHostileTexts[(i + 3) % n]);
    }
}

TEST_F(CsvExportWriterTest, AbsentValuesAreEmptyCellsAndBadDurationsZero) {
    ExportSession session = sessionWithTexts("s", "", "");
    session.plannedDuration.reset();
    session.endDate.reset();
    session.focusScore.reset();
    session.timerDuration = std::numeric_limits<double>::quiet_NaN();
    session.focusedDuration = -30;
    session.neutralDuration = -std::numeric_limits<double>::infinity();
    ExportSegment segment = segmentWithTexts("Text Editor", "", "", "");
    segment.browserDisplayName.reset();
    segment.hostname.reset();
    segment.pdfLabel.reset();
    segment.duration = std::numeric_limits<double>::quiet_NaN();
    segment.inactive = true;

    const Rows rows = readBack([&](CsvExportWriter& writer) {
        writer.writeSessionRow(session, -1);
        writer.writeSegmentRow(kSessionId, segment);
    });
    ASSERT_EQ(rows.size(), 2u);
    ASSERT_EQ(rows[0].size(), 25u);
    EXPECT_EQ(rows[0][5], "");   // planned_seconds
    EXPECT_EQ(rows[0][7], "");   // end
    EXPECT_EQ(rows[0][16], "");  // focus_score
    EXPECT_EQ(rows[0][9], "0.000");
    EXPECT_EQ(rows[0][10], "0.000");
    EXPECT_EQ(rows[0][12], "0.000");
    EXPECT_EQ(rows[0][22], "0.000");  // unconfirmed_no_input_seconds
    ASSERT_EQ(rows[1].size(), 12u);
    EXPECT_EQ(rows[1][4], "0.000");
    EXPECT_EQ(rows[1][7], "");
    EXPECT_EQ(rows[1][8], "");
    EXPECT_EQ(rows[1][9], "");
    EXPECT_EQ(rows[1][11], "true");
}

TEST_F(CsvExportWriterTest, RowsEndWithCrLfAndOnlyCellsThatNeedQuotesGetThem) {
    const std::string text = writtenBy([](ExportOutput& output) {
        CsvExportWriter writer(output);
        writer.writeSegmentRow(kSessionId, segmentWithTexts("a b", " x", "y\"z", "p,q"));
    });
    EXPECT_EQ(text,
              "1,E621E1F8-C36C-495A-93FC-0C247A3E6E5F,2026-11-16T08:00:00Z,"
              "2026-11-16T08:01:00Z,59.750,website,a b,\" x\",\"y\"\"z\",\"p,q\",distracting,"
              "false\r\n");
}

}  // namespace
}  // namespace lumenote::portability
