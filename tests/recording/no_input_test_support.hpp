// Builders for sessions with active and no-input stretches, used by the tests
// of no-input periods, the return prompt and the study-state editor. Times are
// seconds after kSessionStart.
#pragma once

#include <string>

#include "recording/session_records.hpp"

namespace lumenote::testing {

inline const Date kSessionStart = Date::fromUnixSeconds(1'800'000'000.0);

inline Date at(double offset) {
    return kSessionStart.addingSeconds(offset);
}

inline ActivitySegment segmentAt(double from, double length, bool inactive,
                                 ActivityClassification classification) {
    return ActivitySegment(Uuid::generate(), at(from), at(from + length), length, "Editor",
                           "com.example.editor", classification, inactive);
}

inline ActivitySegment focusedAt(double from, double length) {
    return segmentAt(from, length, false, ActivityClassification::focused);
}

inline ActivitySegment distractingAt(double from, double length) {
    return segmentAt(from, length, false, ActivityClassification::distracting);
}

inline ActivitySegment idleAt(double from, double length) {
    return segmentAt(from, length, true, ActivityClassification::focused);
}

inline ActivitySegment asleepAt(double from, double length) {
    ActivitySegment segment = segmentAt(from, length, true, ActivityClassification::ignored);
    segment.setActivitySource(ActivitySourceType::system);
    return segment;
}

inline ConfirmedNoInputInterval confirmationAt(
    double from, double to, ConfirmedStudyState state, double createdAt = 10'000,
    ConfirmedStudyStateSource source = ConfirmedStudyStateSource::returnPrompt) {
    return ConfirmedNoInputInterval(Uuid::generate(), at(from), at(to), state, source,
                                    at(createdAt));
}

// A completed v3 session from 0 to `end` seconds with the given stretches.
inline StudySession sessionWith(std::vector<ActivitySegment> segments, double end,
                                std::vector<ConfirmedNoInputInterval> confirmations = {}) {
    StudySession session(Uuid::generate(), "Chemistry", "", end, kSessionStart);
    session.setStatus(StudySessionStatus::completed);
    session.endDate = at(end);
    session.timerDuration = end;
    session.setCalculationVersion(TrackingCalculationVersion::v3);
    session.segments = std::move(segments);
    for (auto& confirmation : confirmations) {
        confirmation.session = session.id;
    }
    session.confirmedNoInputIntervals = std::move(confirmations);
    return session;
}

}  // namespace lumenote::testing
