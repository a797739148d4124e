#include "settings/json_file_defaults_domain.hpp"

#include <utility>

#include <sys/stat.h>

#include <climits>
#include <nlohmann/json.hpp>

namespace lumenote::settings {

namespace {

using Json = nlohmann::json;

DefaultsValue fromJson(const Json& json) {
    switch (json.type()) {
        case Json::value_t::boolean:
            return json.get<bool>();
        case Json::value_t::number_integer:
            return json.get<long long>();
        case Json::value_t::number_unsigned:
            if (json.get<unsigned long long>() <= static_cast<unsigned long long>(LLONG_MAX)) {
                return json.get<long long>();
            }
            break;
        case Json::value_t::number_float:
            return json.get<double>();
        case Json::value_t::string:
            return json.get<std::string>();
        case Json::value_t::array: {
            std::vector<std::string> list;
            for (const auto& element : json) {
                if (!element.is_string()) {
                    return UnrecognisedDefaultsValue{json.dump()};
                }
                list.push_back(element.get<std::string>());
            }
            return list;
        }
        default:
            break;
    }
    return UnrecognisedDefaultsValue{json.dump()};
}

// JSON has no infinities or NaN: such a double is written as null and so reads
// back as a value of another type, which every preference treats as unusable.
Json toJson(const DefaultsValue& value) {
    return std::visit(
        [](const auto& held) -> Json {
            using T = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<T, UnrecognisedDefaultsValue>) {
                return Json::parse(held.json, nullptr, false);
            } else {
                return Json(held);
            }
        },
        value);
}

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
    const Json document = Json::parse(bytes.value(), nullptr, false);
    if (document.is_discarded() || !document.is_object()) {
        quarantineDamagedFile();
    } else {
        for (const auto& [key, value] : document.items()) {
            values_.emplace(key, fromJson(value));
        }
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
    Json document = Json::object();
    for (const auto& [key, value] : values_) {
        document[key] = toJson(value);
    }
    const std::string text = document.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
    const auto written = private_file::writeAtomically(path_, text, operations_);
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
