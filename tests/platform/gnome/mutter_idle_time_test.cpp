// Idle time from Mutter's IdleMonitor, against a private bus with the Python
// stand-in: readings, and 0 whenever the monitor does not answer properly.
#include "platform/gnome/mutter_idle_time.hpp"

#include <gtest/gtest.h>

#include <QDBusMessage>

#include "gnome_test_bus.hpp"

namespace lumenote::platform::gnome {
namespace {

using namespace std::chrono_literals;
using testing::GnomeTestBus;

class MutterIdleTimeTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(bus_.ready()); }

    void setIdletime(std::uint64_t milliseconds) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.gnome.Mutter.IdleMonitor"),
            QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"),
            QStringLiteral("test.FakeGnomeShell.Control"), QStringLiteral("SetIdletime"));
        call << QVariant::fromValue(static_cast<qulonglong>(milliseconds));
        ASSERT_EQ(bus_.bus().call(call, QDBus::Block, 5000).type(), QDBusMessage::ReplyMessage);
    }

    GnomeTestBus bus_;
};

TEST_F(MutterIdleTimeTest, ReadsTheMonitorsMillisecondsAsSeconds) {
    ASSERT_FALSE(bus_.startService({"--idle-monitor"}).empty());
    MutterIdleTimeProvider idle(bus_.bus());
    EXPECT_TRUE(idle.available());
    const std::pair<std::uint64_t, double> cases[] = {
        {0, 0.0}, {1, 0.001}, {999, 0.999}, {12345, 12.345}, {864'000'000, 864'000.0}};
    for (const auto& [milliseconds, seconds] : cases) {
        setIdletime(milliseconds);
        EXPECT_DOUBLE_EQ(idle.idleSeconds(), seconds) << milliseconds;
        EXPECT_TRUE(idle.available());
    }
}

TEST_F(MutterIdleTimeTest, AMonitorThatIsAbsentOrComesLaterIsFollowed) {
    MutterIdleTimeProvider idle(bus_.bus());
    EXPECT_FALSE(idle.available());
    EXPECT_EQ(idle.idleSeconds(), 0.0);

    const auto monitor = bus_.startService({"--idle-monitor"});
    ASSERT_FALSE(monitor.empty());
    setIdletime(4000);
    EXPECT_EQ(idle.idleSeconds(), 4.0);
    EXPECT_TRUE(idle.available());

    bus_.stopService(monitor);
    EXPECT_EQ(idle.idleSeconds(), 0.0);
    EXPECT_FALSE(idle.available());
}

TEST_F(MutterIdleTimeTest, AReplyOfAnotherTypeOrTooLateReadsZero) {
    const auto wrong = bus_.startService({"--idle-monitor", "--behaviour", "wrong-reply"});
    ASSERT_FALSE(wrong.empty());
    setIdletime(5000);
    MutterIdleTimeProvider wrongType(bus_.bus());
    EXPECT_EQ(wrongType.idleSeconds(), 0.0);
    EXPECT_FALSE(wrongType.available());
    bus_.stopService(wrong);

    ASSERT_FALSE(bus_.startService({"--idle-monitor", "--behaviour", "slow"}).empty());
    const auto started = std::chrono::steady_clock::now();
    MutterIdleTimeProvider slow(bus_.bus(), 100ms);
    const double reading = slow.idleSeconds();
    EXPECT_EQ(reading, 0.0);
    EXPECT_FALSE(slow.available());
    // Two calls (the constructor's and the reading), each cut at 100 ms.
    EXPECT_LT(std::chrono::steady_clock::now() - started, 1500ms);
}

TEST_F(MutterIdleTimeTest, ADisconnectedBusReadsZero) {
    const auto name = QStringLiteral("gnome-test-idle-nowhere");
    MutterIdleTimeProvider idle(
        QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"), name));
    EXPECT_EQ(idle.idleSeconds(), 0.0);
    EXPECT_FALSE(idle.available());
    QDBusConnection::disconnectFromBus(name);
}

}  // namespace
}  // namespace lumenote::platform::gnome
