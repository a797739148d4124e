#include "ui/models/about_settings.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

TEST(AboutSettings, AVersionIsNamedAndNoneIsADevelopmentBuild) {
    EXPECT_EQ(versionText("1.4.0", "12"), "Version 1.4.0 (build 12)");
    EXPECT_EQ(versionText("1.4.0", ""), "Version 1.4.0");
    EXPECT_EQ(versionText("", "12"), "Development build");
}

TEST(AboutSettings, TheUpdateAddressIsShownOrItsAbsenceExplained) {
    EXPECT_EQ(updateAddressText("https://updates.example/feed"),
              "Update address: https://updates.example/feed");
    EXPECT_NE(updateAddressText("").find("updates.feedAddress"), std::string::npos);
}

}  // namespace
}  // namespace lumenote::ui::models
