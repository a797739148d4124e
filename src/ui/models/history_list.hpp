// What the History page lists: every stored session, newest first, with a
// heading at the start of each week, read from the store one page at a time
// so that years of history never become one list in memory or one long wait.
//
// The search and the filters are the store's own (subject or goal text,
// status, a range of start dates), so a page is always a full page of
// matching sessions. Dates stay dates here: the page writes them in the
// user's locale.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "foundation/uuid.hpp"
#include "recording/recording_store.hpp"

namespace lumenote::ui::models {

struct HistoryFilter {
    std::string text;  // in the subject or the goal; empty for every session
    std::optional<recording::StudySessionStatus> status;
    std::optional<Date> startingAtOrAfter;
    std::optional<Date> startingBefore;

    friend bool operator==(const HistoryFilter&, const HistoryFilter&) = default;
};

// The heading above a week's sessions.
struct HistoryWeekHeading {
    Date weekStart;  // first instant of the week's first day
    friend bool operator==(const HistoryWeekHeading&, const HistoryWeekHeading&) = default;
};

struct HistorySessionRow {
    Uuid id;
    Date start;
    std::string subject;
    std::string goal;
    std::string durationText;    // the timer's time, pauses left out: "1 h 05 min"
    std::string focusScoreText;  // "82%", or "—" where no score may be shown
    // Absent for a status this build does not know (written by a later one).
    std::optional<recording::StudySessionStatus> status;

    friend bool operator==(const HistorySessionRow&, const HistorySessionRow&) = default;
};

using HistoryEntry = std::variant<HistoryWeekHeading, HistorySessionRow>;

HistorySessionRow historySessionRow(const recording::StudySession& session);

// The sentence shown where a page of the history could not be read:
// "The study history could not be read ({reason})."
std::string historyReadFailureText(const StoreError& error);

// Reads the filtered history page after page. The first page starts with a
// heading; a later page starts with one only when its first session opens a
// new week.
class HistoryPager {
  public:
    static constexpr std::size_t kDefaultPageSize = 200;

    // `store` must outlive the pager.
    HistoryPager(recording::RecordingStore& store, LocalCalendar calendar, unsigned firstWeekday,
                 HistoryFilter filter, std::size_t pageSize = kDefaultPageSize);

    // The next page's entries; empty once the history is read to its end.
    // A failed read changes nothing, so the same page can be asked for again.
    Result<std::vector<HistoryEntry>, StoreError> nextPage();
    bool atEnd() const { return atEnd_; }
    std::size_t sessionsRead() const { return offset_; }
    const HistoryFilter& filter() const { return filter_; }

  private:
    recording::RecordingStore& store_;
    LocalCalendar calendar_;
    unsigned firstWeekday_;
    HistoryFilter filter_;
    std::size_t pageSize_;
    std::size_t offset_ = 0;
    std::optional<Date> currentWeek_;
    bool atEnd_ = false;
};

}  // namespace lumenote::ui::models
