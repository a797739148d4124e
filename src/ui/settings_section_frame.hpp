// The frame every section of the settings shares: its title and one-line
// summary at the top, and the banner where a failure's sentence appears.
#pragma once

#include <QString>

class QLabel;
class QVBoxLayout;
class QWidget;

namespace lumenote::ui {

// Lays out `section` as a column headed by `title` and `summary`; the
// section adds its cards to the returned layout.
QVBoxLayout* sectionLayout(QWidget* section, const QString& title, const QString& summary);

// A hidden, word-wrapped label framed as a warning; shown with a sentence.
QLabel* errorBanner(const QString& objectName, QWidget* parent);

}  // namespace lumenote::ui
