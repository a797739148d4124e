// Screenshots for a person to look at: with LUMENOTE_SCREENSHOT_DIR set, a
// widget is written there as "<name>-light.png" and "<name>-dark.png". Either
// way both appearances are painted, so a page that cannot paint in one of
// them fails its test.
#pragma once

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QWidget>

#include <cstdlib>
#include <utility>

#include <gtest/gtest.h>

#include "ui/appearance.hpp"

namespace lumenote::testing {

inline void saveScreenshots(QWidget& widget, const char* name) {
    const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR");
    ui::AppearanceController appearance;
    for (const auto& [mode, suffix] : {std::pair{settings::TallywiseAppearance::light, "light"},
                                       std::pair{settings::TallywiseAppearance::dark, "dark"}}) {
        appearance.apply(mode);
        QApplication::processEvents();
        const QImage image = widget.grab().toImage();
        EXPECT_FALSE(image.isNull()) << name << " " << suffix;
        if (folder != nullptr) {
            QDir().mkpath(QString::fromLocal8Bit(folder));
            EXPECT_TRUE(
                image.save(QDir(QString::fromLocal8Bit(folder))
                               .filePath(QStringLiteral("%1-%2.png")
                                             .arg(QLatin1String(name), QLatin1String(suffix)))));
        }
    }
    appearance.apply(settings::TallywiseAppearance::light);
    QApplication::processEvents();
}

}  // namespace lumenote::testing
