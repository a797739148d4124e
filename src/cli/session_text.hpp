// The readable forms of stored sessions that lumenote-cli prints: the history
// table, the detail of one session with its segments, and its replay rows. Pure functions: the
// caller passes the time zone dates are shown in.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/text.hpp"
#include "recording/active_session_checkpoint.hpp"
#include "recording/replay_rows.hpp"
#include "recording/session_figures.hpp"
#include "recording/session_records.hpp"

namespace lumenote::cli {

// `cell` padded with spaces to `width` characters (not bytes), so that
// columns of non-ASCII text line up; a longer cell is kept whole.
std::string padded(std::string_view cell, std::size_t width);

using text::countText;

// One line per session in the order given, under a header line: local start
// time, subject (cut to 40 characters), status, timer, study time, focus
// score ("—" when there is none to show) and id. "No sessions recorded yet." when empty.
// The sessions named in `awaitingRecovery` show "waits for recovery" as their
// status.
std::string sessionTableText(const std::vector<recording::StudySession>& sessions,
                             const LocalCalendar& calendar,
                             const std::vector<Uuid>& awaitingRecovery = {});

// The unfinished session a recorder left, as `recovery status` prints it:
// the confirmed time kept, the uncertain time left out (named, not counted:
// a count would grow with the clock), and the commands that settle it.
std::string recoveryStatusText(const recording::ActiveSessionRecoverySummary& summary,
                               const std::string& subject, const LocalCalendar& calendar);

// The thresholds that decide which gaps without input were too short to be asked about.
struct NoInputThresholds {
    double promptSeconds = 300.0;
    double inactivitySeconds = 90.0;
};

// The session's fields, totals, score and coverage, the calculation it was
// computed under, the count of short unconfirmed gaps, then its segments one
// per line in start order.
std::string sessionDetailText(const recording::StudySession& session, const LocalCalendar& calendar,
                              const NoInputThresholds& thresholds = {});

// The replay rows, one line each with its times, length, class and title;
// the rows nested under a browser indented beneath it.
std::string replayRowsText(const std::vector<recording::ReplayDisplaySegment>& rows,
                           const LocalCalendar& calendar);
nlohmann::json replayRowsJson(const std::vector<recording::ReplayDisplaySegment>& rows);

}  // namespace lumenote::cli
