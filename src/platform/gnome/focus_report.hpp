// The GNOME Shell extension's report of the focused window, read from D-Bus
// arguments, and the application it names.
#pragma once

#include <QVariantList>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/desktop_entries.hpp"
#include "recording/platform_services.hpp"

namespace lumenote::platform::gnome {

// The arguments of GetFocusedWindow's reply and of the FocusedWindowChanged
// signal, D-Bus type (bssssu). Strings are empty when the shell does not know
// them; processId is 0 when unknown. There is no title: the extension never
// reads it.
struct FocusReport {
    bool hasWindow = false;
    std::string appId;  // desktop-file id without ".desktop"; "" for a window the
                        // shell matched to no desktop file
    std::string wmClass;
    std::string wmClassInstance;
    std::string sandboxedAppId;  // the Flatpak (or Snap) application id
    std::uint32_t processId = 0;

    friend bool operator==(const FocusReport&, const FocusReport&) = default;
};

// The report in `arguments`; nullopt unless they are exactly six values of
// the types above (a peer speaking another version of the interface).
std::optional<FocusReport> parseFocusReport(const QVariantList& arguments);

// The executable name of a local process, "" when it cannot be read.
using ProcessNameReader = std::function<std::string(std::uint32_t processID)>;

// The application of the focused window, resolved as the X11 and wlroots
// observers do (linux_desktop::resolveApplication): the app id, else the
// sandboxed app id, stands for the GTK application id; the WM class and its
// instance for WM_CLASS; the process's executable name is read (through
// `processName`) only when the window carries none of these. nullopt when no
// window has the focus or nothing names it.
std::optional<recording::FrontmostApplication> focusedApplication(
    const FocusReport& report, const linux_desktop::DesktopEntryIndex& entries,
    const ProcessNameReader& processName);

}  // namespace lumenote::platform::gnome
