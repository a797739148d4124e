#include "updates/signed_feed.hpp"

#include <gtest/gtest.h>

#include "support/ed25519_test_key.hpp"

namespace lumenote::updates {
namespace {

using testing::base64Of;
using testing::Ed25519TestKey;
using testing::feedText;

class SignedFeedTest : public ::testing::Test {
  protected:
    Ed25519TestKey key_;
    const std::string feed_ = feedText("0.2.0", 12);
};

TEST_F(SignedFeedTest, AFeedSignedWithTheKeyIsRead) {
    const auto feed = verifiedUpdateFeed(key_.envelope(feed_), key_.publicKey());
    ASSERT_TRUE(feed.ok());
    EXPECT_EQ(feed->version, "0.2.0");
    EXPECT_EQ(feed->build, 12);
}

TEST_F(SignedFeedTest, ChangingAnyBitOfTheFeedFailsVerification) {
    const std::string signature = key_.sign(feed_);
    for (std::size_t i = 0; i < feed_.size(); ++i) {
        std::string tampered = feed_;
        tampered[i] = static_cast<char>(tampered[i] ^ 0x01);
        const auto feed =
            verifiedUpdateFeed(Ed25519TestKey::envelopeOf(tampered, signature), key_.publicKey());
        ASSERT_FALSE(feed.ok()) << "byte " << i;
        EXPECT_EQ(feed.error(), SignedFeedError::notVerified) << "byte " << i;
    }
}

TEST_F(SignedFeedTest, ChangingAnyByteOfTheSignatureFailsVerification) {
    const std::string signature = key_.sign(feed_);
    for (std::size_t i = 0; i < signature.size(); ++i) {
        std::string tampered = signature;
        tampered[i] = static_cast<char>(tampered[i] ^ 0x80);
        const auto feed =
            verifiedUpdateFeed(Ed25519TestKey::envelopeOf(feed_, tampered), key_.publicKey());
        ASSERT_FALSE(feed.ok()) << "byte " << i;
        EXPECT_EQ(feed.error(), SignedFeedError::notVerified) << "byte " << i;
    }
}

TEST_F(SignedFeedTest, AnotherKeysSignatureIsNotVerified) {
    const Ed25519TestKey other;
    const auto feed = verifiedUpdateFeed(other.envelope(feed_), key_.publicKey());
    ASSERT_FALSE(feed.ok());
    EXPECT_EQ(feed.error(), SignedFeedError::notVerified);
    // A key of all zeros is not a usable point: refused, never a crash.
    EXPECT_FALSE(verifiedUpdateFeed(key_.envelope(feed_), Ed25519PublicKey{}).ok());
}

TEST_F(SignedFeedTest, AnUnusableSignatureIsNotVerified) {
    const std::string signature = key_.sign(feed_);
    const std::string feed = base64Of(feed_);
    for (const nlohmann::json& envelope : {
             nlohmann::json{{"feed", feed}},
             nlohmann::json{{"feed", feed}, {"signature", nullptr}},
             nlohmann::json{{"feed", feed}, {"signature", base64Of(signature.substr(0, 63))}},
             nlohmann::json{{"feed", feed}, {"signature", base64Of(signature + "x")}},
             nlohmann::json{{"feed", feed}, {"signature", base64Of(signature) + "\n"}},
             nlohmann::json{{"feed", feed}, {"signature", "not base64!"}},
             nlohmann::json{{"feed", feed}, {"signature", ""}},
         }) {
        const auto read = verifiedUpdateFeed(envelope.dump(), key_.publicKey());
        ASSERT_FALSE(read.ok()) << envelope.dump();
        EXPECT_EQ(read.error(), SignedFeedError::notVerified) << envelope.dump();
    }
}

TEST_F(SignedFeedTest, AnEnvelopeThatCannotBeReadIsMalformed) {
    const std::string signature = base64Of(key_.sign(feed_));
    for (const std::string envelope :
         {std::string(""), std::string("[]"), std::string("{\"signature\": \"" + signature + "\"}"),
          nlohmann::json{{"feed", 5}, {"signature", signature}}.dump(),
          nlohmann::json{{"feed", base64Of(feed_) + "="}, {"signature", signature}}.dump(),
          std::string("{\"feed\": ")}) {
        const auto read = verifiedUpdateFeed(envelope, key_.publicKey());
        ASSERT_FALSE(read.ok()) << envelope;
        EXPECT_EQ(read.error(), SignedFeedError::malformed) << envelope;
    }
}

TEST_F(SignedFeedTest, ASignedDocumentThatIsNoFeedIsMalformed) {
    for (const std::string document : {std::string("{\"version\": \"0.2.0\"}"),
                                       std::string("hello"), feedText("0.2.0-beta", 1)}) {
        const auto read = verifiedUpdateFeed(key_.envelope(document), key_.publicKey());
        ASSERT_FALSE(read.ok()) << document;
        EXPECT_EQ(read.error(), SignedFeedError::malformed) << document;
    }
}

TEST_F(SignedFeedTest, AnOversizedEnvelopeIsRefusedUnread) {
    std::string envelope = key_.envelope(feed_);
    envelope.insert(1, std::string(kMaximumEnvelopeBytes, ' '));
    const auto read = verifiedUpdateFeed(envelope, key_.publicKey());
    ASSERT_FALSE(read.ok());
    EXPECT_EQ(read.error(), SignedFeedError::malformed);
}

}  // namespace
}  // namespace lumenote::updates
