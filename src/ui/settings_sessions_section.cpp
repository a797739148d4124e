#include "ui/settings_sessions_section.hpp"

#include <cmath>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "settings/preference_rules.hpp"
#include "shell/session_start_form.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/design/row.hpp"
#include "ui/models/session_settings.hpp"
#include "ui/settings_number_field.hpp"
#include "ui/settings_section_frame.hpp"
#include "ui/settings_template_editor.hpp"

namespace lumenote::ui {

namespace {

using recording::StudySessionMode;

constexpr StudySessionMode kStudyModes[] = {StudySessionMode::computerBased,
                                            StudySessionMode::mixedStudy,
                                            StudySessionMode::offlineBookStudy};

constexpr int kTemplateIdRole = Qt::UserRole + 1;

}  // namespace

SessionsSettingsSection::SessionsSettingsSection(SettingsDependencies& dependencies,
                                                 QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("sessionsSection"));
    auto* layout = sectionLayout(this, QStringLiteral("Sessions"),
                                 QStringLiteral("What a new session starts with, and templates "
                                                "to start one in a click."));
    banner_ = design::errorBanner(QStringLiteral("sessionsBanner"), this);
    layout->addWidget(banner_);
    settings::PreferencesStore& preferences = dependencies_.preferences;

    auto* defaults = new design::Card(QStringLiteral("New Sessions"), {}, this);
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    defaultLength_ = new NumberField(
        QStringLiteral("Custom default session length in minutes"), QStringLiteral("defaultLength"),
        {settings::kDefaultDurationRange.lower / 60.0, settings::kDefaultDurationRange.upper / 60.0,
         "minutes"},
        [&preferences] { return preferences.defaultDuration() / 60.0; },
        [&preferences](double minutes) { preferences.setDefaultDuration(minutes * 60.0); },
        defaults);
    form->addRow(QStringLiteral("Default &length (minutes)"), defaultLength_);
    defaultSubject_ = new QLineEdit(defaults);
    defaultSubject_->setObjectName(QStringLiteral("defaultSubject"));
    defaultSubject_->setAccessibleName(QStringLiteral("Default subject"));
    defaultSubject_->setMinimumWidth(280);
    form->addRow(QStringLiteral("Default &subject"), defaultSubject_);
    defaultGoal_ = new QLineEdit(defaults);
    defaultGoal_->setObjectName(QStringLiteral("defaultGoal"));
    defaultGoal_->setAccessibleName(QStringLiteral("Default goal"));
    defaultGoal_->setMinimumWidth(280);
    form->addRow(QStringLiteral("Default &goal"), defaultGoal_);
    studyMode_ = new QComboBox(defaults);
    studyMode_->setObjectName(QStringLiteral("defaultStudyMode"));
    studyMode_->setAccessibleName(QStringLiteral("Default study mode"));
    for (const StudySessionMode mode : kStudyModes) {
        studyMode_->addItem(qt(shell::studyModeTitle(mode)));
    }
    form->addRow(QStringLiteral("Study &mode"), studyMode_);
    defaults->bodyLayout()->addLayout(form);
    rememberSubject_ = design::namedCheckBox(QStringLiteral("Remember the last subject"),
                                             QStringLiteral("rememberSubject"), defaults);
    rememberGoal_ = design::namedCheckBox(QStringLiteral("Remember the last goal"),
                                          QStringLiteral("rememberGoal"), defaults);
    rememberDuration_ = design::namedCheckBox(QStringLiteral("Remember the last duration"),
                                              QStringLiteral("rememberDuration"), defaults);
    defaults->bodyLayout()->addWidget(rememberSubject_);
    defaults->bodyLayout()->addWidget(rememberGoal_);
    defaults->bodyLayout()->addWidget(rememberDuration_);
    layout->addWidget(defaults);

    auto* goal = new design::Card(QStringLiteral("Daily Study Goal"),
                                  QStringLiteral("0 means no goal."), this);
    auto* goalForm = new QFormLayout;
    dailyGoal_ = new NumberField(
        QStringLiteral("Custom daily study goal in minutes"), QStringLiteral("dailyGoal"),
        {0.0, static_cast<double>(settings::kMaximumDailyStudyGoalMinutes), "minutes"},
        [&preferences] { return static_cast<double>(preferences.dailyStudyGoalMinutes()); },
        [&preferences](double minutes) {
            preferences.setDailyStudyGoalMinutes(std::llround(minutes));
        },
        goal);
    goalForm->addRow(QStringLiteral("Goal (&minutes)"), dailyGoal_);
    goal->bodyLayout()->addLayout(goalForm);
    layout->addWidget(goal);

    auto* templates = new design::Card(QStringLiteral("Templates"),
                                       QStringLiteral("Saved subjects and lengths, offered as "
                                                      "one-click starts in the panel."),
                                       this);
    templatesMessage_ = new QLabel(templates);
    templatesMessage_->setObjectName(QStringLiteral("templatesMessage"));
    templatesMessage_->setWordWrap(true);
    templates->bodyLayout()->addWidget(templatesMessage_);
    templatesEmpty_ = new QLabel(
        QStringLiteral("No templates yet. A template starts a session with its subject and "
                       "length in one click."),
        templates);
    templatesEmpty_->setObjectName(QStringLiteral("templatesEmpty"));
    templatesEmpty_->setWordWrap(true);
    templates->bodyLayout()->addWidget(templatesEmpty_);
    templates_ = new QListWidget(templates);
    templates_->setObjectName(QStringLiteral("templateList"));
    templates_->setAccessibleName(QStringLiteral("Session templates"));
    templates_->setMinimumHeight(120);
    templates->bodyLayout()->addWidget(templates_);
    auto* buttons = new QHBoxLayout;
    add_ = design::namedButton(QStringLiteral("Add Template…"), QStringLiteral("templateAdd"),
                               templates);
    edit_ = design::namedButton(QStringLiteral("Edit…"), QStringLiteral("templateEdit"), templates);
    edit_->setAccessibleName(QStringLiteral("Edit template"));
    delete_ =
        design::namedButton(QStringLiteral("Delete"), QStringLiteral("templateDelete"), templates);
    delete_->setAccessibleName(QStringLiteral("Delete template"));
    buttons->addWidget(add_);
    buttons->addWidget(edit_);
    buttons->addWidget(delete_);
    buttons->addStretch(1);
    templates->bodyLayout()->addLayout(buttons);
    layout->addWidget(templates);
    layout->addStretch(1);

    connect(defaultSubject_, &QLineEdit::editingFinished, this, [this, &preferences] {
        preferences.setDefaultSubject(defaultSubject_->text().trimmed().toStdString());
    });
    connect(defaultGoal_, &QLineEdit::editingFinished, this, [this, &preferences] {
        preferences.setDefaultGoal(defaultGoal_->text().trimmed().toStdString());
    });
    connect(studyMode_, &QComboBox::currentIndexChanged, this, [&preferences](int index) {
        if (index >= 0) {
            preferences.setDefaultStudyMode(kStudyModes[index]);
        }
    });
    connect(rememberSubject_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setRememberLastSubject(on); });
    connect(rememberGoal_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setRememberLastGoal(on); });
    connect(rememberDuration_, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.setRememberLastDuration(on); });
    connect(add_, &QPushButton::clicked, this, [this] {
        TemplateEditor editor(dependencies_.templates, std::nullopt, this);
        editor.exec();
    });
    connect(edit_, &QPushButton::clicked, this, &SessionsSettingsSection::editSelected);
    connect(templates_, &QListWidget::itemActivated, this, &SessionsSettingsSection::editSelected);
    connect(delete_, &QPushButton::clicked, this, &SessionsSettingsSection::deleteSelected);
    connect(templates_, &QListWidget::currentRowChanged, this, [this](int row) {
        const bool chosen = row >= 0 && !dependencies_.templates.isReadOnly();
        edit_->setEnabled(chosen);
        delete_->setEnabled(chosen);
    });

    preferencesToken_ = preferences.addObserver([this](settings::PreferenceProperty property) {
        using P = settings::PreferenceProperty;
        switch (property) {
            case P::defaultDuration:
            case P::defaultSubject:
            case P::defaultGoal:
            case P::defaultStudyMode:
            case P::rememberLastSubject:
            case P::rememberLastGoal:
            case P::rememberLastDuration:
            case P::dailyStudyGoalMinutes:
                refresh();
                break;
            default:
                break;
        }
    });
    templatesToken_ = dependencies_.templates.addObserver([this] { refreshTemplates(); });
    refresh();
    refreshTemplates();
}

SessionsSettingsSection::~SessionsSettingsSection() {
    dependencies_.preferences.removeObserver(preferencesToken_);
    dependencies_.templates.removeObserver(templatesToken_);
}

void SessionsSettingsSection::refresh() {
    const settings::PreferencesStore& preferences = dependencies_.preferences;
    const QSignalBlocker blockers[] = {QSignalBlocker(studyMode_), QSignalBlocker(rememberSubject_),
                                       QSignalBlocker(rememberGoal_),
                                       QSignalBlocker(rememberDuration_)};
    defaultLength_->refresh();
    dailyGoal_->refresh();
    defaultSubject_->setText(qt(preferences.defaultSubject()));
    defaultGoal_->setText(qt(preferences.defaultGoal()));
    for (int index = 0; index < static_cast<int>(std::size(kStudyModes)); ++index) {
        if (kStudyModes[index] == preferences.defaultStudyMode()) {
            studyMode_->setCurrentIndex(index);
        }
    }
    rememberSubject_->setChecked(preferences.rememberLastSubject());
    rememberGoal_->setChecked(preferences.rememberLastGoal());
    rememberDuration_->setChecked(preferences.rememberLastDuration());
}

void SessionsSettingsSection::refreshTemplates() {
    const settings::SessionTemplateStore& store = dependencies_.templates;
    const QSignalBlocker blocker(templates_);
    const int selected = templates_->currentRow();
    templates_->clear();
    for (const settings::SessionTemplate& sessionTemplate : store.templates()) {
        const QString name = qt(sessionTemplate.name);
        const QString detail = qt(models::templateDetailText(sessionTemplate));
        auto* item = new QListWidgetItem(templates_);
        item->setData(kTemplateIdRole, qt(sessionTemplate.id.upperString()));
        item->setData(Qt::AccessibleTextRole, name + QStringLiteral(", ") + detail);
        auto* row = new design::Row(name, detail);
        row->setAttribute(Qt::WA_TransparentForMouseEvents);
        item->setSizeHint(row->sizeHint());
        templates_->setItemWidget(item, row);
    }
    templates_->setCurrentRow(std::min(selected, templates_->count() - 1));
    templates_->setVisible(templates_->count() > 0);
    templatesEmpty_->setVisible(templates_->count() == 0 && !store.isReadOnly());
    const auto& message = store.loadMessage();
    templatesMessage_->setText(qt(message.value_or(std::string())));
    templatesMessage_->setVisible(message.has_value());
    add_->setEnabled(!store.isReadOnly());
    const bool chosen = templates_->currentRow() >= 0 && !store.isReadOnly();
    edit_->setEnabled(chosen);
    delete_->setEnabled(chosen);
}

void SessionsSettingsSection::editSelected() {
    const QListWidgetItem* item = templates_->currentItem();
    if (item == nullptr || dependencies_.templates.isReadOnly()) {
        return;
    }
    const auto id = Uuid::parse(item->data(kTemplateIdRole).toString().toStdString());
    const settings::SessionTemplate* found = id ? dependencies_.templates.find(*id) : nullptr;
    if (found == nullptr) {
        return;
    }
    TemplateEditor editor(dependencies_.templates, *found, this);
    editor.exec();
}

void SessionsSettingsSection::deleteSelected() {
    const QListWidgetItem* item = templates_->currentItem();
    if (item == nullptr) {
        return;
    }
    banner_->setVisible(false);
    const auto id = Uuid::parse(item->data(kTemplateIdRole).toString().toStdString());
    if (!id) {
        return;
    }
    if (auto deleted = dependencies_.templates.deleteTemplate(*id); !deleted.ok()) {
        showError(qt(settings::message(deleted.error())));
    }
}

void SessionsSettingsSection::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
