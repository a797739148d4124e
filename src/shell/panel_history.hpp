// What the tray panel reads from the history when no session runs: the
// subjects offered for completion and today's study time.
#pragma once

#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/recording_store.hpp"
#include "settings/session_template.hpp"

namespace lumenote::shell {

// The subjects of the newest `sessionLimit` sessions, newest first, then the
// templates' subjects, each once (compared after trimming); nothing from the
// history when it cannot be read.
std::vector<std::string> subjectSuggestions(recording::RecordingStore& store,
                                            const std::vector<settings::SessionTemplate>& templates,
                                            std::size_t sessionLimit = 200);

// The study time of the finished sessions that started on `now`'s local day.
double todaysStudyTime(recording::RecordingStore& store, const LocalCalendar& calendar, Date now);

// "45 min studied today", "1 h 05 min of 2 h 00 min studied today" with a
// daily goal, "Nothing studied yet today" or "Nothing studied yet today
// (goal: 2 h 00 min)".
std::string todaysStudyText(double studySeconds, long long dailyGoalMinutes);

// How much of the daily goal is reached, 0 ... 1; 0 without a goal.
double dailyGoalProgress(double studySeconds, long long dailyGoalMinutes);

}  // namespace lumenote::shell
