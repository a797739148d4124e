// A destructive action behind a typed word: the explanation, a field, and a
// button that stays disabled until the field holds the word exactly.
#pragma once

#include <string_view>

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace lumenote::ui {

class ConfirmationField final : public QWidget {
    Q_OBJECT

  public:
    // Whether the field is headed "Type WORD to continue.": not when the
    // explanation above it already says so.
    enum class Prompt { shown, saidAbove };

    // `word` is what must be typed ("RESTORE"); `action` the button's text.
    // `name` prefixes the children's object names ("reset" gives
    // "resetConfirmation" and "resetButton").
    ConfirmationField(std::string_view word, const QString& action, const QString& name,
                      Prompt prompt, QWidget* parent = nullptr);

    // Empties the field, which disables the button again.
    void clear();
    QString typed() const;

  Q_SIGNALS:
    // The button was pressed with the word typed.
    void confirmed();

  private:
    std::string_view word_;
    QLineEdit* field_;
    QPushButton* button_;
};

}  // namespace lumenote::ui
