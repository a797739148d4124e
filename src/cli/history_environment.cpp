#include "cli/history_environment.hpp"

#include <fmt/format.h>

#include <cctype>

#include "foundation/text.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {

std::string historyCommandFailureMessage(HistoryCommandFailure failure, std::string_view detail) {
    switch (failure) {
        case HistoryCommandFailure::historyUnreadable:
            return fmt::format("Session history could not be read: {}", detail);
        case HistoryCommandFailure::sessionIDMalformed:
            return fmt::format(
                "\"{}\" is not a session id. Give the whole id or at least its first {} hex "
                "digits.",
                detail, kMinimumSessionIDPrefixDigits);
        case HistoryCommandFailure::sessionIDUnknown:
            return fmt::format("No session has the id {}.", detail);
        case HistoryCommandFailure::sessionIDAmbiguous:
            return fmt::format("More than one session has an id starting with {}:", detail);
        case HistoryCommandFailure::resetNotConfirmed:
            return "Nothing was reset. To reset Lumenote, run: lumenote-cli reset --confirm RESET";
        case HistoryCommandFailure::ruleKeyUnknown:
            return fmt::format(
                "No application or website rule has the key {} (see lumenote-cli rules list).",
                detail);
    }
    return {};
}

HistoryEnvironment::HistoryEnvironment(UserPaths paths,
                                       std::unique_ptr<store::SqliteRecordingStore> store,
                                       CheckpointAccess access)
    : paths_(std::move(paths)), store_(std::move(store)), calendar_(LocalCalendar::current()) {
    rules_ = std::make_unique<classification::ClassificationRules>(
        *store_, [this] { return platform_.wallClock.now(); }, recording::kOwnBundleIdentifier);
    if (access == CheckpointAccess::recovery) {
        checkpoints_ = std::make_unique<recording::FileSessionCheckpointStore>(
            paths_.applicationData(), platform_.wallClock);
    } else {
        checkpoints_ = std::make_unique<recording::InMemorySessionCheckpointStore>();
    }
}

Result<std::unique_ptr<HistoryEnvironment>, std::string> HistoryEnvironment::open(
    const UserPaths& paths, CheckpointAccess access) {
    auto store = store::SqliteRecordingStore::open(store::storePath(paths));
    if (!store.ok()) {
        return fail(store::storageOpenFailureMessage(store.error()));
    }
    return std::unique_ptr<HistoryEnvironment>(
        new HistoryEnvironment(paths, std::move(store).value(), access));
}

recording::RecordingPreferences& HistoryEnvironment::recordingPreferences() {
    if (!recordingPreferences_) {
        defaults_ = std::make_unique<settings::JsonFileDefaultsDomain>(
            settings::JsonFileDefaultsDomain::pathFor(paths_),
            [this] { return platform_.wallClock.now(); });
        preferences_ = std::make_unique<settings::PreferencesStore>(*defaults_);
        recordingPreferences_ = std::make_unique<settings::PreferencesForRecording>(*preferences_);
    }
    return *recordingPreferences_;
}

settings::PreferencesStore& HistoryEnvironment::preferences() {
    recordingPreferences();
    return *preferences_;
}

recording::SessionHistory& HistoryEnvironment::history(std::ostream& warnings) {
    if (!history_) {
        history_ = std::make_unique<recording::SessionHistory>(
            recording::SessionHistoryDependencies{*store_,
                                                  rules(warnings),
                                                  recordingPreferences(),
                                                  platform_.monotonicClock,
                                                  platform_.wallClock,
                                                  {}});
        if (auto upToDate = history_->bringTotalsUpToDate(); !upToDate.ok()) {
            warnings << upToDate.error().message() << '\n';
        }
    }
    return *history_;
}

recording::SessionManager& HistoryEnvironment::manager(std::ostream& warnings) {
    if (manager_) {
        return *manager_;
    }
    recording::SessionHistory& sessions = history(warnings);
    manager_ = std::make_unique<recording::SessionManager>(recording::SessionManagerDependencies{
        *store_, recordingPreferences(), platform_.idleTime, platform_.monotonicClock,
        platform_.wallClock, platform_.frontmostApplication, platform_.notifications,
        platform_.browserTracking, *checkpoints_, *rules_, sessions});
    const auto shown =
        manager_->problems().add([&warnings](const recording::SessionError& problem) {
            warnings << problem.message() << '\n';
        });
    manager_->startUp();
    manager_->problems().remove(shown);
    return *manager_;
}

classification::ClassificationRules& HistoryEnvironment::rules(std::ostream& warnings) {
    if (!rulesLoaded_) {
        rulesLoaded_ = true;
        for (const classification::ClassificationError& problem : rules_->load()) {
            warnings << problem.message() << '\n';
        }
    }
    return *rules_;
}

namespace {

// The hex digits of `text` in lower case with hyphens dropped; nullopt when
// anything else appears.
std::optional<std::string> hexDigits(std::string_view text) {
    std::string digits;
    for (const char c : text) {
        if (c == '-') {
            continue;
        }
        if (!std::isxdigit(static_cast<unsigned char>(c))) {
            return std::nullopt;
        }
        digits.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
    return digits;
}

}  // namespace

Result<Uuid, std::string> HistoryEnvironment::resolveSessionID(std::string_view text) {
    return cli::resolveSessionID(*store_, text);
}

Result<Uuid, std::string> resolveSessionID(recording::RecordingStore& store,
                                           std::string_view text) {
    const std::string given = text::trimmed(text);
    if (const auto whole = Uuid::parse(given)) {
        auto loaded = store.loadSession(*whole);
        if (!loaded.ok()) {
            return fail(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                     loaded.error().description));
        }
        if (!loaded->has_value()) {
            return fail(
                historyCommandFailureMessage(HistoryCommandFailure::sessionIDUnknown, given));
        }
        return *whole;
    }
    const auto prefix = hexDigits(given);
    if (!prefix || prefix->size() < kMinimumSessionIDPrefixDigits || prefix->size() > 32) {
        return fail(historyCommandFailureMessage(HistoryCommandFailure::sessionIDMalformed, given));
    }
    auto sessions = store.listSessions(recording::SessionQuery{});
    if (!sessions.ok()) {
        return fail(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                 sessions.error().description));
    }
    std::vector<Uuid> matches;
    for (const recording::StudySession& session : *sessions) {
        if (hexDigits(session.id.lowerString())->starts_with(*prefix)) {
            matches.push_back(session.id);
        }
    }
    if (matches.empty()) {
        return fail(historyCommandFailureMessage(HistoryCommandFailure::sessionIDUnknown, given));
    }
    if (matches.size() > 1) {
        std::string message =
            historyCommandFailureMessage(HistoryCommandFailure::sessionIDAmbiguous, given);
        for (const Uuid& id : matches) {
            message += "\n  " + id.upperString();
        }
        return fail(std::move(message));
    }
    return matches.front();
}

std::unique_ptr<HistoryEnvironment> openHistoryEnvironment(CliContext& context,
                                                           CheckpointAccess access) {
    auto opened = HistoryEnvironment::open(context.paths, access);
    if (!opened.ok()) {
        context.refuse(opened.error());
        return nullptr;
    }
    return std::move(opened).value();
}

}  // namespace lumenote::cli
