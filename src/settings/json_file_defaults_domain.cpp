#include "settings/json_file_defaults_domain.hpp"

#include <utility>

#include <sys/stat.h>

namespace lumenote::settings {

namespace {

bool sameTime(const std::timespec& a, const std::timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

bool JsonFileDefaultsDomain::FileSignature::operator==(const FileSignature& other) const {
    if (exists != other.exists) {
        return false;
    }
    return !exists || (device == other.device && inode == other.inode && size == other.size &&
                       sameTime(modified, other.modified) && sameTime(changed, other.changed));
}

std::filesystem::path JsonFileDefaultsDomain::pathFor(const UserPaths& paths) {
    return paths.applicationConfig() / "defaults.json";
}

JsonFileDefaultsDomain::JsonFileDefaultsDomain(std::filesystem::path path, Clock now,
                                               FileWriteOperations& operations)
    : path_(std::move(path)), now_(std::move(now)), operations_(operations) {}

JsonFileDefaultsDomain::FileSignature JsonFileDefaultsDomain::currentSignature() const {
    struct stat info {};
    if (::lstat(path_.c_str(), &info) != 0) {
        return {};
    }
    return {true, info.st_dev, info.st_ino, info.st_size, info.st_mtim, info.st_ctim};
}

void JsonFileDefaultsDomain::refreshIfChanged() {
    if (!seen_) {
        reload();
    } else if (!(*seen_ == currentSignature())) {
        reload();
        reloadedSinceLastRefresh_ = true;
    }
}

// Any read or write may have taken in another process's change already; it is
// still reported here once, so that the preferences announce it.
bool JsonFileDefaultsDomain::refreshFromStorage() {
    refreshIfChanged();
    return std::exchange(reloadedSinceLastRefresh_, false);
}

void JsonFileDefaultsDomain::reload() {
    values_.clear();
    auto bytes = private_file::read(path_, kMaximumDefaultsBytes);
    if (!bytes) {
        if (bytes.error() != PrivateFileError::missing) {
            quarantineDamagedFile();
        }
        seen_ = currentSignature();
        return;
    }
    if (auto decoded = decodeDefaultsDocument(bytes.value())) {
        values_ = std::move(*decoded);
    } else {
        quarantineDamagedFile();
    }
    seen_ = currentSignature();
}

void JsonFileDefaultsDomain::quarantineDamagedFile() {
    // When the file cannot even be moved aside it stays where it is; its
    // signature is remembered, so it is not tried again until it changes.
    if (auto moved = private_file::quarantine(path_, now_())) {
        lastQuarantinedPath_ = moved.value();
    }
}

void JsonFileDefaultsDomain::writeBack() {
    const auto written =
        private_file::writeAtomically(path_, encodeDefaultsDocument(values_), operations_);
    lastWriteError_ = written ? std::nullopt : std::optional(written.error());
    seen_ = currentSignature();
}

std::optional<DefaultsValue> JsonFileDefaultsDomain::object(std::string_view key) {
    refreshIfChanged();
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::vector<std::string> JsonFileDefaultsDomain::keys() {
    refreshIfChanged();
    std::vector<std::string> result;
    result.reserve(values_.size());
    for (const auto& entry : values_) {
        result.push_back(entry.first);
    }
    return result;
}

void JsonFileDefaultsDomain::set(std::string_view key, DefaultsValue value) {
    refreshIfChanged();
    values_.insert_or_assign(std::string(key), std::move(value));
    writeBack();
}

void JsonFileDefaultsDomain::remove(const std::vector<std::string>& keys) {
    refreshIfChanged();
    for (const auto& key : keys) {
        values_.erase(key);
    }
    writeBack();
}

}  // namespace lumenote::settings
