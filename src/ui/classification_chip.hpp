// A small rounded label for a classification, coloured from one palette of
// the five classes that reads in light and dark; it always carries its word,
// so colour is never the only sign.
#pragma once

#include <QColor>
#include <QLabel>

#include "classification/classification_enumerations.hpp"

namespace lumenote::ui {

// The chip's background for a class, for a light or a dark window.
QColor classificationColor(classification::ActivityClassification classification, bool dark);

class ClassificationChip final : public QLabel {
    Q_OBJECT

  public:
    explicit ClassificationChip(QWidget* parent = nullptr);
    void setClassification(classification::ActivityClassification classification);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void restyle();
    classification::ActivityClassification classification_ =
        classification::ActivityClassification::unclassified;
};

// True when the widget's window colour is dark (a dark appearance).
bool isDark(const QPalette& palette);

}  // namespace lumenote::ui
