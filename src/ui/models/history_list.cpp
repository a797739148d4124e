#include "ui/models/history_list.hpp"

#include "foundation/raw_enum.hpp"
#include "recording/enumerations.hpp"
#include "recording/focus_score_text.hpp"
#include "shell/duration_text.hpp"

namespace lumenote::ui::models {

namespace Tracking = recording::TrackingCalculationService;

HistorySessionRow historySessionRow(const recording::StudySession& session) {
    HistorySessionRow row;
    row.id = session.id;
    row.start = session.startDate;
    row.subject = session.subject;
    row.goal = session.goal;
    row.durationText = shell::durationText(session.timerDuration);
    row.focusScoreText = Tracking::formatFocusScore(Tracking::displayableFocusScore(
        session.focusScore, session.focusedDuration + session.distractedDuration));
    row.status = fromRawValue<recording::StudySessionStatus>(session.statusRawValue);
    return row;
}

std::string historyReadFailureText(const StoreError& error) {
    return "The study history could not be read (" + error.description + ").";
}

HistoryPager::HistoryPager(recording::RecordingStore& store, LocalCalendar calendar,
                           unsigned firstWeekday, HistoryFilter filter, std::size_t pageSize)
    : store_(store),
      calendar_(std::move(calendar)),
      firstWeekday_(firstWeekday),
      filter_(std::move(filter)),
      pageSize_(pageSize == 0 ? 1 : pageSize) {}

Result<std::vector<HistoryEntry>, StoreError> HistoryPager::nextPage() {
    if (atEnd_) {
        return std::vector<HistoryEntry>{};
    }
    auto sessions = store_.listSessions({.startingAtOrAfter = filter_.startingAtOrAfter,
                                         .startingBefore = filter_.startingBefore,
                                         .subjectOrGoalContains = filter_.text,
                                         .status = filter_.status,
                                         .newestFirst = true,
                                         .limit = pageSize_,
                                         .offset = offset_});
    if (!sessions) {
        return fail(sessions.error());
    }
    std::vector<HistoryEntry> entries;
    entries.reserve(sessions->size() + 2);
    for (const recording::StudySession& session : *sessions) {
        const Date week = calendar_.startOfWeek(session.startDate, firstWeekday_);
        if (currentWeek_ != week) {
            currentWeek_ = week;
            entries.emplace_back(HistoryWeekHeading{week});
        }
        entries.emplace_back(historySessionRow(session));
    }
    offset_ += sessions->size();
    atEnd_ = sessions->size() < pageSize_;
    return entries;
}

}  // namespace lumenote::ui::models
