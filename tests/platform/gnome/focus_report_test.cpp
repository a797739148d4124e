// The extension's report read from D-Bus arguments, and the application it
// names.
#include "platform/gnome/focus_report.hpp"

#include <gtest/gtest.h>

#include <QVariant>

namespace lumenote::platform::gnome {
namespace {

QVariantList arguments(bool hasWindow, const char* appId, const char* wmClass, const char* instance,
                       const char* sandboxed, uint processId) {
    return {QVariant(hasWindow),
            QVariant(QString::fromUtf8(appId)),
            QVariant(QString::fromUtf8(wmClass)),
            QVariant(QString::fromUtf8(instance)),
            QVariant(QString::fromUtf8(sandboxed)),
            QVariant::fromValue(processId)};
}

TEST(ParseFocusReport, ReadsExactlySixValuesOfTheInterfacesTypes) {
    const auto report = parseFocusReport(arguments(true, "org.gnome.Nautilus", "org.gnome.Nautilus",
                                                   "org.gnome.Nautilus", "", 4242));
    ASSERT_TRUE(report);
    EXPECT_EQ(*report, (FocusReport{true, "org.gnome.Nautilus", "org.gnome.Nautilus",
                                    "org.gnome.Nautilus", "", 4242}));
    const auto unicode = parseFocusReport(arguments(true, "", "Écrire", "écrire", "", 0));
    ASSERT_TRUE(unicode);
    EXPECT_EQ(unicode->wmClass, "Écrire");

    auto tooFew = arguments(true, "a", "b", "c", "d", 1);
    tooFew.removeLast();
    auto tooMany = arguments(true, "a", "b", "c", "d", 1);
    tooMany.append(QVariant(QStringLiteral("a title")));
    auto signedProcess = arguments(true, "a", "b", "c", "d", 1);
    signedProcess[5] = QVariant(1);
    auto numberForText = arguments(true, "a", "b", "c", "d", 1);
    numberForText[2] = QVariant::fromValue(7u);
    auto textForFlag = arguments(true, "a", "b", "c", "d", 1);
    textForFlag[0] = QVariant(QStringLiteral("true"));
    for (const auto& malformed :
         {QVariantList{}, tooFew, tooMany, signedProcess, numberForText, textForFlag}) {
        EXPECT_FALSE(parseFocusReport(malformed)) << malformed.size();
    }
}

TEST(FocusedApplication, ReadsTheProcessNameOnlyWhenTheWindowCarriesNoOtherName) {
    const auto entries = linux_desktop::DesktopEntryIndex::fromEntries(
        {{"org.gnome.gedit", "Text Editor", "", false}});
    std::vector<std::uint32_t> asked;
    const ProcessNameReader reader = [&](std::uint32_t process) {
        asked.push_back(process);
        return std::string(process == 77 ? "org.gnome.gedit" : "");
    };
    struct Case {
        FocusReport report;
        std::optional<std::string> identity;
        std::vector<std::uint32_t> asked;
    };
    const Case cases[] = {
        {{true, "", "", "", "", 77}, "org.gnome.gedit", {77}},
        {{true, "", "", "", "", 78}, std::nullopt, {78}},
        {{true, "", "", "", "", 0}, std::nullopt, {}},
        {{true, "", "xterm", "", "", 77}, "xterm", {}},
        {{true, "", "", "", "org.gnome.gedit", 77}, "org.gnome.gedit", {}},
        {{false, "org.gnome.gedit", "", "", "", 77}, std::nullopt, {}},
    };
    for (const auto& each : cases) {
        asked.clear();
        const auto application = focusedApplication(each.report, entries, reader);
        EXPECT_EQ(application ? std::optional(application->bundleIdentifier) : std::nullopt,
                  each.identity)
            << each.report.wmClass << "/" << each.report.processId;
        EXPECT_EQ(asked, each.asked);
    }
}

}  // namespace
}  // namespace lumenote::platform::gnome
