#include "insights/weekly_figures.hpp"

#include <algorithm>
#include <map>

#include "foundation/numeric.hpp"
#include "recording/tracking_calculation.hpp"

namespace lumenote::insights {

namespace {

using recording::TrackingCalculationService::AccountedState;

std::vector<LabelledDuration> ranked(const std::map<std::string, double>& totals,
                                     std::size_t limit) {
    std::vector<LabelledDuration> list;
    for (const auto& [label, seconds] : totals) {
        list.push_back({label, seconds});
    }
    // The map is in label order, so a stable sort keeps ties in label order.
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.seconds > b.seconds; });
    if (list.size() > limit) {
        list.resize(limit);
    }
    return list;
}

}  // namespace

std::optional<double> weeklyFocusScore(double focused, double distracted) {
    const double evidence = addClampedDuration(focused, distracted);
    if (evidence < recording::TrackingCalculationService::kMinimumScoreEvidenceSeconds) {
        return std::nullopt;
    }
    return percentRatio(focused, evidence);
}

WeeklyFigures computeWeeklyFigures(const std::vector<SessionSnapshot>& sessions,
                                   const WeekPeriod& week, const LocalCalendar& calendar,
                                   long long dailyGoalMinutes) {
    WeeklyFigures figures;
    figures.period = week;
    for (std::size_t day = 0; day < figures.days.size(); ++day) {
        figures.days[day].start = week.dayStarts[day];
        figures.days[day].dayKey = calendar.dayKey(week.dayStarts[day]);
        figures.days[day].weekday = calendar.weekday(week.dayStarts[day]);
    }
    std::map<std::string, double> subjects;
    std::map<std::string, double> focusedActivities;
    std::map<std::string, double> distractingActivities;
    for (const SessionSnapshot& session : sessions) {
        const auto day = week.dayIndex(session.startDate);
        if (!day) {
            continue;
        }
        DayFigures& figuresOfDay = figures.days[static_cast<std::size_t>(*day)];
        ++figuresOfDay.sessions;
        figuresOfDay.studyTime = addClampedDuration(figuresOfDay.studyTime, session.studyTime);
        figuresOfDay.focused = addClampedDuration(figuresOfDay.focused, session.focused);
        figuresOfDay.distracted = addClampedDuration(figuresOfDay.distracted, session.distracted);
        figuresOfDay.neutral = addClampedDuration(figuresOfDay.neutral, session.neutral);
        figuresOfDay.unclassified =
            addClampedDuration(figuresOfDay.unclassified, session.unclassified);
        figuresOfDay.passiveStudy =
            addClampedDuration(figuresOfDay.passiveStudy, session.passiveStudy);
        ++figures.sessions;
        figures.studyTime = addClampedDuration(figures.studyTime, session.studyTime);
        figures.passiveStudy = addClampedDuration(figures.passiveStudy, session.passiveStudy);
        figures.focused = addClampedDuration(figures.focused, session.focused);
        figures.distracted = addClampedDuration(figures.distracted, session.distracted);
        figures.neutral = addClampedDuration(figures.neutral, session.neutral);
        figures.unclassified = addClampedDuration(figures.unclassified, session.unclassified);
        subjects[session.subject] =
            addClampedDuration(subjects[session.subject], session.studyTime);
        for (const ActivityTime& activity : session.activities) {
            auto& totals = activity.classification == AccountedState::focused
                               ? focusedActivities
                               : distractingActivities;
            totals[activity.label] = addClampedDuration(totals[activity.label], activity.seconds);
        }
    }
    figures.computerStudy = clampDuration(figures.focused + figures.distracted + figures.neutral +
                                          figures.unclassified);
    figures.focusScore = weeklyFocusScore(figures.focused, figures.distracted);
    figures.subjects = ranked(subjects, subjects.size());
    figures.topFocused = ranked(focusedActivities, kTopActivityCount);
    figures.topDistracting = ranked(distractingActivities, kTopActivityCount);
    if (dailyGoalMinutes >= 1) {
        figures.dailyGoalSeconds = clampDuration(static_cast<double>(dailyGoalMinutes) * 60.0);
    }
    for (DayFigures& day : figures.days) {
        if (day.sessions > 0) {
            ++figures.activeDays;
        }
        if (figures.dailyGoalSeconds) {
            day.goalProgressPercent = percentRatio(day.studyTime, *figures.dailyGoalSeconds);
            day.goalMet = day.studyTime >= *figures.dailyGoalSeconds;
            figures.daysGoalMet += day.goalMet ? 1 : 0;
        }
    }
    return figures;
}

std::set<std::string> studyDayKeys(const std::vector<SessionSnapshot>& sessions,
                                   const LocalCalendar& calendar) {
    std::set<std::string> keys;
    for (const SessionSnapshot& session : sessions) {
        keys.insert(calendar.dayKey(session.startDate));
    }
    return keys;
}

int currentStudyStreak(const std::set<std::string>& daysWithStudy, Date today,
                       const LocalCalendar& calendar) {
    // Noon never falls into a daylight-saving gap or repeat.
    Date day = calendar.startOfDay(today).addingSeconds(12 * 3600);
    if (!daysWithStudy.contains(calendar.dayKey(day))) {
        day = calendar.addingDays(day, -1);
    }
    int streak = 0;
    while (daysWithStudy.contains(calendar.dayKey(day))) {
        ++streak;
        day = calendar.addingDays(day, -1);
    }
    return streak;
}

}  // namespace lumenote::insights
