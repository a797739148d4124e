// What the application shows instead of recording when its local storage
// cannot be opened at start-up. Where the reason is known the text is the
// store's own sentence ("Local storage could not be opened ({reason}). No
// study activity was recorded.", store/store_files.hpp).
#pragma once

#include <string_view>

namespace lumenote::shell {

inline constexpr std::string_view kStartupFailureTitle = "Lumenote could not start";
inline constexpr std::string_view kStorageUnavailableText =
    "Lumenote could not initialise local storage.";

}  // namespace lumenote::shell
