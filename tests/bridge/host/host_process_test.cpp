// The real host over pipes against a real bridge directory.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "bridge/browser_activity_event.hpp"
#include "bridge/browser_bridge_store.hpp"
#include "bridge/host/host_process.hpp"
#include "foundation/private_file.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::bridge::host {
namespace {

namespace fs = std::filesystem;
using testing::HostProcess;
using Json = nlohmann::json;

constexpr const char* kChromium = "org.chromium.Chromium";
constexpr std::int32_t kDeadProcess = 0x7FFFFFF0;
const std::string kHello =
    R"({"bridgeMessage":"hello","extensionVersion":"1.4.0","protocolVersion":1})";

std::string websiteEvent(const std::string& hostname, const std::string& bundle = kChromium,
                         BrowserActivityEventType type = BrowserActivityEventType::tabActivated) {
    BrowserActivityEvent event;
    event.id = Uuid::generate();
    event.browserDisplayName = "Chromium";
    event.browserBundleIdentifier = bundle;
    event.hostname = hostname;
    event.temporaryTabIdentifier = "tab-7";
    event.timestamp = Date::fromSystemClock(std::chrono::system_clock::now());
    event.eventType = type;
    return encodeBrowserActivityEvent(event);
}

class HostProcessTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(store_.prepare()); }

    void publishState(bool sessionRunning, bool paused = false,
                      std::int32_t process = static_cast<std::int32_t>(::getpid())) {
        BrowserBridgeState state;
        state.appProcessIdentifier = process;
        state.sessionRunning = sessionRunning;
        if (sessionRunning) {
            state.sessionIdentifier = session_;
        }
        state.browserTrackingPaused = paused;
        state.updatedAt = Date::fromSystemClock(std::chrono::system_clock::now());
        ASSERT_TRUE(store_.writeState(state));
    }

    std::vector<BrowserBridgeEnvelope> inbox() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(store_.inboxFolder())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        std::vector<BrowserBridgeEnvelope> envelopes;
        for (const auto& name : names) {
            auto decoded = decodeEnvelope(lumenote::testing::readFile(store_.inboxFolder() / name));
            EXPECT_TRUE(decoded) << name;
            if (decoded) {
                envelopes.push_back(std::move(decoded).value());
            }
        }
        return envelopes;
    }

    std::optional<BrowserBridgeReadiness> readiness(const std::string& bundle) const {
        for (auto& found : store_.readReadiness()) {
            if (found.browserBundleIdentifier == bundle) {
                return found;
            }
        }
        return std::nullopt;
    }

    void queue(const std::string& bundle, double secondsAgo, bool labels = true) {
        BrowserBridgeCommand command;
        command.id = Uuid::generate();
        command.type = BrowserBridgeCommandType::setFilenameLabelsEnabled;
        command.browserBundleIdentifier = bundle;
        command.filenameLabelsEnabled = labels;
        command.createdAt =
            Date::fromSystemClock(std::chrono::system_clock::now()).addingSeconds(-secondsAgo);
        queued_.push_back(command.id);
        ASSERT_TRUE(store_.queueCommand(command));
    }

    lumenote::testing::TemporaryHome home_;
    BrowserBridgeStore store_{home_.root() / "bridge"};
    Uuid session_ = Uuid::generate();
    std::vector<Uuid> queued_;
};

TEST_F(HostProcessTest,
       EventsBecomeEnvelopesWithTokenSessionAndOrderAndReadinessFollowsTheConnection) {
    publishState(true);
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    const auto status = host.nextMessageContaining(R"("status")");
    ASSERT_TRUE(status);
    const Json first = Json::parse(*status);
    EXPECT_TRUE(first["applicationRunning"]);
    EXPECT_TRUE(first["sessionRunning"]);
    EXPECT_EQ(first["browserBundleIdentifier"], kChromium);

    host.send(kHello);
    std::vector<std::string> sent;
    for (const char* site : {"en.wikipedia.org", "docs.python.org", "news.example.com"}) {
        sent.push_back(websiteEvent(site));
        host.send(sent.back());
    }
    host.send(websiteEvent("", kChromium, BrowserActivityEventType::heartbeat));
    sent.pop_back();
    ASSERT_TRUE(host.nextMessageContaining(R"("status")"));  // the answer to hello
    EXPECT_EQ(host.finish(), 0);

    const auto envelopes = inbox();
    ASSERT_EQ(envelopes.size(), 4u);
    const std::string token = store_.readToken().valueOr("");
    for (std::size_t i = 0; i < envelopes.size(); ++i) {
        EXPECT_EQ(envelopes[i].token, token);
        EXPECT_EQ(envelopes[i].sessionIdentifier, session_);
        if (i < sent.size()) {
            EXPECT_EQ(envelopes[i].eventData, sent[i]) << "in the order received";
        }
        if (i > 0) {
            EXPECT_LE(envelopes[i - 1].receivedAt, envelopes[i].receivedAt);
        }
    }
    const auto ready = readiness(kChromium);
    ASSERT_TRUE(ready);
    EXPECT_FALSE(ready->connectionAvailable) << "the end of input closes the connection";
    EXPECT_EQ(ready->extensionVersion, "1.4.0");
    EXPECT_EQ(ready->protocolVersion, 1);
    EXPECT_FALSE(ready->nativeHostVersion.empty());
}

TEST_F(HostProcessTest, ReadinessIsWrittenOnHelloWhileConnected) {
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    ASSERT_TRUE(host.nextMessageContaining(R"("status")"));
    host.send(kHello);
    ASSERT_TRUE(host.nextMessageContaining(R"("status")"));
    const auto ready = readiness(kChromium);
    ASSERT_TRUE(ready);
    EXPECT_TRUE(ready->connectionAvailable);
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(HostProcessTest, NothingIsWrittenWhileNothingRecords) {
    struct Case {
        const char* name;
        bool sessionRunning;
        bool paused;
        std::int32_t process;
        bool applicationRunning;
    };
    const auto self = static_cast<std::int32_t>(::getpid());
    for (const Case& c : {Case{"no session", false, false, self, true},
                          Case{"browser tracking paused", true, true, self, true},
                          Case{"recorder gone", true, false, kDeadProcess, false}}) {
        publishState(c.sessionRunning, c.paused, c.process);
        HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
        const auto status = host.nextMessageContaining(R"("status")");
        ASSERT_TRUE(status) << c.name;
        EXPECT_EQ(Json::parse(*status)["applicationRunning"], c.applicationRunning) << c.name;
        host.send(kHello);
        host.send(websiteEvent("en.wikipedia.org"));
        EXPECT_EQ(host.finish(), 0) << c.name;
        EXPECT_TRUE(inbox().empty()) << c.name;
    }
}

TEST_F(HostProcessTest, WithoutAReadableTokenTheHostWritesNothing) {
    const fs::path absent = home_.root() / "no-bridge";
    {
        HostProcess host(absent, {"--browser=org.chromium.Chromium"});
        const auto status = host.nextMessageContaining(R"("status")");
        ASSERT_TRUE(status);
        EXPECT_FALSE(Json::parse(*status)["applicationRunning"]);
        host.send(kHello);
        host.send(websiteEvent("en.wikipedia.org"));
        EXPECT_EQ(host.finish(), 0);
    }
    EXPECT_FALSE(fs::exists(absent)) << "the host never creates the bridge directory";

    // A damaged token: the directory exists, but nothing may go into it.
    publishState(true);
    lumenote::testing::writeFile(store_.tokenPath(), "not a token");
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    host.send(kHello);
    host.send(websiteEvent("en.wikipedia.org"));
    EXPECT_EQ(host.finish(), 0);
    EXPECT_TRUE(inbox().empty());
    EXPECT_TRUE(lumenote::testing::namesIn(store_.readinessFolder()).empty());
}

TEST_F(HostProcessTest, CommandsForThisBrowserAreForwardedInQueueOrderAndDeletedOnceSent) {
    publishState(true);
    queue(kChromium, 3);
    queue("org.mozilla.firefox", 2.5);
    queue(kChromium, 2);
    queue(kChromium, 1, false);
    lumenote::testing::writeFile(store_.commandsFolder() / "00000000000000000001-broken.command",
                                 "{not json");
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    std::vector<std::string> forwarded;
    for (int i = 0; i < 3; ++i) {
        const auto message = host.nextMessageContaining(R"("command")");
        ASSERT_TRUE(message) << "command " << i;
        forwarded.push_back(Json::parse(*message)["command"]["id"]);
    }
    EXPECT_EQ(forwarded,
              (std::vector<std::string>{queued_[0].upperString(), queued_[2].upperString(),
                                        queued_[3].upperString()}));

    // A command queued while the host runs is noticed without any message from
    // the extension.
    queue(kChromium, 0);
    const auto late = host.nextMessageContaining(R"("command")");
    ASSERT_TRUE(late);
    EXPECT_EQ(Json::parse(*late)["command"]["id"], queued_.back().upperString());
    EXPECT_EQ(host.finish(), 0);

    const auto left = store_.queuedCommandNames();
    ASSERT_EQ(left.size(), 1u) << "another browser's command stays; the broken one is deleted";
    EXPECT_EQ(store_.readCommand(left[0])->browserBundleIdentifier, "org.mozilla.firefox");
}

TEST_F(HostProcessTest, OversizedTruncatedAndMalformedMessagesNeverReachTheInbox) {
    publishState(true);
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    host.send(std::string(8193, ' '));  // one byte over the limit, sent whole
    host.send("{\"hostname\": ");       // not JSON
    host.send("[1,2,3]");               // not an object
    host.send(R"({"bridgeMessage":"launch"})");
    host.send(R"({"bridgeMessage":"hello","extensionVersion":7})");
    host.send("");
    const std::string good = websiteEvent("en.wikipedia.org");
    host.send(good);
    // A frame announcing far more than it brings, cut off by the end of input.
    host.writeBytes(encodeNativeFrame(std::string(100, 'x')).substr(0, 50));
    EXPECT_EQ(host.finish(), 0);
    const auto envelopes = inbox();
    ASSERT_EQ(envelopes.size(), 1u);
    EXPECT_EQ(envelopes[0].eventData, good);
}

TEST_F(HostProcessTest, AHugeAnnouncedLengthAtTheEndOfInputEndsCleanly) {
    publishState(true);
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    host.writeBytes(std::string("\xff\xff\xff\x7f", 4) + std::string(1 << 16, 'a'));
    EXPECT_EQ(host.finish(), 0);
    EXPECT_TRUE(inbox().empty());
}

TEST_F(HostProcessTest, StatusFollowsTheRecordersStateAsItChanges) {
    publishState(false);
    ASSERT_TRUE(store_.writePreferences(true));
    HostProcess host(store_.rootURL(), {"--browser=org.chromium.Chromium"});
    auto status = host.nextMessageContaining(R"("status")");
    ASSERT_TRUE(status);
    EXPECT_FALSE(Json::parse(*status)["sessionRunning"]);
    EXPECT_TRUE(Json::parse(*status)["filenameLabelsEnabled"]);

    publishState(true);
    status = host.nextMessageContaining(R"("sessionRunning":true)");
    ASSERT_TRUE(status) << "a started session reaches the extension without a message from it";
    EXPECT_FALSE(Json::parse(*status)["trackingPaused"]);

    publishState(true, true);
    ASSERT_TRUE(host.nextMessageContaining(R"("trackingPaused":true)"));

    ASSERT_TRUE(store_.writePreferences(false));
    ASSERT_TRUE(host.nextMessageContaining(R"("filenameLabelsEnabled":false)"));
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(HostProcessTest, WithoutABrowserParentTheFirstEventNamesTheBrowser) {
    publishState(true);
    queue("com.brave.Browser", 1);
    HostProcess host(store_.rootURL(), {"chrome-extension://abcdefghijklmnopabcdefghijklmnop/"});
    const auto first = host.nextMessageContaining(R"("status")");
    ASSERT_TRUE(first);
    EXPECT_FALSE(Json::parse(*first).contains("browserBundleIdentifier"));
    host.send(websiteEvent("en.wikipedia.org", "com.brave.Browser"));
    const auto named = host.nextMessageContaining(R"("browserBundleIdentifier")");
    ASSERT_TRUE(named);
    EXPECT_EQ(Json::parse(*named)["browserBundleIdentifier"], "com.brave.Browser");
    ASSERT_TRUE(host.nextMessageContaining(R"("command")")) << "its commands follow";
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(HostProcessTest, HelpAndAnUnknownBrowserOption) {
    const fs::path output = home_.root() / "help.txt";
    const std::string program = testing::hostExecutable().string();
    EXPECT_EQ(std::system((program + " --help > " + output.string()).c_str()), 0);
    EXPECT_NE(lumenote::testing::readFile(output).find("Usage: TallywiseBrowserHost"),
              std::string::npos);
    const int status = std::system(
        (program + " --browser=com.example.Browser 2> " + output.string() + " < /dev/null")
            .c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_NE(lumenote::testing::readFile(output).find("com.example.Browser"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::bridge::host
