#include "ui/settings_template_editor.hpp"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/design/banner.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/models/session_settings.hpp"

namespace lumenote::ui {

namespace {

QLineEdit* field(const QString& text, const QString& name, const char* objectName,
                 QWidget* parent) {
    auto* edit = new QLineEdit(text, parent);
    edit->setObjectName(QLatin1String(objectName));
    edit->setAccessibleName(name);
    return edit;
}

}  // namespace

TemplateEditor::TemplateEditor(settings::SessionTemplateStore& store,
                               std::optional<settings::SessionTemplate> editing, QWidget* parent)
    : QDialog(parent), store_(store), editing_(std::move(editing)) {
    setObjectName(QStringLiteral("templateEditor"));
    setWindowTitle(editing_ ? QStringLiteral("Edit Template") : QStringLiteral("New Template"));
    const models::TemplateEntry entry = models::templateEntry(editing_);

    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    name_ = field(qt(entry.name), QStringLiteral("Template name"), "templateName", this);
    subject_ = field(qt(entry.subject), QStringLiteral("Subject"), "templateSubject", this);
    goal_ = field(qt(entry.goal), QStringLiteral("Default goal"), "templateGoal", this);
    duration_ = field(qt(entry.durationMinutes), QStringLiteral("Duration in minutes"),
                      "templateDuration", this);
    openEnded_ = new QCheckBox(QStringLiteral("Open end, no timer"), this);
    openEnded_->setObjectName(QStringLiteral("templateOpenEnded"));
    openEnded_->setAccessibleName(openEnded_->text());
    openEnded_->setChecked(entry.openEnded);
    hasBreak_ = new QCheckBox(QStringLiteral("Suggest a break"), this);
    hasBreak_->setObjectName(QStringLiteral("templateHasBreak"));
    hasBreak_->setAccessibleName(hasBreak_->text());
    hasBreak_->setChecked(entry.hasBreak);
    break_ =
        field(qt(entry.breakMinutes), QStringLiteral("Break in minutes"), "templateBreak", this);
    break_->setEnabled(entry.hasBreak);
    form->addRow(QStringLiteral("&Name"), name_);
    form->addRow(QStringLiteral("&Subject"), subject_);
    form->addRow(QStringLiteral("&Goal"), goal_);
    form->addRow(QStringLiteral("&Duration (minutes)"), duration_);
    form->addRow(QString(), openEnded_);
    form->addRow(QString(), hasBreak_);
    form->addRow(QStringLiteral("&Break (minutes)"), break_);
    layout->addLayout(form);
    refusal_ = design::errorBanner(QStringLiteral("templateRefusal"), this);
    layout->addWidget(refusal_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : buttons->buttons()) {
        button->setAccessibleName(button->text().remove(QLatin1Char('&')));
    }
    layout->addWidget(buttons);

    connect(hasBreak_, &QCheckBox::toggled, break_, &QLineEdit::setEnabled);
    connect(openEnded_, &QCheckBox::toggled, duration_,
            [this](bool open) { duration_->setEnabled(!open); });
    duration_->setEnabled(!entry.openEnded);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { (void)save(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

bool TemplateEditor::save() {
    const auto draft = models::templateDraft({
        .name = name_->text().toStdString(),
        .subject = subject_->text().toStdString(),
        .goal = goal_->text().toStdString(),
        .durationMinutes = duration_->text().toStdString(),
        .openEnded = openEnded_->isChecked(),
        .hasBreak = hasBreak_->isChecked(),
        .breakMinutes = break_->text().toStdString(),
    });
    if (!draft) {
        refusal_->setText(qt(draft.error()));
        refusal_->setVisible(true);
        return false;
    }
    std::optional<std::string> refused;
    if (editing_) {
        if (auto updated = store_.update(editing_->id, *draft); !updated) {
            refused = settings::message(updated.error());
        }
    } else if (auto created = store_.create(*draft); !created) {
        refused = settings::message(created.error());
    }
    if (refused) {
        refusal_->setText(qt(*refused));
        refusal_->setVisible(true);
        return false;
    }
    accept();
    return true;
}

}  // namespace lumenote::ui
