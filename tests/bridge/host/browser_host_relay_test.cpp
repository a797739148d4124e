// The relay in-process, with a clock the test moves.
#include "bridge/host/browser_host_relay.hpp"

#include <unistd.h>

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote::bridge::host {
namespace {

class HeldClock final : public recording::WallClock {
  public:
    Date now() override { return now_; }
    Date now_ = *parseIso8601("2026-11-25T10:00:00Z");
};

class CollectingSink final : public FrameSink {
  public:
    bool send(std::string_view message) override {
        messages.emplace_back(message);
        return true;
    }
    std::vector<std::string> messages;
};

class AlwaysAlive final : public ProcessProbe {
  public:
    bool isAlive(std::int32_t) override { return true; }
};

class BrowserHostRelayTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(store_.prepare());
        ASSERT_TRUE(store_.writeState({.appProcessIdentifier = 1,
                                       .sessionRunning = true,
                                       .sessionIdentifier = Uuid::generate(),
                                       .updatedAt = clock_.now_}));
        relay_.start();
    }

    void receive(const std::vector<std::string>& payloads) {
        std::vector<NativeFrameReading> frames;
        for (const auto& payload : payloads) {
            frames.push_back(NativeFrame{payload});
        }
        relay_.receive(frames);
    }

    lumenote::testing::TemporaryHome home_;
    BrowserBridgeStore store_{home_.root() / "bridge"};
    HeldClock clock_;
    AlwaysAlive processes_;
    CollectingSink sink_;
    BrowserHostRelay relay_{store_, clock_, processes_, sink_, SupportedBrowser::chromium, "9.9.9"};
};

TEST_F(BrowserHostRelayTest, EventsOfOneInstantKeepTheirOrderInTheInbox) {
    std::vector<std::string> sent;
    for (int i = 0; i < 50; ++i) {
        sent.push_back(R"({"n":)" + std::to_string(i) + "}");
    }
    receive(sent);
    const auto drain = store_.drainInbox();
    ASSERT_EQ(drain.accepted.size(), sent.size());
    for (std::size_t i = 0; i < sent.size(); ++i) {
        EXPECT_EQ(drain.accepted[i].eventData, sent[i]);
    }
    EXPECT_EQ(relay_.counters().eventsWritten, sent.size());
}

TEST_F(BrowserHostRelayTest, ThePeriodicBeatKeepsAConnectedExtensionsReadinessFresh) {
    relay_.periodic();
    EXPECT_TRUE(store_.readReadiness().empty()) << "no readiness before the extension said hello";
    receive({R"({"bridgeMessage":"hello","extensionVersion":"2.0.0","protocolVersion":1})"});
    ASSERT_EQ(store_.readReadiness().size(), 1u);
    const Date helloAt = clock_.now_;
    clock_.now_ = clock_.now_.addingSeconds(20);
    const std::size_t sentBefore = sink_.messages.size();
    relay_.periodic();
    const auto readiness = store_.readReadiness();
    ASSERT_EQ(readiness.size(), 1u);
    EXPECT_TRUE(readiness[0].connectionAvailable);
    EXPECT_GT(readiness[0].updatedAt, helloAt);
    EXPECT_EQ(readiness[0].nativeHostVersion, "9.9.9");
    EXPECT_EQ(sink_.messages.size(), sentBefore + 1) << "the status goes out with the beat";

    relay_.endOfInput(false);
    EXPECT_FALSE(store_.readReadiness()[0].connectionAvailable);
}

}  // namespace
}  // namespace lumenote::bridge::host
