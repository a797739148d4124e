// The page a receipt is painted on: a column of text and shapes laid out
// from the top in units of the page's width, so that the same drawing fits
// a 1080-pixel picture and an A5 page alike.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRectF>
#include <string_view>

namespace lumenote::ui::receipts {

// Receipts are printed: always dark text on white, whatever the appearance.
inline const QColor kInkColor{0x1d, 0x1d, 0x1f};
inline const QColor kMutedInkColor{0x5e, 0x5c, 0x64};
inline const QColor kRuleColor{0xde, 0xdd, 0xda};

// The width a receipt is designed at; every size below is in these units
// and scaled to the page.
inline constexpr double kDesignWidth = 1080.0;

enum class TextWeight { regular, bold };

class ReceiptCanvas {
  public:
    // Paints the page white and starts at its top margin.
    ReceiptCanvas(QPainter& painter, const QRectF& page);

    QPainter& painter() { return painter_; }
    // A design length in the page's own units.
    double scaled(double designLength) const { return designLength * scale_; }
    // The column between the side margins.
    double left() const { return content_.left(); }
    double width() const { return content_.width(); }
    // Where the next line starts, from the page's top.
    double y() const { return y_; }
    void advance(double designLength) { y_ += scaled(designLength); }
    // The bottom margin's top edge, from the page's top.
    double bottom() const { return content_.bottom(); }

    QFont font(double designPixelSize, TextWeight weight) const;

    // One line of `text` across the column, elided at the end when it is too
    // long, and moves down past it.
    void line(std::string_view text, double designPixelSize, TextWeight weight, QColor colour,
              Qt::Alignment alignment = Qt::AlignLeft);
    // One line inside `box` (page units), elided to fit, without moving;
    // centred vertically unless `alignment` says otherwise.
    void textIn(const QRectF& box, std::string_view text, double designPixelSize, TextWeight weight,
                QColor colour, Qt::Alignment alignment);
    // A thin rule across the column, with space above and below.
    void rule();

  private:
    QPainter& painter_;
    QRectF content_;
    double scale_;
    double y_;
};

}  // namespace lumenote::ui::receipts
