#include "recording/session_study_state_editor.hpp"

#include <algorithm>

#include "recording/no_input_periods.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::recording {

namespace SessionStudyStateEditor {

namespace {

using Error = SessionStudyStateEditError;

bool knowsConfirmedStudy(TrackingCalculationVersion version) {
    return rawValue(version) >= rawValue(TrackingCalculationVersion::v3);
}

bool overlapsAnyRun(const ConfirmedNoInputInterval& interval, const std::vector<Run>& runs) {
    return std::any_of(runs.begin(), runs.end(), [&](const Run& run) {
        return interval.startDate < run.end && interval.endDate > run.start;
    });
}

// The parts of `interval` outside the runs (sorted, disjoint), as new records
// that keep everything of the original but their identity and dates.
std::vector<ConfirmedNoInputInterval> partsOutsideRuns(const ConfirmedNoInputInterval& interval,
                                                       const std::vector<Run>& runs) {
    std::vector<ConfirmedNoInputInterval> parts;
    auto keep = [&](Date from, Date to) {
        if (to.secondsSince(from) < kNoInputBoundaryToleranceSeconds) {
            return;
        }
        ConfirmedNoInputInterval part = interval;
        part.id = Uuid::generate();
        part.startDate = from;
        part.endDate = to;
        part.supersededAt.reset();
        parts.push_back(std::move(part));
    };
    Date cursor = interval.startDate;
    for (const auto& run : runs) {
        if (run.end <= cursor) {
            continue;
        }
        if (run.start >= interval.endDate) {
            break;
        }
        keep(cursor, run.start);
        cursor = std::max(cursor, run.end);
    }
    keep(cursor, interval.endDate);
    return parts;
}

// The one state that covered every piece of the runs; empty when they were
// unconfirmed or mixed.
std::optional<ConfirmedStudyState> stateOverRuns(const std::vector<Run>& runs,
                                                 const StudySession& session) {
    std::vector<DateSpan> spans;
    for (const auto& run : runs) {
        spans.push_back({run.start, run.end});
    }
    const auto periods = noInputPeriodsOfRuns(spans, session.confirmedNoInputIntervals);
    if (periods.empty()) {
        return std::nullopt;
    }
    const auto first = periods.front().confirmedState;
    const bool uniform = std::all_of(periods.begin(), periods.end(), [&](const auto& period) {
        return period.confirmedState == first;
    });
    return uniform ? first : std::nullopt;
}

}  // namespace

std::vector<Run> runsInRange(const StudySession& session, Date rangeStart, Date rangeEnd) {
    std::vector<Run> runs;
    for (const auto& span : noInputRuns(session.segments)) {
        const Date start = std::max(span.start, rangeStart);
        const Date end = std::min(span.end, rangeEnd);
        if (end.secondsSince(start) >= kNoInputBoundaryToleranceSeconds) {
            runs.push_back(Run{Uuid::generate(), start, end});
        }
    }
    return runs;
}

Result<StudyStateEditOutcome, SessionStudyStateEditError> applyEdit(
    const std::optional<StudySession>& session, Date rangeStart, Date rangeEnd,
    std::optional<ConfirmedStudyState> newState, ConfirmedStudyStateSource source, Date now) {
    if (!session) {
        return fail(Error::sessionUnavailable);
    }
    const auto version = TrackingCalculationService::effectiveCalculationVersion(*session);
    if (!knowsConfirmedStudy(version)) {
        return fail(Error::unsupportedCalculationVersion);
    }
    if (!(rangeEnd.secondsSince(rangeStart) > 0.0)) {
        return fail(Error::emptyRange);
    }
    if (rangeStart < session->startDate || rangeEnd > session->endDate.value_or(now)) {
        return fail(Error::rangeOutsideSession);
    }
    const auto runs = runsInRange(*session, rangeStart, rangeEnd);
    if (runs.empty()) {
        return fail(Error::notANoInputPeriod);
    }

    StudyStateEditOutcome outcome;
    outcome.edit = StudyStateEdit{Uuid::generate(),
                                  session->id,
                                  runs.front().start,
                                  runs.back().end,
                                  stateOverRuns(runs, *session),
                                  newState};
    outcome.session = *session;
    for (auto& interval : outcome.session.confirmedNoInputIntervals) {
        if (!interval.isInForce() || !overlapsAnyRun(interval, runs)) {
            continue;
        }
        auto parts = partsOutsideRuns(interval, runs);
        outcome.inserted.insert(outcome.inserted.end(), parts.begin(), parts.end());
        interval.supersededAt = now;
        outcome.superseded.push_back(interval);
    }
    if (newState) {
        for (const auto& run : runs) {
            ConfirmedNoInputInterval confirmation(Uuid::generate(), run.start, run.end, *newState,
                                                  source, now);
            confirmation.session = session->id;
            outcome.inserted.push_back(std::move(confirmation));
        }
    }
    std::stable_sort(outcome.inserted.begin(), outcome.inserted.end(),
                     [](const auto& a, const auto& b) { return a.startDate < b.startDate; });
    outcome.session.confirmedNoInputIntervals.insert(
        outcome.session.confirmedNoInputIntervals.end(), outcome.inserted.begin(),
        outcome.inserted.end());
    TrackingCalculationService::applyTotals(
        TrackingCalculationService::calculateSessionTotals(outcome.session, now, version),
        outcome.session);
    return outcome;
}

}  // namespace SessionStudyStateEditor

std::vector<ConfirmedNoInputInterval> confirmationsToSave(const StudyStateEditOutcome& outcome) {
    std::vector<ConfirmedNoInputInterval> changed = outcome.superseded;
    changed.insert(changed.end(), outcome.inserted.begin(), outcome.inserted.end());
    return changed;
}

SessionFailure studyStateEditFailure(SessionStudyStateEditError error) {
    switch (error) {
        case SessionStudyStateEditError::sessionUnavailable:
            return SessionFailure::sessionNotFound;
        case SessionStudyStateEditError::rangeOutsideSession:
            return SessionFailure::rangeOutsideSession;
        case SessionStudyStateEditError::emptyRange:
            return SessionFailure::emptyRange;
        case SessionStudyStateEditError::notANoInputPeriod:
            return SessionFailure::notANoInputPeriod;
        case SessionStudyStateEditError::unsupportedCalculationVersion:
            break;
    }
    return SessionFailure::unsupportedCalculationVersion;
}

}  // namespace lumenote::recording
