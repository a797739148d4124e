#include "ui/classification_chip.hpp"

#include <QApplication>
#include <QEvent>

#include "shell/panel_model.hpp"
#include "ui/design/palette.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

using design::classificationColor;
using design::isDark;

using classification::ActivityClassification;

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
    const QColor foreground = design::chipTextColor(dark);
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
