#include "app/tray_icons.hpp"

#include <QFile>

namespace lumenote::app {

namespace {

bool loads(const QIcon& icon) {
    return !icon.isNull() && !icon.pixmap(22, 22).isNull();
}

}  // namespace

QString TrayIcons::themeName(shell::MenuBarImage image) {
    switch (image) {
        case shell::MenuBarImage::applicationImage:
            return {};
        case shell::MenuBarImage::recordCircleFill:
            return QStringLiteral("media-record");
        case shell::MenuBarImage::bookClosedFill:
            return QStringLiteral("accessories-dictionary");
        case shell::MenuBarImage::pauseCircleFill:
            return QStringLiteral("media-playback-pause");
    }
    return {};
}

QString TrayIcons::resourcePath(shell::MenuBarImage image, bool light) {
    const QString suffix = light ? QStringLiteral("-light.svg") : QStringLiteral(".svg");
    switch (image) {
        case shell::MenuBarImage::applicationImage:
            return QStringLiteral(":/icons/lumenote-tray-idle") + suffix;
        case shell::MenuBarImage::recordCircleFill:
            return QStringLiteral(":/icons/lumenote-tray-recording") + suffix;
        case shell::MenuBarImage::bookClosedFill:
            return QStringLiteral(":/icons/lumenote-tray-away") + suffix;
        case shell::MenuBarImage::pauseCircleFill:
            return QStringLiteral(":/icons/lumenote-tray-paused") + suffix;
    }
    return {};
}

TrayIcons::TrayIcons(bool lightImages) {
    application_ = QIcon(resourcePath(shell::MenuBarImage::applicationImage, lightImages));
    if (!loads(application_)) {
        application_ = applicationIcon();
    }
    const auto symbol = [&](shell::MenuBarImage image, bool& fellBack) {
        QIcon chosen = QIcon::fromTheme(themeName(image));
        if (!loads(chosen)) {
            chosen = QIcon(resourcePath(image, lightImages));
        }
        fellBack = !loads(chosen);
        return fellBack ? application_ : chosen;
    };
    recording_ = symbol(shell::MenuBarImage::recordCircleFill, recordingFellBack_);
    away_ = symbol(shell::MenuBarImage::bookClosedFill, awayFellBack_);
    paused_ = symbol(shell::MenuBarImage::pauseCircleFill, pausedFellBack_);
}

const QIcon& TrayIcons::icon(shell::MenuBarImage image) const {
    switch (image) {
        case shell::MenuBarImage::applicationImage:
            return application_;
        case shell::MenuBarImage::recordCircleFill:
            return recording_;
        case shell::MenuBarImage::bookClosedFill:
            return away_;
        case shell::MenuBarImage::pauseCircleFill:
            return paused_;
    }
    return application_;
}

bool TrayIcons::isOwnImage(shell::MenuBarImage image) const {
    switch (image) {
        case shell::MenuBarImage::applicationImage:
            return true;
        case shell::MenuBarImage::recordCircleFill:
            return !recordingFellBack_;
        case shell::MenuBarImage::bookClosedFill:
            return !awayFellBack_;
        case shell::MenuBarImage::pauseCircleFill:
            return !pausedFellBack_;
    }
    return true;
}

QIcon applicationIcon() {
    return QIcon(QStringLiteral(":/icons/com.tallywise.Lumenote.svg"));
}

}  // namespace lumenote::app
