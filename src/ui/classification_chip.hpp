// A small rounded label for a classification, coloured from one palette of
// the five classes that reads in light and dark; it always carries its word,
// so colour is never the only sign.
#pragma once

#include <QLabel>

#include "classification/classification_enumerations.hpp"

namespace lumenote::ui {

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

}  // namespace lumenote::ui
