// BrowserBridgeStore: the bridge directory shared by the recorder and the
// native-messaging host, its layout, its documents and the bridge token.
//
//   <root>/bridge-token        the token (recorder, created once and kept)
//   <root>/state.json          BrowserBridgeState (recorder)
//   <root>/preferences.json    BrowserBridgePreferencesEnvelope (recorder)
//   <root>/Inbox/*.event       one BrowserBridgeEnvelope per received event (host)
//   <root>/Commands/*.command  BrowserBridgeCommandEnvelope, in name order (recorder)
//   <root>/Readiness/<bundle identifier>.readiness  (host)
//
// Folders are mode 0700, files 0600, every file is written through a
// ".temporary" sibling renamed over it, and names ending in ".temporary"
// are never read. A document of another format version than
// kBridgeDocumentVersion is never handed on (nor rewritten by a reader): it
// reads as absent or malformed. Inbox and readiness files, written by the host for every
// event and heartbeat and worthless after a restart, are not forced to disk;
// the others are. Both sides use this class: the recorder prepares the
// directory; the host only ever reads the token and never creates it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "bridge/bridge_documents.hpp"
#include "foundation/private_file.hpp"
#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::bridge {

enum class BrowserBridgeStoreError { tokenUnavailable, payloadTooLarge, malformedEnvelope };

std::string message(BrowserBridgeStoreError error);

// A write fails for a bridge reason or because the file system refused it.
using BrowserBridgeWriteError = std::variant<BrowserBridgeStoreError, PrivateFileError>;
std::string describe(const BrowserBridgeWriteError& error);

// The largest command envelope queued, and the largest inbox, readiness,
// state or preferences file read, in bytes.
inline constexpr std::size_t kMaximumBridgeDocumentBytes = 16384;
// How many inbox files one drain handles, so that a flood of events is worked
// off over several short drains instead of stalling one tick.
inline constexpr std::size_t kInboxFilesPerDrain = 256;

// What the store hands on for one accepted inbox file.
struct BrowserBridgeQueuedPayload {
    std::string eventData;
    Date receivedAt;
    Uuid sessionIdentifier;  // the session the host saw running when it received the event
};

struct BrowserBridgeInboxRejection {
    std::string fileName;
    BrowserBridgeStoreError error = BrowserBridgeStoreError::malformedEnvelope;
};

struct BrowserBridgeInboxDrain {
    std::vector<BrowserBridgeQueuedPayload> accepted;  // oldest first
    std::vector<BrowserBridgeInboxRejection> rejected;
    bool moreWaiting = false;  // files were left for the next drain
};

class BrowserBridgeStore {
  public:
    // `rootURL` is the bridge directory; nothing is touched until an
    // operation runs.
    explicit BrowserBridgeStore(std::filesystem::path rootURL,
                                FileWriteOperations& operations = systemFileWriteOperations());

    // "TALLYWISE_BRIDGE_DIR" when set and not empty, else
    // $XDG_DATA_HOME/Tallywise/BrowserBridge.
    static std::filesystem::path defaultRoot(const UserPaths& paths,
                                             const EnvironmentLookup& environment);

    const std::filesystem::path& rootURL() const { return rootURL_; }

    // ---- the recorder's side ----
    // Creates the directory and its three folders (0700) and creates or reads
    // the token. A token file that is not a well-formed token is moved aside
    // and a new token made; one that cannot be read (a symbolic link, not a
    // regular file) or created is tokenUnavailable. A well-formed token whose
    // file is not 0600 is written again so that it is private.
    Result<std::string, BrowserBridgeStoreError> prepare();
    Result<void, BrowserBridgeWriteError> writeState(const BrowserBridgeState& state);
    Result<void, BrowserBridgeWriteError> writePreferences(bool filenameLabelsEnabled);
    // Queues `command` under "%020lld-%@.command" (its creation time in
    // microseconds since 1970, its id). An envelope of more than
    // kMaximumBridgeDocumentBytes is payloadTooLarge. Returns the file name.
    Result<std::string, BrowserBridgeWriteError> queueCommand(const BrowserBridgeCommand& command);
    // Handles at most `maximumFiles` inbox files, oldest first by name (the
    // host names them by receive time), and deletes each once handled,
    // accepted or not. A file's size is checked before it is read.
    BrowserBridgeInboxDrain drainInbox(std::size_t maximumFiles = kInboxFilesPerDrain);
    // The readiness of each browser whose readiness file carries the token.
    std::vector<BrowserBridgeReadiness> readReadiness() const;

    // ---- the host's side ----
    // The token as it stands; tokenUnavailable when there is none.
    Result<std::string, BrowserBridgeStoreError> readToken() const;
    std::optional<BrowserBridgeState> readState() const;
    // The preferences when they carry the token.
    std::optional<BrowserBridgePreferencesEnvelope> readPreferences() const;
    // Writes one received event into the inbox; returns the file name.
    Result<std::string, BrowserBridgeWriteError> writeInboxEnvelope(
        const BrowserBridgeEnvelope& envelope);
    Result<void, BrowserBridgeWriteError> writeReadiness(const BrowserBridgeReadiness& readiness);
    // The names of the queued command files in ascending (queue) order.
    std::vector<std::string> queuedCommandNames() const;
    // Reads one queued command; malformedEnvelope for a wrong token or bad
    // JSON, payloadTooLarge for an oversized file.
    Result<BrowserBridgeCommand, BrowserBridgeStoreError> readCommand(
        const std::string& fileName) const;
    void removeCommand(const std::string& fileName) const;

    std::filesystem::path inboxFolder() const { return rootURL_ / "Inbox"; }
    std::filesystem::path commandsFolder() const { return rootURL_ / "Commands"; }
    std::filesystem::path readinessFolder() const { return rootURL_ / "Readiness"; }
    std::filesystem::path tokenPath() const { return rootURL_ / "bridge-token"; }
    std::filesystem::path statePath() const { return rootURL_ / "state.json"; }
    std::filesystem::path preferencesPath() const { return rootURL_ / "preferences.json"; }

  private:
    Result<void, BrowserBridgeWriteError> write(
        const std::filesystem::path& path, const std::string& contents,
        private_file::Durability durability = private_file::Durability::synced);
    Result<BrowserBridgeQueuedPayload, BrowserBridgeStoreError> readInboxFile(
        const std::filesystem::path& path, const std::string& token) const;

    std::filesystem::path rootURL_;
    FileWriteOperations& operations_;
};

// "%020lld-<UUID>.<extension>": microseconds since 1970 of `date`, truncated
// and zero-padded to 20 digits, so that plain name order is time order.
std::string timeOrderedFileName(Date date, const Uuid& id, std::string_view extension);

}  // namespace lumenote::bridge
