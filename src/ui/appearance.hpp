// Applies "general.appearance" to the application at once: the desktop's own
// palette for `system`, or a light or dark palette on the Fusion style, which
// draws every widget from the palette so that both read well.
#pragma once

#include <QPalette>
#include <QString>

#include "settings/preference_enumerations.hpp"

namespace lumenote::ui {

class AppearanceController {
  public:
    // Remembers the desktop's style and palette, to return to them.
    AppearanceController();
    void apply(settings::TallywiseAppearance appearance);
    settings::TallywiseAppearance applied() const { return applied_; }

    static QPalette lightPalette();
    static QPalette darkPalette();

  private:
    QString systemStyle_;
    QPalette systemPalette_;
    settings::TallywiseAppearance applied_ = settings::TallywiseAppearance::system;
};

}  // namespace lumenote::ui
