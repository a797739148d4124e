// The one QApplication of a widget test process, on Qt's offscreen platform
// with no X display and no session bus, so that widget tests run anywhere.
#pragma once

#include <cstdlib>

#include <QApplication>

namespace lumenote::testing {

// Creates the application on first use. It lives as long as the process and
// is never destroyed: destroying it among the exit handlers runs after Qt's
// own statics (the input devices QTest registers) are gone, and crashes.
inline void ensureOffscreenApplication() {
    if (QApplication::instance() != nullptr) {
        return;
    }
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::unsetenv("DISPLAY");
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/lumenote-test-bus", 1);
    static int argc = 1;
    static char name[] = "ui_tests";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
}

}  // namespace lumenote::testing
