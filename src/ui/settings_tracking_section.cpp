#include "ui/settings_tracking_section.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "runtime/setup_check.hpp"
#include "settings/preference_rules.hpp"
#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/desktop_observation_view.hpp"
#include "ui/settings_number_field.hpp"
#include "ui/settings_section_frame.hpp"

namespace lumenote::ui {

namespace {

using settings::LongSleepPreference;

constexpr std::pair<const char*, LongSleepPreference> kLongSleeps[] = {
    {"After 5 minutes", LongSleepPreference::fiveMinutes},
    {"After 10 minutes", LongSleepPreference::tenMinutes},
    {"After 30 minutes", LongSleepPreference::thirtyMinutes},
    {"Never", LongSleepPreference::never},
};

}  // namespace

TrackingSettingsSection::TrackingSettingsSection(SettingsDependencies& dependencies,
                                                 QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("trackingSection"));
    auto* layout = sectionLayout(this, QStringLiteral("Tracking"),
                                 QStringLiteral("What a running session records, and when it "
                                                "asks. Nothing is recorded without a session."));
    settings::PreferencesStore& preferences = dependencies_.preferences;

    auto* idle = new design::Card(
        QStringLiteral("Time Without Input"),
        QStringLiteral("After this long without keyboard or mouse input, time counts as no "
                       "input; a longer run becomes a question when you return."),
        this);
    auto* idleForm = new QFormLayout;
    idleForm->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    const settings::ThresholdRange inactivity = settings::kInactivityThresholdRange;
    inactivity_ = new NumberField(
        QStringLiteral("Custom no-input threshold in seconds"), QStringLiteral("inactivity"),
        {inactivity.lower, inactivity.upper, "seconds"},
        [&preferences] { return preferences.inactivityThreshold(); },
        [&preferences](double seconds) { preferences.setInactivityThreshold(seconds); }, idle);
    idleForm->addRow(QStringLiteral("&No input after (seconds)"), inactivity_);
    const settings::ThresholdRange prompt = settings::kPassiveStudyPromptRange;
    prompt_ = new NumberField(
        QStringLiteral("No-input prompt threshold in seconds"), QStringLiteral("prompt"),
        {prompt.lower, prompt.upper, "seconds"},
        [&preferences] { return preferences.passiveStudyPromptThreshold(); },
        [&preferences](double seconds) { preferences.setPassiveStudyPromptThreshold(seconds); },
        idle);
    idleForm->addRow(QStringLiteral("&Ask about a run longer than (seconds)"), prompt_);
    longSleep_ = new QComboBox(idle);
    longSleep_->setObjectName(QStringLiteral("longSleep"));
    longSleep_->setAccessibleName(QStringLiteral("Pause the session after a sleep"));
    for (const auto& [word, choice] : kLongSleeps) {
        longSleep_->addItem(QString::fromLatin1(word));
    }
    idleForm->addRow(QStringLiteral("&Pause after a sleep"), longSleep_);
    idle->bodyLayout()->addLayout(idleForm);
    layout->addWidget(idle);

    auto* browsers = new design::Card(
        QStringLiteral("Browsers and PDFs"),
        QStringLiteral("Hostnames only, never addresses or page titles; nothing leaves this "
                       "computer."),
        this);
    browserTracking_ =
        design::namedCheckBox(QStringLiteral("Record activity in supported browsers"),
                              QStringLiteral("browserTracking"), browsers);
    hostnames_ = design::namedCheckBox(QStringLiteral("Record website hostnames"),
                                       QStringLiteral("hostnameTracking"), browsers);
    pauseBrowsers_ = design::namedCheckBox(QStringLiteral("Pause all browser tracking"),
                                           QStringLiteral("pauseBrowserTracking"), browsers);
    localPDFs_ = design::namedCheckBox(QStringLiteral("Detect local PDFs opened in a browser"),
                                       QStringLiteral("localPDFs"), browsers);
    manualPDFLabels_ = design::namedCheckBox(QStringLiteral("Let me label local PDFs"),
                                             QStringLiteral("manualPDFLabels"), browsers);
    for (QCheckBox* box :
         {browserTracking_, hostnames_, pauseBrowsers_, localPDFs_, manualPDFLabels_}) {
        browsers->bodyLayout()->addWidget(box);
    }
    layout->addWidget(browsers);

    auto* desktop =
        new design::Card(QStringLiteral("On This Desktop"),
                         QStringLiteral("What this desktop lets Lumenote observe."), this);
    observed_ = new DesktopObservationView(
        {dependencies_.checkDesktop ? dependencies_.checkDesktop
                                    : [] { return runtime::checkSetup(); },
         dependencies_.installGnomeExtension},
        desktop);
    desktop->bodyLayout()->addWidget(observed_);
    layout->addWidget(desktop);
    layout->addStretch(1);

    connect(longSleep_, &QComboBox::currentIndexChanged, this, [&preferences](int index) {
        if (index >= 0) {
            preferences.setLongSleep(kLongSleeps[index].second);
        }
    });
    const std::pair<QCheckBox*, void (settings::PreferencesStore::*)(bool)> switches[] = {
        {browserTracking_, &settings::PreferencesStore::setBrowserTrackingEnabled},
        {hostnames_, &settings::PreferencesStore::setHostnameTrackingEnabled},
        {pauseBrowsers_, &settings::PreferencesStore::setPauseAllBrowserTracking},
        {localPDFs_, &settings::PreferencesStore::setLocalPDFDetectionEnabled},
        {manualPDFLabels_, &settings::PreferencesStore::setManualPDFLabelsEnabled},
    };
    for (const auto& [box, setter] : switches) {
        connect(box, &QCheckBox::toggled, this,
                [&preferences, setter](bool on) { (preferences.*setter)(on); });
    }

    token_ = preferences.addObserver([this](settings::PreferenceProperty property) {
        using P = settings::PreferenceProperty;
        switch (property) {
            case P::inactivityThreshold:
            case P::passiveStudyPromptThreshold:
            case P::longSleep:
            case P::browserTrackingEnabled:
            case P::hostnameTrackingEnabled:
            case P::pauseAllBrowserTracking:
            case P::localPDFDetectionEnabled:
            case P::manualPDFLabelsEnabled:
                refresh();
                break;
            default:
                break;
        }
    });
    refresh();
    observed_->refresh();
}

TrackingSettingsSection::~TrackingSettingsSection() {
    dependencies_.preferences.removeObserver(token_);
}

void TrackingSettingsSection::refresh() {
    const settings::PreferencesStore& preferences = dependencies_.preferences;
    inactivity_->refresh();
    prompt_->refresh();
    const QSignalBlocker blockers[] = {
        QSignalBlocker(longSleep_), QSignalBlocker(browserTracking_),
        QSignalBlocker(hostnames_), QSignalBlocker(pauseBrowsers_),
        QSignalBlocker(localPDFs_), QSignalBlocker(manualPDFLabels_)};
    for (int index = 0; index < static_cast<int>(std::size(kLongSleeps)); ++index) {
        if (kLongSleeps[index].second == preferences.longSleep()) {
            longSleep_->setCurrentIndex(index);
        }
    }
    browserTracking_->setChecked(preferences.browserTrackingEnabled());
    hostnames_->setChecked(preferences.hostnameTrackingEnabled());
    pauseBrowsers_->setChecked(preferences.pauseAllBrowserTracking());
    localPDFs_->setChecked(preferences.localPDFDetectionEnabled());
    manualPDFLabels_->setChecked(preferences.manualPDFLabelsEnabled());
    // Hostnames and PDFs come from the browsers: without browser tracking
    // their switches have nothing to say.
    const bool browsing = preferences.browserTrackingEnabled();
    hostnames_->setEnabled(browsing);
    pauseBrowsers_->setEnabled(browsing);
    localPDFs_->setEnabled(browsing);
    manualPDFLabels_->setEnabled(browsing && preferences.localPDFDetectionEnabled());
}

}  // namespace lumenote::ui
