#include "shell/panel_history.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "foundation/text.hpp"
#include "recording/study_time.hpp"
#include "shell/duration_text.hpp"

namespace lumenote::shell {

std::vector<std::string> subjectSuggestions(recording::RecordingStore& store,
                                            const std::vector<settings::SessionTemplate>& templates,
                                            std::size_t sessionLimit) {
    std::vector<std::string> suggestions;
    std::set<std::string> seen;
    const auto offer = [&](std::string_view subject) {
        std::string trimmed = text::trimmed(subject);
        if (!trimmed.empty() && seen.insert(trimmed).second) {
            suggestions.push_back(std::move(trimmed));
        }
    };
    recording::SessionQuery query;
    query.limit = sessionLimit;
    if (auto sessions = store.listSessions(query); sessions.ok()) {
        for (const recording::StudySession& session : *sessions) {
            offer(session.subject);
        }
    }
    for (const settings::SessionTemplate& candidate : templates) {
        offer(candidate.subject);
    }
    return suggestions;
}

double todaysStudyTime(recording::RecordingStore& store, const LocalCalendar& calendar, Date now) {
    recording::SessionQuery query;
    query.startingAtOrAfter = calendar.startOfDay(now);
    query.startingBefore = calendar.addingDays(*query.startingAtOrAfter, 1);
    auto sessions = store.listSessions(query);
    if (!sessions.ok()) {
        return 0.0;
    }
    double total = 0.0;
    for (const recording::StudySession& session : *sessions) {
        if (session.status() == recording::StudySessionStatus::completed ||
            session.status() == recording::StudySessionStatus::interrupted) {
            total += recording::studyTime(session);
        }
    }
    return total;
}

std::string todaysStudyText(double studySeconds, long long dailyGoalMinutes) {
    const std::string goal = dailyGoalMinutes > 0
                                 ? durationText(static_cast<double>(dailyGoalMinutes) * 60.0)
                                 : std::string();
    if (!(studySeconds >= 0.5)) {
        return goal.empty() ? "Nothing studied yet today"
                            : "Nothing studied yet today (goal: " + goal + ")";
    }
    return durationText(studySeconds) + (goal.empty() ? "" : " of " + goal) + " studied today";
}

double dailyGoalProgress(double studySeconds, long long dailyGoalMinutes) {
    if (dailyGoalMinutes <= 0 || !std::isfinite(studySeconds) || studySeconds <= 0.0) {
        return 0.0;
    }
    return std::min(1.0, studySeconds / (static_cast<double>(dailyGoalMinutes) * 60.0));
}

}  // namespace lumenote::shell
