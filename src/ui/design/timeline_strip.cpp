#include "ui/design/timeline_strip.hpp"

#include <QDateTime>
#include <QEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include "ui/design/palette.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui::design {

using models::TimelineBlockKind;

namespace {

QString timeText(Date date) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(
        static_cast<qint64>(std::llround(date.unixSeconds() * 1000.0)));
    return QLocale().toString(time.time(), QLocale::ShortFormat);
}

}  // namespace

TimelineStrip::TimelineStrip(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Timeline"));
    setMouseTracking(true);
}

void TimelineStrip::setBlocks(std::vector<models::TimelineBlock> blocks,
                              std::optional<models::TimelineSpan> span) {
    blocks_ = std::move(blocks);
    span_ = span ? span : models::timelineSpan(blocks_);
    current_.reset();
    setToolTip({});
    setAccessibleDescription(blocks_.empty() ? QStringLiteral("Nothing recorded")
                                             : QStringLiteral("%1 stretches").arg(blocks_.size()));
    update();
}

QString TimelineStrip::blockText(std::size_t index) const {
    const models::TimelineBlock& block = blocks_.at(index);
    return QStringLiteral("%1, %2–%3")
        .arg(qt(block.name), timeText(block.start), timeText(block.end));
}

QRectF TimelineStrip::barRect() const {
    return QRectF(rect()).adjusted(2, 4, -2, -4);
}

void TimelineStrip::moveTo(std::size_t index) {
    current_ = index;
    const QString text = blockText(index);
    setToolTip(text);
    setAccessibleDescription(text);
    if (span_) {
        const QRectF bar = barRect();
        if (const auto range = models::blockPixels(blocks_[index], *span_, bar.width())) {
            const QPoint at(static_cast<int>(bar.left() + (range->left + range->right) / 2.0),
                            static_cast<int>(bar.bottom()));
            QToolTip::showText(mapToGlobal(at), text, this);
        }
    }
    update();
}

void TimelineStrip::keyPressEvent(QKeyEvent* event) {
    if (blocks_.empty()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const std::size_t last = blocks_.size() - 1;
    switch (event->key()) {
        case Qt::Key_Left:
            moveTo(current_ && *current_ > 0 ? *current_ - 1 : 0);
            break;
        case Qt::Key_Right:
            moveTo(current_ ? std::min(*current_ + 1, last) : 0);
            break;
        case Qt::Key_Home:
            moveTo(0);
            break;
        case Qt::Key_End:
            moveTo(last);
            break;
        default:
            QWidget::keyPressEvent(event);
    }
}

void TimelineStrip::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (!blocks_.empty()) {
        moveTo(current_.value_or(0));
    }
}

void TimelineStrip::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        update();
    }
}

bool TimelineStrip::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && span_) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QRectF bar = barRect();
        const auto index =
            models::blockIndexAt(blocks_, *span_, bar.width(), help->pos().x() - bar.left());
        if (index) {
            QToolTip::showText(help->globalPos(), blockText(*index), this);
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return QWidget::event(event);
}

void TimelineStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool dark = isDark(palette());
    const QRectF bar = barRect();
    QColor track = palette().color(QPalette::WindowText);
    track.setAlphaF(0.08f);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(track);
    painter.drawRoundedRect(bar, 4, 4);
    if (!span_ || bar.width() < 1.0 || bar.height() < 1.0) {
        return;
    }
    // The blocks are clipped to the track's rounded ends.
    QPainterPath clip;
    clip.addRoundedRect(bar, 4, 4);
    painter.setClipPath(clip);
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QColor text = palette().color(QPalette::WindowText);
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
        const auto range = models::blockPixels(blocks_[i], *span_, bar.width());
        if (!range) {
            continue;
        }
        const QRectF block(bar.left() + range->left, bar.top(), range->right - range->left,
                           bar.height());
        switch (blocks_[i].kind) {
            case TimelineBlockKind::activity:
                painter.fillRect(
                    block,
                    classificationFill(blocks_[i].classification.value_or(
                                           classification::ActivityClassification::unclassified),
                                       dark));
                break;
            case TimelineBlockKind::noInput: {
                QColor hatch = text;
                hatch.setAlphaF(0.45f);
                painter.fillRect(block, QBrush(hatch, Qt::BDiagPattern));
                break;
            }
            case TimelineBlockKind::sleep:
                painter.fillRect(block, sleepFill(dark));
                break;
        }
    }
    painter.setClipping(false);
    if (current_ && hasFocus()) {
        if (const auto range = models::blockPixels(blocks_[*current_], *span_, bar.width())) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(QRectF(bar.left() + range->left, bar.top(), range->right - range->left,
                                    bar.height())
                                 .adjusted(-1, -2, 1, 2));
        }
    }
}

}  // namespace lumenote::ui::design
