// The images of the tray's status item. The application's own image is our
// SVG; each of the three recorder symbols is taken from the desktop's icon
// theme where it has one (media-record, media-playback-pause,
// accessories-dictionary), else from our own SVG stand-in, and where neither
// loads the application's own image is drawn instead. Dark panels get the
// light variants of our images.
#pragma once

#include <QIcon>

#include "shell/menu_bar_status.hpp"

namespace lumenote::app {

class TrayIcons {
  public:
    // `lightImages`: the tray sits on a dark panel.
    explicit TrayIcons(bool lightImages);
    const QIcon& icon(shell::MenuBarImage image) const;
    // True when the image is the one asked for, not the fall-back.
    bool isOwnImage(shell::MenuBarImage image) const;

    // The theme name standing in for a system symbol; empty for the
    // application's own image.
    static QString themeName(shell::MenuBarImage image);
    // Our own file in the application's resources.
    static QString resourcePath(shell::MenuBarImage image, bool light);

  private:
    QIcon application_;
    QIcon recording_;
    QIcon away_;
    QIcon paused_;
    bool recordingFellBack_ = false;
    bool awayFellBack_ = false;
    bool pausedFellBack_ = false;
};

// The application's own icon for windows.
QIcon applicationIcon();

}  // namespace lumenote::app
