#include "ui/appearance.hpp"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

namespace lumenote::ui {

AppearanceController::AppearanceController()
    : systemStyle_(QApplication::style()->name()), systemPalette_(QApplication::palette()) {}

QPalette AppearanceController::lightPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xfa, 0xfa, 0xfa));
    palette.setColor(QPalette::WindowText, QColor(0x24, 0x1f, 0x31));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf0, 0xf0, 0xf0));
    palette.setColor(QPalette::Text, QColor(0x24, 0x1f, 0x31));
    palette.setColor(QPalette::Button, QColor(0xee, 0xee, 0xee));
    palette.setColor(QPalette::ButtonText, QColor(0x24, 0x1f, 0x31));
    palette.setColor(QPalette::PlaceholderText, QColor(0x77, 0x76, 0x7b));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x84, 0xe4));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xf0));
    palette.setColor(QPalette::ToolTipText, QColor(0x24, 0x1f, 0x31));
    palette.setColor(QPalette::Link, QColor(0x1c, 0x71, 0xd8));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x9a, 0x99, 0x96));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x9a, 0x99, 0x96));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x9a, 0x99, 0x96));
    return palette;
}

QPalette AppearanceController::darkPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x24, 0x24, 0x24));
    palette.setColor(QPalette::WindowText, QColor(0xf6, 0xf5, 0xf4));
    // Fields sit a step lighter than the window, and the shades Fusion draws
    // frames and indicators with are set, so that edges show on dark.
    palette.setColor(QPalette::Base, QColor(0x30, 0x30, 0x30));
    palette.setColor(QPalette::AlternateBase, QColor(0x38, 0x38, 0x38));
    palette.setColor(QPalette::Light, QColor(0x5a, 0x5a, 0x5a));
    palette.setColor(QPalette::Midlight, QColor(0x48, 0x48, 0x48));
    palette.setColor(QPalette::Mid, QColor(0x6a, 0x6a, 0x6a));
    palette.setColor(QPalette::Dark, QColor(0x14, 0x14, 0x14));
    palette.setColor(QPalette::Shadow, QColor(0x0a, 0x0a, 0x0a));
    palette.setColor(QPalette::Text, QColor(0xf6, 0xf5, 0xf4));
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3a));
    palette.setColor(QPalette::ButtonText, QColor(0xf6, 0xf5, 0xf4));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x99, 0x96));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x84, 0xe4));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(0x30, 0x30, 0x30));
    palette.setColor(QPalette::ToolTipText, QColor(0xf6, 0xf5, 0xf4));
    palette.setColor(QPalette::Link, QColor(0x78, 0xae, 0xed));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x77, 0x76, 0x7b));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x77, 0x76, 0x7b));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x77, 0x76, 0x7b));
    return palette;
}

void AppearanceController::apply(settings::TallywiseAppearance appearance) {
    applied_ = appearance;
    switch (appearance) {
        case settings::TallywiseAppearance::system:
            QApplication::setStyle(QStyleFactory::create(systemStyle_));
            QApplication::setPalette(systemPalette_);
            return;
        case settings::TallywiseAppearance::light:
            QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
            QApplication::setPalette(lightPalette());
            return;
        case settings::TallywiseAppearance::dark:
            QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
            QApplication::setPalette(darkPalette());
            return;
    }
}

}  // namespace lumenote::ui
