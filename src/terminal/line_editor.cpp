#include "terminal/line_editor.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace lumenote::terminal {

namespace {

constexpr char control(char letter) {
    return static_cast<char>(letter & 0x1f);
}

// The length of the UTF-8 character a byte starts; 0 for a byte that cannot
// start one.
std::size_t utf8Length(unsigned char byte) {
    if (byte < 0x80) {
        return 1;
    }
    if ((byte & 0xE0) == 0xC0) {
        return 2;
    }
    if ((byte & 0xF0) == 0xE0) {
        return 3;
    }
    if ((byte & 0xF8) == 0xF0) {
        return 4;
    }
    return 0;
}

bool isSpace(const std::string& character) {
    return character == " " || character == "\t";
}

}  // namespace

LineEditor::Outcome LineEditor::feed(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    if (escape_ != Escape::none) {
        readEscape(byte);
        return Outcome::editing;
    }
    if (pendingLength_ > 0) {
        if ((value & 0xC0) == 0x80) {
            pendingCharacter_ += byte;
            if (pendingCharacter_.size() == pendingLength_) {
                insert(std::move(pendingCharacter_));
                pendingCharacter_.clear();
                pendingLength_ = 0;
            }
            return Outcome::editing;
        }
        // A broken character is dropped; the byte is read on its own.
        pendingCharacter_.clear();
        pendingLength_ = 0;
    }
    switch (byte) {
        case '\r':
        case '\n':
            return Outcome::submitted;
        case '\x1b':
            escape_ = Escape::started;
            escapeParameters_.clear();
            return Outcome::editing;
        case '\x7f':
        case control('H'):
            eraseBefore(1);
            return Outcome::editing;
        case control('D'):
            if (characters_.empty()) {
                return Outcome::abandoned;
            }
            eraseAfter(1);
            return Outcome::editing;
        case control('A'):
            cursor_ = 0;
            return Outcome::editing;
        case control('E'):
            cursor_ = characters_.size();
            return Outcome::editing;
        case control('B'):
            cursor_ -= cursor_ > 0 ? 1 : 0;
            return Outcome::editing;
        case control('F'):
            cursor_ += cursor_ < characters_.size() ? 1 : 0;
            return Outcome::editing;
        case control('U'):
            eraseBefore(cursor_);
            return Outcome::editing;
        case control('K'):
            eraseAfter(characters_.size() - cursor_);
            return Outcome::editing;
        case control('W'): {
            std::size_t start = cursor_;
            while (start > 0 && isSpace(characters_[start - 1])) {
                --start;
            }
            while (start > 0 && !isSpace(characters_[start - 1])) {
                --start;
            }
            eraseBefore(cursor_ - start);
            return Outcome::editing;
        }
        default:
            break;
    }
    if (value < 0x20) {
        return Outcome::editing;
    }
    const std::size_t length = utf8Length(value);
    if (length == 1) {
        insert(std::string(1, byte));
    } else if (length > 1) {
        pendingCharacter_ = std::string(1, byte);
        pendingLength_ = length;
    }
    return Outcome::editing;
}

// ESC [ parameters final (CSI) and ESC O final (SS3); ESC followed by any
// other byte is a two-byte sequence (Alt and a key).
void LineEditor::readEscape(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    switch (escape_) {
        case Escape::started:
            escape_ = byte == '[' ? Escape::csi : byte == 'O' ? Escape::ss3 : Escape::none;
            return;
        case Escape::csi:
            if (value >= 0x20 && value <= 0x3F) {
                escapeParameters_ += byte;
                return;
            }
            break;
        case Escape::ss3:
        case Escape::none:
            break;
    }
    escape_ = Escape::none;
    if (byte == 'D') {
        cursor_ -= cursor_ > 0 ? 1 : 0;
    } else if (byte == 'C') {
        cursor_ += cursor_ < characters_.size() ? 1 : 0;
    } else if (byte == 'H' ||
               (byte == '~' && (escapeParameters_ == "1" || escapeParameters_ == "7"))) {
        cursor_ = 0;
    } else if (byte == 'F' ||
               (byte == '~' && (escapeParameters_ == "4" || escapeParameters_ == "8"))) {
        cursor_ = characters_.size();
    } else if (byte == '~' && escapeParameters_ == "3") {
        eraseAfter(1);
    }
}

std::string LineEditor::text() const {
    std::string joined;
    for (const std::string& character : characters_) {
        joined += character;
    }
    return joined;
}

std::string LineEditor::render(std::string_view prompt) const {
    std::string line = fmt::format("\r\033[2K{}{}", prompt, text());
    if (const std::size_t after = characters_.size() - cursor_; after > 0) {
        line += fmt::format("\033[{}D", after);
    }
    return line;
}

void LineEditor::clear() {
    characters_.clear();
    cursor_ = 0;
    pendingCharacter_.clear();
    pendingLength_ = 0;
    escape_ = Escape::none;
}

void LineEditor::insert(std::string character) {
    characters_.insert(characters_.begin() + static_cast<std::ptrdiff_t>(cursor_),
                       std::move(character));
    ++cursor_;
}

void LineEditor::eraseBefore(std::size_t count) {
    count = std::min(count, cursor_);
    const auto end = characters_.begin() + static_cast<std::ptrdiff_t>(cursor_);
    characters_.erase(end - static_cast<std::ptrdiff_t>(count), end);
    cursor_ -= count;
}

void LineEditor::eraseAfter(std::size_t count) {
    count = std::min(count, characters_.size() - cursor_);
    const auto start = characters_.begin() + static_cast<std::ptrdiff_t>(cursor_);
    characters_.erase(start, start + static_cast<std::ptrdiff_t>(count));
}

}  // namespace lumenote::terminal
