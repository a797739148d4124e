#include "ui/settings_rule_editor.hpp"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/panel_model.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

RuleEditor::RuleEditor(classification::ClassificationRules& rules, Kind kind,
                       std::optional<models::RuleRow> editing, QWidget* parent)
    : QDialog(parent), rules_(rules), kind_(kind) {
    setObjectName(QStringLiteral("ruleEditor"));
    const bool application = kind == Kind::application;
    setWindowTitle(application ? QStringLiteral("Application Rule")
                               : QStringLiteral("Website Rule"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    key_ = new QLineEdit(this);
    key_->setObjectName(QStringLiteral("ruleKey"));
    key_->setAccessibleName(application ? QStringLiteral("Application identifier")
                                        : QStringLiteral("Hostname"));
    key_->setMinimumWidth(280);
    form->addRow(application ? QStringLiteral("&Identifier") : QStringLiteral("&Hostname"), key_);
    if (application) {
        name_ = new QLineEdit(this);
        name_->setObjectName(QStringLiteral("ruleName"));
        name_->setAccessibleName(QStringLiteral("Application name"));
        form->addRow(QStringLiteral("&Name"), name_);
    }
    classification_ = new QComboBox(this);
    classification_->setObjectName(QStringLiteral("ruleClassification"));
    classification_->setAccessibleName(QStringLiteral("Classification"));
    for (const auto choice : models::kRuleClassifications) {
        classification_->addItem(qt(shell::classificationChipText(choice)));
    }
    form->addRow(QStringLiteral("&Classification"), classification_);
    layout->addLayout(form);
    if (editing) {
        key_->setText(qt(editing->key));
        key_->setReadOnly(true);
        if (name_ != nullptr) {
            name_->setText(qt(editing->title == editing->key ? std::string() : editing->title));
        }
        for (std::size_t index = 0; index < models::kRuleClassifications.size(); ++index) {
            if (models::kRuleClassifications[index] == editing->classification) {
                classification_->setCurrentIndex(static_cast<int>(index));
            }
        }
    }
    refusal_ = design::errorBanner(QStringLiteral("ruleRefusal"), this);
    layout->addWidget(refusal_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : buttons->buttons()) {
        button->setAccessibleName(button->text().remove(QLatin1Char('&')));
    }
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { (void)save(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

bool RuleEditor::save() {
    const std::string key = key_->text().trimmed().toStdString();
    if (kind_ == Kind::application && key.empty()) {
        refusal_->setText(qt(models::kApplicationIdentifierRequired));
        refusal_->setVisible(true);
        return false;
    }
    const auto classification =
        models::kRuleClassifications[std::max(0, classification_->currentIndex())];
    const auto saved = kind_ == Kind::application
                           ? rules_.saveApplicationClassification(
                                 key, name_->text().trimmed().toStdString(), classification)
                           : rules_.saveWebsiteClassification(key, classification);
    if (!saved) {
        refusal_->setText(qt(saved.error().message()));
        refusal_->setVisible(true);
        return false;
    }
    accept();
    return true;
}

}  // namespace lumenote::ui
