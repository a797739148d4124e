#include "ui/classification_chip.hpp"

#include <QApplication>
#include <QEvent>

#include "shell/panel_model.hpp"
#include "ui/qt_text.hpp"

namespace lumenote::ui {

using classification::ActivityClassification;

QColor classificationColor(ActivityClassification classification, bool dark) {
    switch (classification) {
        case ActivityClassification::focused:
            return dark ? QColor(0x2e, 0x7d, 0x4f) : QColor(0xc8, 0xe8, 0xd2);
        case ActivityClassification::distracting:
            return dark ? QColor(0x9c, 0x3b, 0x3b) : QColor(0xf6, 0xd0, 0xcc);
        case ActivityClassification::neutral:
            return dark ? QColor(0x3d, 0x5a, 0x80) : QColor(0xd3, 0xe1, 0xf3);
        case ActivityClassification::unclassified:
            return dark ? QColor(0x8a, 0x6d, 0x1f) : QColor(0xf5, 0xe6, 0xb8);
        case ActivityClassification::ignored:
            return dark ? QColor(0x55, 0x57, 0x53) : QColor(0xe0, 0xe0, 0xdd);
    }
    return {};
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

ClassificationChip::ClassificationChip(QWidget* parent) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    restyle();
}

void ClassificationChip::setClassification(ActivityClassification classification) {
    classification_ = classification;
    restyle();
}

void ClassificationChip::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) {
        restyle();
    }
}

void ClassificationChip::restyle() {
    // The application's palette, not the chip's own, which its style sheet
    // colours.
    const bool dark = isDark(QApplication::palette());
    const QColor background = classificationColor(classification_, dark);
    const QColor foreground = dark ? QColor(0xf6, 0xf5, 0xf4) : QColor(0x24, 0x1f, 0x31);
    const QString word = qt(shell::classificationChipText(classification_));
    setText(word);
    setAccessibleName(word);
    const QString style = QStringLiteral(
                              "QLabel { background: %1; color: %2; border-radius: 9px; "
                              "padding: 2px 10px; font-weight: 600; }")
                              .arg(background.name(), foreground.name());
    // A style sheet may change the palette: set it only when it differs, so
    // that the palette change it causes ends here.
    if (styleSheet() != style) {
        setStyleSheet(style);
    }
}

}  // namespace lumenote::ui
