#include "platform/observation/observation_backends.hpp"

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace lumenote::platform::observation {
namespace {

using Globals = std::vector<std::string>;
using Names = std::vector<std::string>;
using Missing = std::vector<MissingPiece>;
using F = FrontmostBackend;
using I = IdleBackend;
using M = MissingPiece;

// Globals as the compositors advertise them (the sway, GNOME Shell and KWin
// lists were read from the Debian 12 packages running headless).
const Globals kSwayDebian12{"wl_compositor", "wl_seat", "org_kde_kwin_idle",
                            "zwp_idle_inhibit_manager_v1", "zwlr_foreign_toplevel_manager_v1"};
const Globals kSwayCurrent{"wl_compositor", "wl_seat", "ext_idle_notifier_v1", "org_kde_kwin_idle",
                           "zwlr_foreign_toplevel_manager_v1"};
const Globals kHyprland{"wl_compositor", "wl_seat", "ext_idle_notifier_v1",
                        "zwlr_foreign_toplevel_manager_v1"};
const Globals kGnomeShell{"wl_compositor", "wl_seat", "zwp_idle_inhibit_manager_v1"};
const Globals kKwin527{"wl_compositor", "wl_seat", "org_kde_kwin_idle", "ext_idle_notifier_v1",
                       "zwp_idle_inhibit_manager_v1"};
const Globals kKwinOlder{"wl_compositor", "wl_seat", "org_kde_kwin_idle"};

const std::string kExtension(kGnomeShellExtensionBusName);

struct ChoiceCase {
    const char* label;
    // XDG_SESSION_TYPE, WAYLAND_DISPLAY, DISPLAY, XDG_CURRENT_DESKTOP; nullptr: unset.
    const char* sessionType;
    const char* waylandDisplay;
    const char* display;
    const char* currentDesktop;
    Globals globals;
    Names busNames;
    FrontmostBackend frontmost;
    IdleBackend idle;
    Missing missing;
};

void PrintTo(const ChoiceCase& test, std::ostream* stream) {
    *stream << test.label;
}

std::optional<std::string> optional(const char* value) {
    return value ? std::optional<std::string>(value) : std::nullopt;
}

class ChooseObservationBackendsTest : public testing::TestWithParam<ChoiceCase> {};

TEST_P(ChooseObservationBackendsTest, PicksTheBackendsAndSaysWhatIsMissing) {
    const ChoiceCase& test = GetParam();
    const SessionFacts facts{{optional(test.sessionType), optional(test.waylandDisplay),
                              optional(test.display), optional(test.currentDesktop)},
                             test.globals,
                             test.busNames};
    EXPECT_EQ(chooseObservationBackends(facts),
              (ObservationChoice{test.frontmost, test.idle, test.missing}));
}

INSTANTIATE_TEST_SUITE_P(
    Sessions, ChooseObservationBackendsTest,
    testing::Values(
        // X11 sessions.
        ChoiceCase{
            "X11 session", "x11", nullptr, ":0", "XFCE", {}, {}, F::x11, I::x11ScreenSaver, {}},
        ChoiceCase{"X11 started without a session type",
                   nullptr,
                   nullptr,
                   ":1",
                   nullptr,
                   {},
                   {},
                   F::x11,
                   I::x11ScreenSaver,
                   {}},
        ChoiceCase{"GNOME on X11 ignores the extension",
                   "x11",
                   nullptr,
                   ":0",
                   "GNOME",
                   {},
                   {kExtension, "org.gnome.Mutter.IdleMonitor"},
                   F::x11,
                   I::x11ScreenSaver,
                   {}},
        ChoiceCase{"empty WAYLAND_DISPLAY counts as unset",
                   "x11",
                   "",
                   ":0",
                   nullptr,
                   kSwayDebian12,
                   {},
                   F::x11,
                   I::x11ScreenSaver,
                   {}},
        // A Wayland session seen through Xwayland only.
        ChoiceCase{"Xwayland only: WAYLAND_DISPLAY removed",
                   "wayland",
                   nullptr,
                   ":0",
                   "sway",
                   {},
                   {},
                   F::none,
                   I::none,
                   {M::waylandDisplayUnset}},
        ChoiceCase{"Xwayland only: session type in capitals",
                   "WAYLAND",
                   "",
                   ":0",
                   "GNOME",
                   {},
                   {kExtension},
                   F::none,
                   I::none,
                   {M::waylandDisplayUnset}},
        ChoiceCase{"Wayland session type and no display at all",
                   "wayland",
                   nullptr,
                   nullptr,
                   "sway",
                   {},
                   {},
                   F::none,
                   I::none,
                   {M::noDisplay}},
        // wlroots compositors.
        ChoiceCase{"sway of Debian 12: the KDE idle protocol only",
                   "wayland",
                   "wayland-1",
                   ":0",
                   "sway",
                   kSwayDebian12,
                   {},
                   F::wlrootsForeignToplevel,
                   I::kdeIdle,
                   {}},
        ChoiceCase{"newer sway: ext idle notification preferred",
                   "wayland",
                   "wayland-1",
                   ":0",
                   "sway",
                   kSwayCurrent,
                   {},
                   F::wlrootsForeignToplevel,
                   I::extIdleNotify,
                   {}},
        ChoiceCase{"sway without the foreign-toplevel global",
                   "wayland",
                   "wayland-1",
                   nullptr,
                   "sway",
                   Globals{"wl_seat", "ext_idle_notifier_v1"},
                   {},
                   F::none,
                   I::extIdleNotify,
                   {M::foreignToplevelUnavailable}},
        ChoiceCase{"Hyprland",
                   "wayland",
                   "wayland-1",
                   ":1",
                   "Hyprland",
                   kHyprland,
                   {},
                   F::wlrootsForeignToplevel,
                   I::extIdleNotify,
                   {}},
        ChoiceCase{"Hyprland without toplevel or idle globals",
                   "wayland",
                   "wayland-1",
                   ":1",
                   "Hyprland",
                   Globals{"wl_compositor", "wl_seat"},
                   {},
                   F::none,
                   I::none,
                   {M::foreignToplevelUnavailable, M::idleProtocolUnavailable}},
        ChoiceCase{"idle globals without a seat",
                   "wayland",
                   "wayland-1",
                   nullptr,
                   "sway",
                   Globals{"zwlr_foreign_toplevel_manager_v1", "ext_idle_notifier_v1",
                           "org_kde_kwin_idle"},
                   {},
                   F::wlrootsForeignToplevel,
                   I::none,
                   {M::idleProtocolUnavailable}},
        ChoiceCase{"globals named on the bus instead do not count",
                   "wayland",
                   "wayland-1",
                   nullptr,
                   "sway",
                   Globals{"wl_seat"},
                   {"zwlr_foreign_toplevel_manager_v1", "ext_idle_notifier_v1"},
                   F::none,
                   I::none,
                   {M::foreignToplevelUnavailable, M::idleProtocolUnavailable}},
        // GNOME.
        ChoiceCase{"GNOME with the extension",
                   "wayland",
                   "wayland-0",
                   ":0",
                   "GNOME",
                   kGnomeShell,
                   {"org.gnome.Shell", kExtension, "org.gnome.Mutter.IdleMonitor"},
                   F::gnomeShellExtension,
                   I::gnomeIdleMonitor,
                   {}},
        ChoiceCase{"GNOME without the extension",
                   "wayland",
                   "wayland-0",
                   ":0",
                   "GNOME",
                   kGnomeShell,
                   {"org.gnome.Shell", "org.gnome.Mutter.IdleMonitor"},
                   F::none,
                   I::gnomeIdleMonitor,
                   {M::gnomeShellExtensionNotRunning}},
        ChoiceCase{"GNOME: a longer name that starts like the extension's",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "GNOME",
                   kGnomeShell,
                   {kExtension + ".Other", "org.gnome.Mutter.IdleMonitor"},
                   F::none,
                   I::gnomeIdleMonitor,
                   {M::gnomeShellExtensionNotRunning}},
        ChoiceCase{"Ubuntu's GNOME, in lower case after another desktop",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "ubuntu:gnome",
                   kGnomeShell,
                   {kExtension, "org.gnome.Mutter.IdleMonitor"},
                   F::gnomeShellExtension,
                   I::gnomeIdleMonitor,
                   {}},
        ChoiceCase{"GNOME Classic",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "GNOME-Classic:GNOME",
                   kGnomeShell,
                   {kExtension, "org.gnome.Mutter.IdleMonitor"},
                   F::gnomeShellExtension,
                   I::gnomeIdleMonitor,
                   {}},
        ChoiceCase{"GNOME without a session bus",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "GNOME",
                   kGnomeShell,
                   {},
                   F::none,
                   I::none,
                   {M::gnomeShellExtensionNotRunning, M::idleProtocolUnavailable}},
        ChoiceCase{"a desktop whose name only starts with GNOME is not GNOME",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "GNOMEish",
                   kGnomeShell,
                   {kExtension, "org.gnome.Mutter.IdleMonitor"},
                   F::none,
                   I::none,
                   {M::foreignToplevelUnavailable, M::idleProtocolUnavailable}},
        // KDE Plasma.
        ChoiceCase{"KDE Plasma 5.27",
                   "wayland",
                   "wayland-0",
                   ":1",
                   "KDE",
                   kKwin527,
                   {"org.kde.KWin", "org.kde.plasmashell"},
                   F::kwinScript,
                   I::extIdleNotify,
                   {}},
        ChoiceCase{"KDE Plasma 5 before the ext idle protocol",
                   "wayland",
                   "wayland-0",
                   ":1",
                   "KDE",
                   kKwinOlder,
                   {"org.kde.KWin"},
                   F::kwinScript,
                   I::kdeIdle,
                   {}},
        ChoiceCase{"KDE Plasma 6",
                   "wayland",
                   "wayland-0",
                   ":1",
                   "KDE",
                   kKwin527,
                   {"org.kde.KWin"},
                   F::kwinScript,
                   I::extIdleNotify,
                   {}},
        ChoiceCase{"KDE without an idle protocol: the screen locker's count",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "KDE",
                   Globals{"wl_compositor", "wl_seat"},
                   {"org.kde.KWin", "org.freedesktop.ScreenSaver"},
                   F::kwinScript,
                   I::kdeScreenSaver,
                   {}},
        ChoiceCase{"the screen locker's count is KDE's only",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "sway",
                   Globals{"wl_compositor", "wl_seat", "zwlr_foreign_toplevel_manager_v1"},
                   {"org.freedesktop.ScreenSaver"},
                   F::wlrootsForeignToplevel,
                   I::none,
                   {M::idleProtocolUnavailable}},
        ChoiceCase{"KDE without KWin on the session bus",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "KDE",
                   kKwin527,
                   {"org.kde.plasmashell"},
                   F::none,
                   I::extIdleNotify,
                   {M::kwinNotOnSessionBus}},
        // Other and unknown desktops, missing variables.
        ChoiceCase{"labwc: unknown name, foreign-toplevel global",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "labwc:wlroots",
                   kHyprland,
                   {},
                   F::wlrootsForeignToplevel,
                   I::extIdleNotify,
                   {}},
        ChoiceCase{"Weston: neither protocol",
                   "wayland",
                   "wayland-0",
                   nullptr,
                   "Weston",
                   Globals{"wl_compositor", "wl_seat"},
                   {"org.kde.KWin", kExtension},
                   F::none,
                   I::none,
                   {M::foreignToplevelUnavailable, M::idleProtocolUnavailable}},
        ChoiceCase{"WAYLAND_DISPLAY alone",
                   nullptr,
                   "wayland-1",
                   nullptr,
                   nullptr,
                   kSwayDebian12,
                   {},
                   F::wlrootsForeignToplevel,
                   I::kdeIdle,
                   {}},
        ChoiceCase{"nothing set",
                   nullptr,
                   nullptr,
                   nullptr,
                   nullptr,
                   {},
                   {},
                   F::none,
                   I::none,
                   {M::noDisplay}},
        ChoiceCase{"every variable empty",
                   "",
                   "",
                   "",
                   "",
                   kSwayCurrent,
                   {},
                   F::none,
                   I::none,
                   {M::noDisplay}},
        ChoiceCase{"a console session",
                   "tty",
                   nullptr,
                   nullptr,
                   nullptr,
                   {},
                   {},
                   F::none,
                   I::none,
                   {M::noDisplay}}));

TEST(SessionEnvironmentTest, ReadsTheFourVariablesAndKeepsUnsetApartFromEmpty) {
    const std::map<std::string, std::string> variables{{"XDG_SESSION_TYPE", "wayland"},
                                                       {"WAYLAND_DISPLAY", "wayland-1"},
                                                       {"DISPLAY", ""},
                                                       {"HOME", "/home/student"}};
    const auto environment = SessionEnvironment::fromEnvironment([&](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    });
    EXPECT_EQ(environment.sessionType, "wayland");
    EXPECT_EQ(environment.waylandDisplay, "wayland-1");
    EXPECT_EQ(environment.display, "");
    EXPECT_EQ(environment.currentDesktop, std::nullopt);
}

// The recorder watches exactly these names to fill a gap later: each must
// turn a backend that is none into one that reports over the bus, and a
// name outside the list must change nothing.
TEST(BusNamesTheChoiceReadsTest, EachNameFillsAGapWithABackendThatReportsOverTheBus) {
    for (const char* desktop : {"GNOME", "KDE"}) {
        const SessionFacts bare{{"wayland", "wayland-0", std::nullopt, desktop}, {"wl_seat"}, {}};
        const auto before = chooseObservationBackends(bare);
        int filled = 0;
        for (const std::string_view name : kBusNamesTheChoiceReads) {
            SessionFacts facts = bare;
            facts.sessionBusNames = {std::string(name)};
            const auto after = chooseObservationBackends(facts);
            if (after.frontmost != before.frontmost) {
                EXPECT_TRUE(reportsOverSessionBus(after.frontmost)) << desktop << " " << name;
                ++filled;
            }
            if (after.idle != before.idle) {
                EXPECT_TRUE(reportsOverSessionBus(after.idle)) << desktop << " " << name;
                ++filled;
            }
        }
        EXPECT_EQ(filled, 2) << desktop;
        SessionFacts unrelated = bare;
        unrelated.sessionBusNames = {"org.freedesktop.Notifications", "org.gnome.Shell"};
        EXPECT_EQ(chooseObservationBackends(unrelated), before) << desktop;
    }
    for (const auto backend : {F::x11, F::wlrootsForeignToplevel, F::none}) {
        EXPECT_FALSE(reportsOverSessionBus(backend)) << backendName(backend);
    }
    for (const auto backend : {I::x11ScreenSaver, I::extIdleNotify, I::kdeIdle, I::none}) {
        EXPECT_FALSE(reportsOverSessionBus(backend)) << backendName(backend);
    }
}

TEST(MissingPieceTest, EachPieceHasItsOwnSentence) {
    const std::vector<MissingPiece> pieces{M::noDisplay,
                                           M::waylandDisplayUnset,
                                           M::foreignToplevelUnavailable,
                                           M::gnomeShellExtensionNotRunning,
                                           M::kwinNotOnSessionBus,
                                           M::idleProtocolUnavailable};
    std::set<std::string_view> sentences;
    for (const auto piece : pieces) {
        const auto sentence = describe(piece);
        EXPECT_FALSE(sentence.empty());
        EXPECT_EQ(sentence.back(), '.');
        sentences.insert(sentence);
    }
    EXPECT_EQ(sentences.size(), pieces.size());
}

}  // namespace
}  // namespace lumenote::platform::observation
