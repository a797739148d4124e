// The save dialog of a receipt, the same wherever a receipt is saved (the
// panel's summary, Replay, Insights): PNG or PDF, proposed in the Pictures
// folder (the home folder where there is none) under the receipt's default
// name.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <QString>

#include "ui/receipts/receipt_file.hpp"

class QWidget;

namespace lumenote::ui {

// Asks where to save; the chosen file's name decides the format
// (receipts::receiptTarget), and a name without an extension takes the one
// of the file type chosen. nullopt when the user cancels.
std::optional<receipts::ReceiptTarget> chooseReceiptFile(QWidget* parent, const QString& title,
                                                         const std::string& suggestedName);

}  // namespace lumenote::ui
