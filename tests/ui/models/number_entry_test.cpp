#include "ui/models/number_entry.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

TEST(NumberEntry, NumbersAreReadWholeOrNotAtAll) {
    EXPECT_EQ(parsedNumber("90"), 90.0);
    EXPECT_EQ(parsedNumber("  2400\n"), 2400.0);
    EXPECT_EQ(parsedNumber("-5"), -5.0);
    EXPECT_EQ(parsedNumber("12.5"), 12.5);
    for (std::string_view text : {"", "   ", "ninety", "90s", "9 0", "1e400", "nan", "inf"}) {
        EXPECT_FALSE(parsedNumber(text).has_value()) << text;
    }
}

TEST(NumberEntry, AFieldExplainsItsRangeOnlyWhenTheStoreChangedTheValue) {
    const NumberRange inactivity{90.0, 1800.0, "seconds"};
    EXPECT_EQ(allowedRangeText(inactivity), "Allowed range: 90\u20131800 seconds.");
    EXPECT_EQ(allowedRangeText({0.5, 2.0, "hours"}), "Allowed range: 0.5\u20132 hours.");
    EXPECT_EQ(numberFieldSentence(600.0, 600.0, inactivity), "");
    EXPECT_EQ(numberFieldSentence(90.0, 90.0, inactivity), "");
    EXPECT_EQ(numberFieldSentence(30.0, 90.0, inactivity), "Allowed range: 90\u20131800 seconds.");
    EXPECT_EQ(numberFieldSentence(2400.0, 1800.0, inactivity),
              "Allowed range: 90\u20131800 seconds.");
    EXPECT_EQ(numberFieldSentence(std::nullopt, 90.0, inactivity), "Enter a number.");
}

}  // namespace
}  // namespace lumenote::ui::models
