#include "ui/settings_general_section.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/settings_key_recorder.hpp"
#include "ui/settings_section_frame.hpp"

namespace lumenote::ui {

namespace {

using settings::TallywiseAppearance;

constexpr std::pair<const char*, TallywiseAppearance> kAppearances[] = {
    {"System", TallywiseAppearance::system},
    {"Light", TallywiseAppearance::light},
    {"Dark", TallywiseAppearance::dark},
};

QLabel* note(const QString& text, const char* name, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(name));
    label->setWordWrap(true);
    return label;
}

}  // namespace

GeneralSettingsSection::GeneralSettingsSection(SettingsDependencies& dependencies, QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("generalSection"));
    auto* layout = sectionLayout(this, QStringLiteral("General"),
                                 QStringLiteral("How Lumenote looks and starts."));

    auto* looks = new design::Card(QStringLiteral("Appearance"), {}, this);
    auto* looksForm = new QFormLayout;
    looksForm->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    appearance_ = new QComboBox(looks);
    appearance_->setObjectName(QStringLiteral("appearance"));
    appearance_->setAccessibleName(QStringLiteral("Appearance"));
    for (const auto& [word, appearance] : kAppearances) {
        appearance_->addItem(QString::fromLatin1(word));
    }
    looksForm->addRow(QStringLiteral("&Theme"), appearance_);
    looks->bodyLayout()->addLayout(looksForm);
    looks->bodyLayout()->addWidget(
        note(QStringLiteral("System follows the current macOS Light or Dark setting."),
             "appearanceNote", looks));
    layout->addWidget(looks);

    auto* starting = new design::Card(QStringLiteral("Start-up"), {}, this);
    launchAtLogin_ = design::namedCheckBox(QStringLiteral("Launch Lumenote at login"),
                                           QStringLiteral("launchAtLogin"), starting);
    startHidden_ =
        design::namedCheckBox(QStringLiteral("Start hidden, with only the tray icon showing"),
                              QStringLiteral("startHidden"), starting);
    starting->bodyLayout()->addWidget(launchAtLogin_);
    starting->bodyLayout()->addWidget(startHidden_);
    layout->addWidget(starting);

    auto* shortcut = new design::Card(
        QStringLiteral("Global Shortcut"),
        QStringLiteral("One key combination that works in every application: it opens the panel "
                       "when no session runs, and pauses or resumes a running session."),
        this);
    shortcutEnabled_ = design::namedCheckBox(QStringLiteral("Use a global shortcut"),
                                             QStringLiteral("shortcutEnabled"), shortcut);
    shortcut->bodyLayout()->addWidget(shortcutEnabled_);
    auto* shortcutForm = new QFormLayout;
    shortcutForm->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    recorder_ = new KeyRecorder(shortcut);
    recorder_->setObjectName(QStringLiteral("shortcutRecorder"));
    recorder_->setAccessibleName(QStringLiteral("Global shortcut"));
    recorder_->setMinimumWidth(220);
    shortcutForm->addRow(QStringLiteral("&Shortcut"), recorder_);
    shortcut->bodyLayout()->addLayout(shortcutForm);
    shortcut->bodyLayout()->addWidget(
        note(QStringLiteral("Press the button, then the combination. Escape cancels."),
             "shortcutHint", shortcut));
    shortcutRefusal_ = design::errorBanner(QStringLiteral("shortcutRefusal"), shortcut);
    shortcut->bodyLayout()->addWidget(shortcutRefusal_);
    shortcutState_ = note({}, "shortcutState", shortcut);
    shortcut->bodyLayout()->addWidget(shortcutState_);
    layout->addWidget(shortcut);
    layout->addStretch(1);

    settings::PreferencesStore& preferences = dependencies_.preferences;
    connect(appearance_, &QComboBox::currentIndexChanged, this, [&preferences](int index) {
        if (index >= 0) {
            preferences.setAppearance(kAppearances[index].second);
        }
    });
    connect(launchAtLogin_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setLaunchAtLogin(on); });
    connect(startHidden_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setStartHidden(on); });
    connect(shortcutEnabled_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setGlobalHotkeyEnabled(on); });
    connect(recorder_, &KeyRecorder::recorded, this, &GeneralSettingsSection::recordShortcut);

    token_ = preferences.addObserver([this](settings::PreferenceProperty property) {
        using P = settings::PreferenceProperty;
        if (property == P::appearance || property == P::launchAtLogin ||
            property == P::startHidden || property == P::globalHotkeyEnabled ||
            property == P::globalHotkey || property == P::globalHotkeyStatusMessage) {
            refresh();
        }
    });
    refresh();
}

GeneralSettingsSection::~GeneralSettingsSection() {
    dependencies_.preferences.removeObserver(token_);
}

void GeneralSettingsSection::refresh() {
    const settings::PreferencesStore& preferences = dependencies_.preferences;
    const QSignalBlocker blockAppearance(appearance_);
    const QSignalBlocker blockLaunch(launchAtLogin_);
    const QSignalBlocker blockHidden(startHidden_);
    const QSignalBlocker blockShortcut(shortcutEnabled_);
    for (int index = 0; index < static_cast<int>(std::size(kAppearances)); ++index) {
        if (kAppearances[index].second == preferences.appearance()) {
            appearance_->setCurrentIndex(index);
        }
    }
    launchAtLogin_->setChecked(preferences.launchAtLogin());
    startHidden_->setChecked(preferences.startHidden());
    shortcutEnabled_->setChecked(preferences.globalHotkeyEnabled());
    recorder_->setShownText(qt(settings::globalHotkeyDisplayText(preferences.globalHotkey())));
    shortcutStateChanged();
}

void GeneralSettingsSection::shortcutStateChanged() {
    const settings::PreferencesStore& preferences = dependencies_.preferences;
    const std::string unavailable = dependencies_.shortcutUnavailableSentence
                                        ? dependencies_.shortcutUnavailableSentence()
                                        : preferences.globalHotkeyStatusMessage().value_or("");
    shortcutState_->setText(qt(models::shortcutStateText(preferences.globalHotkeyEnabled(),
                                                         preferences.globalHotkey(), unavailable)));
}

void GeneralSettingsSection::recordShortcut(const models::RecordedKeys& keys) {
    auto binding = models::bindingFromRecordedKeys(keys);
    if (!binding) {
        shortcutRefusal_->setText(qt(binding.error()));
        shortcutRefusal_->setVisible(true);
        return;
    }
    shortcutRefusal_->setVisible(false);
    dependencies_.preferences.setGlobalHotkey(*binding);
}

}  // namespace lumenote::ui
