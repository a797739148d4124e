// The figures of one local-calendar week: study time per day and in all, the
// class totals and the weekly focus score, study time per subject, the top
// Focused and Distracting activities, active days and the daily goal; and the
// current streak of days with study. Pure functions over session snapshots.
//
// A session belongs to the local day on which it started, whole: a session
// from 23:30 to 00:30 is an hour of the first day. This is how the history
// lists sessions and how the store selects them by start date, so a week's
// figures always add up to the sessions it lists. Days are the calendar's own
// (23 or 25 hours across a daylight-saving change), so each counts once.
//
// The snapshots passed in must already be the sessions that count for
// analytics (readAnalyticsSnapshots selects them); sessions starting outside
// the week are left out.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "insights/session_snapshot.hpp"
#include "insights/week_period.hpp"

namespace lumenote::insights {

// The most activities listed per class.
inline constexpr std::size_t kTopActivityCount = 5;

struct LabelledDuration {
    std::string label;
    double seconds = 0.0;

    friend bool operator==(const LabelledDuration&, const LabelledDuration&) = default;
};

struct DayFigures {
    Date start;
    std::string dayKey;    // local "YYYY-MM-DD"
    unsigned weekday = 0;  // 0 Sunday ... 6 Saturday
    int sessions = 0;
    double studyTime = 0.0;  // seconds
    // The day's computer study by class and its confirmed study away, in
    // seconds: what a chart of the classes per day piles up.
    double focused = 0.0;
    double distracted = 0.0;
    double neutral = 0.0;
    double unclassified = 0.0;
    double passiveStudy = 0.0;
    // Study time as a percentage of the daily goal (0...100); nullopt when
    // no goal is set.
    std::optional<double> goalProgressPercent;
    bool goalMet = false;
};

struct WeeklyFigures {
    WeekPeriod period;
    std::array<DayFigures, kDaysPerWeek> days{};
    int sessions = 0;
    // Computer study plus confirmed study away; unconfirmed time without
    // input is never study time.
    double studyTime = 0.0;
    double computerStudy = 0.0;
    double passiveStudy = 0.0;
    double focused = 0.0;
    double distracted = 0.0;
    double neutral = 0.0;
    double unclassified = 0.0;
    // Focused share of the week's Focused + Distracted time; absent below 60
    // seconds of that evidence, never zero.
    std::optional<double> focusScore;
    // Largest first; equal times in label order.
    std::vector<LabelledDuration> subjects;
    std::vector<LabelledDuration> topFocused;      // at most kTopActivityCount
    std::vector<LabelledDuration> topDistracting;  // at most kTopActivityCount
    // Days with at least one session that counts.
    int activeDays = 0;
    // Seconds of the daily goal; nullopt when no goal is set (0 minutes).
    std::optional<double> dailyGoalSeconds;
    int daysGoalMet = 0;
};

// The figures of `week` from `sessions`. `dailyGoalMinutes` below 1 means no
// goal.
WeeklyFigures computeWeeklyFigures(const std::vector<SessionSnapshot>& sessions,
                                   const WeekPeriod& week, const LocalCalendar& calendar,
                                   long long dailyGoalMinutes);

// The weekly focus score: Focused / (Focused + Distracted) as a percentage,
// from 60 seconds of evidence on (the same rule as a session's).
std::optional<double> weeklyFocusScore(double focused, double distracted);

// The days with study of a set of sessions: the local day keys on which they
// started.
std::set<std::string> studyDayKeys(const std::vector<SessionSnapshot>& sessions,
                                   const LocalCalendar& calendar);

// The current streak: the number of consecutive days with study that ends
// today, or yesterday when today has none yet (the day is not over, so not
// having studied yet today does not break it). 0 when neither has study.
int currentStudyStreak(const std::set<std::string>& daysWithStudy, Date today,
                       const LocalCalendar& calendar);

}  // namespace lumenote::insights
