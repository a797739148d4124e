#include "bridge/browser_bridge_store.hpp"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bridge/base64.hpp"
#include "bridge/bridge_token.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::bridge {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::modeOf;
using lumenote::testing::namesIn;
using lumenote::testing::readFile;
using lumenote::testing::writeFile;

const Date kNow = *parseIso8601("2026-11-25T10:00:00Z");

class BrowserBridgeStoreTest : public ::testing::Test {
  protected:
    lumenote::testing::TemporaryHome home_;
    BrowserBridgeStore store_{home_.root() / "bridge"};

    BrowserBridgeEnvelope envelope(std::string eventData, Date receivedAt) {
        return {kBridgeDocumentVersion, store_.readToken().valueOr(""), Uuid::generate(),
                receivedAt, std::move(eventData)};
    }
};

TEST_F(BrowserBridgeStoreTest, LocationFollowsTheEnvironmentVariableWhenSetAndNotEmpty) {
    const auto lookup = [](std::map<std::string, std::string> values) {
        return [values](const char* name) -> const char* {
            const auto found = values.find(name);
            return found == values.end() ? nullptr : found->second.c_str();
        };
    };
    const fs::path moved = home_.root() / "elsewhere";
    EXPECT_EQ(BrowserBridgeStore::defaultRoot(home_.paths(),
                                              lookup({{"TALLYWISE_BRIDGE_DIR", moved.string()}})),
              moved);
    const fs::path standard = home_.paths().dataHome / "Tallywise" / "BrowserBridge";
    EXPECT_EQ(
        BrowserBridgeStore::defaultRoot(home_.paths(), lookup({{"TALLYWISE_BRIDGE_DIR", ""}})),
        standard);
    EXPECT_EQ(BrowserBridgeStore::defaultRoot(home_.paths(), lookup({})), standard);

    BrowserBridgeStore elsewhere(BrowserBridgeStore::defaultRoot(
        home_.paths(), lookup({{"TALLYWISE_BRIDGE_DIR", moved.string()}})));
    ASSERT_TRUE(elsewhere.prepare());
    ASSERT_TRUE(elsewhere.writeState({.updatedAt = kNow}));
    EXPECT_EQ(namesIn(moved), (std::set<std::string>{"Commands", "Inbox", "Readiness",
                                                     "bridge-token", "state.json"}));
    EXPECT_FALSE(fs::exists(home_.paths().dataHome / "Tallywise"));
}

TEST_F(BrowserBridgeStoreTest, PrepareMakesPrivateFoldersAndKeepsOneToken) {
    const auto token = store_.prepare();
    ASSERT_TRUE(token);
    EXPECT_TRUE(isWellFormedBridgeToken(token.value()));
    for (const char* folder : {"", "Inbox", "Commands", "Readiness"}) {
        EXPECT_EQ(modeOf(store_.rootURL() / folder), 0700u) << folder;
    }
    EXPECT_EQ(modeOf(store_.tokenPath()), 0600u);
    EXPECT_EQ(store_.prepare().value(), token.value());
    EXPECT_EQ(store_.readToken().value(), token.value());
    ASSERT_TRUE(store_.writePreferences(false));
    EXPECT_EQ(modeOf(store_.preferencesPath()), 0600u);
}

TEST_F(BrowserBridgeStoreTest, DamagedTokenIsMovedAsideAndReplacedButALinkIsRefused) {
    writeFile(store_.tokenPath(), "not a token");
    const auto token = store_.prepare();
    ASSERT_TRUE(token);
    EXPECT_NE(token.value(), "not a token");
    EXPECT_EQ(namesIn(store_.rootURL()).size(), 5u);  // three folders, token, damaged token

    fs::remove(store_.tokenPath());
    writeFile(home_.root() / "secret", std::string(64, 'a'));
    fs::create_symlink(home_.root() / "secret", store_.tokenPath());
    const auto refused = store_.prepare();
    ASSERT_FALSE(refused);
    EXPECT_EQ(message(refused.error()),
              "Lumenote is not running or its browser bridge is not ready.");
    EXPECT_FALSE(store_.readToken());
}

TEST_F(BrowserBridgeStoreTest, WithoutATokenNothingSignedIsWritten) {
    BrowserBridgeStore unprepared(home_.root() / "never-prepared");
    const BrowserBridgeCommand command{
        Uuid::generate(), BrowserBridgeCommandType::setFilenameLabelsEnabled, "com.google.Chrome"};
    const auto queued = unprepared.queueCommand(command);
    ASSERT_FALSE(queued);
    EXPECT_EQ(describe(queued.error()), message(BrowserBridgeStoreError::tokenUnavailable));
    EXPECT_FALSE(unprepared.writeReadiness({.browserBundleIdentifier = "com.google.Chrome"}));
    EXPECT_FALSE(unprepared.writePreferences(true));
    EXPECT_FALSE(fs::exists(unprepared.rootURL()));
}

TEST_F(BrowserBridgeStoreTest, CommandEnvelopeOfExactlyTheLimitIsQueuedAndOneByteMoreRefused) {
    ASSERT_TRUE(store_.prepare());
    BrowserBridgeCommand command{Uuid::generate(), BrowserBridgeCommandType::showLocalPDF, ""};
    command.createdAt = kNow;
    const std::size_t baseSize =
        encodeCommandEnvelope({kBridgeDocumentVersion, store_.readToken().value(), command}).size();
    command.browserBundleIdentifier = std::string(kMaximumBridgeDocumentBytes - baseSize, 'b');
    EXPECT_TRUE(store_.queueCommand(command));

    command.id = Uuid::generate();
    command.browserBundleIdentifier += 'b';
    const auto refused = store_.queueCommand(command);
    ASSERT_FALSE(refused);
    EXPECT_EQ(describe(refused.error()), "The browser message exceeds Lumenote's size limit.");
    EXPECT_EQ(store_.queuedCommandNames().size(), 1u);
}

TEST_F(BrowserBridgeStoreTest, CommandsAreNamedByMicrosecondAndTakenInQueueOrder) {
    ASSERT_TRUE(store_.prepare());
    std::vector<Uuid> queued;
    for (int i = 0; i < 3; ++i) {
        BrowserBridgeCommand command{Uuid::generate(),
                                     BrowserBridgeCommandType::setFilenameLabelsEnabled,
                                     "org.mozilla.firefox"};
        command.filenameLabelsEnabled = i % 2 == 0;
        command.createdAt = kNow.addingSeconds(i * 0.00001);
        queued.push_back(command.id);
        const auto name = store_.queueCommand(command);
        ASSERT_TRUE(name);
        EXPECT_EQ(modeOf(store_.commandsFolder() / name.value()), 0600u);
    }
    const auto names = store_.queuedCommandNames();
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0], "00001795600800000000-" + queued[0].upperString() + ".command");
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto command = store_.readCommand(names[i]);
        ASSERT_TRUE(command);
        EXPECT_EQ(command->id, queued[i]);
        EXPECT_EQ(command->filenameLabelsEnabled, i % 2 == 0);
    }
}

TEST_F(BrowserBridgeStoreTest, DrainHandsOnOldestFirstWithinItsBoundAndDeletesWhatItHandled) {
    ASSERT_TRUE(store_.prepare());
    for (int i = 4; i >= 0; --i) {
        ASSERT_TRUE(store_.writeInboxEnvelope(
            envelope("event " + std::to_string(i), kNow.addingSeconds(i))));
    }
    const auto first = store_.drainInbox(3);
    ASSERT_EQ(first.accepted.size(), 3u);
    EXPECT_TRUE(first.moreWaiting);
    EXPECT_EQ(first.accepted[0].eventData, "event 0");
    EXPECT_EQ(first.accepted[2].eventData, "event 2");
    EXPECT_EQ(first.accepted[1].receivedAt, kNow.addingSeconds(1));
    EXPECT_EQ(namesIn(store_.inboxFolder()).size(), 2u);

    const auto second = store_.drainInbox(3);
    ASSERT_EQ(second.accepted.size(), 2u);
    EXPECT_FALSE(second.moreWaiting);
    EXPECT_EQ(second.accepted[1].eventData, "event 4");
    EXPECT_TRUE(namesIn(store_.inboxFolder()).empty());
}

// The folder lists its files in no particular order: whatever order they were
// written in, bounded drains hand every file on exactly once, oldest first
// across drains, and say whether more wait (also when the bound is zero).
TEST_F(BrowserBridgeStoreTest, BoundedDrainsTakeTheOldestFilesInOrderWhateverTheWriteOrder) {
    ASSERT_TRUE(store_.prepare());
    constexpr int kFiles = 40;
    std::vector<int> order(kFiles);
    for (int i = 0; i < kFiles; ++i) {
        order[i] = (i * 17) % kFiles;
    }
    for (const int i : order) {
        ASSERT_TRUE(
            store_.writeInboxEnvelope(envelope(std::to_string(i), kNow.addingSeconds(i * 0.001))));
    }
    const auto none = store_.drainInbox(0);
    EXPECT_TRUE(none.accepted.empty());
    EXPECT_TRUE(none.moreWaiting);

    std::vector<std::string> handed;
    bool more = true;
    int drains = 0;
    while (more) {
        const auto drain = store_.drainInbox(7);
        ASSERT_LE(drain.accepted.size(), 7u);
        for (const auto& payload : drain.accepted) {
            handed.push_back(payload.eventData);
        }
        more = drain.moreWaiting;
        EXPECT_EQ(more, handed.size() < kFiles);
        ASSERT_LT(++drains, 10);
    }
    ASSERT_EQ(handed.size(), static_cast<std::size_t>(kFiles));
    for (int i = 0; i < kFiles; ++i) {
        EXPECT_EQ(handed[i], std::to_string(i));
    }
    EXPECT_TRUE(namesIn(store_.inboxFolder()).empty());
}

TEST_F(BrowserBridgeStoreTest, DrainRefusesForeignOversizedAndDamagedFilesAndSkipsTemporaryOnes) {
    ASSERT_TRUE(store_.prepare());
    BrowserBridgeEnvelope foreign = envelope("forged", kNow);
    foreign.token = std::string(64, '0');
    writeFile(store_.inboxFolder() / "1-foreign.event", encodeEnvelope(foreign));
    writeFile(store_.inboxFolder() / "2-large.event",
              std::string(kMaximumBridgeDocumentBytes + 1, ' '));
    writeFile(store_.inboxFolder() / "3-damaged.event", "{\"version\":1");
    BrowserBridgeEnvelope badBase64 = envelope("x", kNow);
    std::string text = encodeEnvelope(badBase64);
    text.replace(text.find("\"eA==\""), 6, "\"e!==\"");
    writeFile(store_.inboxFolder() / "4-base64.event", text);
    writeFile(store_.inboxFolder() / "5-half.event.temporary",
              encodeEnvelope(envelope("no", kNow)));
    writeFile(store_.inboxFolder() / "6-other.json", encodeEnvelope(envelope("no", kNow)));
    ASSERT_TRUE(store_.writeInboxEnvelope(envelope("accepted", kNow)));

    const auto drain = store_.drainInbox();
    ASSERT_EQ(drain.accepted.size(), 1u);
    EXPECT_EQ(drain.accepted[0].eventData, "accepted");
    ASSERT_EQ(drain.rejected.size(), 4u);
    EXPECT_EQ(drain.rejected[0].error, BrowserBridgeStoreError::malformedEnvelope);
    EXPECT_EQ(drain.rejected[1].error, BrowserBridgeStoreError::payloadTooLarge);
    EXPECT_EQ(drain.rejected[2].error, BrowserBridgeStoreError::malformedEnvelope);
    EXPECT_EQ(drain.rejected[3].error, BrowserBridgeStoreError::malformedEnvelope);
    EXPECT_EQ(namesIn(store_.inboxFolder()),
              (std::set<std::string>{"5-half.event.temporary", "6-other.json"}));
}

TEST_F(BrowserBridgeStoreTest, EventBytesSurviveTheEnvelopeWhateverTheyAre) {
    ASSERT_TRUE(store_.prepare());
    const std::string bytes("{\0\xff\"é\n", 7);
    ASSERT_TRUE(store_.writeInboxEnvelope(envelope(bytes, kNow)));
    const auto drain = store_.drainInbox();
    ASSERT_EQ(drain.accepted.size(), 1u);
    EXPECT_EQ(drain.accepted[0].eventData, bytes);
}

TEST_F(BrowserBridgeStoreTest, ReadinessIsReadPerBrowserWhenItCarriesTheToken) {
    ASSERT_TRUE(store_.prepare());
    BrowserBridgeReadiness chrome{kBridgeDocumentVersion,
                                  "com.google.Chrome",
                                  "1.2.0",
                                  "0.3.0",
                                  kBridgeProtocolVersion,
                                  true,
                                  kNow};
    ASSERT_TRUE(store_.writeReadiness(chrome));
    BrowserBridgeReadinessEnvelope forged{kBridgeDocumentVersion, std::string(64, 'f'), chrome};
    forged.readiness.browserBundleIdentifier = "org.mozilla.firefox";
    writeFile(store_.readinessFolder() / "org.mozilla.firefox.readiness",
              encodeReadinessEnvelope(forged));
    EXPECT_EQ(store_.readReadiness(), std::vector<BrowserBridgeReadiness>{chrome});
    EXPECT_FALSE(store_.writeReadiness({.browserBundleIdentifier = "../escape"}));
}

TEST_F(BrowserBridgeStoreTest, StateAndPreferencesRoundTrip) {
    ASSERT_TRUE(store_.prepare());
    const BrowserBridgeState state{kBridgeDocumentVersion,  4242, true, Uuid::generate(), false,
                                   "org.chromium.Chromium", kNow};
    ASSERT_TRUE(store_.writeState(state));
    EXPECT_EQ(store_.readState(), state);
    ASSERT_TRUE(store_.writePreferences(false));
    const auto preferences = store_.readPreferences();
    ASSERT_TRUE(preferences);
    EXPECT_FALSE(preferences->filenameLabelsEnabled);
    EXPECT_EQ(readFile(store_.statePath()).find("\"version\":1,\"appProcessIdentifier\":4242"), 1u);
}

// Found by fuzzing: an inbox file received "in year 10000" was accepted, and
// its date could not be written again.
TEST_F(BrowserBridgeStoreTest, EnvelopeDatesOutsideTheFourDigitYearsAreMalformed) {
    ASSERT_TRUE(store_.prepare());
    const std::string written = encodeEnvelope(envelope("{}", kNow));
    const std::string received = "\"receivedAt\":\"" + formatIso8601(kNow, {true}) + "\"";
    ASSERT_NE(written.find(received), std::string::npos) << written;
    for (const char* receivedAt : {"9999-12-31T23:59:59-00:01", "0000-01-01T00:00:00.5+00:01"}) {
        std::string forged = written;
        forged.replace(written.find(received), received.size(),
                       "\"receivedAt\":\"" + std::string(receivedAt) + "\"");
        writeFile(store_.inboxFolder() / ("1-" + std::string(receivedAt) + ".event"), forged);
        EXPECT_FALSE(decodeEnvelope(forged)) << receivedAt;
    }
    const auto drain = store_.drainInbox();
    EXPECT_TRUE(drain.accepted.empty());
    ASSERT_EQ(drain.rejected.size(), 2u);
    EXPECT_EQ(drain.rejected[0].error, BrowserBridgeStoreError::malformedEnvelope);
    EXPECT_EQ(drain.rejected[1].error, BrowserBridgeStoreError::malformedEnvelope);
}

class FailingWrites final : public FileWriteOperations {
  public:
    long write(int, const char*, std::size_t) override { return -1; }
};

TEST_F(BrowserBridgeStoreTest, FailedWriteLeavesThePreviousDocumentAndNoTemporaryFile) {
    ASSERT_TRUE(store_.prepare());
    ASSERT_TRUE(store_.writeState({.appProcessIdentifier = 1, .updatedAt = kNow}));
    FailingWrites failing;
    BrowserBridgeStore broken(store_.rootURL(), failing);
    const auto written = broken.writeState({.appProcessIdentifier = 2, .updatedAt = kNow});
    ASSERT_FALSE(written);
    EXPECT_EQ(std::get<PrivateFileError>(written.error()), PrivateFileError::writeFailed);
    EXPECT_EQ(store_.readState()->appProcessIdentifier, 1);
    for (const auto& name : namesIn(store_.rootURL())) {
        EXPECT_EQ(name.find(".temporary"), std::string::npos) << name;
    }
}

TEST(Base64Test, EncodesAndDecodesTheStandardFormOnly) {
    EXPECT_EQ(base64Encoded(""), "");
    EXPECT_EQ(base64Encoded("f"), "Zg==");
    EXPECT_EQ(base64Encoded("fo"), "Zm8=");
    EXPECT_EQ(base64Encoded("foo"), "Zm9v");
    EXPECT_EQ(base64Encoded("\xfb\xff"), "+/8=");
    EXPECT_EQ(base64Decoded("Zm9vYg=="), "foob");
    EXPECT_EQ(base64Decoded("+/8="), "\xfb\xff");
    for (const char* bad : {"Zm9", "Zm9v\n", "Zg=a", "Zh==", "-_8=", "Z===", "=Zm9"}) {
        EXPECT_FALSE(base64Decoded(bad)) << bad;
    }
}

TEST(BridgeTokenTest, TokensAreFreshWellFormedAndComparedWhole) {
    const auto first = generateBridgeToken();
    const auto second = generateBridgeToken();
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_TRUE(isWellFormedBridgeToken(*first));
    EXPECT_TRUE(bridgeTokensMatch(*first, *first));
    EXPECT_FALSE(bridgeTokensMatch(*first, *second));
    EXPECT_FALSE(bridgeTokensMatch(*first, first->substr(0, 63)));
    EXPECT_FALSE(bridgeTokensMatch("", ""));
    EXPECT_FALSE(isWellFormedBridgeToken(std::string(64, 'A')));
}

}  // namespace
}  // namespace lumenote::bridge
