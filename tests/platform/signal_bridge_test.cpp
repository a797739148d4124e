#include "platform/linux/signal_bridge.hpp"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <csignal>
#include <vector>

namespace lumenote::platform::linux_desktop {
namespace {

std::vector<int> gForeignHandlerSignals;
extern "C" void foreignHandler(int signal) {
    gForeignHandlerSignals.push_back(signal);
}

class SignalBridgeTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        if (QCoreApplication::instance() == nullptr) {
            static int argc = 1;
            static char name[] = "platform_tests";
            static char* argv[] = {name, nullptr};
            static QCoreApplication application(argc, argv);
        }
    }
    // The handler has already written to the pipe when raise() returns, so
    // one pass over the pending events delivers it.
    static void deliver() { QCoreApplication::processEvents(); }
};

TEST_F(SignalBridgeTest, EachSignalArrivesOnTheLoopInOrder) {
    std::vector<int> received;
    SignalBridge bridge([&received](int signal) { received.push_back(signal); });
    ASSERT_TRUE(bridge.install().ok());

    ASSERT_EQ(std::raise(SIGINT), 0);
    ASSERT_EQ(std::raise(SIGHUP), 0);
    EXPECT_TRUE(received.empty()) << "the callback must wait for the loop";
    deliver();
    ASSERT_EQ(std::raise(SIGTERM), 0);
    deliver();
    EXPECT_EQ(received, (std::vector<int>{SIGINT, SIGHUP, SIGTERM}));
}

TEST_F(SignalBridgeTest, OnlyOneBridgeAtATimeAndTheSecondChangesNothing) {
    std::vector<int> first;
    std::vector<int> second;
    SignalBridge bridge([&first](int signal) { first.push_back(signal); });
    ASSERT_TRUE(bridge.install().ok());
    {
        SignalBridge other([&second](int signal) { second.push_back(signal); });
        const auto installed = other.install();
        ASSERT_FALSE(installed.ok());
        EXPECT_EQ(installed.error(), SignalBridgeFailure::alreadyInstalled);
        EXPECT_FALSE(signalBridgeFailureMessage(installed.error()).empty());
    }
    ASSERT_EQ(std::raise(SIGTERM), 0);
    deliver();
    EXPECT_EQ(first, std::vector<int>{SIGTERM});
    EXPECT_TRUE(second.empty());
}

TEST_F(SignalBridgeTest, TheEarlierHandlersComeBackWhenTheBridgeGoes) {
    gForeignHandlerSignals.clear();
    struct sigaction foreign {};
    foreign.sa_handler = foreignHandler;
    sigemptyset(&foreign.sa_mask);
    struct sigaction saved[3];
    const int handled[3] = {SIGTERM, SIGINT, SIGHUP};
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(sigaction(handled[i], &foreign, &saved[i]), 0);
    }
    std::vector<int> bridged;
    {
        SignalBridge bridge([&bridged](int signal) { bridged.push_back(signal); });
        ASSERT_TRUE(bridge.install().ok());
        ASSERT_EQ(std::raise(SIGHUP), 0);
        deliver();
    }
    for (const int signal : handled) {
        ASSERT_EQ(std::raise(signal), 0);
    }
    deliver();
    EXPECT_EQ(bridged, std::vector<int>{SIGHUP});
    EXPECT_EQ(gForeignHandlerSignals, (std::vector<int>{SIGTERM, SIGINT, SIGHUP}));

    {
        SignalBridge again([](int) {});
        EXPECT_TRUE(again.install().ok()) << "a new bridge once the old one is gone";
    }
    for (int i = 0; i < 3; ++i) {
        sigaction(handled[i], &saved[i], nullptr);
    }
}

}  // namespace
}  // namespace lumenote::platform::linux_desktop
