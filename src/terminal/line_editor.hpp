// LineEditor: one line of text typed on a terminal in raw mode, with the
// editing keys a shell offers. Fed the bytes the terminal sends, one at a
// time; says when the line is submitted or abandoned, and how to draw it.
//
// Keys: printable characters (UTF-8, kept whole) insert at the cursor;
// Backspace and Ctrl-H delete before it, Delete and Ctrl-D (on a line with
// text) under it; Left, Right, Ctrl-B and Ctrl-F move one character, Home,
// End, Ctrl-A and Ctrl-E to either end; Ctrl-U deletes to the start, Ctrl-K
// to the end, Ctrl-W the word before the cursor. Enter submits; Ctrl-D on an
// empty line abandons. Every other control character and escape sequence
// (Up, Down, function keys) is read whole and ignored, so none of its bytes
// ever lands in the text. Characters are taken as one column wide.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumenote::terminal {

class LineEditor {
  public:
    enum class Outcome { editing, submitted, abandoned };

    Outcome feed(char byte);
    // The text typed so far.
    std::string text() const;
    // The cursor's position in characters from the start.
    std::size_t cursor() const { return cursor_; }
    // Erases the terminal's line and draws `prompt` and the text, leaving the
    // terminal's cursor where the editor's is.
    std::string render(std::string_view prompt) const;
    void clear();

  private:
    enum class Escape { none, started, csi, ss3 };

    void insert(std::string character);
    void eraseBefore(std::size_t count);
    void eraseAfter(std::size_t count);
    void readEscape(char byte);

    std::vector<std::string> characters_;
    std::size_t cursor_ = 0;
    std::string pendingCharacter_;  // the leading bytes of a UTF-8 character
    std::size_t pendingLength_ = 0;
    Escape escape_ = Escape::none;
    std::string escapeParameters_;
};

}  // namespace lumenote::terminal
