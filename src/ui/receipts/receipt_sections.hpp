// The sections both receipts share: the kind line, a row of large figures,
// a titled list of named durations and the branding line at the foot.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/models/receipt_parts.hpp"
#include "ui/receipts/receipt_canvas.hpp"

namespace lumenote::ui::receipts {

// A large figure with its caption beneath ("1 h 05 min" over "Study time").
struct Metric {
    std::string value;
    std::string_view caption;
};

// The small capitals line that says what the receipt is, in the accent.
void paintKindLine(ReceiptCanvas& canvas, std::string_view kind);

// The figures side by side in equal columns.
void paintMetrics(ReceiptCanvas& canvas, const std::vector<Metric>& metrics);

// A section heading.
void paintHeading(ReceiptCanvas& canvas, std::string_view heading);

// `lines` under `heading` in a box `x` .. `x + width` from the canvas's line,
// names on the left (elided) and durations on the right. Returns the design
// height used; the canvas does not move, so that two lists can stand side
// by side.
double paintListAt(ReceiptCanvas& canvas, double x, double width, std::string_view heading,
                   const std::vector<models::ReceiptLine>& lines);

// The branding line centred on the bottom margin, when there is one.
void paintBranding(ReceiptCanvas& canvas, const std::optional<std::string>& branding);

}  // namespace lumenote::ui::receipts
