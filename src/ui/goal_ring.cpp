#include "ui/goal_ring.hpp"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/design/palette.hpp"

namespace lumenote::ui {

GoalRing::GoalRing(QWidget* parent) : QWidget(parent) {
    setFixedSize(sizeHint());
    setProgress(0.0);
}

void GoalRing::setProgress(double progress) {
    progress_ = std::isfinite(progress) ? std::clamp(progress, 0.0, 1.0) : 0.0;
    setAccessibleName(QStringLiteral("Daily goal %1% reached")
                          .arg(static_cast<int>(std::lround(progress_ * 100.0))));
    update();
}

void GoalRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal thickness = 6.0;
    const QRectF ring = QRectF(rect()).adjusted(thickness / 2 + 1, thickness / 2 + 1,
                                                -thickness / 2 - 1, -thickness / 2 - 1);
    QColor track = palette().color(QPalette::WindowText);
    track.setAlphaF(0.15f);
    painter.setPen(QPen(track, thickness, Qt::SolidLine, Qt::RoundCap));
    painter.drawEllipse(ring);
    if (progress_ > 0.0) {
        const QColor fill = design::accentColor(design::isDark(palette()));
        painter.setPen(QPen(fill, thickness, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(ring, 90 * 16, -static_cast<int>(std::lround(progress_ * 360.0 * 16)));
    }
}

}  // namespace lumenote::ui
