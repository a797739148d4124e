// Sessions and weeks for the insights tests, written in local wall time.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "foundation/dates.hpp"
#include "insights/session_snapshot.hpp"

namespace lumenote::insights::testing {

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

// A counting session of `subject` starting at `start`, with the given Focused
// and Distracted seconds and as much Neutral time again as Focused.
inline SessionSnapshot snapshot(Date start, double focused, double distracted = 0.0,
                                std::string subject = "Maths") {
    SessionSnapshot session;
    session.id = Uuid::generate();
    session.subject = std::move(subject);
    session.startDate = start;
    session.calculationVersion = recording::TrackingCalculationVersion::v3;
    session.focused = focused;
    session.distracted = distracted;
    session.duration = focused + distracted;
    session.studyTime = focused + distracted;
    session.longestFocusedRun = focused;
    return session;
}

}  // namespace lumenote::insights::testing
