// The calls Lumenote's KWin script makes: their bus names and how a call's
// arguments become a report of the active window.
#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <optional>
#include <string>

namespace lumenote::platform::kde {

// The name, object and interface the script calls (the same strings as in
// data/kwin/lumenote-activation.js), and the script's plugin name in KWin.
inline constexpr const char* kObserverBusName = "com.tallywise.Lumenote.KWinObserver";
inline constexpr const char* kObserverPath = "/com/tallywise/Lumenote/KWinObserver";
inline constexpr const char* kObserverInterface = "com.tallywise.Lumenote.KWinObserver";
inline constexpr const char* kScriptPluginName = "lumenote-activation";

// What KWin says about a window. The caption is not among them: the script
// never reads it.
struct KWinWindow {
    std::string resourceClass;    // lower-cased WM_CLASS class or the Wayland app id
    std::string resourceName;     // WM_CLASS instance or the Wayland app id
    std::string desktopFileName;  // desktop-file id; may be empty
    std::int32_t processId = 0;   // 0 when unknown

    friend bool operator==(const KWinWindow&, const KWinWindow&) = default;
};

// One call of the script: the window now active, or nullopt for none.
struct ActivationReport {
    std::optional<KWinWindow> window;

    friend bool operator==(const ActivationReport&, const ActivationReport&) = default;
};

// Reads a call of `member` on kObserverInterface:
//   WindowActivated(s resourceClass, s resourceName, s desktopFileName, i pid)
//   NoWindowActive()
// The pid may also come as another integer type or a whole double (what a
// script engine makes of a JavaScript number); a negative or unrepresentable
// pid reads as 0. nullopt for another method or arguments of another shape.
std::optional<ActivationReport> readActivationCall(const QString& member,
                                                   const QList<QVariant>& arguments);

}  // namespace lumenote::platform::kde
