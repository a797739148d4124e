// The class split of a receipt: one horizontal bar in which each class takes
// its share of computer study, and a legend that names every class with its
// time and share, so that the colours are never read alone.
#pragma once

#include <string_view>

#include "ui/models/receipt_parts.hpp"
#include "ui/receipts/receipt_canvas.hpp"

namespace lumenote::ui::receipts {

// Shown in place of the bar's legend when there is no computer study to
// split (a session spent away from the computer or without input).
inline constexpr std::string_view kNoComputerStudyText = "No computer activity was recorded.";

// Paints the bar and its legend at the canvas's line and moves below them.
void paintClassSplit(ReceiptCanvas& canvas, const models::ClassSplit& split);

}  // namespace lumenote::ui::receipts
