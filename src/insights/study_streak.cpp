#include "insights/study_streak.hpp"

#include <set>
#include <string>

#include "insights/weekly_figures.hpp"

namespace lumenote::insights {

Result<int, StoreError> readCurrentStudyStreak(
    recording::SessionHistoryReader& reader, const LocalCalendar& calendar, Date now,
    const SetupTestSessionPredicate& isSetupTestSession) {
    const Date today = calendar.startOfDay(now);
    const Date tomorrow = calendar.startOfDay(calendar.addingDays(today, 1));
    std::set<std::string> days;
    for (int step = 1;; ++step) {
        const Date from = calendar.startOfDay(calendar.addingDays(today, -kStreakStepDays * step));
        const Date to =
            calendar.startOfDay(calendar.addingDays(today, -kStreakStepDays * (step - 1)));
        const recording::SessionRange range{from, step == 1 ? tomorrow : to};
        auto walked =
            reader.forEachSession({.range = range}, [&](const recording::StudySession& session) {
                if (countsForAnalytics(session, now, isSetupTestSession)) {
                    days.insert(calendar.dayKey(session.startDate));
                }
                return true;
            });
        if (!walked) {
            return fail(walked.error());
        }
        const int found = currentStudyStreak(days, now, calendar);
        // A streak shorter than the days read so far ended inside them.
        if (found < kStreakStepDays * step - 1) {
            return found;
        }
    }
}

}  // namespace lumenote::insights
