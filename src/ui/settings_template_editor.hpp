// The dialog that creates or edits a session template. Save hands the draft
// to the template store; a refusal shows the store's sentence in the dialog,
// which stays open with what was typed.
#pragma once

#include <optional>

#include <QDialog>

#include "settings/session_template_store.hpp"

class QCheckBox;
class QLabel;
class QLineEdit;

namespace lumenote::ui {

class TemplateEditor final : public QDialog {
    Q_OBJECT

  public:
    // Edits `editing` when given, else creates a template. `store` must
    // outlive the dialog.
    TemplateEditor(settings::SessionTemplateStore& store,
                   std::optional<settings::SessionTemplate> editing, QWidget* parent = nullptr);

    // What Save does: true when the store took the template (the dialog is
    // then accepted).
    bool save();

  private:
    settings::SessionTemplateStore& store_;
    std::optional<settings::SessionTemplate> editing_;
    QLineEdit* name_;
    QLineEdit* subject_;
    QLineEdit* goal_;
    QLineEdit* duration_;
    QCheckBox* openEnded_;
    QCheckBox* hasBreak_;
    QLineEdit* break_;
    QLabel* refusal_;
};

}  // namespace lumenote::ui
