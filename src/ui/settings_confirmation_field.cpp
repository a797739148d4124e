#include "ui/settings_confirmation_field.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "ui/design/qt_text.hpp"
#include "ui/models/data_settings.hpp"

namespace lumenote::ui {

ConfirmationField::ConfirmationField(std::string_view word, const QString& action,
                                     const QString& name, Prompt prompt, QWidget* parent)
    : QWidget(parent), word_(word) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    field_ = new QLineEdit(this);
    field_->setObjectName(name + QStringLiteral("Confirmation"));
    field_->setAccessibleName(QStringLiteral("Type %1 to confirm").arg(qt(word)));
    field_->setMaximumWidth(160);
    button_ = new QPushButton(action, this);
    button_->setObjectName(name + QStringLiteral("Button"));
    button_->setAccessibleName(action);
    button_->setEnabled(false);
    if (prompt == Prompt::shown) {
        auto* heading = new QLabel(qt(models::typeToConfirmText(word)), this);
        heading->setBuddy(field_);
        layout->addWidget(heading);
    }
    layout->addWidget(field_);
    layout->addWidget(button_);
    layout->addStretch(1);

    connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) {
        button_->setEnabled(models::confirmationMatches(text.toStdString(), word_));
    });
    connect(field_, &QLineEdit::returnPressed, button_, [this] {
        if (button_->isEnabled()) {
            button_->click();
        }
    });
    connect(button_, &QPushButton::clicked, this, [this] {
        // The button is only enabled with the word typed; asked again here so
        // that nothing else can trigger the action.
        if (models::confirmationMatches(field_->text().toStdString(), word_)) {
            Q_EMIT confirmed();
        }
    });
}

void ConfirmationField::clear() {
    field_->clear();
}

QString ConfirmationField::typed() const {
    return field_->text();
}

}  // namespace lumenote::ui
