#include "ui/settings_notifications_section.hpp"

#include <QCheckBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/settings_section_frame.hpp"

namespace lumenote::ui {

NotificationsSettingsSection::NotificationsSettingsSection(SettingsDependencies& dependencies,
                                                           QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("notificationsSection"));
    auto* layout = sectionLayout(this, QStringLiteral("Notifications"),
                                 QStringLiteral("Lumenote tells you when a timed session is "
                                                "done; it never reminds you to study."));
    settings::PreferencesStore& preferences = dependencies_.preferences;

    auto* card = new design::Card(QStringLiteral("Timed Sessions"), {}, this);
    enabled_ = design::namedCheckBox(QStringLiteral("Notify me when a timed session completes"),
                                     QStringLiteral("notificationsEnabled"), card);
    includeSubject_ = design::namedCheckBox(QStringLiteral("Include the subject in notifications"),
                                            QStringLiteral("notificationsIncludeSubject"), card);
    card->bodyLayout()->addWidget(enabled_);
    card->bodyLayout()->addWidget(includeSubject_);
    layout->addWidget(card);

    auto* moments = new design::Card(QStringLiteral("After a Session"), {}, this);
    celebrations_ =
        design::namedCheckBox(QStringLiteral("Celebrate finished sessions and personal bests"),
                              QStringLiteral("sessionCelebrations"), moments);
    moments->bodyLayout()->addWidget(celebrations_);
    layout->addWidget(moments);
    layout->addStretch(1);

    connect(enabled_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setNotificationsEnabled(on); });
    connect(includeSubject_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setNotificationsIncludeSubject(on); });
    connect(celebrations_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setSessionCelebrationsEnabled(on); });
    token_ = preferences.addObserver([this](settings::PreferenceProperty property) {
        using P = settings::PreferenceProperty;
        if (property == P::notificationsEnabled || property == P::notificationsIncludeSubject ||
            property == P::sessionCelebrationsEnabled) {
            refresh();
        }
    });
    refresh();
}

NotificationsSettingsSection::~NotificationsSettingsSection() {
    dependencies_.preferences.removeObserver(token_);
}

void NotificationsSettingsSection::refresh() {
    const settings::PreferencesStore& preferences = dependencies_.preferences;
    const QSignalBlocker blockers[] = {QSignalBlocker(enabled_), QSignalBlocker(includeSubject_),
                                       QSignalBlocker(celebrations_)};
    enabled_->setChecked(preferences.notificationsEnabled());
    includeSubject_->setChecked(preferences.notificationsIncludeSubject());
    includeSubject_->setEnabled(preferences.notificationsEnabled());
    celebrations_->setChecked(preferences.sessionCelebrationsEnabled());
}

}  // namespace lumenote::ui
