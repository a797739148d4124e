// What the Today page shows: the day's study time against the daily goal,
// the day's focus score, a timeline of the whole day and the day's sessions,
// read from the store through the core's own figures.
//
// "The day" is the local calendar day of `now`; a session belongs to the day
// it started on (as the daily goal and the weekly figures count it), so a
// session begun before midnight shows on the day before. Only finished
// sessions count toward the day's figures; the running session is shown by
// the page's live card and joins the figures when it ends.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "recording/recording_store.hpp"
#include "ui/models/history_list.hpp"
#include "ui/models/timeline_model.hpp"

namespace lumenote::ui::models {

struct TodayView {
    Date dayStart;
    Date dayEnd;
    double studySeconds = 0.0;
    std::string studyTimeText;  // "1 h 05 min", or "0 min"
    // "of a 2 h 00 min daily goal", "Goal reached: 2 h 00 min" or "No daily
    // goal set".
    std::string goalCaption;
    double goalProgress = 0.0;  // 0 ... 1; 0 without a goal
    // "82%" from the day's Focused and Distracted time; "—" below a minute
    // of that evidence, with `focusScoreCaption` saying why.
    std::string focusScoreText;
    std::string focusScoreCaption;
    bool hasFocusScore = false;
    // The day's sessions, oldest first (the running one included).
    std::vector<HistorySessionRow> sessions;
    // Every stretch of the day's sessions.
    std::vector<TimelineBlock> timeline;
    // What the day's strip spans: from the hour the first stretch began to
    // the hour after the last one ended, within the day, so that an hour of
    // study is not a sliver of a 24-hour bar. Absent without stretches.
    std::optional<TimelineSpan> timelineSpan;
};

// Reads the day of `now` from `store`; fails with the store's error.
Result<TodayView, StoreError> readTodayView(recording::RecordingStore& store,
                                            const LocalCalendar& calendar, Date now,
                                            long long dailyGoalMinutes);

}  // namespace lumenote::ui::models
