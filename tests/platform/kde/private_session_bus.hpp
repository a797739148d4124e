// A private dbus-daemon with the stand-in KWin (fake_kwin.py) for the KDE
// observer's tests, and a wait that runs the Qt event loop until a
// condition holds.
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace lumenote::platform::kde::testing {

// Runs the event loop until `condition` holds; false after `limit`.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(10));

class PrivateSessionBus {
  public:
    // Starts the daemon (under `timeout`) and connects to it; ok() says
    // whether both worked.
    PrivateSessionBus();
    ~PrivateSessionBus();
    PrivateSessionBus(const PrivateSessionBus&) = delete;
    PrivateSessionBus& operator=(const PrivateSessionBus&) = delete;

    bool ok() const { return connection_.isConnected(); }
    QDBusConnection connection() const { return connection_; }
    // Another client of the same bus.
    QDBusConnection secondConnection();

    // Starts fake_kwin.py with `options` and waits until it owns `name`;
    // nullptr when it does not in time.
    QProcess* startStandIn(const QStringList& options,
                           const QString& name = QStringLiteral("org.kde.KWin"));
    // Stops a stand-in and waits until its names are gone from the bus.
    void stop(QProcess* standIn);

    bool hasOwner(const QString& name) const;
    // A call of test.FakeKWin.Control on the stand-in's /Control.
    QVariantList control(const QString& method, const QVariantList& arguments = {}) const;
    // The stand-in's log of scripting calls.
    QStringList calls() const;

  private:
    QTemporaryDir folder_;
    std::unique_ptr<QProcess> daemon_;
    QString address_;
    QString connectionName_;
    std::vector<QString> otherConnections_;
    QDBusConnection connection_{QString()};
    std::vector<std::unique_ptr<QProcess>> standIns_;
};

}  // namespace lumenote::platform::kde::testing
