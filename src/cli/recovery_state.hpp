// Whether a session waits for recovery, as the commands that are not the
// recorder tell it: a session the store still marks running or paused while
// no recorder runs was left by a recorder that stopped early (a crash, a
// kill, a power cut) and is offered for recovery at the next start.
#pragma once

#include <string>
#include <vector>

#include "cli/history_environment.hpp"

namespace lumenote::cli {

// True while a recorder holds the recorder lock, found without touching the
// lock, so that asking never stops a recorder from starting.
bool recorderIsRunning(const UserPaths& paths);

// The sessions waiting for recovery: the live sessions of the store when no
// recorder runs, none otherwise.
std::vector<recording::StudySession> sessionsAwaitingRecovery(HistoryEnvironment& environment,
                                                              const UserPaths& paths);

// What to do about a session waiting for recovery, in one sentence.
std::string recoveryHint(const recording::StudySession& session, const LocalCalendar& calendar);

}  // namespace lumenote::cli
