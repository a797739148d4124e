#include "bridge/browser_bridge_store.hpp"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <system_error>

#include "bridge/bridge_token.hpp"

namespace lumenote::bridge {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kInboxExtension = ".event";
constexpr std::string_view kCommandExtension = ".command";
constexpr std::string_view kReadinessExtension = ".readiness";
constexpr std::string_view kTemporarySuffix = ".temporary";
constexpr std::size_t kMaximumTokenFileBytes = 1024;

bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

struct FolderNames {
    std::vector<std::string> first;  // in name order
    std::size_t total = 0;
};

// Reads `folder` once: counts the names that end in `extension` (never a
// ".temporary" one) and keeps the first `limit` of them in name order; an
// unreadable folder has none. A flooded inbox is listed on every drain while
// only its oldest batch is taken, so the names go through readdir (no path
// object per entry) into a bounded max-heap instead of being kept and sorted.
FolderNames namesEndingIn(const fs::path& folder, std::string_view extension,
                          std::size_t limit = std::numeric_limits<std::size_t>::max()) {
    FolderNames names;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(::opendir(folder.c_str()), ::closedir);
    if (!directory) {
        return names;
    }
    std::vector<std::string>& heap = names.first;
    while (const dirent* entry = ::readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        if (!endsWith(name, extension) || endsWith(name, kTemporarySuffix)) {
            continue;
        }
        ++names.total;
        if (heap.size() < limit) {
            heap.emplace_back(name);
            std::push_heap(heap.begin(), heap.end());
        } else if (!heap.empty() && name < heap.front()) {
            std::pop_heap(heap.begin(), heap.end());
            heap.back() = name;
            std::push_heap(heap.begin(), heap.end());
        }
    }
    std::sort_heap(heap.begin(), heap.end());
    return names;
}

Failure<BrowserBridgeWriteError> writeFailure(BrowserBridgeStoreError error) {
    return fail(BrowserBridgeWriteError(error));
}

// A document of another format version is not understood here: it is never
// handed on, and it is left in place for the party that knows its layout.
template <typename Document>
bool ofThisVersion(const Document& document) {
    return document.version == kBridgeDocumentVersion;
}

// Whether `path` itself has exactly the private file mode, 0600.
bool isPrivateFile(const fs::path& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0 && (info.st_mode & 07777) == 0600;
}

BrowserBridgeStoreError readFailure(PrivateFileError error) {
    return error == PrivateFileError::tooLarge ? BrowserBridgeStoreError::payloadTooLarge
                                               : BrowserBridgeStoreError::malformedEnvelope;
}

}  // namespace

std::string message(BrowserBridgeStoreError error) {
    switch (error) {
        case BrowserBridgeStoreError::tokenUnavailable:
            return "Lumenote is not running or its browser bridge is not ready.";
        case BrowserBridgeStoreError::payloadTooLarge:
            return "The browser message exceeds Lumenote's size limit.";
        case BrowserBridgeStoreError::malformedEnvelope:
            return "The browser bridge message is malformed.";
    }
    return {};
}

std::string describe(const BrowserBridgeWriteError& error) {
    if (const auto* bridgeError = std::get_if<BrowserBridgeStoreError>(&error)) {
        return message(*bridgeError);
    }
    return std::string(describe(std::get<PrivateFileError>(error)));
}

std::string timeOrderedFileName(Date date, const Uuid& id, std::string_view extension) {
    const double microseconds = std::trunc(date.unixSeconds() * 1'000'000.0);
    const auto clamped = static_cast<long long>(
        std::clamp(microseconds, static_cast<double>(std::numeric_limits<long long>::min()),
                   static_cast<double>(std::numeric_limits<long long>::max() / 2)));
    char counter[32];
    std::snprintf(counter, sizeof counter, "%020lld", clamped);
    return std::string(counter) + "-" + id.upperString() + "." + std::string(extension);
}

BrowserBridgeStore::BrowserBridgeStore(fs::path rootURL, FileWriteOperations& operations)
    : rootURL_(std::move(rootURL)), operations_(operations) {}

fs::path BrowserBridgeStore::defaultRoot(const UserPaths& paths,
                                         const EnvironmentLookup& environment) {
    if (const char* configured = environment("TALLYWISE_BRIDGE_DIR");
        configured && *configured != '\0') {
        return fs::path(configured);
    }
    return paths.dataHome / "Tallywise" / "BrowserBridge";
}

Result<void, BrowserBridgeWriteError> BrowserBridgeStore::write(
    const fs::path& path, const std::string& contents, private_file::Durability durability) {
    if (auto written = private_file::writeAtomically(path, contents, operations_, durability);
        !written) {
        return fail(BrowserBridgeWriteError(written.error()));
    }
    return {};
}

Result<std::string, BrowserBridgeStoreError> BrowserBridgeStore::prepare() {
    for (const fs::path& folder : {rootURL_, inboxFolder(), commandsFolder(), readinessFolder()}) {
        if (!private_file::ensureFolder(folder)) {
            return fail(BrowserBridgeStoreError::tokenUnavailable);
        }
    }
    auto existing = private_file::read(tokenPath(), kMaximumTokenFileBytes);
    if (existing && isWellFormedBridgeToken(existing.value())) {
        // The token is the bridge's secret and is never rewritten otherwise:
        // one made readable by others is written again, which makes it 0600.
        if (!isPrivateFile(tokenPath()) &&
            !private_file::writeAtomically(tokenPath(), existing.value(), operations_)) {
            return fail(BrowserBridgeStoreError::tokenUnavailable);
        }
        return std::move(existing).value();
    }
    if (!existing && existing.error() != PrivateFileError::missing &&
        existing.error() != PrivateFileError::tooLarge) {
        return fail(BrowserBridgeStoreError::tokenUnavailable);
    }
    if (existing || existing.error() == PrivateFileError::tooLarge) {
        if (!private_file::quarantine(tokenPath(), systemNow())) {
            return fail(BrowserBridgeStoreError::tokenUnavailable);
        }
    }
    auto token = generateBridgeToken();
    if (!token || !private_file::writeAtomically(tokenPath(), *token, operations_)) {
        return fail(BrowserBridgeStoreError::tokenUnavailable);
    }
    return std::move(*token);
}

Result<std::string, BrowserBridgeStoreError> BrowserBridgeStore::readToken() const {
    auto read = private_file::read(tokenPath(), kMaximumTokenFileBytes);
    if (!read || !isWellFormedBridgeToken(read.value())) {
        return fail(BrowserBridgeStoreError::tokenUnavailable);
    }
    return std::move(read).value();
}

Result<void, BrowserBridgeWriteError> BrowserBridgeStore::writeState(
    const BrowserBridgeState& state) {
    return write(statePath(), encodeState(state));
}

Result<void, BrowserBridgeWriteError> BrowserBridgeStore::writePreferences(
    bool filenameLabelsEnabled) {
    auto token = readToken();
    if (!token) {
        return writeFailure(token.error());
    }
    return write(preferencesPath(),
                 encodePreferences({kBridgeDocumentVersion, token.value(), filenameLabelsEnabled}));
}

Result<std::string, BrowserBridgeWriteError> BrowserBridgeStore::queueCommand(
    const BrowserBridgeCommand& command) {
    auto token = readToken();
    if (!token) {
        return writeFailure(token.error());
    }
    const std::string encoded =
        encodeCommandEnvelope({kBridgeDocumentVersion, token.value(), command});
    if (encoded.size() > kMaximumBridgeDocumentBytes) {
        return writeFailure(BrowserBridgeStoreError::payloadTooLarge);
    }
    std::string name = timeOrderedFileName(command.createdAt, command.id, "command");
    if (auto written = write(commandsFolder() / name, encoded); !written) {
        return fail(written.error());
    }
    return name;
}

Result<BrowserBridgeQueuedPayload, BrowserBridgeStoreError> BrowserBridgeStore::readInboxFile(
    const fs::path& path, const std::string& token) const {
    auto bytes = private_file::read(path, kMaximumBridgeDocumentBytes);
    if (!bytes) {
        return fail(readFailure(bytes.error()));
    }
    auto envelope = decodeEnvelope(bytes.value());
    if (!envelope || !ofThisVersion(*envelope) || !bridgeTokensMatch(token, envelope->token)) {
        return fail(BrowserBridgeStoreError::malformedEnvelope);
    }
    return BrowserBridgeQueuedPayload{std::move(envelope->eventData), envelope->receivedAt,
                                      envelope->sessionIdentifier};
}

BrowserBridgeInboxDrain BrowserBridgeStore::drainInbox(std::size_t maximumFiles) {
    BrowserBridgeInboxDrain drain;
    const FolderNames listed = namesEndingIn(inboxFolder(), kInboxExtension, maximumFiles);
    const std::vector<std::string>& names = listed.first;
    drain.moreWaiting = listed.total > names.size();
    const auto token = readToken();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const fs::path path = inboxFolder() / names[i];
        if (!token) {
            drain.rejected.push_back({names[i], BrowserBridgeStoreError::tokenUnavailable});
        } else if (auto payload = readInboxFile(path, token.value())) {
            drain.accepted.push_back(std::move(payload).value());
        } else {
            drain.rejected.push_back({names[i], payload.error()});
        }
        std::error_code ignored;
        fs::remove(path, ignored);
    }
    return drain;
}

std::vector<BrowserBridgeReadiness> BrowserBridgeStore::readReadiness() const {
    std::vector<BrowserBridgeReadiness> found;
    const auto token = readToken();
    if (!token) {
        return found;
    }
    for (const std::string& name : namesEndingIn(readinessFolder(), kReadinessExtension).first) {
        auto bytes = private_file::read(readinessFolder() / name, kMaximumBridgeDocumentBytes);
        if (!bytes) {
            continue;
        }
        auto envelope = decodeReadinessEnvelope(bytes.value());
        if (envelope && ofThisVersion(*envelope) &&
            bridgeTokensMatch(token.value(), envelope->token)) {
            found.push_back(std::move(envelope->readiness));
        }
    }
    return found;
}

std::optional<BrowserBridgeState> BrowserBridgeStore::readState() const {
    auto bytes = private_file::read(statePath(), kMaximumBridgeDocumentBytes);
    if (!bytes) {
        return std::nullopt;
    }
    auto state = decodeState(bytes.value());
    return state && ofThisVersion(*state) ? std::optional(std::move(state).value()) : std::nullopt;
}

std::optional<BrowserBridgePreferencesEnvelope> BrowserBridgeStore::readPreferences() const {
    const auto token = readToken();
    auto bytes = private_file::read(preferencesPath(), kMaximumBridgeDocumentBytes);
    if (!token || !bytes) {
        return std::nullopt;
    }
    auto preferences = decodePreferences(bytes.value());
    if (!preferences || !ofThisVersion(*preferences) ||
        !bridgeTokensMatch(token.value(), preferences->token)) {
        return std::nullopt;
    }
    return std::move(preferences).value();
}

Result<std::string, BrowserBridgeWriteError> BrowserBridgeStore::writeInboxEnvelope(
    const BrowserBridgeEnvelope& envelope) {
    const std::string encoded = encodeEnvelope(envelope);
    if (encoded.size() > kMaximumBridgeDocumentBytes) {
        return writeFailure(BrowserBridgeStoreError::payloadTooLarge);
    }
    std::string name = timeOrderedFileName(envelope.receivedAt, Uuid::generate(), "event");
    if (auto written = write(inboxFolder() / name, encoded, private_file::Durability::unsynced);
        !written) {
        return fail(written.error());
    }
    return name;
}

Result<void, BrowserBridgeWriteError> BrowserBridgeStore::writeReadiness(
    const BrowserBridgeReadiness& readiness) {
    auto token = readToken();
    if (!token) {
        return writeFailure(token.error());
    }
    const std::string name = readiness.browserBundleIdentifier + std::string(kReadinessExtension);
    if (name.find('/') != std::string::npos || name.front() == '.') {
        return writeFailure(BrowserBridgeStoreError::malformedEnvelope);
    }
    return write(readinessFolder() / name,
                 encodeReadinessEnvelope({kBridgeDocumentVersion, token.value(), readiness}),
                 private_file::Durability::unsynced);
}

std::vector<std::string> BrowserBridgeStore::queuedCommandNames() const {
    return namesEndingIn(commandsFolder(), kCommandExtension).first;
}

Result<BrowserBridgeCommand, BrowserBridgeStoreError> BrowserBridgeStore::readCommand(
    const std::string& fileName) const {
    const auto token = readToken();
    if (!token) {
        return fail(token.error());
    }
    auto bytes = private_file::read(commandsFolder() / fileName, kMaximumBridgeDocumentBytes);
    if (!bytes) {
        return fail(readFailure(bytes.error()));
    }
    auto envelope = decodeCommandEnvelope(bytes.value());
    if (!envelope || !ofThisVersion(*envelope) ||
        !bridgeTokensMatch(token.value(), envelope->token)) {
        return fail(BrowserBridgeStoreError::malformedEnvelope);
    }
    return std::move(envelope->command);
}

void BrowserBridgeStore::removeCommand(const std::string& fileName) const {
    std::error_code ignored;
    fs::remove(commandsFolder() / fileName, ignored);
}

}  // namespace lumenote::bridge
