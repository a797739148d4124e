// The totals card of the Replay page: the focus score as a metric with its
// coverage, the study-time figures in a column, and the sentence naming the
// calculation method they come from. It shows the view model's words only.
#pragma once

#include <QList>

#include "ui/design/card.hpp"
#include "ui/models/replay_view.hpp"

class QGridLayout;
class QLabel;

namespace lumenote::ui {

// The card's width on the page: the wrapped sentences in it are given the
// height they need at this width, so that a long method sentence never
// squeezes the figures above it.
inline constexpr int kReplayTotalsCardWidth = 300;

namespace design {
class Metric;
}

class ReplayTotalsCard final : public QWidget {
    Q_OBJECT

  public:
    explicit ReplayTotalsCard(QWidget* parent = nullptr);

    void show(const models::ReplayView& view);
    // "Computer study: 30 min", one per figure line, as shown.
    QStringList figureTexts() const;
    QString focusScoreText() const;
    QString versionText() const;
    // The card's width is fixed and its wrapped sentences are given their
    // height at that width: its height is its size hint. (A height for width
    // would be computed without those heights and squeeze the figures.)
    bool hasHeightForWidth() const override { return false; }

  private:
    design::Card* card_;
    design::Metric* score_;
    QLabel* note_;
    QGridLayout* figures_;
    QList<QLabel*> figureLabels_;
    QLabel* version_;
};

}  // namespace lumenote::ui
