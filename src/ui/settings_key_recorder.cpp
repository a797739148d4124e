#include "ui/settings_key_recorder.hpp"

#include <utility>

#include <QKeyEvent>

namespace lumenote::ui {

namespace {

// Keys whose table name is not their own character.
constexpr std::pair<int, const char*> kNamedKeys[] = {
    {Qt::Key_Return, "Return"},
    {Qt::Key_Enter, "Return"},
    {Qt::Key_Tab, "Tab"},
    {Qt::Key_Backtab, "Tab"},
    {Qt::Key_Space, "Space"},
    {Qt::Key_Backspace, "Delete"},
    {Qt::Key_Escape, "Escape"},
    {Qt::Key_Delete, "Forward Delete"},
    {Qt::Key_Home, "Home"},
    {Qt::Key_End, "End"},
    {Qt::Key_PageUp, "Page Up"},
    {Qt::Key_PageDown, "Page Down"},
    {Qt::Key_Left, "Left Arrow"},
    {Qt::Key_Right, "Right Arrow"},
    {Qt::Key_Up, "Up Arrow"},
    {Qt::Key_Down, "Down Arrow"},
    // What Shift makes of the keys of a US keyboard: the key is what counts.
    {Qt::Key_Exclam, "1"},
    {Qt::Key_At, "2"},
    {Qt::Key_NumberSign, "3"},
    {Qt::Key_Dollar, "4"},
    {Qt::Key_Percent, "5"},
    {Qt::Key_AsciiCircum, "6"},
    {Qt::Key_Ampersand, "7"},
    {Qt::Key_Asterisk, "8"},
    {Qt::Key_ParenLeft, "9"},
    {Qt::Key_ParenRight, "0"},
    {Qt::Key_Underscore, "-"},
    {Qt::Key_Plus, "="},
    {Qt::Key_BraceLeft, "["},
    {Qt::Key_BraceRight, "]"},
    {Qt::Key_Bar, "\\"},
    {Qt::Key_Colon, ";"},
    {Qt::Key_QuoteDbl, "'"},
    {Qt::Key_Less, ","},
    {Qt::Key_Greater, "."},
    {Qt::Key_Question, "/"},
    {Qt::Key_AsciiTilde, "`"},
};

bool isModifierKey(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt ||
           key == Qt::Key_Meta || key == Qt::Key_Super_L || key == Qt::Key_Super_R ||
           key == Qt::Key_AltGr || key == Qt::Key_CapsLock || key == Qt::Key_NumLock;
}

}  // namespace

KeyRecorder::KeyRecorder(QWidget* parent) : QPushButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QPushButton::clicked, this, [this] { setRecording(!recording_); });
}

void KeyRecorder::setShownText(const QString& text) {
    shown_ = text;
    if (!recording_) {
        setText(text);
    }
    setAccessibleDescription(text);
}

std::string KeyRecorder::keyName(int key) {
    for (const auto& [named, name] : kNamedKeys) {
        if (named == key) {
            return name;
        }
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F20) {
        return "F" + std::to_string(key - Qt::Key_F1 + 1);
    }
    // Letters, digits and the unshifted punctuation are their own ASCII codes.
    if (key > Qt::Key_Space && key <= Qt::Key_AsciiTilde) {
        return std::string(1, static_cast<char>(key));
    }
    return {};
}

void KeyRecorder::keyPressEvent(QKeyEvent* event) {
    if (!recording_) {
        QPushButton::keyPressEvent(event);
        return;
    }
    const int key = event->key();
    if (isModifierKey(key)) {
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (key == Qt::Key_Escape && modifiers == Qt::NoModifier) {
        setRecording(false);
        return;
    }
    models::RecordedKeys keys;
    keys.keyName = keyName(key);
    keys.control = modifiers.testFlag(Qt::ControlModifier);
    keys.option = modifiers.testFlag(Qt::AltModifier);
    keys.shift = modifiers.testFlag(Qt::ShiftModifier);
    keys.command = modifiers.testFlag(Qt::MetaModifier);
    setRecording(false);
    Q_EMIT recorded(keys);
}

void KeyRecorder::focusOutEvent(QFocusEvent* event) {
    setRecording(false);
    QPushButton::focusOutEvent(event);
}

void KeyRecorder::setRecording(bool recording) {
    recording_ = recording;
    setText(recording ? QStringLiteral("Press a key combination…") : shown_);
}

}  // namespace lumenote::ui
