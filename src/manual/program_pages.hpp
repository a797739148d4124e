// What the manual pages of lumenote and lumenote-cli say beyond their command
// lines: the summary, where the files live, the environment, the exit
// statuses, the other pages.
#pragma once

#include <string_view>

#include "manual/man_page.hpp"

namespace lumenote::manual {

// The page content of lumenote-cli dated `date` ("YYYY-MM-DD").
ManPageContent terminalPageContent(std::string_view date);

// The page content of the desktop application lumenote dated `date`.
ManPageContent desktopPageContent(std::string_view date);

}  // namespace lumenote::manual
