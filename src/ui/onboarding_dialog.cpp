#include "ui/onboarding_dialog.hpp"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "classification/starter_suggestions.hpp"
#include "settings/global_hotkey_binding.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/page_title.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/design/row.hpp"
#include "ui/desktop_observation_view.hpp"

namespace lumenote::ui {

namespace {

using models::OnboardingStep;

// The largest daily goal the preferences accept, in minutes (12 hours).
constexpr int kLargestDailyGoalMinutes = 720;
// How many starter suggestions of each kind the classification step shows.
constexpr std::size_t kStarterExamples = 6;

QLabel* paragraph(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel* muted(const QString& text, QWidget* parent) {
    QLabel* label = paragraph(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QWidget* page(QWidget* parent, QVBoxLayout** layout) {
    auto* widget = new QWidget(parent);
    *layout = new QVBoxLayout(widget);
    (*layout)->setContentsMargins(0, 0, 0, 0);
    (*layout)->setSpacing(10);
    return widget;
}

int indexOf(OnboardingStep step) {
    return static_cast<int>(step);
}

void clearLayout(QLayout* layout) {
    while (QLayoutItem* item = layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

}  // namespace

OnboardingDialog::OnboardingDialog(settings::PreferencesStore& preferences,
                                   OnboardingServices services, QWidget* parent)
    : QDialog(parent), preferences_(preferences), services_(std::move(services)) {
    setObjectName(QStringLiteral("onboarding"));
    setWindowTitle(QStringLiteral("Set Up Lumenote"));
    resize(640, 520);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 20);
    layout->setSpacing(12);
    progress_ = muted({}, this);
    progress_->setObjectName(QStringLiteral("onboardingProgress"));
    title_ = design::makePageTitle({}, this);
    pages_ = new QStackedWidget(this);
    pages_->addWidget(buildWelcome());
    pages_->addWidget(buildObservation());
    pages_->addWidget(buildBrowsers());
    pages_->addWidget(buildClassifications());
    pages_->addWidget(buildGoal());
    pages_->addWidget(buildDone());

    back_ = new QPushButton(QStringLiteral("Back"), this);
    back_->setAccessibleName(QStringLiteral("Back"));
    back_->setObjectName(QStringLiteral("onboardingBack"));
    back_->setAutoDefault(false);
    next_ = new QPushButton(this);
    next_->setObjectName(QStringLiteral("onboardingNext"));
    next_->setDefault(true);
    connect(back_, &QPushButton::clicked, this, &OnboardingDialog::goBack);
    connect(next_, &QPushButton::clicked, this, &OnboardingDialog::goForward);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(back_);
    buttons->addStretch(1);
    buttons->addWidget(next_);

    layout->addWidget(progress_);
    layout->addWidget(title_);
    layout->addWidget(pages_, 1);
    layout->addLayout(buttons);

    preferencesToken_ = preferences_.addObserver([this](settings::PreferenceProperty property) {
        if (property == settings::PreferenceProperty::globalHotkeyStatusMessage ||
            property == settings::PreferenceProperty::globalHotkeyEnabled) {
            refreshShortcutState();
        }
    });
    showStep(models::onboardingResumeStep(preferences_.onboardingLastStep(),
                                          preferences_.onboardingCompletedVersion()));
}

OnboardingDialog::~OnboardingDialog() {
    preferences_.removeObserver(preferencesToken_);
}

QWidget* OnboardingDialog::buildWelcome() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(this, &layout);
    layout->addWidget(paragraph(
        QStringLiteral("Lumenote keeps an honest record of your study sessions: you start a "
                       "session, and it notes what you work with until you end it."),
        widget));
    layout->addWidget(paragraph(qt(models::kPrivacyPromise), widget));
    layout->addWidget(
        muted(QStringLiteral("This assistant takes a minute. You can run it again at any time "
                             "from the tray menu."),
              widget));
    layout->addStretch(1);
    return widget;
}

QWidget* OnboardingDialog::buildObservation() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(this, &layout);
    layout->addWidget(paragraph(
        QStringLiteral("Lumenote asks your desktop which application is in front and how long "
                       "since your last input. This is what it found:"),
        widget));
    observation_ =
        new DesktopObservationView({services_.checkSetup, services_.installGnomeExtension}, widget);
    layout->addWidget(observation_);
    layout->addStretch(1);
    return widget;
}

QWidget* OnboardingDialog::buildBrowsers() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(this, &layout);
    layout->addWidget(paragraph(
        QStringLiteral("With its browser extension, Lumenote records the name of the website in "
                       "front (such as en.wikipedia.org), never its address or title. Register "
                       "Lumenote's helper with your browser, then add the extension."),
        widget));
    browserList_ = new QVBoxLayout;
    browserList_->setSpacing(6);
    layout->addLayout(browserList_);
    browserMessage_ = muted({}, widget);
    browserMessage_->setObjectName(QStringLiteral("onboardingBrowserMessage"));
    layout->addWidget(browserMessage_);
    const QString packages =
        services_.extensionFolder
            ? QStringLiteral(
                  "The extension packages are in %1: in a Chromium-family browser "
                  "open the extensions page, turn on developer mode and load the "
                  "\"chromium\" folder; in Firefox open the .xpi file.")
                  .arg(QString::fromStdString(services_.extensionFolder->string()))
            : QStringLiteral("The extension packages were not found beside this installation.");
    layout->addWidget(muted(packages, widget));
    auto* test = new QPushButton(QStringLiteral("Test Again"), widget);
    test->setAccessibleName(QStringLiteral("Test the browsers' connection again"));
    test->setObjectName(QStringLiteral("onboardingTestBrowsers"));
    test->setAutoDefault(false);
    connect(test, &QPushButton::clicked, this, &OnboardingDialog::refreshBrowsers);
    auto* row = new QHBoxLayout;
    row->addWidget(test);
    row->addStretch(1);
    layout->addLayout(row);
    layout->addStretch(1);
    return widget;
}

QWidget* OnboardingDialog::buildClassifications() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(this, &layout);
    layout->addWidget(paragraph(
        QStringLiteral("Your focus score compares focused time with distracting time. Lumenote "
                       "starts with suggestions for well-known applications and websites; "
                       "anything else stays unclassified until you give it a class."),
        widget));
    const auto examples = [&](const std::vector<classification::StarterClassificationRow>& rows) {
        for (std::size_t index = 0; index < rows.size() && index < kStarterExamples; ++index) {
            auto* row = new design::Row(qt(rows[index].name), qt(rows[index].detail), widget);
            auto* chip = new design::Chip;
            chip->setClassification(rows[index].classification);
            row->setTrailingWidget(chip);
            layout->addWidget(row);
        }
    };
    examples(classification::starterWebsiteRows());
    layout->addWidget(
        muted(QStringLiteral("Change any of them, and classify what you use, in Settings → "
                             "Classification or from the review of unclassified activity."),
              widget));
    layout->addStretch(1);
    return widget;
}

QWidget* OnboardingDialog::buildGoal() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(this, &layout);
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    goal_ = new QSpinBox(widget);
    goal_->setObjectName(QStringLiteral("onboardingGoal"));
    goal_->setAccessibleName(QStringLiteral("Daily study goal in minutes"));
    goal_->setRange(0, kLargestDailyGoalMinutes);
    goal_->setSingleStep(15);
    goal_->setSuffix(QStringLiteral(" min"));
    goal_->setSpecialValueText(QStringLiteral("No goal"));
    goal_->setValue(static_cast<int>(preferences_.dailyStudyGoalMinutes()));
    connect(goal_, &QSpinBox::valueChanged, this,
            [this](int minutes) { preferences_.setDailyStudyGoalMinutes(minutes); });
    form->addRow(QStringLiteral("Daily study goal"), goal_);
    layout->addLayout(form);
    layout->addWidget(muted(QStringLiteral("Today's ring fills as you study towards it."), widget));

    shortcutEnabled_ =
        new QCheckBox(QStringLiteral("Start and control sessions with %1 from anywhere")
                          .arg(qt(settings::globalHotkeyDisplayText(preferences_.globalHotkey()))),
                      widget);
    shortcutEnabled_->setObjectName(QStringLiteral("onboardingShortcut"));
    shortcutEnabled_->setAccessibleName(shortcutEnabled_->text());
    shortcutEnabled_->setChecked(preferences_.globalHotkeyEnabled());
    connect(shortcutEnabled_, &QCheckBox::toggled, this,
            [this](bool enabled) { preferences_.setGlobalHotkeyEnabled(enabled); });
    layout->addSpacing(8);
    layout->addWidget(shortcutEnabled_);
    shortcutState_ = muted({}, widget);
    shortcutState_->setObjectName(QStringLiteral("onboardingShortcutState"));
    layout->addWidget(shortcutState_);
    layout->addStretch(1);
    refreshShortcutState();
    return widget;
}

QWidget* OnboardingDialog::buildDone() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(this, &layout);
    layout->addWidget(paragraph(
        QStringLiteral("Lumenote lives in the tray. Click its icon to start a session, watch it "
                       "run and end it; open Lumenote from the tray menu to look back at your "
                       "sessions and your week."),
        widget));
    auto* start = new QPushButton(QStringLiteral("Start a Study Session"), widget);
    start->setAccessibleName(start->text());
    start->setObjectName(QStringLiteral("onboardingStart"));
    start->setAutoDefault(false);
    connect(start, &QPushButton::clicked, this, [this] {
        finish();
        Q_EMIT startSessionRequested();
    });
    auto* row = new QHBoxLayout;
    row->addWidget(start);
    row->addStretch(1);
    layout->addLayout(row);
    layout->addStretch(1);
    return widget;
}

void OnboardingDialog::showStep(OnboardingStep step) {
    step_ = step;
    preferences_.setOnboardingLastStep(indexOf(step));
    pages_->setCurrentIndex(indexOf(step));
    title_->setText(qt(models::onboardingStepTitle(step)));
    title_->setAccessibleName(title_->text());
    progress_->setText(qt(models::onboardingProgressText(step)));
    back_->setEnabled(step != OnboardingStep::welcome);
    next_->setText(step == OnboardingStep::done ? QStringLiteral("Finish")
                                                : QStringLiteral("Continue"));
    next_->setAccessibleName(next_->text());
    // Return goes on, whatever the page shows; the page's own buttons take
    // Space when the keyboard is on them.
    next_->setFocus();
    if (step == OnboardingStep::observation) {
        observation_->refresh();
    } else if (step == OnboardingStep::browsers) {
        refreshBrowsers();
    }
}

void OnboardingDialog::goForward() {
    if (step_ == OnboardingStep::done) {
        finish();
        return;
    }
    showStep(models::kOnboardingSteps[static_cast<std::size_t>(indexOf(step_) + 1)]);
}

void OnboardingDialog::goBack() {
    if (step_ != OnboardingStep::welcome) {
        showStep(models::kOnboardingSteps[static_cast<std::size_t>(indexOf(step_) - 1)]);
    }
}

void OnboardingDialog::finish() {
    preferences_.setOnboardingCompletedVersion(models::kOnboardingVersion);
    preferences_.setOnboardingLastStep(0);
    accept();
}

void OnboardingDialog::refreshBrowsers() {
    clearLayout(browserList_);
    browsers_ = services_.browserStatus ? models::onboardingBrowserRows(services_.browserStatus())
                                        : std::vector<models::OnboardingBrowserRow>{};
    browserMessage_->setText(browsers_.empty() ? qt(models::kNoBrowserInstalled) : QString());
    browserMessage_->setVisible(browsers_.empty());
    QWidget* owner = pages_->widget(indexOf(OnboardingStep::browsers));
    for (const models::OnboardingBrowserRow& browser : browsers_) {
        auto* row = new design::Row(qt(browser.name), qt(browser.state), owner);
        row->setObjectName(QStringLiteral("onboardingBrowser"));
        if (!browser.registered && services_.registerBrowser) {
            auto* registration = new QPushButton(QStringLiteral("Register"));
            registration->setAutoDefault(false);
            registration->setAccessibleName(QStringLiteral("Register %1").arg(qt(browser.name)));
            const bridge::SupportedBrowser supported = browser.browser;
            connect(registration, &QPushButton::clicked, this, [this, supported] {
                const auto registered = services_.registerBrowser(supported);
                refreshBrowsers();
                if (!registered) {
                    browserMessage_->setText(qt(bridge::message(registered.error())));
                    browserMessage_->setVisible(true);
                }
            });
            row->setTrailingWidget(registration);
        }
        browserList_->addWidget(row);
    }
}

void OnboardingDialog::refreshShortcutState() {
    const auto& message = preferences_.globalHotkeyStatusMessage();
    shortcutState_->setText(message ? qt(*message)
                                    : QStringLiteral("You can choose another shortcut in "
                                                     "Settings → General."));
}

}  // namespace lumenote::ui
