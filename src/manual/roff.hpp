// Escaping text for roff input, so that whatever a help text says is printed
// as written and never read as a request, a macro or an escape.
#pragma once

#include <string>
#include <string_view>

namespace lumenote::manual {

// Running text: a backslash becomes \e, and a line beginning with '.' or '\''
// (which roff would take for a request) is guarded with \&. Hyphens stay
// hyphens, so that prose may break at them.
std::string escapeText(std::string_view text);

// A name the reader types (option, command, path): as escapeText, and every
// '-' becomes \-, the minus sign, so that copying it from the rendered page
// gives the ASCII hyphen-minus the program expects.
std::string escapeLiteral(std::string_view text);

// One argument of a macro line from already escaped text: every double quote
// as \(dq and every line break as a space, the whole in double quotes, so that
// spaces do not split it into several arguments.
std::string macroArgument(std::string_view escaped);

}  // namespace lumenote::manual
