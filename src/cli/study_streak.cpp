#include "cli/study_streak.hpp"

#include <set>
#include <string>

#include "insights/analytics_count_rule.hpp"
#include "insights/weekly_figures.hpp"

namespace lumenote::cli {

namespace {

// Days read per step when following the streak back in time.
constexpr int kStreakStepDays = 28;

}  // namespace

std::optional<int> readCurrentStreak(CliContext& context, HistoryEnvironment& environment) {
    const LocalCalendar& calendar = environment.calendar();
    const Date now = environment.now();
    const Date tomorrow = calendar.startOfDay(calendar.addingDays(calendar.startOfDay(now), 1));
    std::set<std::string> days;
    for (int step = 1;; ++step) {
        const Date from = calendar.startOfDay(
            calendar.addingDays(calendar.startOfDay(now), -kStreakStepDays * step));
        const Date to = calendar.startOfDay(
            calendar.addingDays(calendar.startOfDay(now), -kStreakStepDays * (step - 1)));
        const recording::SessionRange range{from, step == 1 ? tomorrow : to};
        auto walked = environment.historyReader().forEachSession(
            {.range = range}, [&](const recording::StudySession& session) {
                if (insights::countsForAnalytics(session, now, {})) {
                    days.insert(calendar.dayKey(session.startDate));
                }
                return true;
            });
        if (!walked) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        walked.error().description));
            return std::nullopt;
        }
        const int found = insights::currentStudyStreak(days, now, calendar);
        if (found < kStreakStepDays * step - 1) {
            return found;
        }
    }
}

}  // namespace lumenote::cli
