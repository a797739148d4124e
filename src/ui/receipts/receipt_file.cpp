#include "ui/receipts/receipt_file.hpp"

#include <algorithm>
#include <cctype>

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/atomic_file_writer.hpp"
#include "ui/receipts/receipt_painting.hpp"

namespace lumenote::ui::receipts {

namespace {

namespace fs = std::filesystem;

using PagePainter = std::function<void(QPainter&, const QRectF&)>;

constexpr int kPdfDotsPerInch = 300;

// A QGuiApplication on the offscreen platform for as long as this lives,
// when the process has no application yet; nothing otherwise.
class OffscreenGui {
  public:
    OffscreenGui() {
        if (QCoreApplication::instance() == nullptr) {
            application_ = std::make_unique<QGuiApplication>(argc_, argv_);
        }
    }
    bool canPaint() const {
        return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    }

  private:
    char name_[9] = "lumenote";
    char platformOption_[10] = "-platform";
    char platform_[10] = "offscreen";
    char* argv_[4] = {name_, platformOption_, platform_, nullptr};
    int argc_ = 3;
    std::unique_ptr<QGuiApplication> application_;
};

QByteArray pngBytes(const PagePainter& paint) {
    QImage image(kReceiptImageWidth, kReceiptImageHeight, QImage::Format_RGB32);
    image.setDevicePixelRatio(1.0);
    {
        QPainter painter(&image);
        paint(painter, QRectF(0, 0, kReceiptImageWidth, kReceiptImageHeight));
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray pdfBytes(const PagePainter& paint) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setPageSize(QPageSize(QPageSize::A5));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setResolution(kPdfDotsPerInch);
        writer.setTitle(QStringLiteral("Lumenote receipt"));
        QPainter painter(&writer);
        paint(painter, QRectF(0, 0, writer.width(), writer.height()));
    }
    return bytes;
}

Result<void, ReceiptFileError> writeReceipt(const PagePainter& paint, const fs::path& path,
                                            ReceiptFormat format) {
    const auto failed = [&path](ReceiptFileFailure failure) {
        return fail(ReceiptFileError{failure, path});
    };
    std::error_code error;
    if (fs::is_directory(path, error)) {
        return failed(ReceiptFileFailure::destinationIsFolder);
    }
    const OffscreenGui gui;
    if (!gui.canPaint()) {
        return failed(ReceiptFileFailure::drawingUnavailable);
    }
    const QByteArray bytes = format == ReceiptFormat::png ? pngBytes(paint) : pdfBytes(paint);
    if (bytes.isEmpty()) {
        return failed(ReceiptFileFailure::writeFailed);
    }
    auto writer = AtomicFileWriter::create(path, systemFileWriteOperations(),
                                           private_file::Durability::synced,
                                           AtomicFileWriter::FolderPolicy::useAsItIs);
    if (!writer) {
        return failed(writer.error() == PrivateFileError::folderUnusable
                          ? ReceiptFileFailure::folderUnusable
                          : ReceiptFileFailure::writeFailed);
    }
    const auto appended =
        writer->append(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    if (!appended || !writer->commit()) {
        return failed(ReceiptFileFailure::writeFailed);
    }
    return {};
}

}  // namespace

std::string_view extensionOf(ReceiptFormat format) {
    return format == ReceiptFormat::png ? "png" : "pdf";
}

std::string defaultReceiptFileName(ReceiptKind kind, std::string_view dayKey,
                                   ReceiptFormat format) {
    const std::string_view name = kind == ReceiptKind::session ? "Receipt" : "Weekly Receipt";
    return "Lumenote " + std::string(name) + " " + std::string(dayKey) + "." +
           std::string(extensionOf(format));
}

std::string ReceiptFileError::message() const {
    std::string reason;
    switch (failure) {
        case ReceiptFileFailure::destinationIsFolder:
            reason = path.string() + " is a folder";
            break;
        case ReceiptFileFailure::folderUnusable:
            reason = "the folder " + path.parent_path().string() + " cannot be created";
            break;
        case ReceiptFileFailure::writeFailed:
            reason = "the file " + path.string() + " could not be written";
            break;
        case ReceiptFileFailure::drawingUnavailable:
            reason = "this program cannot draw pictures";
            break;
    }
    return "The receipt could not be saved (" + reason + ").";
}

Result<void, ReceiptFileError> writeSessionReceipt(const models::SessionReceipt& receipt,
                                                   const fs::path& path, ReceiptFormat format) {
    return writeReceipt(
        [&receipt](QPainter& painter, const QRectF& page) {
            paintSessionReceipt(painter, page, receipt);
        },
        path, format);
}

Result<void, ReceiptFileError> writeWeeklyReceipt(const models::WeeklyReceipt& receipt,
                                                  const fs::path& path, ReceiptFormat format) {
    return writeReceipt(
        [&receipt](QPainter& painter, const QRectF& page) {
            paintWeeklyReceipt(painter, page, receipt);
        },
        path, format);
}

ReceiptTarget receiptTarget(const std::filesystem::path& chosen) {
    std::string extension = chosen.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".pdf") {
        return {chosen, ReceiptFormat::pdf};
    }
    std::filesystem::path path = chosen;
    if (extension != ".png") {
        path += ".png";
    }
    return {path, ReceiptFormat::png};
}

}  // namespace lumenote::ui::receipts
