// The heading at the top of every page of the main window: the page's name
// in a larger bold face of the system font, so that pages agree in size and
// follow the user's font settings.
#pragma once

#include <QLabel>

namespace lumenote::ui::design {

QLabel* makePageTitle(const QString& text, QWidget* parent);

}  // namespace lumenote::ui::design
