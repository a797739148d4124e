// The subject prompt's line editing: what a user types, with the keys a
// terminal sends for them, ends as the text they see.
#include "terminal/line_editor.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumenote::terminal {
namespace {

constexpr std::string_view kLeft = "\x1b[D";
constexpr std::string_view kRight = "\x1b[C";

std::string repeated(std::string_view keys, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += keys;
    }
    return all;
}

struct Typing {
    std::string name;
    std::string keys;
    std::string text;
    std::size_t cursor;
};

class LineEditorTyping : public ::testing::TestWithParam<Typing> {};

TEST_P(LineEditorTyping, EndsWithTheTextAndCursorTheUserSees) {
    LineEditor editor;
    for (const char key : GetParam().keys) {
        ASSERT_EQ(editor.feed(key), LineEditor::Outcome::editing) << int(key);
    }
    EXPECT_EQ(editor.text(), GetParam().text);
    EXPECT_EQ(editor.cursor(), GetParam().cursor);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, LineEditorTyping,
    ::testing::Values(
        Typing{"plain", "Maths", "Maths", 5},
        // Backspace then Left arrow once stored "Math" followed by "[D".
        Typing{"backspace_then_left", "Maths\x7f" + std::string(kLeft), "Math", 3},
        Typing{"insert_in_the_middle", "Chmistry" + repeated(kLeft, 6) + "e", "Chemistry", 3},
        Typing{"left_stops_at_the_start", std::string("ab") + "\x1b[D\x1b[D\x1b[D" + "x", "xab", 1},
        Typing{"right_stops_at_the_end", std::string("ab") + std::string(kRight) + "c", "abc", 3},
        Typing{"home_and_end_in_every_spelling",
               "bc\x1b[Ha\x1b[Fd\x1bOH<\x1bOF>\x1b[1~[\x1b[4~]\x1b[7~(\x1b[8~)", "([<abcd>])", 10},
        Typing{"control_keys_move",
               "bc\x01"
               "a\x05"
               "d\x02\x02x\x06y",
               "abxcyd", 5},
        Typing{"delete_under_the_cursor", "abc\x1b[D\x1b[D\x1b[3~", "ac", 1},
        Typing{"control_d_deletes_when_there_is_text", "abc\x01\x04", "bc", 0},
        Typing{"kill_to_start_and_end", "abcdef\x1b[D\x1b[D\x15", "ef", 0},
        Typing{"kill_to_end", "abcdef\x1b[D\x1b[D\x0b", "abcd", 4},
        Typing{"delete_word", "Organic  chemistry\x17", "Organic  ", 9},
        Typing{"utf8_is_kept_whole", "Étude\x7f\x7f\x7f\x7f", "É", 1},
        Typing{"utf8_under_the_cursor", "Ω1\x1b[D\x1b[D\x1b[3~", "1", 0},
        Typing{"up_down_and_function_keys_are_ignored", "a\x1b[A\x1b[B\x1b[15~\x1b[1;5Cb", "ab", 2},
        Typing{"alt_and_a_key_is_ignored",
               "a\x1b"
               "xb",
               "ab", 2},
        Typing{"tabs_and_other_controls_are_ignored", "a\tb\x07", "ab", 2},
        Typing{"a_broken_character_is_dropped",
               "a\xc3"
               "b",
               "ab", 2},
        Typing{"backspace_on_an_empty_line_does_nothing", "\x7f\x7f", "", 0}),
    [](const ::testing::TestParamInfo<Typing>& typing) { return typing.param.name; });

TEST(LineEditor, EnterSubmitsAndControlDOnAnEmptyLineAbandons) {
    LineEditor editor;
    EXPECT_EQ(editor.feed('\r'), LineEditor::Outcome::submitted);
    EXPECT_EQ(editor.feed('\x04'), LineEditor::Outcome::abandoned);
    editor.feed('x');
    EXPECT_EQ(editor.feed('\n'), LineEditor::Outcome::submitted);
    EXPECT_EQ(editor.text(), "x");
    editor.clear();
    EXPECT_EQ(editor.text(), "");
    EXPECT_EQ(editor.feed('\x04'), LineEditor::Outcome::abandoned);
}

TEST(LineEditor, RenderingPutsTheCursorWhereTheEditorHasIt) {
    LineEditor editor;
    for (const char key : std::string("Bío\x1b[D\x1b[D")) {
        editor.feed(key);
    }
    EXPECT_EQ(editor.render("Subject: "), "\r\033[2KSubject: Bío\033[2D");
    editor.feed('\x05');
    EXPECT_EQ(editor.render("Subject: "), "\r\033[2KSubject: Bío");
}

}  // namespace
}  // namespace lumenote::terminal
