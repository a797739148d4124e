#include "manual/page_date.hpp"

#include <gtest/gtest.h>

namespace lumenote::manual {
namespace {

TEST(PageDateTest, CountsUtcDaysFromSourceDateEpoch) {
    const std::vector<std::pair<const char*, const char*>> cases{
        {"0", "1970-01-01"},
        {"86399", "1970-01-01"},
        {"86400", "1970-01-02"},
        {"951782400", "2000-02-29"},
        {"1798761599", "2026-12-31"},
        {"1798761600", "2027-01-01"},
        {"253402300799", "9999-12-31"},
    };
    for (const auto& [epoch, day] : cases) {
        SCOPED_TRACE(epoch);
        EXPECT_EQ(pageDate(epoch, "2001-01-01"), day);
    }
}

TEST(PageDateTest, UnsetOrEmptyGivesTheFallback) {
    EXPECT_EQ(pageDate(nullptr, "2026-11-26"), "2026-11-26");
    EXPECT_EQ(pageDate("", "2026-11-26"), "2026-11-26");
}

TEST(PageDateTest, RefusesWhatIsNotACountOfSeconds) {
    for (const char* epoch : {"-1", "+5", "12a", " 12", "12 ", "1.5", "0x10", "253402300800",
                              "99999999999999999999", "now"}) {
        SCOPED_TRACE(epoch);
        EXPECT_EQ(pageDate(epoch, "2026-11-26"), std::nullopt);
    }
}

}  // namespace
}  // namespace lumenote::manual
