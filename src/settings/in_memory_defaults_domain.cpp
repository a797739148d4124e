#include "settings/in_memory_defaults_domain.hpp"

namespace lumenote::settings {

std::optional<DefaultsValue> InMemoryDefaultsDomain::object(std::string_view key) {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::vector<std::string> InMemoryDefaultsDomain::keys() {
    std::vector<std::string> result;
    result.reserve(values_.size());
    for (const auto& entry : values_) {
        result.push_back(entry.first);
    }
    return result;
}

void InMemoryDefaultsDomain::set(std::string_view key, DefaultsValue value) {
    values_.insert_or_assign(std::string(key), std::move(value));
    ++changeCount_;
}

void InMemoryDefaultsDomain::remove(const std::vector<std::string>& keys) {
    for (const auto& key : keys) {
        values_.erase(key);
    }
    ++changeCount_;
}

}  // namespace lumenote::settings
