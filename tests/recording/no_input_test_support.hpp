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

inline recording::ActivitySegment segmentAt(double from, double length, bool inactive,
                                            classification::ActivityClassification classification) {
    return recording::ActivitySegment(Uuid::generate(), at(from), at(from + length), length,
                                      "Editor", "com.example.editor", classification, inactive);
}

inline recording::ActivitySegment focusedAt(double from, double length) {
    return segmentAt(from, length, false, classification::ActivityClassification::focused);
}

inline recording::ActivitySegment distractingAt(double from, double length) {
    return segmentAt(from, length, false, classification::ActivityClassification::distracting);
}

inline recording::ActivitySegment idleAt(double from, double length) {
    return segmentAt(from, length, true, classification::ActivityClassification::focused);
}

inline recording::ActivitySegment asleepAt(double from, double length) {
    recording::ActivitySegment segment =
        segmentAt(from, length, true, classification::ActivityClassification::ignored);
    segment.setActivitySource(recording::ActivitySourceType::system);
    return segment;
}

inline recording::ConfirmedNoInputInterval confirmationAt(
    double from, double to, recording::ConfirmedStudyState state, double createdAt = 10'000,
    recording::ConfirmedStudyStateSource source =
        recording::ConfirmedStudyStateSource::returnPrompt) {
    return recording::ConfirmedNoInputInterval(Uuid::generate(), at(from), at(to), state, source,
                                               at(createdAt));
}

// A completed v3 session from 0 to `end` seconds with the given stretches.
inline recording::StudySession sessionWith(
    std::vector<recording::ActivitySegment> segments, double end,
    std::vector<recording::ConfirmedNoInputInterval> confirmations = {}) {
    recording::StudySession session(Uuid::generate(), "Chemistry", "", end, kSessionStart);
    session.setStatus(recording::StudySessionStatus::completed);
    session.endDate = at(end);
    session.timerDuration = end;
    session.setCalculationVersion(recording::TrackingCalculationVersion::v3);
    session.segments = std::move(segments);
    for (auto& confirmation : confirmations) {
        confirmation.session = session.id;
    }
    session.confirmedNoInputIntervals = std::move(confirmations);
    return session;
}

}  // namespace lumenote::testing
