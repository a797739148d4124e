// A defaults domain held in memory, for checks and previews.
#pragma once

#include <map>

#include "settings/defaults_domain.hpp"

namespace lumenote::settings {

class InMemoryDefaultsDomain final : public DefaultsDomain {
  public:
    InMemoryDefaultsDomain() = default;
    explicit InMemoryDefaultsDomain(std::map<std::string, DefaultsValue, std::less<>> values)
        : values_(std::move(values)) {}

    std::optional<DefaultsValue> object(std::string_view key) override;
    std::vector<std::string> keys() override;
    void set(std::string_view key, DefaultsValue value) override;
    void remove(const std::vector<std::string>& keys) override;
    using DefaultsDomain::remove;

    // The number of calls that changed the domain (set or remove).
    int changeCount() const { return changeCount_; }

  private:
    std::map<std::string, DefaultsValue, std::less<>> values_;
    int changeCount_ = 0;
};

}  // namespace lumenote::settings
