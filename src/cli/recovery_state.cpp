#include "cli/recovery_state.hpp"

#include <fmt/format.h>

#include "store/recorder_lock.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {

bool recorderIsRunning(const UserPaths& paths) {
    return store::RecorderLock::runningHolder(store::recorderLockPath(paths)).has_value();
}

std::vector<recording::StudySession> sessionsAwaitingRecovery(HistoryEnvironment& environment,
                                                              const UserPaths& paths) {
    if (recorderIsRunning(paths)) {
        return {};
    }
    auto live = environment.store().liveSessions();
    return live.ok() ? std::move(live).value() : std::vector<recording::StudySession>{};
}

std::string recoveryHint(const recording::StudySession& session, const LocalCalendar& calendar) {
    std::string started = calendar.formatIso8601(session.startDate).substr(0, 16);
    started[10] = ' ';
    return fmt::format(
        "\"{}\" (started {}) was left unfinished and waits for recovery: see it with "
        "`lumenote-cli recovery status`, end it with `lumenote-cli recovery end`, or go on with "
        "it with `lumenote-cli record --recovery continue`.",
        session.subject, started);
}

}  // namespace lumenote::cli
