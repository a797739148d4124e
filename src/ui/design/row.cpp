#include "ui/design/row.hpp"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QVBoxLayout>

namespace lumenote::ui::design {

namespace {

constexpr int kIconSize = 20;

}  // namespace

Row::Row(const QString& title, const QString& subtitle, QWidget* parent) : QWidget(parent) {
    icon_ = new QLabel(this);
    icon_->setFixedSize(kIconSize, kIconSize);
    icon_->hide();
    title_ = new QLabel(this);
    title_->setObjectName(QStringLiteral("rowTitle"));
    subtitle_ = new QLabel(this);
    subtitle_->setObjectName(QStringLiteral("rowSubtitle"));
    subtitle_->setForegroundRole(QPalette::PlaceholderText);
    trailingText_ = new QLabel(this);
    trailingText_->setObjectName(QStringLiteral("rowTrailing"));
    trailingText_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    trailingText_->hide();
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(subtitle_);
    layout_ = new QHBoxLayout(this);
    layout_->setContentsMargins(8, 6, 8, 6);
    layout_->setSpacing(10);
    layout_->addWidget(icon_, 0, Qt::AlignVCenter);
    layout_->addLayout(texts, 1);
    layout_->addWidget(trailingText_, 0, Qt::AlignVCenter);
    setTitle(title);
    setSubtitle(subtitle);
}

void Row::setIcon(const QIcon& icon) {
    icon_->setPixmap(icon.isNull() ? QPixmap() : icon.pixmap(kIconSize, kIconSize));
    icon_->setVisible(!icon.isNull());
}

void Row::setTitle(const QString& title) {
    title_->setText(title);
    updateAccessibleName();
}

void Row::setSubtitle(const QString& subtitle) {
    subtitle_->setText(subtitle);
    subtitle_->setVisible(!subtitle.isEmpty());
    updateAccessibleName();
}

void Row::setTrailingText(const QString& text) {
    clearTrailing();
    trailingText_->setText(text);
    trailingText_->setVisible(!text.isEmpty());
    updateAccessibleName();
}

void Row::setTrailingWidget(QWidget* widget) {
    if (widget != nullptr && widget == trailingWidget_) {
        return;
    }
    clearTrailing();
    trailingWidget_ = widget;
    if (widget != nullptr) {
        widget->setParent(this);
        layout_->addWidget(widget, 0, Qt::AlignVCenter);
        widget->show();
    }
    updateAccessibleName();
}

void Row::clearTrailing() {
    trailingText_->clear();
    trailingText_->hide();
    delete trailingWidget_;
    trailingWidget_ = nullptr;
}

void Row::setClickable(bool clickable) {
    clickable_ = clickable;
    setFocusPolicy(clickable ? Qt::StrongFocus : Qt::NoFocus);
    if (clickable) {
        setCursor(Qt::PointingHandCursor);
    } else {
        unsetCursor();
    }
    update();
}

void Row::updateAccessibleName() {
    QStringList parts{title_->text()};
    parts.append(subtitle_->text());
    if (trailingWidget_ != nullptr) {
        const auto* label = qobject_cast<QLabel*>(trailingWidget_);
        parts.append(!trailingWidget_->accessibleName().isEmpty()
                         ? trailingWidget_->accessibleName()
                     : label != nullptr ? label->text()
                                        : QString());
    } else {
        parts.append(trailingText_->text());
    }
    parts.removeAll(QString());
    setAccessibleName(parts.join(QStringLiteral(", ")));
}

void Row::mouseReleaseEvent(QMouseEvent* event) {
    if (clickable_ && event->button() == Qt::LeftButton && rect().contains(event->pos())) {
        Q_EMIT activated();
        return;
    }
    QWidget::mouseReleaseEvent(event);
}

void Row::keyPressEvent(QKeyEvent* event) {
    if (clickable_ && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                       event->key() == Qt::Key_Space)) {
        Q_EMIT activated();
        return;
    }
    QWidget::keyPressEvent(event);
}

void Row::paintEvent(QPaintEvent*) {
    if (!hasFocus() && !(clickable_ && underMouse())) {
        return;
    }
    // A clickable row shows the pointer over it with a faint highlight and
    // the keyboard focus with the style's focus frame.
    QPainter painter(this);
    QColor hover = palette().color(QPalette::Highlight);
    hover.setAlphaF(0.12f);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(hover);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 6, 6);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.backgroundColor = palette().color(QPalette::Window);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

bool Row::event(QEvent* event) {
    if (event->type() == QEvent::Enter || event->type() == QEvent::Leave) {
        update();
    }
    return QWidget::event(event);
}

}  // namespace lumenote::ui::design
