// Stored sessions for the receipt tests: a finished session of whole
// segments in UTC, with its totals calculated as the recorder stores them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/session_records.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::ui::models::testing {

using classification::ActivityClassification;

inline Date at(const char* iso) {
    const auto date = parseIso8601(iso);
    EXPECT_TRUE(date.has_value()) << iso;
    return date.value_or(Date{});
}

inline LocalCalendar calendarNamed(const char* zone) {
    auto calendar = LocalCalendar::named(zone);
    EXPECT_TRUE(calendar.has_value()) << zone;
    return calendar.value_or(LocalCalendar::utc());
}

inline constexpr const char* kSessionStart = "2026-11-23T09:00:00Z";

// A segment of an application from `offset` seconds after the session's
// start, `seconds` long.
inline recording::ActivitySegment appSegment(double offset, double seconds, std::string name,
                                             ActivityClassification classification,
                                             bool inactive = false) {
    const Date start = at(kSessionStart).addingSeconds(offset);
    return recording::ActivitySegment(Uuid::generate(), start, start.addingSeconds(seconds),
                                      seconds, name, "org.example." + name, classification,
                                      inactive);
}

// A website visited in Firefox.
inline recording::ActivitySegment siteSegment(double offset, double seconds, std::string host,
                                              ActivityClassification classification) {
    recording::ActivitySegment segment = appSegment(offset, seconds, "Firefox", classification);
    segment.bundleIdentifier = "org.mozilla.firefox";
    segment.browserBundleIdentifier = "org.mozilla.firefox";
    segment.setActivitySource(recording::ActivitySourceType::website);
    segment.hostname = std::move(host);
    return segment;
}

// A completed hour-long session of `segments` with its totals calculated
// under `version` and stored.
inline recording::StudySession finishedSession(
    std::vector<recording::ActivitySegment> segments,
    recording::TrackingCalculationVersion version = recording::TrackingCalculationVersion::v3) {
    namespace Tracking = recording::TrackingCalculationService;
    recording::StudySession session(Uuid::generate(), "Organic chemistry", "Finish chapter 4",
                                    3600.0, at(kSessionStart));
    session.timerDuration = 3600.0;
    session.endDate = session.startDate.addingSeconds(3600.0);
    session.setStatus(recording::StudySessionStatus::completed);
    for (auto& segment : segments) {
        segment.session = session.id;
    }
    session.segments = std::move(segments);
    Tracking::applyTotals(Tracking::calculateSessionTotals(session, *session.endDate, version),
                          session);
    return session;
}

}  // namespace lumenote::ui::models::testing
