#include "portability/export_model.hpp"

#include <limits>

#include <gtest/gtest.h>

#include "recording/session_figures.hpp"
#include "recording/study_time.hpp"

namespace lumenote::portability {
namespace {

using classification::ActivityClassification;
using recording::ActivitySegment;
using recording::StudySession;

const Date kStart = *parseIso8601("2026-11-16T08:00:00Z");

// A finished v3 session: 10 min Focused, 2 min Distracting, 10 min Focused,
// with a confirmed passive-study stretch; totals as the recorder stores them.
StudySession finishedSession() {
    StudySession session(Uuid::generate(), "Physik", "Blatt 3", 1800, kStart);
    session.endDate = kStart.addingSeconds(1320);
    session.setStatus(recording::StudySessionStatus::completed);
    session.setTimingMode(recording::SessionTimingMode::timer);
    session.timerDuration = 1320;
    const struct {
        double seconds;
        ActivityClassification classification;
    } steps[] = {{600, ActivityClassification::focused},
                 {120, ActivityClassification::distracting},
                 {600, ActivityClassification::focused}};
    Date cursor = kStart;
    for (const auto& step : steps) {
        session.segments.emplace_back(Uuid::generate(), cursor, cursor.addingSeconds(step.seconds),
                                      step.seconds, "Text Editor", "org.gnome.TextEditor",
                                      step.classification, false);
        cursor = cursor.addingSeconds(step.seconds);
    }
    session.setCalculationVersion(recording::TrackingCalculationVersion::v3);
    session.focusedDuration = 1200;
    session.distractedDuration = 120;
    session.inactiveDuration = 300;
    session.setPassiveStudyDuration(200);
    session.setConfirmedBreakDuration(40);
    session.focusScore = 1200.0 / 1320.0 * 100.0;
    return session;
}

TEST(ExportModelTest, TheSessionCarriesTheFiguresTheRestOfTheSystemShows) {
    const StudySession stored = finishedSession();
    const ExportSession exported = makeExportSession(stored, ExportContent::segmentsAndRuns);
    const recording::SessionRuns runs = recording::sessionRuns(stored);
    EXPECT_EQ(exported.longestFocusBlock, runs.longestFocusedRun);
    EXPECT_EQ(exported.meaningfulInterruptions, runs.meaningfulInterruptions);
    EXPECT_EQ(exported.longestFocusBlock, 600);
    EXPECT_EQ(exported.meaningfulInterruptions, 1);
    EXPECT_EQ(exported.totalConfirmedStudyDuration, recording::studyTime(stored));
    EXPECT_EQ(exported.totalConfirmedStudyDuration, 1200 + 120 + 200);
    EXPECT_EQ(exported.focusScore, stored.focusScore);
    EXPECT_EQ(exported.plannedDuration, 1800);
    EXPECT_EQ(exported.status, "completed");
    EXPECT_EQ(exported.timingMode, "timer");
    EXPECT_EQ(exported.studyMode, "computerBased");
    EXPECT_EQ(exported.notes, "");
    ASSERT_EQ(exported.segments.size(), 3u);
    EXPECT_EQ(exported.segments[1].classification, "distracting");
    const ExportSession withRuns = makeExportSession(stored, ExportContent::runs);
    EXPECT_TRUE(withRuns.segments.empty());
    EXPECT_EQ(withRuns.longestFocusBlock, 600);
    const ExportSession fieldsOnly = makeExportSession(stored, ExportContent::fieldsOnly);
    EXPECT_EQ(fieldsOnly.longestFocusBlock, 0);
    EXPECT_EQ(fieldsOnly.focusScore, stored.focusScore);
}

TEST(ExportModelTest, OptionalFieldsFollowTheSessionsState) {
    StudySession running = finishedSession();
    running.endDate.reset();
    running.setStatus(recording::StudySessionStatus::running);
    running.setTimingMode(recording::SessionTimingMode::openEnded);
    running.setNotes("notes");
    const ExportSession exported = makeExportSession(running, ExportContent::runs);
    EXPECT_FALSE(exported.endDate);
    EXPECT_FALSE(exported.plannedDuration);
    EXPECT_EQ(exported.timingMode, "open_ended");
    EXPECT_EQ(exported.notes, "notes");

    // A record from before timing modes read as a timer session.
    StudySession older = finishedSession();
    older.timingModeStorage.reset();
    older.statusRawValue = "archived";  // a status of a later release
    const ExportSession olderExported = makeExportSession(older, ExportContent::runs);
    EXPECT_EQ(olderExported.plannedDuration, 1800);
    EXPECT_EQ(olderExported.status, "completed");  // it has an end date
}

TEST(ExportModelTest, TheScoreIsExportedOnlyWhereItMayBeShown) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        double focused;
        double distracted;
        std::optional<double> stored;
        std::optional<double> exported;
    } cases[] = {
        {"59 s of evidence: none, whatever was stored", 59, 0, 100.0, std::nullopt},
        {"60 s of evidence", 60, 0, 100.0, 100.0},
        {"none stored", 600, 600, std::nullopt, std::nullopt},
        {"above 100 is clamped", 600, 0, 150.0, 100.0},
        {"below 0 is clamped", 600, 0, -3.0, 0.0},
        {"not a number is none", 600, 0, nan, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        StudySession session = finishedSession();
        session.focusedDuration = c.focused;
        session.distractedDuration = c.distracted;
        session.focusScore = c.stored;
        EXPECT_EQ(makeExportSession(session, ExportContent::runs).focusScore, c.exported);
    }
}

TEST(ExportModelTest, ABrowserIsNamedOnlyForActivityABrowserSupplied) {
    ActivitySegment application(Uuid::generate(), kStart, kStart.addingSeconds(5), 5, "Files",
                                "org.gnome.Nautilus", ActivityClassification::neutral, true);
    ActivitySegment website = application;
    website.applicationName = "Firefox";
    website.setActivitySource(recording::ActivitySourceType::website);
    website.browserBundleIdentifier = "org.mozilla.firefox";
    website.hostname = "example.org";
    ActivitySegment pdf = website;
    pdf.setActivitySource(recording::ActivitySourceType::localPDF);
    pdf.hostname.reset();
    pdf.setPdfDisplayLabel("Skript.pdf");
    ActivitySegment older = application;
    older.activitySourceRawValue = "hologram";  // a source of a later release

    const ExportSegment fromApplication = makeExportSegment(application);
    EXPECT_EQ(fromApplication.resourceType, "application");
    EXPECT_EQ(fromApplication.applicationDisplayName, "Files");
    EXPECT_FALSE(fromApplication.browserDisplayName);
    EXPECT_FALSE(fromApplication.hostname);
    EXPECT_FALSE(fromApplication.pdfLabel);
    EXPECT_TRUE(fromApplication.inactive);

    const ExportSegment fromWebsite = makeExportSegment(website);
    EXPECT_EQ(fromWebsite.resourceType, "website");
    EXPECT_EQ(fromWebsite.browserDisplayName, "Firefox");
    EXPECT_EQ(fromWebsite.hostname, "example.org");

    const ExportSegment fromPdf = makeExportSegment(pdf);
    EXPECT_EQ(fromPdf.resourceType, "localPDF");
    EXPECT_EQ(fromPdf.pdfLabel, "Skript.pdf");
    EXPECT_FALSE(fromPdf.hostname);

    EXPECT_EQ(makeExportSegment(older).resourceType, "application");
}

}  // namespace
}  // namespace lumenote::portability
