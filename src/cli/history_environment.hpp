// What the history and rules commands of lumenote-cli work through: the
// object store, the preferences, the classification rules and the session
// history (the same services the recorder uses), opened in one place so that
// every command sees the same wiring; a session manager over a platform that
// observes nothing only for recovery; plus session-id lookup and the
// commands' own refusals.
//
// The command line never records. A session recorded by another process (the
// recorder) is visible only as a stored session whose status is running or
// paused; the history counts such a session as active and refuses deleting,
// deleting all, resetting and editing it while it exists.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/cli_context.hpp"
#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "platform/system/headless_platform.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_checkpoint_store.hpp"
#include "recording/session_manager.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::cli {

// Refusals of the history commands that the recorder itself never makes.
enum class HistoryCommandFailure {
    historyUnreadable,   // {error}: the store could not be read
    sessionIDMalformed,  // {id}
    sessionIDUnknown,    // {id}
    sessionIDAmbiguous,  // {id}
    resetNotConfirmed,
    ruleKeyUnknown,  // {key}: neither an application nor a website rule has it
};

std::string historyCommandFailureMessage(HistoryCommandFailure failure,
                                         std::string_view detail = {});

// The fewest hex digits a session-id prefix must have.
inline constexpr std::size_t kMinimumSessionIDPrefixDigits = 8;

// Whether the manager may use the recorder's recovery checkpoint. Only the
// recovery command takes it, and only while no recorder runs (it holds the
// recorder lock meanwhile).
enum class CheckpointAccess { none, recovery };

class HistoryEnvironment {
  public:
    // Opens (creating when absent) the store under `paths`. Fails with the
    // sentence for a store that cannot be opened.
    static Result<std::unique_ptr<HistoryEnvironment>, std::string> open(
        const UserPaths& paths, CheckpointAccess access = CheckpointAccess::none);

    HistoryEnvironment(const HistoryEnvironment&) = delete;
    HistoryEnvironment& operator=(const HistoryEnvironment&) = delete;

    recording::RecordingStore& store() { return *store_; }
    // The same store's walks over the recorded history.
    recording::SessionHistoryReader& historyReader() { return *store_; }
    // The same store's bulk import, for restoring a backup.
    recording::HistoryImporter& importer() { return *store_; }
    // The preferences over the user's defaults domain, read on first use.
    settings::PreferencesStore& preferences();
    recording::WallClock& wallClock() { return platform_.wallClock; }
    // The system's wall-clock time now.
    Date now() { return platform_.wallClock.now(); }
    // The local time zone the commands show dates in.
    const LocalCalendar& calendar() const { return calendar_; }

    // The session manager, built on first use (only recovery needs one):
    // starting it up loads the rule caches and brings stored totals up to
    // date, as the application does at launch. A problem met while starting
    // up is written to `warnings` and cleared, so that the manager's last
    // error afterwards belongs to the command's own operation.
    recording::SessionManager& manager(std::ostream& warnings);

    // The classification rules, loaded on first use; a rule set that could
    // not be loaded is written to `warnings`.
    classification::ClassificationRules& rules(std::ostream& warnings);

    // The history, built on first use with the stored totals brought up to
    // date (as the application does at launch); problems go to `warnings`.
    recording::SessionHistory& history(std::ostream& warnings);

    // The session named by `text`: a full id in either letter case, or a
    // prefix of at least kMinimumSessionIDPrefixDigits hex digits (hyphens
    // ignored) that exactly one stored session starts with. Fails with the
    // message to show; an ambiguous prefix lists the sessions it matches,
    // newest first.
    Result<Uuid, std::string> resolveSessionID(std::string_view text);

  private:
    HistoryEnvironment(UserPaths paths, std::unique_ptr<store::SqliteRecordingStore> store,
                       CheckpointAccess access);
    recording::RecordingPreferences& recordingPreferences();

    UserPaths paths_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
    LocalCalendar calendar_;
    platform::system::HeadlessPlatform platform_;
    // The recovery checkpoint belongs to the recorder: apart from the
    // recovery command, the command line must never read, move aside or
    // remove it, so its manager keeps an empty checkpoint in memory instead.
    std::unique_ptr<recording::SessionCheckpointStore> checkpoints_;
    std::unique_ptr<settings::JsonFileDefaultsDomain> defaults_;
    std::unique_ptr<settings::PreferencesStore> preferences_;
    std::unique_ptr<settings::PreferencesForRecording> recordingPreferences_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    bool rulesLoaded_ = false;
    std::unique_ptr<recording::SessionHistory> history_;
    std::unique_ptr<recording::SessionManager> manager_;
};

// The session named by `text` in `store`, by the rules of
// HistoryEnvironment::resolveSessionID; for commands that open the store
// themselves (export opens it for reading only).
Result<Uuid, std::string> resolveSessionID(recording::RecordingStore& store, std::string_view text);

// Opens the environment for a command. When the store cannot be opened the
// command is refused with the reason and nullptr is returned.
std::unique_ptr<HistoryEnvironment> openHistoryEnvironment(
    CliContext& context, CheckpointAccess access = CheckpointAccess::none);

}  // namespace lumenote::cli
