// "Check for Updates…" in the desktop application, with a stand-in fetch:
// what the box says and offers, and that nothing is fetched while checks
// are off.
#if LUMENOTE_UPDATE_CHECKS

#include "app/update_check_command.hpp"

#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

#include "ui/screenshots.hpp"

#include "offscreen_application.hpp"
#include "settings/in_memory_defaults_domain.hpp"

namespace lumenote::app {
namespace {

// Answers with what it is given and counts the fetches.
class CountingFetcher final : public updates::FeedFetcher {
  public:
    explicit CountingFetcher(int& fetches) : fetches_(fetches) {}
    Result<std::string, updates::FetchError> fetch(const std::string&, std::size_t) override {
        ++fetches_;
        return fail(updates::FetchError::unreachable);
    }

  private:
    int& fetches_;
};

class UpdateCheckCommandTest : public ::testing::Test {
  protected:
    void SetUp() override { testing::ensureOffscreenApplication(); }

    UpdateCheckCommand command() {
        return UpdateCheckCommand(
            preferences_, [this] { return std::make_unique<CountingFetcher>(fetches_); },
            [this](const QUrl& address) { opened_.push_back(address); });
    }

    static updates::UpdateCheckOutcome newer() {
        updates::UpdateFeed feed{.version = "0.2.0",
                                 .build = 3,
                                 .releaseNotes = "<b>Bold</b> claims",
                                 .downloadAddress = "https://downloads.example/lumenote"};
        return {updates::UpdateCheckStatus::newerAvailable, "0.1.0", feed};
    }

    settings::InMemoryDefaultsDomain domain_;
    settings::PreferencesStore preferences_{domain_};
    int fetches_ = 0;
    std::vector<QUrl> opened_;
};

TEST_F(UpdateCheckCommandTest, WhileChecksAreOffNothingIsFetchedAndTheBoxSaysWhereToAllowThem) {
    preferences_.setUpdatesFeedAddress("https://updates.example/feed");
    UpdateCheckCommand check = command();
    check.run();
    EXPECT_EQ(fetches_, 0);
    ASSERT_NE(check.shownBox(), nullptr);
    EXPECT_TRUE(check.shownBox()->text().startsWith("Checking for updates is off."));
    EXPECT_EQ(check.shownBox()->findChild<QPushButton*>("updateDownload"), nullptr);

    preferences_.setUpdatesCheckEnabled(true);
    check.run();
    EXPECT_EQ(fetches_, 1);
    EXPECT_TRUE(check.shownBox()->text().startsWith("Lumenote could not reach"));
    check.shownBox()->close();
}

TEST_F(UpdateCheckCommandTest, ANewerReleaseShowsItsNotesAsTextAndOpensItsPageOnlyOnRequest) {
    QMessageBox* box =
        makeUpdateOutcomeBox(newer(), [this](const QUrl& address) { opened_.push_back(address); });
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    EXPECT_EQ(box->text(), "Lumenote 0.2.0 is available. You have 0.1.0.\n\n<b>Bold</b> claims");
    EXPECT_TRUE(opened_.empty());
    box->adjustSize();
    lumenote::testing::saveScreenshots(*box, "update-available");
    auto* download = box->findChild<QPushButton*>("updateDownload");
    ASSERT_NE(download, nullptr);
    download->click();
    EXPECT_EQ(opened_, std::vector<QUrl>{QUrl("https://downloads.example/lumenote")});
    delete box;
}

TEST_F(UpdateCheckCommandTest, AFailedCheckOffersNoDownload) {
    for (auto status :
         {updates::UpdateCheckStatus::notVerified, updates::UpdateCheckStatus::upToDate,
          updates::UpdateCheckStatus::insecureAddress}) {
        QMessageBox* box = makeUpdateOutcomeBox({status, "0.1.0", std::nullopt}, {});
        EXPECT_EQ(box->findChild<QPushButton*>("updateDownload"), nullptr);
        EXPECT_EQ(box->icon(), status == updates::UpdateCheckStatus::upToDate
                                   ? QMessageBox::Information
                                   : QMessageBox::Warning);
        delete box;
    }
}

}  // namespace
}  // namespace lumenote::app

#endif
