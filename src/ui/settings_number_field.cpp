#include "ui/settings_number_field.hpp"

#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

NumberField::NumberField(const QString& name, const QString& objectName, models::NumberRange range,
                         std::function<double()> read, std::function<void(double)> write,
                         QWidget* parent)
    : QWidget(parent), range_(range), read_(std::move(read)), write_(std::move(write)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    field_ = new QLineEdit(this);
    field_->setObjectName(objectName + QStringLiteral("Field"));
    field_->setAccessibleName(name);
    field_->setMaximumWidth(120);
    sentence_ = new QLabel(this);
    sentence_->setObjectName(objectName + QStringLiteral("Sentence"));
    sentence_->setWordWrap(true);
    sentence_->setVisible(false);
    layout->addWidget(field_);
    layout->addWidget(sentence_);
    setFocusProxy(field_);
    connect(field_, &QLineEdit::editingFinished, this, &NumberField::commit);
    refresh();
}

void NumberField::refresh() {
    field_->setText(QString::number(read_(), 'g', 10));
    sentence_->setVisible(false);
}

void NumberField::commit() {
    const std::optional<double> typed = models::parsedNumber(field_->text().toStdString());
    if (typed) {
        write_(*typed);
    }
    const double held = read_();
    const std::string sentence = models::numberFieldSentence(typed, held, range_);
    field_->setText(QString::number(held, 'g', 10));
    sentence_->setText(qt(sentence));
    sentence_->setVisible(!sentence.empty());
}

}  // namespace lumenote::ui
