#include "app/update_check_command.hpp"

#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>

#include "platform/network/https_feed_fetcher.hpp"
#include "ui/design/qt_text.hpp"
#include "updates/release_channel.hpp"

namespace lumenote::app {

using ui::qt;

QMessageBox* makeUpdateOutcomeBox(const updates::UpdateCheckOutcome& outcome,
                                  std::function<void(const QUrl&)> openDownload) {
    auto* box = new QMessageBox;
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QStringLiteral("Check for Updates"));
    box->setIcon(outcome.succeeded() ? QMessageBox::Information : QMessageBox::Warning);
    // The feed's notes are text from outside: never read as markup.
    box->setTextFormat(Qt::PlainText);
    QString text = qt(updates::updateCheckSentence(outcome));
    if (outcome.offer && !outcome.offer->releaseNotes.empty()) {
        text += QStringLiteral("\n\n") + qt(outcome.offer->releaseNotes);
    }
    box->setText(text);
    box->addButton(QMessageBox::Close);
    box->setDefaultButton(QMessageBox::Close);
    if (outcome.offer) {
        auto* download =
            box->addButton(QStringLiteral("Open Download Page"), QMessageBox::AcceptRole);
        download->setObjectName(QStringLiteral("updateDownload"));
        const QUrl address(qt(outcome.offer->downloadAddress));
        QObject::connect(
            download, &QPushButton::clicked, box,
            [openDownload = std::move(openDownload), address] { openDownload(address); });
    }
    return box;
}

UpdateCheckCommand::UpdateCheckCommand(settings::PreferencesStore& preferences,
                                       FetcherFactory makeFetcher,
                                       std::function<void(const QUrl&)> openDownload)
    : preferences_(preferences),
      makeFetcher_(std::move(makeFetcher)),
      openDownload_(std::move(openDownload)) {
    if (!makeFetcher_) {
        makeFetcher_ = [] {
            return std::make_unique<platform::network::HttpsFeedFetcher>(
                platform::network::HttpsFetchOptions{.userAgent =
                                                         std::string(updates::updateUserAgent())});
        };
    }
    if (!openDownload_) {
        openDownload_ = [](const QUrl& address) { QDesktopServices::openUrl(address); };
    }
}

void UpdateCheckCommand::run() {
    if (running_) {
        return;
    }
    running_ = true;
    const updates::UpdateCheckRequest request = updates::updateCheckRequest(
        preferences_.updatesCheckEnabled(), preferences_.updatesFeedAddress());
    const auto fetcher = makeFetcher_();
    const updates::UpdateCheckOutcome outcome =
        updates::checkForUpdates(request, *fetcher, updates::kReleasePublicKey);
    running_ = false;
    if (shown_) {
        shown_->close();
    }
    shown_ = makeUpdateOutcomeBox(outcome, openDownload_);
    shown_->open();
    shown_->raise();
    shown_->activateWindow();
}

}  // namespace lumenote::app
