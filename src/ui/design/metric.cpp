#include "ui/design/metric.hpp"

#include <QLabel>
#include <QVBoxLayout>

namespace lumenote::ui::design {

Metric::Metric(QWidget* parent) : QWidget(parent) {
    value_ = new QLabel(this);
    value_->setObjectName(QStringLiteral("metricValue"));
    caption_ = new QLabel(this);
    caption_->setObjectName(QStringLiteral("metricCaption"));
    caption_->setForegroundRole(QPalette::PlaceholderText);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(value_);
    layout->addWidget(caption_);
    restyle();
}

void Metric::setValue(const QString& value, const QString& caption) {
    available_ = true;
    value_->setText(value);
    caption_->setText(caption);
    caption_->setVisible(true);
    restyle();
}

void Metric::setUnavailable(const QString& reason) {
    available_ = false;
    value_->setText(reason);
    // A whole sentence already names the figure ("Not enough … to show a
    // focus score."): the caption under it would only repeat it.
    caption_->setVisible(!reason.endsWith(QLatin1Char('.')));
    restyle();
}

QString Metric::value() const {
    return value_->text();
}
QString Metric::caption() const {
    return caption_->text();
}

void Metric::restyle() {
    // A figure reads large and bold; a reason reads as a plain muted
    // sentence, so that it is never taken for a figure.
    QFont font = this->font();
    if (available_) {
        font.setPointSizeF(font.pointSizeF() * 1.8);
        font.setBold(true);
    }
    value_->setFont(font);
    value_->setForegroundRole(available_ ? QPalette::WindowText : QPalette::PlaceholderText);
    value_->setWordWrap(!available_);
    const QString caption = caption_->text();
    setAccessibleName(caption.isEmpty() ? value_->text()
                                        : value_->text() + QStringLiteral(", ") + caption);
}

}  // namespace lumenote::ui::design
