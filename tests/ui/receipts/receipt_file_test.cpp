#include "ui/receipts/receipt_file.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QColor>
#include <QImage>
#include <cstdlib>
#include <filesystem>

#include "support/permission_checks.hpp"
#include "support/run_program.hpp"
#include "support/temporary_home.hpp"
#include "ui/design/palette.hpp"
#include "ui/models/receipt_test_sessions.hpp"
#include "ui/receipts/receipt_painting.hpp"

namespace lumenote::ui::receipts {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using namespace models::testing;

models::SessionReceipt sessionReceipt(models::ReceiptOptions options) {
    const auto session = finishedSession({
        appSegment(0, 2400, "Text Editor", ActivityClassification::focused),
        siteSegment(2400, 600, "en.wikipedia.org", ActivityClassification::focused),
        siteSegment(3000, 420, "video.example", ActivityClassification::distracting),
        appSegment(3420, 180, "Files", ActivityClassification::neutral),
    });
    return models::makeSessionReceipt(session,
                                      {{recording::PersonalBestKind::longestFocus, 3000.0}},
                                      options, LocalCalendar::utc());
}

models::WeeklyReceipt weeklyReceipt() {
    insights::WeeklyFigures figures;
    const auto utc = LocalCalendar::utc();
    figures.period = insights::weekContaining(at("2026-11-25T12:00:00Z"), utc, 1);
    const double perDay[] = {5400, 3600, 0, 7260, 2700, 1500, 0};
    for (int day = 0; day < 7; ++day) {
        figures.days[static_cast<std::size_t>(day)] = {
            .start = figures.period.dayStarts[static_cast<std::size_t>(day)],
            .weekday = static_cast<unsigned>((day + 1) % 7),
            .sessions = perDay[day] > 0 ? 1 : 0,
            .studyTime = perDay[day]};
    }
    figures.sessions = 5;
    figures.studyTime = 20460;
    figures.focused = 14000;
    figures.distracted = 2600;
    figures.neutral = 2900;
    figures.unclassified = 960;
    figures.focusScore = 84.3;
    figures.subjects = {{"Organic chemistry", 12000}, {"Linear algebra", 6000}, {"History", 2460}};
    figures.topFocused = {
        {"Text Editor", 9000}, {"en.wikipedia.org", 3000}, {"Lecture notes", 2000}};
    figures.topDistracting = {{"video.example", 2000}, {"news.example", 600}};
    return models::makeWeeklyReceipt(figures, 4, {}, utc);
}

class ReceiptFileTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::unsetenv("DISPLAY");
    }

    fs::path file(const char* name) const { return home_.root() / name; }

    // The text pdftotext reads from `pdf`, bounded in time.
    static std::string pdfText(const fs::path& pdf) {
        const auto run = lumenote::testing::runProgram({"pdftotext", pdf.string(), "-"}, 30);
        EXPECT_EQ(run.exitStatus, 0) << run.output;
        return run.output;
    }

    lumenote::testing::TemporaryHome home_;
};

TEST_F(ReceiptFileTest, PngHasTheReceiptSizeAndTheClassColours) {
    const fs::path png = file("session.png");
    ASSERT_TRUE(writeSessionReceipt(sessionReceipt({}), png, ReceiptFormat::png).ok());
    const QImage image(QString::fromStdString(png.string()));
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.width(), kReceiptImageWidth);
    EXPECT_EQ(image.height(), kReceiptImageHeight);
    // The split bar is drawn in the strong class colours; a picture without
    // the Focused colour lost its bar.
    const QRgb focused =
        design::classificationFill(classification::ActivityClassification::focused, false).rgb();
    bool sawFocused = false;
    for (int y = 0; y < image.height() && !sawFocused; y += 2) {
        for (int x = 0; x < image.width() && !sawFocused; x += 2) {
            sawFocused = image.pixel(x, y) == focused;
        }
    }
    EXPECT_TRUE(sawFocused);
    EXPECT_EQ(image.pixel(0, 0), qRgb(255, 255, 255));
}

TEST_F(ReceiptFileTest, PdfOpensAndShowsTheGoalOnlyWhenAsked) {
    const fs::path withGoal = file("with goal.pdf");
    const fs::path withoutGoal = file("without goal.pdf");
    ASSERT_TRUE(
        writeSessionReceipt(sessionReceipt({.includeGoal = true}), withGoal, ReceiptFormat::pdf)
            .ok());
    ASSERT_TRUE(
        writeSessionReceipt(sessionReceipt({.includeGoal = false}), withoutGoal, ReceiptFormat::pdf)
            .ok());

    const auto rendered =
        lumenote::testing::runProgram({"pdftoppm", "-png", "-r", "50", "-singlefile",
                                       withoutGoal.string(), file("page").string()},
                                      30);
    ASSERT_EQ(rendered.exitStatus, 0) << rendered.output;
    EXPECT_FALSE(QImage(QString::fromStdString(file("page.png").string())).isNull());

    EXPECT_THAT(pdfText(withGoal), HasSubstr("Finish chapter 4"));
    const std::string text = pdfText(withoutGoal);
    EXPECT_THAT(text, HasSubstr("Organic chemistry"));
    EXPECT_THAT(text, HasSubstr("en.wikipedia.org"));
    EXPECT_THAT(text, Not(HasSubstr("Finish chapter 4")));
    EXPECT_THAT(text, Not(HasSubstr("09:00")));
}

TEST_F(ReceiptFileTest, LongSubjectIsElidedNotCutOrWrapped) {
    auto receipt = sessionReceipt({});
    receipt.subject = "Introduction to thermodynamics and statistical mechanics, week 7";
    const fs::path pdf = file("long.pdf");
    ASSERT_TRUE(writeSessionReceipt(receipt, pdf, ReceiptFormat::pdf).ok());
    const std::string text = pdfText(pdf);
    EXPECT_THAT(text, HasSubstr("Introduction to"));
    EXPECT_THAT(text, HasSubstr("…"));
    EXPECT_THAT(text, Not(HasSubstr("week 7")));
}

TEST_F(ReceiptFileTest, WeeklyPdfIsOnePage) {
    const fs::path pdf = file("week.pdf");
    ASSERT_TRUE(writeWeeklyReceipt(weeklyReceipt(), pdf, ReceiptFormat::pdf).ok());
    const auto info = lumenote::testing::runProgram({"pdfinfo", pdf.string()}, 30);
    ASSERT_EQ(info.exitStatus, 0) << info.output;
    EXPECT_THAT(info.output, ::testing::ContainsRegex("Pages: +1\n"));
    EXPECT_THAT(pdfText(pdf), HasSubstr("23 – 29 November 2026"));
}

TEST_F(ReceiptFileTest, ReadOnlyFolderFailsWithTheSentenceAndLeavesNothing) {
    const fs::path folder = home_.root() / "read-only";
    fs::create_directories(folder);
    ::chmod(folder.c_str(), 0500);
    const lumenote::testing::PermissionChecksEnforced enforced;
    const auto written =
        writeSessionReceipt(sessionReceipt({}), folder / "receipt.png", ReceiptFormat::png);
    ASSERT_FALSE(written.ok());
    EXPECT_EQ(written.error().message(), "The receipt could not be saved (the file " +
                                             (folder / "receipt.png").string() +
                                             " could not be written).");
    EXPECT_TRUE(lumenote::testing::namesIn(folder).empty());
}

TEST_F(ReceiptFileTest, FolderAsDestinationIsRefusedAndKeptAsItIs) {
    const fs::path folder = home_.root() / "Receipts";
    fs::create_directories(folder);
    const auto written = writeWeeklyReceipt(weeklyReceipt(), folder, ReceiptFormat::pdf);
    ASSERT_FALSE(written.ok());
    EXPECT_EQ(written.error().failure, ReceiptFileFailure::destinationIsFolder);
    EXPECT_EQ(written.error().message(),
              "The receipt could not be saved (" + folder.string() + " is a folder).");
    EXPECT_TRUE(fs::is_directory(folder));
    EXPECT_TRUE(lumenote::testing::namesIn(folder).empty());
}

TEST_F(ReceiptFileTest, ExistingFileIsReplacedWhole) {
    const fs::path png = file("receipt.png");
    lumenote::testing::writeFile(png, "not a picture");
    ASSERT_TRUE(writeSessionReceipt(sessionReceipt({}), png, ReceiptFormat::png).ok());
    EXPECT_FALSE(QImage(QString::fromStdString(png.string())).isNull());
    EXPECT_EQ(lumenote::testing::namesIn(home_.root()).count("receipt.png"), 1u);
    EXPECT_TRUE(lumenote::testing::filesContaining(home_.root(), ".temporary").empty());
}

// Not a check of its own: the pictures a reviewer opens to judge the
// receipts as a student sees them, a long subject included.
TEST_F(ReceiptFileTest, WritesThePicturesForReview) {
    const fs::path folder = fs::path(LUMENOTE_BINARY_DIR) / "screenshots" / "receipts";
    fs::create_directories(folder);
    auto everything = sessionReceipt({.includeGoal = true, .includeExactTimes = true});
    ASSERT_TRUE(writeSessionReceipt(everything, folder / "session.png", ReceiptFormat::png).ok());
    auto longSubject = sessionReceipt({});
    longSubject.subject =
        "Introduction to thermodynamics and statistical mechanics for engineers, week 7";
    ASSERT_TRUE(
        writeSessionReceipt(longSubject, folder / "session-long.png", ReceiptFormat::png).ok());
    const auto empty = models::makeSessionReceipt(
        finishedSession({appSegment(0, 3600, "Editor", ActivityClassification::focused, true)}), {},
        {}, LocalCalendar::utc());
    ASSERT_TRUE(
        writeSessionReceipt(empty, folder / "session-no-input.png", ReceiptFormat::png).ok());
    auto crowded = sessionReceipt({.includeGoal = true, .includeExactTimes = true});
    crowded.goal =
        "Work through every exercise of chapter 4 and write up the two proofs that "
        "were left open in the lecture";
    crowded.topActivities.push_back(
        models::receiptLine("A very long window name of an "
                            "application that goes on and on",
                            61.0));
    crowded.personalBests = {"Daily goal complete: 2 h 00 min", "New longest focus: 50 min",
                             "New highest focus score: 88%", "New longest session: 1 h 00 min"};
    ASSERT_TRUE(
        writeSessionReceipt(crowded, folder / "session-crowded.png", ReceiptFormat::png).ok());
    const auto utc = LocalCalendar::utc();
    insights::WeeklyFigures emptyWeek;
    emptyWeek.period = insights::weekContaining(at("2026-11-25T12:00:00Z"), utc, 1);
    for (std::size_t day = 0; day < emptyWeek.days.size(); ++day) {
        emptyWeek.days[day] = {.start = emptyWeek.period.dayStarts[day],
                               .weekday = static_cast<unsigned>((day + 1) % 7)};
    }
    ASSERT_TRUE(writeWeeklyReceipt(models::makeWeeklyReceipt(emptyWeek, std::nullopt, {}, utc),
                                   folder / "week-empty.png", ReceiptFormat::png)
                    .ok());
    ASSERT_TRUE(writeWeeklyReceipt(weeklyReceipt(), folder / "week.png", ReceiptFormat::png).ok());
    ASSERT_TRUE(writeWeeklyReceipt(weeklyReceipt(), folder / "week.pdf", ReceiptFormat::pdf).ok());
    const auto rendered = lumenote::testing::runProgram(
        {"pdftoppm", "-png", "-r", "50", "-singlefile", (folder / "week.pdf").string(),
         (folder / "week-pdf-page").string()},
        30);
    EXPECT_EQ(rendered.exitStatus, 0) << rendered.output;
}

}  // namespace
}  // namespace lumenote::ui::receipts

namespace lumenote::ui::receipts {
namespace {

TEST(ReceiptTargetTest, TheNameDecidesTheFormatAndAPictureGetsItsExtension) {
    EXPECT_EQ(receiptTarget("week.pdf").format, ReceiptFormat::pdf);
    EXPECT_EQ(receiptTarget("week.pdf").path, "week.pdf");
    EXPECT_EQ(receiptTarget("week.png").path, "week.png");
    EXPECT_EQ(receiptTarget("week").path, "week.png");
    EXPECT_EQ(receiptTarget("week").format, ReceiptFormat::png);
    // Another extension is kept and the picture's added after it.
    EXPECT_EQ(receiptTarget("notes.txt").path, "notes.txt.png");
    EXPECT_EQ(receiptTarget("Week.PDF").format, ReceiptFormat::pdf);
    EXPECT_EQ(receiptTarget("Week.PNG").path, "Week.PNG");
}

}  // namespace
}  // namespace lumenote::ui::receipts
