// The dialog that adds or changes one classification rule: an application
// (identifier, name) or a website (hostname), and the class it is given.
// Save hands it to the classification rules; a refusal shows their sentence
// in the dialog, which stays open with what was typed.
#pragma once

#include <optional>

#include <QDialog>

#include "classification/classification_rules.hpp"
#include "ui/models/classification_settings.hpp"

class QComboBox;
class QLabel;
class QLineEdit;

namespace lumenote::ui {

class RuleEditor final : public QDialog {
    Q_OBJECT

  public:
    enum class Kind { application, website };

    // Changes `editing` when given (its key stays), else adds a rule.
    // `rules` must outlive the dialog.
    RuleEditor(classification::ClassificationRules& rules, Kind kind,
               std::optional<models::RuleRow> editing, QWidget* parent = nullptr);

    // What Save does: true when the rules took it (the dialog is then
    // accepted).
    bool save();

  private:
    classification::ClassificationRules& rules_;
    Kind kind_;
    QLineEdit* key_;
    QLineEdit* name_ = nullptr;
    QComboBox* classification_;
    QLabel* refusal_;
};

}  // namespace lumenote::ui
