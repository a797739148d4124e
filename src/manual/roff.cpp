#include "manual/roff.hpp"

namespace lumenote::manual {

namespace {

std::string escape(std::string_view text, bool literalHyphens) {
    std::string escaped;
    escaped.reserve(text.size() + text.size() / 8);
    bool lineStart = true;
    for (const char character : text) {
        if (lineStart && (character == '.' || character == '\'')) {
            escaped += "\\&";
        }
        if (character == '\\') {
            escaped += "\\e";
        } else if (character == '-' && literalHyphens) {
            escaped += "\\-";
        } else {
            escaped += character;
        }
        lineStart = character == '\n';
    }
    return escaped;
}

}  // namespace

std::string escapeText(std::string_view text) {
    return escape(text, false);
}

std::string escapeLiteral(std::string_view text) {
    return escape(text, true);
}

std::string macroArgument(std::string_view escaped) {
    std::string argument = "\"";
    for (const char character : escaped) {
        if (character == '"') {
            argument += "\\(dq";
        } else if (character == '\n') {
            argument += ' ';
        } else {
            argument += character;
        }
    }
    return argument + "\"";
}

}  // namespace lumenote::manual
