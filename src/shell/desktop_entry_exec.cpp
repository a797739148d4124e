#include "shell/desktop_entry_exec.hpp"

#include "foundation/text.hpp"

namespace lumenote::shell {

namespace {

constexpr std::string_view kReservedCharacters = " \t\n\r\"'\\><~|&;$*?#()`";
// Escaped with a backslash inside a quoted argument.
constexpr std::string_view kEscapedInQuotes = "\"`$\\";

bool isControlCharacter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
}

// Rules 1 and 2: the argument as the Exec key's own parser must see it.
std::string quoted(std::string_view argument) {
    const bool needsQuotes =
        argument.empty() || argument.find_first_of(kReservedCharacters) != std::string_view::npos;
    std::string out;
    if (needsQuotes) {
        out += '"';
    }
    for (const char c : argument) {
        if (needsQuotes && kEscapedInQuotes.find(c) != std::string_view::npos) {
            out += '\\';
        }
        out += c;
        if (c == '%') {
            out += '%';
        }
    }
    if (needsQuotes) {
        out += '"';
    }
    return out;
}

// Rule 3: the escapes of every string value.
std::string escapedStringValue(std::string_view value) {
    std::string out;
    for (const char c : value) {
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                out += c;
        }
    }
    return out;
}

}  // namespace

std::optional<std::string> execArgument(std::string_view argument) {
    if (!text::isValidUtf8(argument)) {
        return std::nullopt;
    }
    for (const char c : argument) {
        if (isControlCharacter(c) && c != '\t' && c != '\n' && c != '\r') {
            return std::nullopt;
        }
    }
    return escapedStringValue(quoted(argument));
}

}  // namespace lumenote::shell
