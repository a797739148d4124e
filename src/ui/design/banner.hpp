// The banner where a page or a settings section shows a failure's sentence:
// a word-wrapped, selectable label outlined in red, hidden until it has a
// sentence to show.
#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace lumenote::ui::design {

QLabel* errorBanner(const QString& objectName, QWidget* parent);

}  // namespace lumenote::ui::design
