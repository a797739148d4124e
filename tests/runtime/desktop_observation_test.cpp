// The desktop observers picking up a backend that comes after start-up, over
// a private session bus with the Python stand-ins of the GNOME Shell
// extension, Mutter's idle monitor and KWin: the extension enabled in the
// middle of a session, and a KWin that takes its name before it answers.
#include "runtime/desktop_observation.hpp"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>

#include <algorithm>
#include <fstream>
#include <map>

#include "platform/gnome/gnome_test_bus.hpp"
#include "platform/system/system_clocks.hpp"

namespace lumenote::runtime {
namespace {

namespace observation = platform::observation;
using lumenote::testing::ChildProcess;
using lumenote::testing::GnomeTestBus;
using lumenote::testing::waitUntil;

class DesktopObservationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(bus_.ready());
        char folder[] = "/tmp/lumenote-observation-XXXXXX";
        folder_ = ::mkdtemp(folder);
        // A Wayland session whose compositor socket is missing: the
        // desktop's helpers on the bus are all there is to observe with.
        variables_ = {{"XDG_SESSION_TYPE", "wayland"},
                      {"WAYLAND_DISPLAY", "no-compositor-here"},
                      {"XDG_RUNTIME_DIR", folder_.string()},
                      {"XDG_DATA_HOME", (folder_ / "data").string()},
                      {"XDG_DATA_DIRS", (folder_ / "data").string()}};
        std::filesystem::create_directories(folder_ / "data/applications");
        std::ofstream(folder_ / "data/applications/org.gnome.Nautilus.desktop")
            << "[Desktop Entry]\nType=Application\nName=Files\nExec=nautilus\n";
    }

    void TearDown() override {
        desktop_.reset();
        kwin_.reset();
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }

    void openOn(const char* desktop) {
        variables_["XDG_CURRENT_DESKTOP"] = desktop;
        desktop_ = DesktopObservation::open({[this](const char* name) -> const char* {
                                                 const auto found = variables_.find(name);
                                                 return found == variables_.end()
                                                            ? nullptr
                                                            : found->second.c_str();
                                             },
                                             bus_.bus(), monotonicClock_, wallClock_});
        desktop_->setActivationHandler([this] { ++activations_; });
    }

    // The stand-in KWin; waits until it owns org.kde.KWin.
    void startKWin(const std::vector<std::string>& options) {
        std::vector<std::string> command{"/usr/bin/python3",
                                         LUMENOTE_SOURCE_DIR "/tests/platform/kde/fake_kwin.py"};
        command.insert(command.end(), options.begin(), options.end());
        kwin_ = std::make_unique<ChildProcess>(
            command, std::vector<std::string>{"DBUS_SESSION_BUS_ADDRESS=" + bus_.address()},
            folder_ / "kwin.log");
        ASSERT_TRUE(waitUntil([this] {
            return bus_.bus().interface()->isServiceRegistered(QStringLiteral("org.kde.KWin"));
        }));
    }

    observation::ObservationHealth health() const { return desktop_->health(); }

    static bool lacks(const observation::ObservationHealth& health,
                      observation::MissingPiece piece) {
        return std::count(health.choice.missing.begin(), health.choice.missing.end(), piece) == 1;
    }

    GnomeTestBus bus_;
    std::filesystem::path folder_;
    std::map<std::string, std::string, std::less<>> variables_;
    platform::system::SystemMonotonicTimeProvider monotonicClock_;
    platform::system::SystemWallClock wallClock_;
    std::unique_ptr<ChildProcess> kwin_;
    std::unique_ptr<DesktopObservation> desktop_;
    int activations_ = 0;
};

TEST_F(DesktopObservationTest, TheGnomeExtensionEnabledDuringASessionIsPickedUp) {
    openOn("ubuntu:GNOME");
    // The recorder keeps these from the start.
    recording::FrontmostApplicationSource& frontmost = desktop_->frontmost();
    recording::IdleTimeProvider& idle = desktop_->idle();
    EXPECT_EQ(frontmost.frontmostApplication(), std::nullopt);
    ASSERT_EQ(health().frontmost, observation::FrontmostBackend::none);
    EXPECT_TRUE(lacks(health(), observation::MissingPiece::gnomeShellExtensionNotRunning));
    EXPECT_FALSE(observation::frontmostWarning(health()).empty());

    ASSERT_FALSE(bus_.startService({"--extension", "--focus",
                                    "true,org.gnome.Nautilus,nautilus,nautilus,,42"})
                     .empty());
    ASSERT_TRUE(waitUntil([this] { return observation::frontmostObservable(health()); }));
    EXPECT_EQ(health().frontmost, observation::FrontmostBackend::gnomeShellExtension);
    EXPECT_FALSE(lacks(health(), observation::MissingPiece::gnomeShellExtensionNotRunning));
    EXPECT_EQ(observation::frontmostWarning(health()), "");
    EXPECT_GE(activations_, 1);
    EXPECT_TRUE(desktop_->takeActivation());
    const auto application = frontmost.frontmostApplication();
    ASSERT_TRUE(application);
    // Named by the desktop entries of the session's data folders.
    EXPECT_EQ(application->bundleIdentifier, "org.gnome.Nautilus");
    EXPECT_EQ(application->localizedName, "Files");

    // Idle time has its own service: it stays missing until that comes too,
    // and the extension that observes is kept as it is.
    EXPECT_EQ(health().idle, observation::IdleBackend::none);
    EXPECT_TRUE(lacks(health(), observation::MissingPiece::idleProtocolUnavailable) ||
                !health().openFailures.empty());
    const int before = activations_;
    ASSERT_FALSE(bus_.startService({"--idle-monitor"}).empty());
    ASSERT_TRUE(waitUntil([this] { return health().idle != observation::IdleBackend::none; }));
    EXPECT_EQ(health().idle, observation::IdleBackend::gnomeIdleMonitor);
    EXPECT_EQ(health().frontmost, observation::FrontmostBackend::gnomeShellExtension);
    EXPECT_EQ(idle.idleSeconds(), 0.0);
    EXPECT_EQ(activations_, before);
}

TEST_F(DesktopObservationTest, AKWinThatAnswersOnlyAfterTakingItsNameIsTriedAgain) {
    openOn("KDE");
    ASSERT_EQ(health().frontmost, observation::FrontmostBackend::none);
    EXPECT_TRUE(lacks(health(), observation::MissingPiece::kwinNotOnSessionBus));

    // A starting KWin: its name comes first, /Scripting a moment later, so
    // the first load is refused and a later try succeeds.
    startKWin({"--scripting-after-ms", "700"});
    ASSERT_TRUE(waitUntil(
        [this] { return health().frontmost == observation::FrontmostBackend::kwinScript; }));
    const auto observing = health();
    EXPECT_FALSE(lacks(observing, observation::MissingPiece::kwinNotOnSessionBus));
    EXPECT_TRUE(std::none_of(
        observing.openFailures.begin(), observing.openFailures.end(),
        [](const std::string& failure) { return failure.find("KWin") != std::string::npos; }));
    EXPECT_GE(activations_, 1);
}

TEST_F(DesktopObservationTest, AKWinAlreadyThereButNotYetAnsweringIsTriedAgain) {
    startKWin({"--scripting-after-ms", "700"});
    openOn("KDE");
    ASSERT_EQ(health().frontmost, observation::FrontmostBackend::none);
    ASSERT_EQ(health().openFailures.size(), 2u);  // the compositor socket and KWin's refusal

    ASSERT_TRUE(waitUntil(
        [this] { return health().frontmost == observation::FrontmostBackend::kwinScript; }));
    EXPECT_EQ(health().openFailures.size(), 1u);
}

}  // namespace
}  // namespace lumenote::runtime
