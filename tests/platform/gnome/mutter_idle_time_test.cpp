// Idle time from Mutter's IdleMonitor, against a private bus with the Python
// stand-in: watched readings that need no call, the pause that input ends,
// the monitor restarting, asking at each reading where watches are refused,
// and 0 whenever the monitor does not answer properly.
#include "platform/gnome/mutter_idle_time.hpp"

#include <gtest/gtest.h>

#include <QDBusMessage>

#include <memory>

#include "gnome_test_bus.hpp"

namespace lumenote::platform::gnome {
namespace {

using namespace std::chrono_literals;
using testing::GnomeTestBus;
using testing::waitUntil;

class SetClock final : public recording::MonotonicTimeProvider {
  public:
    double now() override { return seconds; }
    double seconds = 500.0;
};

class MutterIdleTimeTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(bus_.ready()); }

    QDBusMessage control(const char* method, const QVariantList& arguments = {}) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.gnome.Mutter.IdleMonitor"),
            QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"),
            QStringLiteral("test.FakeGnomeShell.Control"), QString::fromLatin1(method));
        call.setArguments(arguments);
        const QDBusMessage reply = bus_.bus().call(call, QDBus::Block, 5000);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << method;
        return reply;
    }
    void setIdletime(std::uint64_t milliseconds) {
        control("SetIdletime", {QVariant::fromValue(static_cast<qulonglong>(milliseconds))});
    }
    // How often GetIdletime was called, and how many watches are set.
    std::pair<unsigned, unsigned> counts() {
        const auto reply = control("Counts");
        return {reply.arguments().value(0).toUInt(), reply.arguments().value(1).toUInt()};
    }

    GnomeTestBus bus_;
    SetClock clock_;
};

TEST_F(MutterIdleTimeTest, WatchedReadingsFollowPausesWithoutACallEach) {
    ASSERT_FALSE(bus_.startService({"--idle-monitor"}).empty());
    MutterIdleTimeProvider idle(bus_.bus(), clock_);
    ASSERT_TRUE(idle.watched());
    EXPECT_TRUE(idle.available());
    EXPECT_EQ(idle.idleSeconds(), 0.0);

    // Input stops: the idle watch fires a second later, and the readings
    // count from then on the monotonic clock.
    setIdletime(1000);
    ASSERT_TRUE(waitUntil([&] { return idle.idleSeconds() > 0.0; }));
    EXPECT_DOUBLE_EQ(idle.idleSeconds(), 1.0);
    const unsigned callsBefore = counts().first;
    for (const double later : {10.0, 600.0}) {
        clock_.seconds += later;
        EXPECT_DOUBLE_EQ(idle.idleSeconds(), 1.0 + (clock_.seconds - 500.0)) << later;
    }
    EXPECT_EQ(counts().first, callsBefore);

    // Input comes back: the user-active watch ends the pause...
    setIdletime(0);
    ASSERT_TRUE(waitUntil([&] { return idle.idleSeconds() == 0.0; }));
    // ...and the next pause is followed again.
    const double pauseStart = clock_.seconds;
    setIdletime(1000);
    ASSERT_TRUE(waitUntil([&] { return idle.idleSeconds() > 0.0; }));
    clock_.seconds += 5.0;
    EXPECT_DOUBLE_EQ(idle.idleSeconds(), 1.0 + (clock_.seconds - pauseStart));
    EXPECT_EQ(counts().second, 2u);  // the idle watch and the user-active one
}

TEST_F(MutterIdleTimeTest, APauseUnderWayAtStartCountsFromItsBeginning) {
    ASSERT_FALSE(bus_.startService({"--idle-monitor"}).empty());
    setIdletime(30'000);
    MutterIdleTimeProvider idle(bus_.bus(), clock_);
    EXPECT_DOUBLE_EQ(idle.idleSeconds(), 30.0);
    clock_.seconds += 2.5;
    EXPECT_DOUBLE_EQ(idle.idleSeconds(), 32.5);
    setIdletime(0);
    EXPECT_TRUE(waitUntil([&] { return idle.idleSeconds() == 0.0; }));
}

TEST_F(MutterIdleTimeTest, ItsWatchesAreRemovedWithIt) {
    ASSERT_FALSE(bus_.startService({"--idle-monitor"}).empty());
    setIdletime(5000);
    {
        MutterIdleTimeProvider idle(bus_.bus(), clock_);
        EXPECT_EQ(counts().second, 2u);
    }
    EXPECT_TRUE(waitUntil([&] { return counts().second == 0u; }));
}

TEST_F(MutterIdleTimeTest, AMonitorThatIsAbsentRestartsOrComesLaterIsFollowed) {
    MutterIdleTimeProvider idle(bus_.bus(), clock_);
    EXPECT_FALSE(idle.available());
    EXPECT_FALSE(idle.watched());
    EXPECT_EQ(idle.idleSeconds(), 0.0);

    auto monitor = bus_.startService({"--idle-monitor"});
    ASSERT_FALSE(monitor.empty());
    ASSERT_TRUE(waitUntil([&] { return idle.watched(); }));
    setIdletime(4000);
    ASSERT_TRUE(waitUntil([&] { return idle.idleSeconds() > 0.0; }));

    // The shell goes: no reading may keep the pause going.
    bus_.stopService(monitor);
    ASSERT_TRUE(waitUntil([&] { return !idle.available(); }));
    EXPECT_EQ(idle.idleSeconds(), 0.0);

    // A new shell: watched again, from its own idle time.
    monitor = bus_.startService({"--idle-monitor"});
    ASSERT_FALSE(monitor.empty());
    ASSERT_TRUE(waitUntil([&] { return idle.watched() && idle.available(); }));
    EXPECT_EQ(idle.idleSeconds(), 0.0);
}

TEST_F(MutterIdleTimeTest, AMonitorWithoutWatchesIsAskedAtEachReading) {
    for (const char* behaviour : {"no-watches", "no-active-watch"}) {
        const auto monitor = bus_.startService({"--idle-monitor", "--behaviour", behaviour});
        ASSERT_FALSE(monitor.empty()) << behaviour;
        setIdletime(2000);
        MutterIdleTimeProvider idle(bus_.bus(), clock_);
        EXPECT_FALSE(idle.watched()) << behaviour;
        const std::pair<std::uint64_t, double> cases[] = {
            {0, 0.0}, {1, 0.001}, {999, 0.999}, {12345, 12.345}, {864'000'000, 864'000.0}};
        for (const auto& [milliseconds, seconds] : cases) {
            setIdletime(milliseconds);
            EXPECT_DOUBLE_EQ(idle.idleSeconds(), seconds) << behaviour << " " << milliseconds;
            EXPECT_TRUE(idle.available()) << behaviour;
        }
        // The idle watch of a monitor that refused the user-active one is
        // taken back.
        EXPECT_EQ(counts().second, 0u) << behaviour;
        bus_.stopService(monitor);
    }
}

TEST_F(MutterIdleTimeTest, AReplyOfAnotherTypeOrTooLateReadsZero) {
    const auto wrong = bus_.startService({"--idle-monitor", "--behaviour", "wrong-reply"});
    ASSERT_FALSE(wrong.empty());
    setIdletime(5000);
    MutterIdleTimeProvider wrongType(bus_.bus(), clock_);
    EXPECT_EQ(wrongType.idleSeconds(), 0.0);
    EXPECT_FALSE(wrongType.available());
    bus_.stopService(wrong);

    ASSERT_FALSE(bus_.startService({"--idle-monitor", "--behaviour", "slow"}).empty());
    MutterIdleTimeProvider slow(bus_.bus(), clock_, 100ms);
    EXPECT_FALSE(slow.watched());
    EXPECT_EQ(slow.idleSeconds(), 0.0);
    EXPECT_FALSE(slow.available());
}

TEST_F(MutterIdleTimeTest, ADisconnectedBusReadsZero) {
    const auto name = QStringLiteral("gnome-test-idle-nowhere");
    MutterIdleTimeProvider idle(
        QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"), name), clock_);
    EXPECT_EQ(idle.idleSeconds(), 0.0);
    EXPECT_FALSE(idle.available());
    QDBusConnection::disconnectFromBus(name);
}

}  // namespace
}  // namespace lumenote::platform::gnome
