#include "ui/models/replay_view.hpp"

#include <algorithm>
#include <set>

#include "recording/focus_score_text.hpp"
#include "recording/no_input_periods.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/replay_rows.hpp"
#include "recording/session_figures.hpp"
#include "recording/session_messages.hpp"
#include "recording/session_study_state_editor.hpp"
#include "recording/study_time.hpp"
#include "recording/tracking_calculation.hpp"
#include "shell/duration_text.hpp"
#include "shell/panel_model.hpp"
#include "ui/models/receipt_dates.hpp"

namespace lumenote::ui::models {

namespace {

namespace Tracking = recording::TrackingCalculationService;
using recording::ActivitySegment;
using recording::ActivitySourceType;
using recording::ConfirmedStudyState;
using recording::TrackingCalculationVersion;

constexpr std::string_view kUnversionedText =
    "Recorded before calculation versions existed. The totals stored with this session are "
    "shown as they are, never recomputed.";
constexpr std::string_view kFirstMethodText =
    "Calculation v1, the method of sessions recorded before v2. The totals stored with this "
    "session are shown as they are, never recomputed.";
constexpr std::string_view kLaterVersionText =
    "Calculated by a later version of Lumenote. The totals stored with this session are shown "
    "as they are.";

Date endOf(const recording::StudySession& session) {
    return session.endDate.value_or(session.startDate.addingSeconds(session.timerDuration));
}

// The latest placed end of `segments`: a stretch lasts its measured
// duration from its start, as the no-input runs place it.
Date placedEnd(const std::vector<ActivitySegment>& segments) {
    Date end = segments.front().startDate;
    for (const ActivitySegment& segment : segments) {
        end = std::max(end, segment.startDate.addingSeconds(std::max(0.0, segment.duration)));
    }
    return end;
}

// The chip of a no-input row: what the periods overlapping it were
// confirmed as.
std::string noInputChipText(Date start, Date end,
                            const std::vector<recording::NoInputPeriod>& periods) {
    std::set<std::optional<ConfirmedStudyState>> states;
    for (const recording::NoInputPeriod& period : periods) {
        const double overlap =
            std::min(end, period.endDate).secondsSince(std::max(start, period.startDate));
        if (overlap > recording::kNoInputBoundaryToleranceSeconds) {
            states.insert(period.confirmedState);
        }
    }
    if (states.size() > 1) {
        return kPartlyConfirmedChipText;
    }
    if (states.empty() || !*states.begin()) {
        return kUnconfirmedChipText;
    }
    return **states.begin() == ConfirmedStudyState::passiveStudy
               ? std::string(recording::kStudyingAwayFromMac)
               : std::string(recording::kBreakAnswer);
}

ReplayRow rowOf(const recording::ReplayDisplaySegment& display,
                const std::vector<recording::NoInputPeriod>& periods,
                const LocalCalendar& calendar) {
    ReplayRow row;
    row.start = display.rawSegments.front().startDate;
    row.end = placedEnd(display.rawSegments);
    row.times = receiptTimeText(row.start, calendar) + "–" + receiptTimeText(row.end, calendar);
    row.duration = shell::durationText(display.totalDuration());
    row.name = display.title;
    const ActivitySegment& first = display.rawSegments.front();
    if (!display.children.empty()) {
        row.kind = ReplayRowKind::browserGroup;
        for (const auto& child : display.children) {
            row.children.push_back(rowOf(child, periods, calendar));
        }
    } else if (first.activitySource() == ActivitySourceType::system) {
        row.kind = ReplayRowKind::system;
        row.chipText = kNotCountedChipText;
    } else if (first.isInactive) {
        row.kind = ReplayRowKind::noInput;
        row.name = kNoInputBlockName;
        row.chipText = noInputChipText(row.start, row.end, periods);
    } else {
        row.classification = first.classification();
        row.chipText = std::string(shell::classificationChipText(*row.classification));
        row.activity = recording::classifiedActivityOf(first);
    }
    return row;
}

}  // namespace

std::string calculationVersionText(const recording::StudySession& session) {
    if (!session.calculationVersionStorage) {
        return std::string(kUnversionedText);
    }
    const auto version = session.calculationVersion();
    if (!version) {
        return std::string(kLaterVersionText);
    }
    if (const auto explanation = recording::explanationText(*version)) {
        return std::string(*explanation);
    }
    return std::string(kFirstMethodText);
}

ReplayView makeReplayView(const recording::StudySession& session, const LocalCalendar& calendar) {
    ReplayView view;
    view.subject = session.subject;
    view.goal = session.goal;
    view.dateText = receiptDayText(session.startDate, calendar) + " · " +
                    receiptTimeText(session.startDate, calendar) + " – " +
                    receiptTimeText(endOf(session), calendar);
    view.duration = shell::durationText(session.timerDuration);
    view.status = session.status();
    view.notes = session.notes().value_or("");

    const auto figure = [](std::string_view name, double seconds) {
        return ReplayFigure{std::string(name), shell::durationText(seconds)};
    };
    view.figures = {
        figure(recording::kStudyTimeName, recording::studyTime(session)),
        figure(recording::kComputerStudyName, recording::computerStudyTime(session)),
        figure(recording::kStudyingAwayFromMac, session.passiveStudyDuration()),
        figure(recording::kBreakAnswer, session.confirmedBreakDuration()),
        figure(recording::kUnconfirmedNoInputName, recording::unconfirmedNoInputTime(session)),
    };
    const double evidence = session.focusedDuration + session.distractedDuration;
    const auto score = Tracking::displayableFocusScore(session.focusScore, evidence);
    if (score) {
        view.focusScore = Tracking::formatFocusScore(score);
        view.focusScoreNote = Tracking::formatScoreCoverage(recording::storedCoverage(session));
    } else {
        view.focusScoreNote = std::string(Tracking::kNotEnoughEvidenceToShowScoreText);
    }
    view.versionText = calculationVersionText(session);

    view.timeline = timelineBlocks(session.segments);
    const auto periods = recording::noInputPeriods(session);
    for (const auto& display : recording::replayRows(session.segments)) {
        view.rows.push_back(rowOf(display, periods, calendar));
    }

    const auto version = Tracking::effectiveCalculationVersion(session);
    if (version == TrackingCalculationVersion::v1) {
        view.reclassifyRefusal = recording::sessionFailureMessage(
            recording::SessionFailure::reclassifyFirstMethodSession);
    }
    if (version != TrackingCalculationVersion::v3) {
        view.relabelRefusal = recording::sessionFailureMessage(recording::studyStateEditFailure(
            recording::SessionStudyStateEditError::unsupportedCalculationVersion));
    }
    return view;
}

}  // namespace lumenote::ui::models
