// "Check for Updates…" in the desktop application (builds with the update
// check only): runs the signed check when the user chooses the command, never
// otherwise, and shows its outcome. A newer release's download page opens
// only when the user presses the box's button.
#pragma once

#include <QPointer>
#include <QUrl>

#include <functional>

#include "settings/preferences_store.hpp"
#include "updates/feed_fetcher.hpp"
#include "updates/update_check.hpp"

class QMessageBox;

namespace lumenote::app {

// The box that shows `outcome`, deleted when closed: the sentence and, for a
// newer release, its notes as plain text and an "Open Download Page" button
// that calls `openDownload` with the download address.
QMessageBox* makeUpdateOutcomeBox(const updates::UpdateCheckOutcome& outcome,
                                  std::function<void(const QUrl&)> openDownload);

class UpdateCheckCommand final {
  public:
    using FetcherFactory = std::function<std::unique_ptr<updates::FeedFetcher>()>;

    // `preferences` must outlive the command. Empty `makeFetcher`: HTTPS
    // with the system's trusted certificates; empty `openDownload`: the
    // desktop's browser.
    explicit UpdateCheckCommand(settings::PreferencesStore& preferences,
                                FetcherFactory makeFetcher = {},
                                std::function<void(const QUrl&)> openDownload = {});

    // Checks with the release key and shows the outcome. While a check runs
    // (its event loop keeps the tray alive) another request is ignored; the
    // box of an earlier check is replaced.
    void run();

    // The box of the last check while it is open.
    QMessageBox* shownBox() const { return shown_; }

  private:
    settings::PreferencesStore& preferences_;
    FetcherFactory makeFetcher_;
    std::function<void(const QUrl&)> openDownload_;
    bool running_ = false;
    QPointer<QMessageBox> shown_;
};

}  // namespace lumenote::app
