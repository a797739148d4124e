// What this desktop lets Lumenote observe, as the setup check reports it (a
// check mark or a warning sign a line), with "Check Again" and, where GNOME
// lacks Lumenote's shell extension, "Install the GNOME Shell Extension" and
// what the installation did. Shared by the setup assistant's observation
// step and the Tracking settings.
#pragma once

#include <QWidget>
#include <functional>

#include "runtime/gnome_extension_setup.hpp"
#include "runtime/setup_check.hpp"

class QLabel;
class QPushButton;

namespace lumenote::ui {

struct DesktopObservationServices {
    // The checks of `lumenote-cli check`.
    std::function<runtime::SetupCheck()> checkSetup;
    // Installs and enables the GNOME Shell extension. Empty: not offered.
    std::function<runtime::GnomeExtensionSetup()> installGnomeExtension;
};

class DesktopObservationView final : public QWidget {
    Q_OBJECT

  public:
    explicit DesktopObservationView(DesktopObservationServices services, QWidget* parent = nullptr);

    // Runs the check again and shows it.
    void refresh();

  private:
    void installGnomeExtension();

    DesktopObservationServices services_;
    QLabel* report_;
    QPushButton* installExtension_;
    QLabel* installResult_;
};

}  // namespace lumenote::ui
