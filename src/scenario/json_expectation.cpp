#include "scenario/json_expectation.hpp"

#include <fmt/format.h>

#include <cmath>

namespace lumenote::scenario {

using nlohmann::json;

bool matches(const json& expected, const json* actual, std::string& why, const std::string& path) {
    if (expected.is_null()) {
        if (actual != nullptr && !actual->is_null()) {
            why = fmt::format("{}: expected absent, found {}", path, actual->dump());
            return false;
        }
        return true;
    }
    if (actual == nullptr || actual->is_null()) {
        why = fmt::format("{}: expected {}, found nothing", path, expected.dump());
        return false;
    }
    if (expected == "*") {
        return true;  // any value, as long as there is one
    }
    if (expected.is_number() && actual->is_number()) {
        if (std::fabs(expected.get<double>() - actual->get<double>()) > 0.001) {
            why = fmt::format("{}: expected {}, found {}", path, expected.dump(), actual->dump());
            return false;
        }
        return true;
    }
    if (expected.is_object() && actual->is_object()) {
        for (const auto& [key, value] : expected.items()) {
            const auto found = actual->find(key);
            if (!matches(value, found == actual->end() ? nullptr : &*found, why,
                         path + "." + key)) {
                return false;
            }
        }
        return true;
    }
    if (expected.is_array() && actual->is_array()) {
        if (expected.size() != actual->size()) {
            why = fmt::format("{}: expected {} entries, found {}", path, expected.size(),
                              actual->size());
            return false;
        }
        for (std::size_t i = 0; i < expected.size(); ++i) {
            if (!matches(expected[i], &(*actual)[i], why, fmt::format("{}[{}]", path, i))) {
                return false;
            }
        }
        return true;
    }
    if (expected != *actual) {
        why = fmt::format("{}: expected {}, found {}", path, expected.dump(), actual->dump());
        return false;
    }
    return true;
}

}  // namespace lumenote::scenario
