#include "updates/strict_base64.hpp"

#include <gtest/gtest.h>

#include "support/ed25519_test_key.hpp"

namespace lumenote::updates {
namespace {

TEST(StrictBase64Test, RoundTripsEveryLengthAndEveryByte) {
    std::string bytes;
    for (int length = 0; length < 70; ++length) {
        EXPECT_EQ(strictBase64Decoded(testing::base64Of(bytes)), bytes) << length;
        bytes.push_back(static_cast<char>(length * 37 + 200));
    }
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    EXPECT_EQ(strictBase64Decoded(testing::base64Of(all)), all);
}

TEST(StrictBase64Test, RefusesEveryOtherSpelling) {
    for (const char* text : {"QQ", "QQ=", "Q===", "====", "=QQ=", "Q=Q=", "QR==" /* stray bits */,
                             "QUI=QUI=", "QUJ", "QUJD\n", " QUJD", "QU JD", "-_-_", "QUJD===="}) {
        EXPECT_EQ(strictBase64Decoded(text), std::nullopt) << text;
    }
    EXPECT_EQ(strictBase64Decoded("QUK="), std::nullopt);
    EXPECT_EQ(strictBase64Decoded("QUI="), "AB");
    EXPECT_EQ(strictBase64Decoded("QQ=="), "A");
}

}  // namespace
}  // namespace lumenote::updates
