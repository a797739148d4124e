#include "ui/design/named_controls.hpp"

#include <QCheckBox>
#include <QPushButton>

namespace lumenote::ui::design {

QPushButton* namedButton(const QString& text, const QString& objectName, QWidget* parent,
                         const QString& spokenName) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    if (!spokenName.isEmpty()) {
        button->setAccessibleName(spokenName);
    } else {
        button->setAccessibleName(text.endsWith(QChar(0x2026)) ? text.chopped(1) : text);
    }
    return button;
}

QCheckBox* namedCheckBox(const QString& text, const QString& objectName, QWidget* parent) {
    auto* box = new QCheckBox(text, parent);
    box->setObjectName(objectName);
    box->setAccessibleName(text);
    return box;
}

}  // namespace lumenote::ui::design
