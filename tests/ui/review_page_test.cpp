// The review of unclassified activity under Qt's offscreen platform over a
// real store: an application's class becomes its rule and the row leaves the
// list, a PDF row offers how far its class reaches, and classifying the last
// row leaves the sentence that nothing waits.
#include "ui/review_page.hpp"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "platform/fake/fake_platform.hpp"
#include "recording/unclassified_review_service.hpp"
#include "store/sqlite_recording_store.hpp"
#include "ui/accessibility.hpp"
#include "ui/offscreen_application.hpp"
#include "ui/screenshots.hpp"

namespace lumenote::ui {
namespace {

using classification::ActivityClassification;

Uuid numbered(std::uint8_t number) {
    Uuid::Bytes bytes{};
    bytes[15] = number;
    return Uuid(bytes);
}

class ReviewPageTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        auto opened = store::SqliteRecordingStore::openInMemory();
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
        recording::StoreChangeSet changes;
        recording::StudySession session(numbered(1), "Chemistry", "", 0.0, Date{0.0});
        session.endDate = Date{3600.0};
        session.setStatus(recording::StudySessionStatus::completed);
        changes.sessions.push_back(session);
        // The longer application comes first; the PDF second.
        changes.segments.push_back(segment(2, 0, 1800, "Scratchpad", "org.example.Scratchpad"));
        recording::ActivitySegment pdf = segment(3, 1800, 2400, "Firefox", "org.mozilla.firefox");
        pdf.setActivitySource(recording::ActivitySourceType::localPDF);
        pdf.pdfIdentifier = numbered(9);
        pdf.setPdfDisplayLabel("Lecture notes");
        changes.segments.push_back(pdf);
        classification::LocalPDFIdentity identity;
        identity.id = numbered(9);
        identity.browserBundleIdentifier = "org.mozilla.firefox";
        identity.displayLabelStorage = "Lecture notes";
        identity.classificationRawValue = "unclassified";
        identity.session = numbered(1);
        changes.pdfIdentities.push_back(identity);
        // Time without input is never offered for review.
        changes.segments.push_back(segment(4, 2400, 3000, "", "", true));
        ASSERT_TRUE(store_->apply(changes).ok());
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        ASSERT_TRUE(rules_->load().empty());
        review_ = std::make_unique<recording::UnclassifiedReviewService>(*store_, *rules_);
        page_ = std::make_unique<ReviewPage>(*review_);
        page_->resize(800, 500);
        page_->show();
    }

    recording::ActivitySegment segment(std::uint8_t number, double from, double to,
                                       std::string name, std::string bundle,
                                       bool inactive = false) {
        recording::ActivitySegment made(numbered(number), Date{from}, Date{to}, to - from,
                                        std::move(name), std::move(bundle),
                                        ActivityClassification::unclassified, inactive);
        made.session = numbered(1);
        return made;
    }

    QPushButton* button(const char* name) {
        return page_->findChild<QPushButton*>(QString::fromLatin1(name));
    }

    platform::fake::FakeMachine machine_;
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::UnclassifiedReviewService> review_;
    std::unique_ptr<ReviewPage> page_;
};

TEST_F(ReviewPageTest, AnApplicationsClassBecomesItsRuleAndItsRowLeaves) {
    ASSERT_EQ(page_->rows().size(), 2u);
    EXPECT_EQ(page_->rows()[0].title, "Scratchpad");
    EXPECT_EQ(page_->list().currentRow(), 0);
    EXPECT_FALSE(page_->findChild<QComboBox*>("reviewPDFScope")->isVisible());

    QSignalSpy classified(page_.get(), &ReviewPage::classified);
    QTest::mouseClick(button("reviewClassifyFocused"), Qt::LeftButton);
    EXPECT_EQ(classified.count(), 1);
    EXPECT_EQ(rules_->lookup().applicationClassification("org.example.Scratchpad", "Scratchpad"),
              ActivityClassification::focused);
    ASSERT_EQ(page_->rows().size(), 1u);
    EXPECT_EQ(page_->rows()[0].title, "Lecture notes");
}

TEST_F(ReviewPageTest, APDFRowOffersHowFarItsClassReaches) {
    page_->list().setCurrentRow(1);
    auto* scope = page_->findChild<QComboBox*>("reviewPDFScope");
    EXPECT_TRUE(scope->isVisible());
    lumenote::testing::saveScreenshots(*page_, "review-page");
    const QStringList unnamed = lumenote::testing::unnamedKeyboardControls(*page_);
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();
    EXPECT_EQ(scope->count(), 2);
    ASSERT_TRUE(page_->classifySelected(ActivityClassification::neutral));
    ASSERT_EQ(page_->rows().size(), 1u);
    EXPECT_EQ(page_->rows()[0].title, "Scratchpad");
    EXPECT_FALSE(scope->isVisible());
}

TEST_F(ReviewPageTest, ClassifyingEveryRowLeavesTheSentenceThatNothingWaits) {
    ASSERT_TRUE(page_->classifySelected(ActivityClassification::distracting));
    ASSERT_TRUE(page_->classifySelected(ActivityClassification::ignored));
    EXPECT_TRUE(page_->rows().empty());
    EXPECT_FALSE(page_->list().isVisible());
    EXPECT_EQ(page_->findChild<QLabel*>("reviewSummary")->text(),
              "Nothing waits for review: every recorded activity has a class.");
    EXPECT_FALSE(button("reviewClassifyFocused")->isEnabled());
    EXPECT_FALSE(page_->classifySelected(ActivityClassification::focused));
}

}  // namespace
}  // namespace lumenote::ui
