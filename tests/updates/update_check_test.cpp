#include "updates/update_check.hpp"

#include <gtest/gtest.h>

#include <set>

#include "support/ed25519_test_key.hpp"
#include "updates/signed_feed.hpp"

namespace lumenote::updates {
namespace {

using testing::Ed25519TestKey;
using testing::feedText;

// Answers every fetch with one scripted result and counts the fetches.
class ScriptedFetcher final : public FeedFetcher {
  public:
    explicit ScriptedFetcher(Result<std::string, FetchError> answer) : answer_(std::move(answer)) {}

    Result<std::string, FetchError> fetch(const std::string& address,
                                          std::size_t maximumBytes) override {
        addresses.push_back(address);
        lastMaximum = maximumBytes;
        return answer_;
    }

    std::vector<std::string> addresses;
    std::size_t lastMaximum = 0;

  private:
    Result<std::string, FetchError> answer_;
};

class UpdateCheckTest : public ::testing::Test {
  protected:
    UpdateCheckRequest request(std::string address = "https://updates.example/feed") const {
        return {.checksEnabled = true,
                .feedAddress = std::move(address),
                .runningVersion = "0.1.0",
                .runningRelease = {{0, 1, 0}, 5}};
    }

    UpdateCheckOutcome checkAgainst(const std::string& envelope) {
        ScriptedFetcher fetcher(envelope);
        return checkForUpdates(request(), fetcher, key_.publicKey());
    }

    Ed25519TestKey key_;
};

TEST_F(UpdateCheckTest, ANewerReleaseIsOfferedWithItsNotes) {
    ScriptedFetcher fetcher(key_.envelope(feedText("0.2.0", 1)));
    const UpdateCheckOutcome outcome = checkForUpdates(request(), fetcher, key_.publicKey());
    EXPECT_EQ(outcome.status, UpdateCheckStatus::newerAvailable);
    EXPECT_TRUE(outcome.succeeded());
    ASSERT_TRUE(outcome.offer);
    EXPECT_EQ(outcome.offer->releaseNotes, "Faster history.\nFixes a crash.");
    EXPECT_EQ(updateCheckSentence(outcome), "Lumenote 0.2.0 is available. You have 0.1.0.");
    EXPECT_EQ(fetcher.addresses, std::vector<std::string>{"https://updates.example/feed"});
    EXPECT_EQ(fetcher.lastMaximum, kMaximumEnvelopeBytes);
}

TEST_F(UpdateCheckTest, TheSameOrAnOlderReleaseIsUpToDate) {
    for (const auto& [version, build] : std::vector<std::pair<const char*, long long>>{
             {"0.1.0", 5}, {"0.1", 5}, {"0.1.0", 4}, {"0.0.9", 99}, {"0", 0}}) {
        const UpdateCheckOutcome outcome = checkAgainst(key_.envelope(feedText(version, build)));
        EXPECT_EQ(outcome.status, UpdateCheckStatus::upToDate) << version << " " << build;
        EXPECT_FALSE(outcome.offer);
        EXPECT_EQ(updateCheckSentence(outcome), "Lumenote 0.1.0 is the newest version.");
    }
    EXPECT_EQ(checkAgainst(key_.envelope(feedText("0.1.0", 6))).status,
              UpdateCheckStatus::newerAvailable);
    EXPECT_EQ(checkAgainst(key_.envelope(feedText("0.10.0", 0))).status,
              UpdateCheckStatus::newerAvailable);
}

TEST_F(UpdateCheckTest, RefusalsComeBeforeAnyFetchInTheirOrder) {
    struct Case {
        bool enabled;
        const char* address;
        UpdateCheckStatus expected;
    };
    const Case cases[] = {
        {false, "http://updates.example/feed", UpdateCheckStatus::checksOff},
        {false, "", UpdateCheckStatus::checksOff},
        {false, "https://updates.example/feed", UpdateCheckStatus::checksOff},
        {true, "", UpdateCheckStatus::noFeedAddress},
        {true, "http://updates.example/feed", UpdateCheckStatus::insecureAddress},
        {true, "HTTP://updates.example/feed", UpdateCheckStatus::insecureAddress},
        {true, "file:///srv/feed.json", UpdateCheckStatus::insecureAddress},
        {true, "ftp://updates.example/feed", UpdateCheckStatus::insecureAddress},
        {true, "updates.example/feed", UpdateCheckStatus::insecureAddress},
        {true, "garbage", UpdateCheckStatus::insecureAddress},
    };
    for (const Case& c : cases) {
        ScriptedFetcher fetcher(key_.envelope(feedText("9.0.0", 1)));
        UpdateCheckRequest asked = request(c.address);
        asked.checksEnabled = c.enabled;
        const UpdateCheckOutcome outcome = checkForUpdates(asked, fetcher, key_.publicKey());
        EXPECT_EQ(outcome.status, c.expected) << c.address;
        EXPECT_FALSE(outcome.succeeded());
        EXPECT_TRUE(fetcher.addresses.empty()) << c.address;
    }
}

TEST_F(UpdateCheckTest, EachFailureHasItsStatusAndNoOffer) {
    const std::string valid = key_.envelope(feedText("0.2.0", 1));
    std::string tampered = valid;
    tampered[12] = tampered[12] == 'A' ? 'B' : 'A';
    const std::pair<Result<std::string, FetchError>, UpdateCheckStatus> cases[] = {
        {fail(FetchError::unreachable), UpdateCheckStatus::unreachable},
        {fail(FetchError::tooLarge), UpdateCheckStatus::malformedFeed},
        {fail(FetchError::insecureRedirect), UpdateCheckStatus::insecureAddress},
        {tampered, UpdateCheckStatus::notVerified},
        {Ed25519TestKey().envelope(feedText("0.2.0", 1)), UpdateCheckStatus::notVerified},
        {std::string("<html>captive portal</html>"), UpdateCheckStatus::malformedFeed},
    };
    for (const auto& [answer, expected] : cases) {
        ScriptedFetcher fetcher(answer);
        const UpdateCheckOutcome outcome = checkForUpdates(request(), fetcher, key_.publicKey());
        EXPECT_EQ(outcome.status, expected);
        EXPECT_FALSE(outcome.offer);
        EXPECT_FALSE(outcome.succeeded());
    }
}

TEST_F(UpdateCheckTest, EveryStatusHasItsOwnSentence) {
    std::set<std::string> sentences;
    for (auto status : {UpdateCheckStatus::checksOff, UpdateCheckStatus::noFeedAddress,
                        UpdateCheckStatus::insecureAddress, UpdateCheckStatus::unreachable,
                        UpdateCheckStatus::malformedFeed, UpdateCheckStatus::notVerified,
                        UpdateCheckStatus::upToDate}) {
        const std::string sentence = updateCheckSentence({status, "0.1.0", std::nullopt});
        EXPECT_FALSE(sentence.empty());
        sentences.insert(sentence);
    }
    EXPECT_EQ(sentences.size(), 7U);
    EXPECT_EQ(updateCheckSentence({UpdateCheckStatus::insecureAddress, "0.1.0", std::nullopt}),
              "Lumenote checks for updates only over a secure connection (an https:// address).");
}

}  // namespace
}  // namespace lumenote::updates
