// The design tests' application (the widget tests' offscreen one, with a
// fixed locale), the light or the dark appearance, and small helpers to read
// painted images.
#pragma once

#include <cstdlib>

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QLocale>

#include "ui/appearance.hpp"
#include "ui/offscreen_application.hpp"

namespace lumenote::ui::design::testing {

inline void ensureApplication() {
    lumenote::testing::ensureOffscreenApplication();
    // Times read "09:05" whatever the machine's locale.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
}

inline void applyAppearance(bool dark) {
    static AppearanceController appearance;
    appearance.apply(dark ? settings::TallywiseAppearance::dark
                          : settings::TallywiseAppearance::light);
    QApplication::processEvents();
}

// Close enough to be the same colour once antialiasing and rounding are
// allowed for.
inline bool near(const QColor& a, const QColor& b, int tolerance = 10) {
    return std::abs(a.red() - b.red()) <= tolerance &&
           std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

inline int countNear(const QImage& image, const QColor& colour, QRect area = {}) {
    if (area.isNull()) {
        area = image.rect();
    }
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            count += near(image.pixelColor(x, y), colour) ? 1 : 0;
        }
    }
    return count;
}

}  // namespace lumenote::ui::design::testing
