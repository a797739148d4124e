// The Classification section of the settings: the user's application and
// website rules with add, change and remove, the starter suggestions that
// apply where no rule does, and the local PDF labels.
#pragma once

#include <vector>

#include <QWidget>

#include "ui/models/classification_settings.hpp"
#include "ui/settings_dependencies.hpp"
#include "ui/settings_rule_editor.hpp"

class QLabel;
class QListWidget;
class QPushButton;

namespace lumenote::ui {

class ClassificationSettingsSection final : public QWidget {
    Q_OBJECT

  public:
    explicit ClassificationSettingsSection(SettingsDependencies& dependencies,
                                           QWidget* parent = nullptr);
    ~ClassificationSettingsSection() override;

    // Reads the stored rules again.
    void refresh();

  private:
    // One list of rules with its buttons.
    struct RuleList {
        RuleEditor::Kind kind;
        QListWidget* list = nullptr;
        QLabel* empty = nullptr;  // said instead of an empty list
        QPushButton* change = nullptr;
        QPushButton* remove = nullptr;
        std::vector<models::RuleRow> rows;
    };
    QWidget* ruleCard(RuleList& rules, const QString& title, const QString& subtitle,
                      const char* name);
    void fill(RuleList& rules, std::vector<models::RuleRow> rows);
    void edit(RuleList& rules, bool adding);
    void remove(RuleList& rules);
    void showError(const QString& message);

    SettingsDependencies& dependencies_;
    ObserverList<>::Token token_;
    RuleList applications_{RuleEditor::Kind::application};
    RuleList websites_{RuleEditor::Kind::website};
    QLabel* banner_;
    QLabel* pdfOutcome_;
};

}  // namespace lumenote::ui
