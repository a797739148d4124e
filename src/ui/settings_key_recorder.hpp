// A button that records a key combination: pressed (by click, Space or
// Enter) it waits for the next key with its modifiers and reports them as
// the shortcut key table names them. Escape alone cancels; Tab alone moves
// on, as everywhere else.
#pragma once

#include <QPushButton>

#include "ui/models/general_settings.hpp"

namespace lumenote::ui {

class KeyRecorder final : public QPushButton {
    Q_OBJECT

  public:
    explicit KeyRecorder(QWidget* parent = nullptr);

    // The combination shown while not recording ("Ctrl+Shift+S").
    void setShownText(const QString& text);

    // The shortcut key table's name of `key` ("S", "F5", "Left Arrow"), with
    // the symbols Shift gives on a US keyboard taken back to their keys; ""
    // for a key the table does not have.
    static std::string keyName(int key);

  Q_SIGNALS:
    // A key other than a modifier was pressed while recording.
    void recorded(const lumenote::ui::models::RecordedKeys& keys);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void setRecording(bool recording);

    QString shown_;
    bool recording_ = false;
};

}  // namespace lumenote::ui
