// The export's model: TallywiseExportDocument, ExportSession and
// ExportSegment, and their builders from stored records.
//
// Every figure is the one the rest of the system shows for the session:
// its stored totals (which the recorder computes under the session's own
// calculation version and keeps up to date), the study time and its parts of
// study_time.hpp, the runs of session_figures.hpp read from its calculation
// under its own version, and the focus score only where it may be shown
// (from one minute of evidence; clamped to 0 ... 100, a score that is not a
// finite number is absent). Values are taken as stored: the formats apply
// their own rules (the seconds and timestamp rules of export_values.hpp)
// when they write them.
//
// The model views the records it was built from: its texts are views of the
// records' own (and of the enumerations' constant raw values), so that
// building the model of millions of segments copies no text. A built value
// must not outlive the records it was built from; an export builds, writes
// and drops each one while its records are lent to it.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::portability {

// The layout version of every export, written into the JSON document and as
// the first cell of every CSV row.
inline constexpr int kExportFormatVersion = 1;

// One activity segment.
struct ExportSegment {
    Date startDate;
    Date endDate;
    double duration = 0.0;  // measured seconds
    // The raw value of the segment's source: "application", "website",
    // "localPDF", "browserFallback" or "system".
    std::string_view resourceType;
    std::string_view applicationDisplayName;
    // The name the desktop gave the frontmost application while a browser
    // supplied the activity (a website, a PDF, or a browser without a usable
    // event): such a stretch is recorded only while that browser is
    // frontmost. Absent for every other segment.
    std::optional<std::string_view> browserDisplayName;
    std::optional<std::string_view> hostname;
    std::optional<std::string_view> pdfLabel;
    std::string_view classification;  // raw value
    bool inactive = false;
};

// One session, its 24 fields in the order of the session's description.
struct ExportSession {
    Uuid id;
    std::string_view subject;
    std::string_view goal;
    std::string_view notes;                 // "" when the session has none
    std::optional<double> plannedDuration;  // seconds; absent for open-ended sessions
    Date startDate;
    std::optional<Date> endDate;  // absent while the session is running or paused
    std::string_view status;      // raw value
    double timerDuration = 0.0;   // seconds, here and below
    double focusedDuration = 0.0;
    double distractedDuration = 0.0;
    double neutralDuration = 0.0;
    double unclassifiedDuration = 0.0;
    double ignoredDuration = 0.0;
    double inactiveDuration = 0.0;
    std::string_view studyMode;  // raw value
    double passiveStudyDuration = 0.0;
    double confirmedBreakDuration = 0.0;
    std::string_view timingMode;               // raw value
    double totalConfirmedStudyDuration = 0.0;  // the study time
    std::optional<double> focusScore;          // percentage 0 ... 100, unrounded
    double longestFocusBlock = 0.0;
    int meaningfulInterruptions = 0;
    std::vector<ExportSegment> segments;  // in start order, then id order
};

// The root of the JSON document. Its sessions are not held here: the writer
// is given them one at a time, so that an export of years of history holds
// one session in memory.
struct TallywiseExportDocument {
    int formatVersion = kExportFormatVersion;
    Date exportedAt;
};

ExportSegment makeExportSegment(const recording::ActivitySegment& segment);

// What a built session carries beyond its own fields and stored figures.
enum class ExportContent {
    // Its segments and its runs (the JSON document).
    segmentsAndRuns,
    // Its runs (the session table).
    runs,
    // Neither (the calendar, which shows no runs): the runs stay 0 and the
    // session need not hold its children, so that a walk can skip them.
    fieldsOnly,
};

// The session's fields and figures. For the runs, `session` must hold its
// segments and confirmations (a walk with children, or loadSession): they
// are read from them.
ExportSession makeExportSession(const recording::StudySession& session, ExportContent content);

}  // namespace lumenote::portability
