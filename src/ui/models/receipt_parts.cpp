#include "ui/models/receipt_parts.hpp"

#include "shell/duration_text.hpp"

namespace lumenote::ui::models {

ReceiptLine receiptLine(std::string name, double seconds) {
    return {std::move(name), shell::durationText(seconds), seconds};
}

}  // namespace lumenote::ui::models
