#include "ui/design/banner.hpp"

#include <QLabel>
#include <QPainter>

namespace lumenote::ui::design {

namespace {

// A label outlined in red, which reads as a warning on light and dark
// palettes alike; the text keeps the palette's own colour. Painted rather
// than styled, so that it follows a change of palette.
class BannerLabel final : public QLabel {
  public:
    using QLabel::QLabel;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(0xd6, 0x45, 0x41), 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), 6, 6);
        painter.end();
        QLabel::paintEvent(event);
    }
};

}  // namespace

QLabel* errorBanner(const QString& objectName, QWidget* parent) {
    auto* banner = new BannerLabel(parent);
    banner->setObjectName(objectName);
    banner->setWordWrap(true);
    banner->setTextInteractionFlags(Qt::TextSelectableByMouse);
    banner->setContentsMargins(10, 8, 10, 8);
    banner->setVisible(false);
    return banner;
}

}  // namespace lumenote::ui::design
