// Idle seconds from the screen saver service's milliseconds, and 0 whenever
// the service does not answer with a reading.
#include "platform/kde/kde_screensaver_idle_time.hpp"

#include <gtest/gtest.h>

#include "platform/kde/private_session_bus.hpp"

namespace lumenote::platform::kde {
namespace {

TEST(KdeScreenSaverIdleTime, MillisecondsBecomeSecondsAndAbsenceReadsAsZero) {
    struct Case {
        const char* why;
        QStringList options;  // empty: nobody owns the screen saver's name
        double expected;
        bool available;
    };
    const Case cases[] = {
        {"a reading", {QStringLiteral("--idle-ms"), QStringLiteral("1500")}, 1.5, true},
        {"no input for a moment", {QStringLiteral("--idle-ms"), QStringLiteral("0")}, 0.0, true},
        {"the largest reading",
         {QStringLiteral("--idle-ms"), QStringLiteral("4294967295")},
         4294967.295,
         true},
        {"a locker that does not support it on Wayland",
         {QStringLiteral("--idle-ms"), QStringLiteral("-1")},
         0.0,
         false},
        {"no screen saver", {}, 0.0, false},
    };
    for (const Case& testCase : cases) {
        testing::PrivateSessionBus bus;
        ASSERT_TRUE(bus.ok());
        if (!testCase.options.isEmpty()) {
            ASSERT_NE(bus.startStandIn(testCase.options + QStringList{QStringLiteral("--no-kwin")},
                                       QStringLiteral("org.freedesktop.ScreenSaver")),
                      nullptr)
                << testCase.why;
        }
        KdeScreenSaverIdleTimeProvider provider(bus.connection());
        EXPECT_EQ(provider.available(), testCase.available) << testCase.why;
        EXPECT_DOUBLE_EQ(provider.idleSeconds(), testCase.expected) << testCase.why;
        EXPECT_EQ(provider.available(), testCase.available) << testCase.why;
    }
}

TEST(KdeScreenSaverIdleTime, AServiceThatGoesAwayReadsAsZeroAndBackAsItsReading) {
    testing::PrivateSessionBus bus;
    ASSERT_TRUE(bus.ok());
    const QStringList options{QStringLiteral("--no-kwin"), QStringLiteral("--idle-ms"),
                              QStringLiteral("2500")};
    auto* saver = bus.startStandIn(options, QStringLiteral("org.freedesktop.ScreenSaver"));
    ASSERT_NE(saver, nullptr);
    KdeScreenSaverIdleTimeProvider provider(bus.connection());
    EXPECT_DOUBLE_EQ(provider.idleSeconds(), 2.5);
    bus.stop(saver);
    EXPECT_DOUBLE_EQ(provider.idleSeconds(), 0.0);
    EXPECT_FALSE(provider.available());
    ASSERT_NE(bus.startStandIn(options, QStringLiteral("org.freedesktop.ScreenSaver")), nullptr);
    EXPECT_DOUBLE_EQ(provider.idleSeconds(), 2.5);
    EXPECT_TRUE(provider.available());
}

}  // namespace
}  // namespace lumenote::platform::kde
