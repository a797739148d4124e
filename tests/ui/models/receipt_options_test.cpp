#include "ui/models/receipt_options.hpp"

#include <gtest/gtest.h>

#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preference_keys.hpp"

namespace lumenote::ui::models {
namespace {

namespace keys = settings::preference_keys;

TEST(ReceiptOptions, MissingKeysReadAsTheDefaults) {
    settings::InMemoryDefaultsDomain defaults;
    const ReceiptOptions options = readReceiptOptions(defaults);
    EXPECT_TRUE(options.includeGoal);
    EXPECT_FALSE(options.includeExactTimes);
    EXPECT_TRUE(options.includeBranding);
    EXPECT_TRUE(options.includeSubjectSummary);
}

TEST(ReceiptOptions, WrittenOptionsReadBackUnderTheirOwnKeys) {
    settings::InMemoryDefaultsDomain defaults;
    const ReceiptOptions chosen{.includeGoal = false,
                                .includeExactTimes = true,
                                .includeBranding = false,
                                .includeSubjectSummary = true};
    writeReceiptOptions(defaults, chosen);
    EXPECT_EQ(readReceiptOptions(defaults), chosen);
    EXPECT_EQ(settings::asBool(defaults.object(keys::receiptIncludeGoal)), false);
    EXPECT_EQ(settings::asBool(defaults.object(keys::receiptIncludeExactTimes)), true);
}

TEST(ReceiptOptions, ValueOfAnotherTypeReadsAsTheDefault) {
    // A hand-edited "0" or "no" is not a Boolean: the private default holds,
    // rather than a string being taken for a choice the user never made.
    settings::InMemoryDefaultsDomain defaults;
    defaults.set(keys::receiptIncludeExactTimes, std::string("yes"));
    defaults.set(keys::receiptIncludeGoal, 0LL);
    const ReceiptOptions options = readReceiptOptions(defaults);
    EXPECT_FALSE(options.includeExactTimes);
    EXPECT_TRUE(options.includeGoal);
}

}  // namespace
}  // namespace lumenote::ui::models
