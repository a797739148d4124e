// Buttons and check boxes made with the name tests find them by (the object
// name) and the name assistive technologies read (the accessible name), so
// that no control the Tab key reaches goes unnamed.
#pragma once

#include <QString>

class QCheckBox;
class QPushButton;
class QWidget;

namespace lumenote::ui::design {

// The accessible name is `spokenName`, or the text without a trailing "…"
// when `spokenName` is empty (the ellipsis only says that a dialog follows).
QPushButton* namedButton(const QString& text, const QString& objectName, QWidget* parent,
                         const QString& spokenName = {});

// The accessible name is the text.
QCheckBox* namedCheckBox(const QString& text, const QString& objectName, QWidget* parent);

}  // namespace lumenote::ui::design
