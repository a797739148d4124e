// The tray panel's three states, driven through the recorder runtime over a
// real SQLite store in a temporary home (no display: the recorder observes
// nothing, as the headless platform does), drawn with Qt's offscreen
// platform. The form's refusals are shown beside their fields and start
// nothing.
#include "ui/tray_panel.hpp"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <stdlib.h>
#include "ui/offscreen_application.hpp"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <memory>

#include "platform/system/system_clocks.hpp"
#include "recording/unclassified_review_service.hpp"
#include "settings/in_memory_session_template_repository.hpp"
#include "settings/session_template_store.hpp"
#include "support/temporary_home.hpp"
#include "ui/appearance.hpp"
#include "ui/start_session_form.hpp"

namespace lumenote::ui {
namespace {

class SilentFrontEnd final : public runtime::RecorderFrontEnd {
  public:
    void refresh() override {}
    void controlled(runtime::RecorderControl) override {}
    void showError(const std::string& message) override { errors.push_back(message); }
    void noInputQuestionArrived(const recording::NoInputClassificationPrompt&) override {}
    void sessionEnded(const std::optional<recording::StudySession>&,
                      const std::vector<recording::PersonalBest>&) override {
        ++ended;
    }
    void terminated(const std::string&) override {}
    Result<void, std::string> present() override { return {}; }

    std::vector<std::string> errors;
    int ended = 0;
};

class TrayPanelTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        std::vector<std::string> warnings;
        auto opened = runtime::RecorderServices::open(home_.paths(), warnings);
        ASSERT_TRUE(opened.ok()) << opened.error().message;
        services_ = std::move(opened).value();
        runtime_ = std::make_unique<runtime::RecorderRuntime>(*services_, frontEnd_);
        templates_ = std::make_unique<settings::SessionTemplateStore>(
            repository_, [this] { return clock_.now(); });
        panel_ = std::make_unique<TrayPanel>(*runtime_, *templates_);
    }

    template <typename Widget>
    Widget& child(const char* name) {
        auto* found = panel_->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    void fillForm(const QString& subject, const QString& minutes) {
        child<QLineEdit>("subject").setText(subject);
        child<QRadioButton>("timer").setChecked(true);
        child<QLineEdit>("duration").setText(minutes);
    }

    std::size_t storedSessions() { return services_->store().sessionCount().value(); }

    testing::TemporaryHome home_;
    SilentFrontEnd frontEnd_;
    platform::system::SystemWallClock clock_;
    settings::InMemorySessionTemplateRepository repository_;
    std::unique_ptr<runtime::RecorderServices> services_;
    std::unique_ptr<runtime::RecorderRuntime> runtime_;
    std::unique_ptr<settings::SessionTemplateStore> templates_;
    std::unique_ptr<TrayPanel> panel_;
};

TEST_F(TrayPanelTest, BadFormValuesAreShownBesideTheirFieldsAndRecordNothing) {
    EXPECT_EQ(panel_->page(), TrayPanel::Page::start);
    struct Case {
        QString subject;
        QString minutes;
        const char* messageLabel;
        QString message;
    };
    const Case cases[] = {
        {"Biology", "abc", "durationMessage", "Enter the duration as whole minutes."},
        {"Biology", "", "durationMessage", "Enter the duration as whole minutes."},
        {"Biology", "1441", "durationMessage",
         QString::fromStdString(
             recording::sessionFailureMessage(recording::SessionFailure::invalidDuration))},
        {"Biology", "0", "durationMessage",
         QString::fromStdString(
             recording::sessionFailureMessage(recording::SessionFailure::invalidDuration))},
        {"   ", "25", "subjectMessage", "Add a subject."},
    };
    for (const Case& test : cases) {
        fillForm(test.subject, test.minutes);
        child<QPushButton>("start").click();
        QLabel& message = child<QLabel>(test.messageLabel);
        EXPECT_FALSE(message.isHidden()) << test.minutes.toStdString();
        EXPECT_EQ(message.text(), test.message) << test.minutes.toStdString();
        EXPECT_EQ(panel_->page(), TrayPanel::Page::start);
        EXPECT_FALSE(runtime_->manager().activeSession());
    }
    EXPECT_EQ(storedSessions(), 0u);
    // Only the field at fault carries a message.
    EXPECT_TRUE(child<QLabel>("durationMessage").isHidden());
}

TEST_F(TrayPanelTest, OpenEndedSessionsIgnoreTheDurationField) {
    child<QLineEdit>("subject").setText("History");
    child<QLineEdit>("duration").setText("not a number");
    child<QRadioButton>("openEnded").setChecked(true);
    child<QPushButton>("start").click();
    ASSERT_TRUE(runtime_->manager().activeSession());
    EXPECT_EQ(runtime_->manager().activeSession()->timingMode(),
              recording::SessionTimingMode::openEnded);
    EXPECT_EQ(child<QLabel>("remaining").text(), "Open end");
}

TEST_F(TrayPanelTest, FollowsASessionThroughItsThreeStates) {
    fillForm("Biology", "50");
    child<QComboBox>("studyMode").setCurrentIndex(0);
    child<QPushButton>("start").click();
    ASSERT_EQ(panel_->page(), TrayPanel::Page::session);
    const auto& session = runtime_->manager().activeSession();
    ASSERT_TRUE(session);
    EXPECT_EQ(session->subject, "Biology");
    EXPECT_DOUBLE_EQ(session->plannedDuration, 3000.0);
    EXPECT_EQ(session->studyMode(), recording::StudySessionMode::computerBased);
    EXPECT_EQ(child<QLabel>("sessionSubject").text(), "Biology");
    EXPECT_EQ(child<QLabel>("remaining").text(), "50:00 left");
    EXPECT_EQ(storedSessions(), 1u);

    child<QPushButton>("pause").click();
    EXPECT_EQ(runtime_->manager().activeSession()->status(), recording::StudySessionStatus::paused);
    EXPECT_EQ(child<QPushButton>("pause").text(), "Resume");
    EXPECT_FALSE(child<QPushButton>("away").isEnabled());
    child<QPushButton>("pause").click();
    EXPECT_EQ(child<QPushButton>("pause").text(), "Pause");
    child<QPushButton>("away").click();
    EXPECT_EQ(runtime_->manager().liveStudyState(), recording::LiveStudyState::passiveStudy);
    EXPECT_EQ(child<QPushButton>("away").text(), "Return to Computer Study");
    EXPECT_EQ(child<QLabel>("activity").text(), "Studying away from Mac");

    child<QPushButton>("end").click();
    ASSERT_EQ(panel_->page(), TrayPanel::Page::summary);
    EXPECT_EQ(frontEnd_.ended, 1);
    EXPECT_EQ(child<QLabel>("summaryHeading").text(), "Biology");
    EXPECT_TRUE(child<QLabel>("summarySubtitle").text().startsWith("Completed after"));
    // Under a minute of Focused and Distracted time there is no score.
    EXPECT_EQ(child<QLabel>("summaryScore").text(),
              "Not enough Focused + Distracted time to show a focus score.");
    // The runtime goes on: the next session starts from the panel again.
    EXPECT_FALSE(runtime_->stopped());
    child<QPushButton>("done").click();
    EXPECT_EQ(panel_->page(), TrayPanel::Page::start);
    EXPECT_FALSE(runtime_->manager().pendingPostSession());
    // The subject is offered again, and today's line names no figure it
    // cannot know.
    EXPECT_FALSE(child<QLabel>("today").text().isEmpty());
}

TEST_F(TrayPanelTest, TheSummarySavesTheSessionsReceipt) {
    fillForm("Geology", "25");
    child<QPushButton>("start").click();
    child<QPushButton>("end").click();
    ASSERT_EQ(panel_->page(), TrayPanel::Page::summary);
    EXPECT_TRUE(child<QPushButton>("saveReceipt").isEnabled());

    // A name without .png or .pdf becomes a PNG; .pdf gives a PDF.
    const std::filesystem::path folder = home_.root() / "Pictures";
    ASSERT_TRUE(panel_->saveReceipt(folder / "geology"));
    EXPECT_TRUE(std::filesystem::exists(folder / "geology.png"));
    ASSERT_TRUE(panel_->saveReceipt(folder / "geology.pdf"));
    std::ifstream pdf(folder / "geology.pdf", std::ios::binary);
    std::string magic(4, '\0');
    pdf.read(magic.data(), 4);
    EXPECT_EQ(magic, "%PDF");
    EXPECT_TRUE(child<QLabel>("receiptSaved").isVisibleTo(panel_.get()));

    // A folder in the way is refused with its sentence, and nothing is lost.
    std::filesystem::create_directories(folder / "taken.png");
    EXPECT_FALSE(panel_->saveReceipt(folder / "taken.png"));
    EXPECT_TRUE(child<QLabel>("banner").text().startsWith("The receipt could not be saved"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "taken.png"));
}

TEST_F(TrayPanelTest, TheSummaryOffersTheReplayOfItsSession) {
    fillForm("Geology", "25");
    child<QPushButton>("start").click();
    const Uuid id = runtime_->manager().activeSession()->id;
    child<QPushButton>("end").click();
    ASSERT_EQ(panel_->page(), TrayPanel::Page::summary);
    QSignalSpy replay(panel_.get(), &TrayPanel::replayRequested);
    child<QPushButton>("replay").click();
    ASSERT_EQ(replay.count(), 1);
    EXPECT_EQ(replay[0][0].toString().toStdString(), id.upperString());
}

TEST_F(TrayPanelTest, TheStartPageInvitesReviewOnlyWhileSomethingWaits) {
    EXPECT_FALSE(child<QPushButton>("reviewLine").isVisibleTo(panel_.get()));
    recording::StudySession session(Uuid::generate(), "Reading", "", 0.0, Date{0.0});
    session.endDate = Date{600.0};
    session.setStatus(recording::StudySessionStatus::completed);
    recording::ActivitySegment unruled(Uuid::generate(), Date{0.0}, Date{600.0}, 600.0,
                                       "Scratchpad", "org.example.Scratchpad",
                                       classification::ActivityClassification::unclassified, false);
    unruled.session = session.id;
    recording::StoreChangeSet changes;
    changes.sessions.push_back(session);
    changes.segments.push_back(unruled);
    ASSERT_TRUE(services_->store().apply(changes).ok());
    services_->review().invalidate();
    panel_->reloadStartForm();
    auto& line = child<QPushButton>("reviewLine");
    EXPECT_TRUE(line.isVisibleTo(panel_.get()));
    EXPECT_EQ(line.accessibleName(), "1 activity waits for review (10 min)");
    QSignalSpy review(panel_.get(), &TrayPanel::reviewRequested);
    line.click();
    EXPECT_EQ(review.count(), 1);
}

TEST_F(TrayPanelTest, ATemplateStartsInOneClickAndIsMarkedUsed) {
    settings::SessionTemplateDraft draft;
    draft.name = "Flashcards";
    draft.subject = "Spanish";
    draft.duration = 900;
    ASSERT_TRUE(templates_->create(draft).ok());
    panel_->reloadStartForm();
    QPushButton* button = nullptr;
    for (QPushButton* candidate : panel_->findChildren<QPushButton*>()) {
        if (candidate->accessibleName() == "Start template Flashcards") {
            button = candidate;
        }
    }
    ASSERT_NE(button, nullptr);
    button->click();
    ASSERT_TRUE(runtime_->manager().activeSession());
    EXPECT_EQ(runtime_->manager().activeSession()->subject, "Spanish");
    EXPECT_DOUBLE_EQ(runtime_->manager().activeSession()->plannedDuration, 900.0);
    EXPECT_TRUE(templates_->templates().front().lastUsedDate.has_value());
}

TEST_F(TrayPanelTest, DrawsInLightAndDark) {
    AppearanceController appearance;
    for (const auto chosen :
         {settings::TallywiseAppearance::light, settings::TallywiseAppearance::dark}) {
        appearance.apply(chosen);
        QApplication::processEvents();
        const bool dark = chosen == settings::TallywiseAppearance::dark;
        EXPECT_EQ(QApplication::palette().color(QPalette::Window).lightness() < 128, dark);
        panel_->refresh();
        panel_->adjustSize();
        const QImage image = panel_->grab().toImage();
        image.save(QString::fromStdString(home_.root().string()) +
                   (dark ? "/dark.png" : "/light.png"));
        if (const char* keep = std::getenv("LUMENOTE_KEEP_GRABS")) {
            image.save(QString::fromLatin1(keep) + (dark ? "/dark.png" : "/light.png"));
        }
        ASSERT_FALSE(image.isNull());
        EXPECT_GE(image.width(), 300);
        // The panel's background follows the appearance.
        EXPECT_EQ(image.pixelColor(2, image.height() / 2).lightness() < 128, dark);
    }
    appearance.apply(settings::TallywiseAppearance::system);
}

}  // namespace
}  // namespace lumenote::ui
