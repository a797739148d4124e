#include "ui/goal_ring.hpp"

#include <QPainter>
#include <cmath>

#include "ui/design/charts.hpp"
#include "ui/models/chart_table.hpp"

namespace lumenote::ui {

GoalRing::GoalRing(QWidget* parent) : QWidget(parent) {
    setFixedSize(sizeHint());
    setProgress(0.0);
}

void GoalRing::setProgress(double progress) {
    progress_ = models::clampedProgress(progress);
    setAccessibleName(QStringLiteral("Daily goal %1% reached")
                          .arg(static_cast<int>(std::lround(progress_ * 100.0))));
    update();
}

void GoalRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    design::paintRing(painter, QRectF(rect()), models::RingData{progress_},
                      design::chartStyle(palette()));
}

}  // namespace lumenote::ui
