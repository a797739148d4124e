#include "platform/observation/observation_health.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumenote::platform::observation {
namespace {

using F = FrontmostBackend;
using I = IdleBackend;
using M = MissingPiece;

ObservationHealth working(F frontmost, I idle) {
    ObservationHealth health;
    health.choice = {frontmost, idle, {}};
    health.frontmost = frontmost;
    health.idle = idle;
    health.frontmostReporting = true;
    return health;
}

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

TEST(ObservationHealthTest, AWorkingDesktopHasNoGapAndNoWarning) {
    for (const auto& [frontmost, idle] :
         {std::pair{F::x11, I::x11ScreenSaver}, std::pair{F::wlrootsForeignToplevel, I::kdeIdle},
          std::pair{F::gnomeShellExtension, I::gnomeIdleMonitor},
          std::pair{F::kwinScript, I::extIdleNotify}}) {
        const auto health = working(frontmost, idle);
        const auto lines = healthLines(health, LocalCalendar::utc());
        ASSERT_EQ(lines.size(), 2u) << backendName(frontmost);
        EXPECT_TRUE(lines[0].ok && lines[1].ok) << backendName(frontmost);
        EXPECT_TRUE(contains(lines[0].text, displayName(frontmost))) << lines[0].text;
        EXPECT_TRUE(contains(lines[1].text, displayName(idle))) << lines[1].text;
        EXPECT_EQ(frontmostWarning(health), "");
        EXPECT_TRUE(startWarnings(health).empty());
    }
}

TEST(ObservationHealthTest, TheLastActivationIsShownInTheCalendarsZone) {
    auto health = working(F::wlrootsForeignToplevel, I::extIdleNotify);
    // 2026-11-26 10:04:12 UTC.
    health.lastActivation = Date::fromUnixSeconds(1795687452.6);
    const auto lines = healthLines(health, LocalCalendar::utc());
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2], (HealthLine{true,
                                    "The application in front last changed at "
                                    "2026-11-26 10:04:12."}));
}

TEST(ObservationHealthTest, AMissingPieceIsAGapWithItsFixAndTheWarningNamesIt) {
    ObservationHealth health;
    health.choice = {F::none, I::gnomeIdleMonitor, {M::gnomeShellExtensionNotRunning}};
    health.idle = I::gnomeIdleMonitor;
    const auto lines = healthLines(health, LocalCalendar::utc());
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_FALSE(lines[0].ok);
    EXPECT_TRUE(lines[1].ok);
    EXPECT_EQ(lines[2],
              (HealthLine{false, std::string(describe(M::gnomeShellExtensionNotRunning))}));
    const std::string warning = frontmostWarning(health);
    EXPECT_TRUE(contains(warning, "\"Unknown application\"")) << warning;
    EXPECT_TRUE(contains(warning, describe(M::gnomeShellExtensionNotRunning))) << warning;
    // Said once at start, not again as a separate sentence.
    EXPECT_EQ(startWarnings(health), std::vector<std::string>{warning});
}

TEST(ObservationHealthTest, AnIdleGapAloneDoesNotWarnAboutTheApplicationInFront) {
    auto health = working(F::wlrootsForeignToplevel, I::none);
    health.choice.missing = {M::idleProtocolUnavailable};
    EXPECT_EQ(frontmostWarning(health), "");
    EXPECT_EQ(startWarnings(health),
              std::vector<std::string>{std::string(describe(M::idleProtocolUnavailable))});
    const auto lines = healthLines(health, LocalCalendar::utc());
    EXPECT_TRUE(lines[0].ok);
    EXPECT_FALSE(lines[1].ok);
}

TEST(ObservationHealthTest, ABackendThatCouldNotBeOpenedExplainsWhyOnce) {
    ObservationHealth health;
    health.choice = {F::wlrootsForeignToplevel, I::extIdleNotify, {}};
    health.idle = I::extIdleNotify;
    health.openFailures = {"The compositor does not answer."};
    const std::string warning = frontmostWarning(health);
    EXPECT_TRUE(contains(warning, "The compositor does not answer.")) << warning;
    EXPECT_EQ(startWarnings(health).size(), 1u);
    EXPECT_FALSE(healthLines(health, LocalCalendar::utc()).back().ok);
}

TEST(ObservationHealthTest, ASilentDesktopHelperAndALostDisplayAreNotObservable) {
    auto silent = working(F::kwinScript, I::kdeIdle);
    silent.frontmostReporting = false;
    EXPECT_FALSE(frontmostObservable(silent));
    EXPECT_TRUE(contains(frontmostWarning(silent), "Lumenote's KWin script stopped reporting"))
        << frontmostWarning(silent);
    EXPECT_TRUE(contains(healthLines(silent, LocalCalendar::utc())[0].text, "does not report now"));

    auto lost = working(F::x11, I::x11ScreenSaver);
    lost.frontmostReporting = false;
    EXPECT_TRUE(
        contains(healthLines(lost, LocalCalendar::utc())[0].text, "connection to the display"));
    EXPECT_TRUE(contains(frontmostWarning(lost), "\"Unknown application\""));
}

}  // namespace
}  // namespace lumenote::platform::observation
