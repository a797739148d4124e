// The readable forms of stored sessions that lumenote-cli prints: the history
// table and the detail of one session with its segments. Pure functions: the
// caller passes the time zone dates are shown in.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/session_records.hpp"

namespace lumenote::cli {

// "1 session", "2 sessions": the count with the noun in the number it calls for.
std::string countText(std::size_t count, std::string_view singular, std::string_view plural);

// "1:05:09": whole seconds as hours, minutes and seconds. Fractions of a
// second are dropped, as a running timer shows them; negative or non-finite
// values read 0:00:00.
std::string clockDurationText(double seconds);

// The coverage of a session's stored totals: Focused + Distracted as a
// percentage of Focused, Distracted, Neutral, Unclassified and no-input time;
// nullopt below one second of that time.
std::optional<double> storedCoverage(const StudySession& session);

// One line per session in the order given, under a header line: local start
// time, subject (cut to 40 characters), status, timer, focus score ("—" when
// there is none to show) and id. "No sessions recorded yet." when empty.
std::string sessionTableText(const std::vector<StudySession>& sessions,
                             const LocalCalendar& calendar);

// The session's fields, totals, score and coverage, then its segments one per
// line in start order.
std::string sessionDetailText(const StudySession& session, const LocalCalendar& calendar);

}  // namespace lumenote::cli
