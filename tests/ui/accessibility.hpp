// The keyboard and screen-reader check every page passes: each control the
// keyboard reaches with Tab has a name that a screen reader can say.
#pragma once

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QScrollArea>
#include <QStringList>
#include <QWidget>

namespace lumenote::testing {

// The controls shown under `root` that take the Tab key but have no
// accessible name, as "ClassName objectName"; empty when every one has one.
// A scroll area is a frame around controls, not one itself; the text field
// inside a spin box or combo box is spoken by the name of the box.
inline QStringList unnamedKeyboardControls(const QWidget& root) {
    QStringList unnamed;
    for (const QWidget* widget : root.findChildren<QWidget*>()) {
        if (widget->isVisibleTo(&root) && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
            qobject_cast<const QScrollArea*>(widget) == nullptr &&
            qobject_cast<const QAbstractSpinBox*>(widget->parentWidget()) == nullptr &&
            qobject_cast<const QComboBox*>(widget->parentWidget()) == nullptr &&
            widget->accessibleName().isEmpty()) {
            unnamed << QString::fromLatin1(widget->metaObject()->className()) +
                           QStringLiteral(" ") + widget->objectName();
        }
    }
    return unnamed;
}

}  // namespace lumenote::testing
