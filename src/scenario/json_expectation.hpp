// The expectations of scenario scripts: an expected JSON value compared with
// what the recorder stored.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace lumenote::scenario {

// Whether `actual` meets `expected`: numbers within a millisecond, null
// meaning "absent", "*" meaning "present", objects field by field (only the
// expected fields), arrays element by element. On a mismatch `why` names the
// place (starting from `path`) and both values.
bool matches(const nlohmann::json& expected, const nlohmann::json* actual, std::string& why,
             const std::string& path);

}  // namespace lumenote::scenario
