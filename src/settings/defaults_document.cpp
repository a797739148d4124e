#include "settings/defaults_document.hpp"

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

}  // namespace

std::optional<DefaultsValues> decodeDefaultsDocument(std::string_view text) {
    // The parser keeps its own stack and needs no limit; the depth it reports
    // for an array or object is the number of levels around it.
    bool tooDeep = false;
    const Json document = Json::parse(
        text,
        [&tooDeep](int depth, Json::parse_event_t event, Json&) {
            const bool opens = event == Json::parse_event_t::object_start ||
                               event == Json::parse_event_t::array_start;
            tooDeep = tooDeep || (opens && depth >= kMaximumDefaultsNesting);
            return true;
        },
        false);
    if (tooDeep || document.is_discarded() || !document.is_object()) {
        return std::nullopt;
    }
    DefaultsValues values;
    for (const auto& [key, value] : document.items()) {
        values.emplace(key, fromJson(value));
    }
    return values;
}

std::string encodeDefaultsDocument(const DefaultsValues& values) {
    Json document = Json::object();
    for (const auto& [key, value] : values) {
        document[key] = toJson(value);
    }
    return document.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace lumenote::settings
