#include "ui/receipt_file_dialog.hpp"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

namespace lumenote::ui {

std::optional<receipts::ReceiptTarget> chooseReceiptFile(QWidget* parent, const QString& title,
                                                         const std::string& suggestedName) {
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString folder = pictures.isEmpty() ? QDir::homePath() : pictures;
    const QString png = QStringLiteral("PNG image (*.png)");
    const QString pdf = QStringLiteral("PDF document (*.pdf)");
    QString chosenFilter = png;
    QString chosen = QFileDialog::getSaveFileName(
        parent, title, QDir(folder).filePath(QString::fromStdString(suggestedName)),
        png + QStringLiteral(";;") + pdf, &chosenFilter);
    if (chosen.isEmpty()) {
        return std::nullopt;
    }
    if (QFileInfo(chosen).suffix().isEmpty() && chosenFilter == pdf) {
        chosen += QStringLiteral(".pdf");
    }
    return receipts::receiptTarget(std::filesystem::path(chosen.toStdString()));
}

}  // namespace lumenote::ui
