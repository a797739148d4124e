// A small rounded label for a classification or a session status. A class
// takes its soft colour from the one palette of the five classes, a status a
// quiet tone of its own; both read in light and dark, and the chip always
// carries its word, so colour is never the only sign.
#pragma once

#include <QLabel>
#include <QSizeF>

#include <variant>

#include "classification/classification_enumerations.hpp"
#include "recording/enumerations.hpp"

class QPainter;

namespace lumenote::ui::design {

class Chip final : public QLabel {
    Q_OBJECT

  public:
    explicit Chip(QWidget* parent = nullptr);
    void setClassification(classification::ActivityClassification classification);
    void setStatus(recording::StudySessionStatus status);
    // The chip's background for the current appearance.
    QColor background() const;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void restyle();
    std::variant<classification::ActivityClassification, recording::StudySessionStatus> shown_ =
        classification::ActivityClassification::unclassified;
};

// A session status as its chip shows it: "Running", "Paused", "Completed",
// "Interrupted".
QString statusChipText(recording::StudySessionStatus status);

// The chip as item views paint it into a cell: the word, demi-bold at 90% of
// `base`, on a pill 20 px high, centred in `area` from top to bottom and
// flush with its left edge (Qt::AlignLeft) or its right edge (any other
// alignment); never wider than `area`.
void paintChip(QPainter& painter, const QRectF& area, Qt::Alignment edge, const QString& word,
               const QColor& background, const QColor& foreground, const QFont& base);
// The room paintChip needs for `word`, without `area`'s limit.
QSizeF chipSize(const QString& word, const QFont& base);

}  // namespace lumenote::ui::design
