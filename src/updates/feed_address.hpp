// Which update addresses Lumenote may connect to: https only, decided before
// any connection is made.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::updates {

// Whether `address` starts with "https://" (the scheme in any letter case)
// followed by a host, and holds no white space or control character.
bool isSecureAddress(std::string_view address);

// The address a check uses: the preference when it holds anything but white
// space (trimmed), otherwise the address compiled into this build (which may
// be empty: no feed configured).
std::string effectiveFeedAddress(std::string_view preference, std::string_view compiledIn);

}  // namespace lumenote::updates
