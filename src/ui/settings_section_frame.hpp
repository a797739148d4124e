// The frame every section of the settings shares: its title and one-line
// summary at the top.
#pragma once

#include <QString>

class QVBoxLayout;
class QWidget;

namespace lumenote::ui {

// Lays out `section` as a column headed by `title` and `summary`; the
// section adds its cards to the returned layout.
QVBoxLayout* sectionLayout(QWidget* section, const QString& title, const QString& summary);

}  // namespace lumenote::ui
