#include "updates/version_order.hpp"

#include <gtest/gtest.h>

namespace lumenote::updates {
namespace {

using Components = std::vector<std::uint32_t>;

TEST(VersionComponentsTest, ReadsDottedDecimalNumbers) {
    EXPECT_EQ(versionComponents("0"), (Components{0}));
    EXPECT_EQ(versionComponents("0.2.0"), (Components{0, 2, 0}));
    EXPECT_EQ(versionComponents("10.20.300"), (Components{10, 20, 300}));
    EXPECT_EQ(versionComponents("007.1"), (Components{7, 1}));
    EXPECT_EQ(versionComponents("999999999.1"), (Components{999999999, 1}));
    EXPECT_EQ(versionComponents("1.2.3.4.5.6.7.8"), (Components{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(VersionComponentsTest, RefusesAnythingElse) {
    for (const char* text :
         {"", ".", "1.", ".1", "1..2", "1.a", "a", "-1", "+1", " 1", "1 ", "1.2.3-beta", "v1.2",
          "1,2", "1234567890", "1.2.3.4.5.6.7.8.9", "\xd9\xa1.2" /* an Arabic-Indic digit */}) {
        EXPECT_EQ(versionComponents(text), std::nullopt) << text;
    }
}

struct OrderCase {
    const char* left;
    long long leftBuild;
    const char* right;
    long long rightBuild;
    std::strong_ordering expected;
};

TEST(CompareReleasesTest, ComparesNumbersPerComponentThenTheBuild) {
    const OrderCase cases[] = {
        {"0.10.0", 1, "0.9.0", 1, std::strong_ordering::greater},
        {"0.9.9", 1, "0.10.0", 1, std::strong_ordering::less},
        {"1.2", 1, "1.2.0", 1, std::strong_ordering::equal},
        {"1.2.0.1", 1, "1.2", 1, std::strong_ordering::greater},
        {"1.2.0", 2, "1.2", 1, std::strong_ordering::greater},
        {"1.2.0", 1, "1.2.0", 2, std::strong_ordering::less},
        {"2.0", 1, "1.99.99", 999999, std::strong_ordering::greater},
        {"0.1.0", 7, "0.1.0", 7, std::strong_ordering::equal},
        {"999999999", 0, "999999998.999999999", 0, std::strong_ordering::greater},
    };
    for (const OrderCase& c : cases) {
        const ReleaseNumber left{*versionComponents(c.left), c.leftBuild};
        const ReleaseNumber right{*versionComponents(c.right), c.rightBuild};
        EXPECT_EQ(compareReleases(left, right), c.expected) << c.left << " vs " << c.right;
        // The order is antisymmetric: swapping the sides reverses it.
        EXPECT_EQ(compareReleases(right, left), 0 <=> (c.expected <=> 0)) << c.right;
    }
}

}  // namespace
}  // namespace lumenote::updates
