// The two receipts painted with QPainter onto a page, so that a picture and
// a printed page are one drawing. The page is white whatever the
// appearance; its proportions are those of an A-series sheet (width to
// height 1 : 1.414), and the layout is designed for that shape.
#pragma once

#include <QPainter>
#include <QRectF>

#include "ui/models/session_receipt.hpp"
#include "ui/models/weekly_receipt.hpp"

namespace lumenote::ui::receipts {

// The size of a receipt picture in pixels: an A-series sheet 1080 pixels
// wide, the width a phone shows at full size.
inline constexpr int kReceiptImageWidth = 1080;
inline constexpr int kReceiptImageHeight = 1528;

// Paints `receipt` over the whole of `page` (in the painter's units).
void paintSessionReceipt(QPainter& painter, const QRectF& page,
                         const models::SessionReceipt& receipt);
void paintWeeklyReceipt(QPainter& painter, const QRectF& page,
                        const models::WeeklyReceipt& receipt);

}  // namespace lumenote::ui::receipts
