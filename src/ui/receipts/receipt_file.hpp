// Saving a receipt as a PNG picture or a one-page PDF. Free of Qt, so that
// the command line (which includes no Qt header) can call it.
//
// Painting text needs a QGuiApplication. When the process has none (the
// command line), one is created on Qt's "offscreen" platform for the length
// of the call, which needs no display; a process that holds a plain
// QCoreApplication cannot paint and gets `drawingUnavailable`.
#pragma once

#include <filesystem>
#include <string>

#include "foundation/result.hpp"
#include "ui/models/session_receipt.hpp"
#include "ui/models/weekly_receipt.hpp"

namespace lumenote::ui::receipts {

// PNG: kReceiptImageWidth x kReceiptImageHeight pixels at a device pixel
// ratio of 1. PDF: one A5 page at 300 dots per inch, without margins.
enum class ReceiptFormat { png, pdf };

// "png" or "pdf", the file name's extension without its dot.
std::string_view extensionOf(ReceiptFormat format);

enum class ReceiptKind { session, week };

// The name a receipt is offered under: "Lumenote Receipt 2026-11-23.png" for
// a session (its local day), "Lumenote Weekly Receipt 2026-11-23.pdf" for a
// week (its first day).
std::string defaultReceiptFileName(ReceiptKind kind, std::string_view dayKey, ReceiptFormat format);

// Where a receipt the user named `chosen` is written, and as what: a PDF
// when the name ends in ".pdf", otherwise a PNG, with ".png" added to a name
// that ends in neither (the extension's letter case does not matter).
struct ReceiptTarget {
    std::filesystem::path path;
    ReceiptFormat format = ReceiptFormat::png;
};
ReceiptTarget receiptTarget(const std::filesystem::path& chosen);

enum class ReceiptFileFailure {
    destinationIsFolder,  // the path names an existing folder
    folderUnusable,       // the folder is missing and cannot be created
    writeFailed,          // the file could not be written or put in place
    drawingUnavailable,   // the process cannot paint (see above)
};

struct ReceiptFileError {
    ReceiptFileFailure failure = ReceiptFileFailure::writeFailed;
    std::filesystem::path path;

    // "The receipt could not be saved ({reason})." with the reason in words.
    std::string message() const;
};

// Writes the receipt to `path` atomically: the bytes go to a temporary
// sibling that is renamed over `path` only when complete, so a failure
// leaves neither a partial file nor the temporary one. An existing file is
// replaced; the folder is used as it is (created only when missing).
Result<void, ReceiptFileError> writeSessionReceipt(const models::SessionReceipt& receipt,
                                                   const std::filesystem::path& path,
                                                   ReceiptFormat format);
Result<void, ReceiptFileError> writeWeeklyReceipt(const models::WeeklyReceipt& receipt,
                                                  const std::filesystem::path& path,
                                                  ReceiptFormat format);

}  // namespace lumenote::ui::receipts
