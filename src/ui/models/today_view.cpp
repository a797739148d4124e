#include "ui/models/today_view.hpp"

#include <algorithm>
#include <cmath>

#include "insights/weekly_figures.hpp"
#include "recording/focus_score_text.hpp"
#include "recording/study_time.hpp"
#include "shell/duration_text.hpp"
#include "shell/panel_history.hpp"

namespace lumenote::ui::models {

namespace {

namespace scores = recording::TrackingCalculationService;

bool isFinished(const recording::StudySession& session) {
    return session.status() == recording::StudySessionStatus::completed ||
           session.status() == recording::StudySessionStatus::interrupted;
}

std::string goalCaption(double studySeconds, long long dailyGoalMinutes) {
    if (dailyGoalMinutes <= 0) {
        return "No daily goal set";
    }
    const std::string goal = shell::durationText(static_cast<double>(dailyGoalMinutes) * 60.0);
    return shell::dailyGoalProgress(studySeconds, dailyGoalMinutes) >= 1.0
               ? "Goal reached: " + goal
               : "of a " + goal + " daily goal";
}

constexpr double kSecondsPerHour = 3600.0;

// `blocks` widened to whole hours counted from the day's start, kept within
// the day.
std::optional<TimelineSpan> hourSpan(const std::vector<TimelineBlock>& blocks, Date dayStart,
                                     Date dayEnd) {
    const std::optional<TimelineSpan> recorded = timelineSpan(blocks);
    if (!recorded) {
        return std::nullopt;
    }
    const double from =
        std::floor(recorded->start.secondsSince(dayStart) / kSecondsPerHour) * kSecondsPerHour;
    const double to =
        std::ceil(recorded->end.secondsSince(dayStart) / kSecondsPerHour) * kSecondsPerHour;
    const Date start = std::max(dayStart, dayStart.addingSeconds(from));
    const Date end = std::min(dayEnd, dayStart.addingSeconds(std::max(to, from + kSecondsPerHour)));
    return TimelineSpan{start, end};
}

}  // namespace

Result<TodayView, StoreError> readTodayView(recording::RecordingStore& store,
                                            const LocalCalendar& calendar, Date now,
                                            long long dailyGoalMinutes) {
    TodayView view;
    view.dayStart = calendar.startOfDay(now);
    view.dayEnd = calendar.addingDays(view.dayStart, 1);
    recording::SessionQuery query;
    query.startingAtOrAfter = view.dayStart;
    query.startingBefore = view.dayEnd;
    query.newestFirst = false;
    query.includeChildren = true;
    auto sessions = store.listSessions(query);
    if (!sessions.ok()) {
        return fail(sessions.error());
    }
    double focused = 0.0;
    double distracted = 0.0;
    std::vector<recording::ActivitySegment> segments;
    for (recording::StudySession& session : *sessions) {
        view.sessions.push_back(historySessionRow(session));
        if (isFinished(session)) {
            view.studySeconds += recording::studyTime(session);
            focused += session.focusedDuration;
            distracted += session.distractedDuration;
        }
        std::move(session.segments.begin(), session.segments.end(), std::back_inserter(segments));
    }
    view.timeline = timelineBlocks(std::move(segments));
    view.timelineSpan = hourSpan(view.timeline, view.dayStart, view.dayEnd);
    view.studyTimeText = shell::durationText(view.studySeconds);
    view.goalCaption = goalCaption(view.studySeconds, dailyGoalMinutes);
    view.goalProgress = shell::dailyGoalProgress(view.studySeconds, dailyGoalMinutes);
    const std::optional<double> score = insights::weeklyFocusScore(focused, distracted);
    view.hasFocusScore = score.has_value();
    view.focusScoreText = scores::formatFocusScore(score);
    view.focusScoreCaption = score ? "focus score today"
                                   : std::string(scores::kRecordOneMinuteOfFocusedOrDistractedText);
    return view;
}

}  // namespace lumenote::ui::models
