// The window shown instead of recording when start-up failed: the title, the
// sentence that says why, and a way to quit. Nothing records behind it.
#pragma once

#include <QWidget>

namespace lumenote::ui {

class StartupFailureWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit StartupFailureWindow(const QString& text, QWidget* parent = nullptr);
};

}  // namespace lumenote::ui
