// Finished sessions written into a real store for the tests of what the
// history's figures read: each session is a run of application segments
// (Focused, then Distracting, then Neutral, with optional breaks in the
// Focused time), its totals calculated under the current version as the
// recorder stores them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_records.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::testing {

struct SessionPlan {
    Date start;
    std::string subject = "Biology";
    // Seconds of each Focused run in the editor; a minute in the game
    // separates two runs.
    std::vector<double> focusedRuns;
    double distracted = 0.0;  // in the game, after the Focused runs
    double neutral = 0.0;     // in the terminal, last
    recording::StudySessionStatus status = recording::StudySessionStatus::completed;
};

inline recording::StudySession plannedSession(const SessionPlan& plan) {
    using classification::ActivityClassification;
    namespace Tracking = recording::TrackingCalculationService;
    recording::StudySession session(Uuid::generate(), plan.subject, "", 0.0, plan.start);
    Date at = plan.start;
    const auto add = [&](double seconds, const char* name, ActivityClassification kind) {
        if (seconds <= 0.0) {
            return;
        }
        session.segments.emplace_back(Uuid::generate(), at, at.addingSeconds(seconds), seconds,
                                      name, std::string("org.example.") + name, kind, false);
        session.segments.back().session = session.id;
        at = at.addingSeconds(seconds);
    };
    for (std::size_t run = 0; run < plan.focusedRuns.size(); ++run) {
        if (run > 0) {
            add(60.0, "Game", ActivityClassification::distracting);
        }
        add(plan.focusedRuns[run], "Editor", ActivityClassification::focused);
    }
    add(plan.distracted, "Game", ActivityClassification::distracting);
    add(plan.neutral, "Terminal", ActivityClassification::neutral);
    session.timerDuration = at.secondsSince(plan.start);
    session.endDate = at;
    session.setStatus(plan.status);
    Tracking::applyTotals(Tracking::calculateSessionTotals(
                              session, at, recording::kCurrentTrackingCalculationVersion),
                          session);
    return session;
}

// Writes the sessions with their segments.
inline void storeSessions(recording::RecordingStore& store, const std::vector<SessionPlan>& plans) {
    recording::StoreChangeSet changes;
    for (const SessionPlan& plan : plans) {
        recording::StudySession session = plannedSession(plan);
        changes.segments.insert(changes.segments.end(), session.segments.begin(),
                                session.segments.end());
        session.segments.clear();
        changes.sessions.push_back(std::move(session));
    }
    ASSERT_TRUE(store.apply(changes).ok());
}

}  // namespace lumenote::testing
