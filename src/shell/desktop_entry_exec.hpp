// One argument of a desktop entry's Exec key, written so that the desktop
// reads back exactly the bytes given.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenote::shell {

// `argument` as it is written after "Exec=". Three rules of the desktop-entry
// format apply, in this order:
//   1. an argument holding a reserved character (space, tab, line feed,
//      carriage return, " ' \ > < ~ | & ; $ * ? # ( ) `) or an empty one is
//      put in double quotes, and inside them " ` $ and \ get a backslash;
//   2. a percent sign is doubled ("%%"), so that it is never a field code;
//   3. the value is escaped as any string value: \ becomes \\, tab \t, line
//      feed \n, carriage return \r.
// A backslash in a quoted argument therefore reads "\\\\" and a dollar sign
// "\\$". nullopt when the argument cannot be written at all: it is not valid
// UTF-8, or holds another control character (U+0000 ... U+001F, U+007F).
std::optional<std::string> execArgument(std::string_view argument);

}  // namespace lumenote::shell
