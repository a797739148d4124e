// Saves a PNG of one X window (by id) or of the whole screen (id 0), as the
// X server shows it, for the screenshots a reviewer looks at.
//
// Usage: lumenote-window-shot WINDOW_ID OUTPUT.png
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: lumenote-window-shot WINDOW_ID OUTPUT.png\n";
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication application(argc, argv);
    bool number = false;
    const WId window = QString::fromLatin1(argv[1]).toULongLong(&number, 0);
    if (!number) {
        std::cerr << "not a window id: " << argv[1] << '\n';
        return 2;
    }
    const QPixmap shot = QGuiApplication::primaryScreen()->grabWindow(window);
    if (shot.isNull() || !shot.save(QString::fromLocal8Bit(argv[2]), "PNG")) {
        std::cerr << "could not save " << argv[2] << '\n';
        return 1;
    }
    return 0;
}
