#include "cli/session_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "foundation/numeric.hpp"
#include "foundation/text.hpp"
#include "recording/focus_score_text.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/study_time.hpp"

namespace lumenote::cli {

namespace {

namespace Tracking = recording::TrackingCalculationService;

constexpr std::size_t kSubjectColumnLimit = 40;
constexpr std::string_view kEllipsis = "…";

// "2026-11-16 09:00:00" in the calendar's zone.
std::string localDateTime(Date date, const LocalCalendar& calendar) {
    const std::string iso = calendar.formatIso8601(date);
    return iso.substr(0, 10) + " " + iso.substr(11, 8);
}

std::string localTimeOfDay(Date date, const LocalCalendar& calendar) {
    return calendar.formatIso8601(date).substr(11, 8);
}

// `text` on one line, cut to `limit` characters with an ellipsis.
std::string cellText(std::string_view text, std::size_t limit) {
    std::string line = text::collapsingWhiteSpace(text);
    if (text::characterCount(line) <= limit) {
        return line;
    }
    return text::prefixCharacters(line, limit - 1) + std::string(kEllipsis);
}

std::optional<double> displayedScore(const recording::StudySession& session) {
    return Tracking::displayableFocusScore(session.focusScore,
                                           session.focusedDuration + session.distractedDuration);
}

std::string segmentLabel(const recording::ActivitySegment& segment) {
    switch (segment.activitySource()) {
        case recording::ActivitySourceType::website:
            if (segment.hostname) {
                return *segment.hostname;
            }
            break;
        case recording::ActivitySourceType::localPDF:
            return segment.pdfDisplayLabel().value_or("Local PDF");
        default:
            break;
    }
    if (segment.bundleIdentifier.empty()) {
        return segment.applicationName;
    }
    return fmt::format("{} ({})", segment.applicationName, segment.bundleIdentifier);
}

}  // namespace

std::string padded(std::string_view cell, std::size_t width) {
    const std::size_t count = text::characterCount(cell);
    return std::string(cell) + std::string(count >= width ? 0 : width - count, ' ');
}

std::string sessionTableText(const std::vector<recording::StudySession>& sessions,
                             const LocalCalendar& calendar,
                             const std::vector<Uuid>& awaitingRecovery) {
    if (sessions.empty()) {
        return "No sessions recorded yet.\n";
    }
    struct Row {
        std::string started, subject, status, timer, study, score, id;
    };
    std::vector<Row> rows{{"Started", "Subject", "Status", "Timer", "Study", "Focus", "Id"}};
    for (const recording::StudySession& session : sessions) {
        rows.push_back({localDateTime(session.startDate, calendar),
                        cellText(session.subject, kSubjectColumnLimit),
                        std::find(awaitingRecovery.begin(), awaitingRecovery.end(), session.id) !=
                                awaitingRecovery.end()
                            ? std::string("waits for recovery")
                            : std::string(rawValue(session.status())),
                        recording::clockDurationText(session.timerDuration),
                        recording::clockDurationText(recording::studyTime(session)),
                        Tracking::formatFocusScore(displayedScore(session)),
                        session.id.upperString()});
    }
    std::size_t subjectWidth = 0;
    std::size_t statusWidth = 0;
    std::size_t timerWidth = 0;
    std::size_t studyWidth = 0;
    std::size_t scoreWidth = 0;
    for (const Row& row : rows) {
        subjectWidth = std::max(subjectWidth, text::characterCount(row.subject));
        statusWidth = std::max(statusWidth, row.status.size());
        timerWidth = std::max(timerWidth, row.timer.size());
        studyWidth = std::max(studyWidth, row.study.size());
        scoreWidth = std::max(scoreWidth, text::characterCount(row.score));
    }
    std::string table;
    for (const Row& row : rows) {
        table += fmt::format("{}  {}  {}  {}  {}  {}  {}\n", padded(row.started, 19),
                             padded(row.subject, subjectWidth), padded(row.status, statusWidth),
                             padded(row.timer, timerWidth), padded(row.study, studyWidth),
                             padded(row.score, scoreWidth), row.id);
    }
    return table;
}

std::string recoveryStatusText(const recording::ActiveSessionRecoverySummary& summary,
                               const std::string& subject, const LocalCalendar& calendar) {
    std::string text =
        fmt::format("{}\n{}\n", recording::kRecoveryPromptTitle, recording::kRecoveryPromptDetail);
    auto line = [&text](std::string_view label, std::string_view value) {
        text += fmt::format("{:<14}{}\n", label, value);
    };
    line("Subject:", subject);
    line("Started:", localDateTime(summary.startTime, calendar));
    line("Confirmed:",
         fmt::format("{} up to {}, kept", recording::clockDurationText(summary.confirmedDuration),
                     localDateTime(summary.lastConfirmedActivityAt, calendar)));
    // The recorder confirms its time at every save, about once a minute, so
    // what is uncertain is the stretch from that moment until it stopped.
    line("Uncertain:",
         "what followed until the recorder stopped (it saves about once a minute), left out");
    text +=
        "Run `lumenote-cli recovery end` to end it as interrupted, or `lumenote-cli record "
        "--recovery continue` to go on with it from now.\n";
    return text;
}

std::string sessionDetailText(const recording::StudySession& session, const LocalCalendar& calendar,
                              const NoInputThresholds& thresholds) {
    std::string detail;
    auto line = [&detail](std::string_view label, std::string_view value) {
        detail += fmt::format("{:<14}{}\n", label, value);
    };
    line("Subject:", session.subject);
    line("Goal:", session.goal.empty() ? Tracking::kAbsentScoreText : session.goal);
    if (session.notes()) {
        // Later lines of the notes are indented under the first.
        std::string notes;
        for (const char c : *session.notes()) {
            notes += c;
            if (c == '\n') {
                notes += std::string(14, ' ');
            }
        }
        line("Notes:", notes);
    }
    line("Id:", session.id.upperString());
    line("Status:", rawValue(session.status()));
    line("Started:", localDateTime(session.startDate, calendar));
    line("Ended:", session.endDate ? localDateTime(*session.endDate, calendar)
                                   : std::string(Tracking::kAbsentScoreText));
    line("Timing:",
         session.timingMode() == recording::SessionTimingMode::timer
             ? fmt::format("timer of {}", recording::clockDurationText(session.plannedDuration))
             : std::string("open-ended"));
    line("Study mode:", rawValue(session.studyMode()));
    line("Timer:", recording::clockDurationText(session.timerDuration));
    if (const auto score = displayedScore(session)) {
        line("Focus score:", Tracking::formatFocusScore(score));
        line("Coverage:", Tracking::formatScoreCoverage(recording::storedCoverage(session)));
    } else {
        detail += fmt::format("{}\n", Tracking::kFocusScoreNotAvailableText);
    }

    detail += "Totals\n";
    detail += recording::totalsBreakdownText(session, {.explain = true, .indent = 2});
    const recording::SessionRuns runs = recording::sessionRuns(session);
    detail += fmt::format("  {:<{}}{:>9}\n", "Longest Focused run", recording::kTotalsNameColumn,
                          recording::clockDurationText(runs.longestFocusedRun));
    detail += fmt::format("  {:<{}}{:>9}\n", "Interruptions", recording::kTotalsNameColumn,
                          runs.meaningfulInterruptions);
    const auto version = session.calculationVersion();
    const auto explanation = version ? recording::explanationText(*version) : std::nullopt;
    if (explanation) {
        detail += fmt::format("{}\n", *explanation);
    }
    if (version != recording::TrackingCalculationVersion::v3) {
        detail += fmt::format("{}\n", recording::kRecordedBeforeOffMacStudyText);
    }
    if (const std::size_t gaps = recording::countShortUnconfirmedGaps(
            session, thresholds.promptSeconds, thresholds.inactivitySeconds)) {
        detail += fmt::format("{}. {}\n", recording::shortUnconfirmedGapsSummary(gaps),
                              recording::kShortGapsNote);
    }

    if (session.segments.empty()) {
        detail += "No segments recorded.\n";
        return detail;
    }
    detail += fmt::format("Segments ({})\n", session.segments.size());
    for (const recording::ActivitySegment& segment : session.segments) {
        detail += fmt::format(
            "  {}–{}  {:>8}  {:<12}  {}{}\n", localTimeOfDay(segment.startDate, calendar),
            localTimeOfDay(segment.endDate, calendar),
            recording::clockDurationText(segment.duration), segment.classificationRawValue,
            segmentLabel(segment), segment.isInactive ? " · no input" : "");
    }
    return detail;
}

namespace {

void appendReplayRows(std::string& text, const std::vector<recording::ReplayDisplaySegment>& rows,
                      const LocalCalendar& calendar, std::string_view indent) {
    for (const recording::ReplayDisplaySegment& row : rows) {
        const recording::ActivitySegment& first = row.rawSegments.front();
        const recording::ActivitySegment& last = row.rawSegments.back();
        const bool inactive = !row.directSegments.empty() && first.isInactive;
        text += fmt::format("{}{}–{}  {:>8}  {:<12}  {}{}\n", indent,
                            localTimeOfDay(first.startDate, calendar),
                            localTimeOfDay(last.endDate, calendar),
                            recording::clockDurationText(row.totalDuration()),
                            row.children.empty() ? first.classificationRawValue : "",
                            cellText(row.title, 60), inactive ? " · no input" : "");
        appendReplayRows(text, row.children, calendar, "    ");
    }
}

nlohmann::json replayRowJson(const recording::ReplayDisplaySegment& row) {
    nlohmann::json segments = nlohmann::json::array();
    for (const recording::ActivitySegment& segment : row.directSegments) {
        segments.push_back(segment.id.upperString());
    }
    nlohmann::json json{{"title", row.title},
                        {"startDate", formatIso8601(row.rawSegments.front().startDate)},
                        {"endDate", formatIso8601(row.rawSegments.back().endDate)},
                        {"duration", row.totalDuration()},
                        {"segments", std::move(segments)}};
    if (row.children.empty()) {
        json["classification"] = row.rawSegments.front().classificationRawValue;
    } else {
        json["children"] = replayRowsJson(row.children);
    }
    return json;
}

}  // namespace

std::string replayRowsText(const std::vector<recording::ReplayDisplaySegment>& rows,
                           const LocalCalendar& calendar) {
    if (rows.empty()) {
        return "No segments recorded.\n";
    }
    std::string text;
    appendReplayRows(text, rows, calendar, "  ");
    return text;
}

nlohmann::json replayRowsJson(const std::vector<recording::ReplayDisplaySegment>& rows) {
    nlohmann::json array = nlohmann::json::array();
    for (const recording::ReplayDisplaySegment& row : rows) {
        array.push_back(replayRowJson(row));
    }
    return array;
}

}  // namespace lumenote::cli
