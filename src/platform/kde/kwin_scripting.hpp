// KWin's scripting interface over D-Bus (org.kde.KWin /Scripting,
// org.kde.kwin.Scripting): load, run and unload one script by plugin name.
//
// A loaded script is an object of interface org.kde.kwin.Script whose run()
// starts it. Plasma 6 exports it at /Scripting/Script<id>; Plasma 5.27 at
// /<id> (checked against the kwin_wayland 5.27.5 of Debian 12, whose first
// script gets id 0). run() tries the Plasma 6 path first and falls back to
// the Plasma 5 one when that object does not exist.
#pragma once

#include <QDBusConnection>
#include <QString>

#include <chrono>

#include "foundation/result.hpp"
#include "platform/kde/kwin_script_error.hpp"

namespace lumenote::platform::kde {

// Every call blocks for at most `timeout`; a call that gets no answer in time
// counts as failed.
class KWinScripting {
  public:
    KWinScripting(QDBusConnection bus, std::chrono::milliseconds timeout);

    // Whether a script of `pluginName` is loaded; false when KWin does not answer.
    bool isScriptLoaded(const QString& pluginName) const;
    // Unloads the script of `pluginName` (KWin stops it); false when none was
    // loaded or KWin does not answer.
    bool unloadScript(const QString& pluginName) const;
    // Loads `filePath` as `pluginName` and runs it: unloads a script of the
    // same plugin name first (left by an earlier run that crashed), since
    // KWin refuses a second one. On a failed run the loaded script is
    // unloaded again. Fails with loadRefused or runFailed.
    Result<int, KWinScriptError> loadAndRun(const QString& filePath,
                                            const QString& pluginName) const;

  private:
    bool run(int scriptId) const;

    QDBusConnection bus_;
    int timeoutMilliseconds_;
};

}  // namespace lumenote::platform::kde
