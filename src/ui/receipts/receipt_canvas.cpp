#include "ui/receipts/receipt_canvas.hpp"

#include <QFontMetricsF>
#include <QGuiApplication>

#include "ui/design/qt_text.hpp"

namespace lumenote::ui::receipts {

namespace {

constexpr double kSideMargin = 72.0;
constexpr double kTopMargin = 80.0;
constexpr double kBottomMargin = 64.0;
// A line's height as a multiple of its font's pixel size.
constexpr double kLineHeight = 1.35;
constexpr double kRuleSpace = 28.0;

}  // namespace

ReceiptCanvas::ReceiptCanvas(QPainter& painter, const QRectF& page)
    : painter_(painter), scale_(page.width() / kDesignWidth) {
    content_ = page.adjusted(scaled(kSideMargin), scaled(kTopMargin), -scaled(kSideMargin),
                             -scaled(kBottomMargin));
    y_ = content_.top();
    painter_.fillRect(page, Qt::white);
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setRenderHint(QPainter::TextAntialiasing);
}

QFont ReceiptCanvas::font(double designPixelSize, TextWeight weight) const {
    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(1, qRound(scaled(designPixelSize))));
    font.setWeight(weight == TextWeight::bold ? QFont::Bold : QFont::Normal);
    return font;
}

void ReceiptCanvas::textIn(const QRectF& box, std::string_view text, double designPixelSize,
                           TextWeight weight, QColor colour, Qt::Alignment alignment) {
    const QFont chosen = font(designPixelSize, weight);
    const QString shown = QFontMetricsF(chosen).elidedText(qt(text), Qt::ElideRight, box.width());
    painter_.setFont(chosen);
    painter_.setPen(colour);
    const Qt::Alignment vertical =
        (alignment & Qt::AlignVertical_Mask) ? Qt::Alignment() : Qt::AlignVCenter;
    painter_.drawText(box, static_cast<int>(alignment | vertical | Qt::TextSingleLine), shown);
}

void ReceiptCanvas::line(std::string_view text, double designPixelSize, TextWeight weight,
                         QColor colour, Qt::Alignment alignment) {
    const double height = scaled(designPixelSize * kLineHeight);
    textIn(QRectF(left(), y_, width(), height), text, designPixelSize, weight, colour, alignment);
    y_ += height;
}

void ReceiptCanvas::rule() {
    advance(kRuleSpace);
    painter_.fillRect(QRectF(left(), y_, width(), std::max(1.0, scaled(2.0))), kRuleColor);
    advance(kRuleSpace);
}

}  // namespace lumenote::ui::receipts
