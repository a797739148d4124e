// The frontmost application from the extension, against a private bus with
// the Python stand-in of the extension: identities, activations, the
// extension vanishing and coming back, signals from others, failures.
#include "platform/gnome/gnome_shell_frontmost_application.hpp"

#include <gtest/gtest.h>

#include <QDBusMessage>

#include "gnome_test_bus.hpp"

namespace lumenote::platform::gnome {
namespace {

using namespace std::chrono_literals;
using testing::GnomeTestBus;
using testing::waitUntil;

linux_desktop::DesktopEntryIndex testEntries() {
    return linux_desktop::DesktopEntryIndex::fromEntries({
        {"org.gnome.Nautilus", "Files", "", false},
        {"org.example.Notes", "Ünïcode Notes", "", false},
        {"study-alpha", "Alpha Study", "StudyAlpha", false},
    });
}

std::string processNameOf(std::uint32_t) {
    return "";
}

// The stand-in's focus report, given as its --focus argument.
std::string focusArgument(const FocusReport& report) {
    return std::string(report.hasWindow ? "true" : "false") + "," + report.appId + "," +
           report.wmClass + "," + report.wmClassInstance + "," + report.sandboxedAppId + "," +
           std::to_string(report.processId);
}

class GnomeShellFrontmostTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(bus_.ready()); }

    std::string startExtension(const FocusReport& focus = {},
                               const std::string& behaviour = "normal") {
        return bus_.startService(
            {"--extension", "--behaviour", behaviour, "--focus", focusArgument(focus)});
    }

    std::unique_ptr<GnomeShellFrontmostApplicationSource> openSource() {
        auto source =
            GnomeShellFrontmostApplicationSource::open(bus_.bus(), testEntries(), processNameOf);
        EXPECT_TRUE(source) << (source ? "" : describe(source.error()));
        if (!source) {
            return nullptr;
        }
        auto opened = std::move(source.value());
        opened->setActivationHandler([this] { ++activations_; });
        return opened;
    }

    // Sets the focus through `service`'s control interface (the stand-in
    // emits the change signal).
    void setFocus(const std::string& service, const FocusReport& report) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QString::fromStdString(service), QString::fromLatin1(kExtensionObjectPath),
            QStringLiteral("test.FakeGnomeShell.Control"), QStringLiteral("SetFocus"));
        call << report.hasWindow << QString::fromStdString(report.appId)
             << QString::fromStdString(report.wmClass)
             << QString::fromStdString(report.wmClassInstance)
             << QString::fromStdString(report.sandboxedAppId)
             << QVariant::fromValue(report.processId);
        const auto reply = bus_.bus().call(call, QDBus::Block, 5000);
        ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    }

    static std::optional<std::string> identity(GnomeShellFrontmostApplicationSource& source) {
        const auto application = source.frontmostApplication();
        return application ? std::optional(application->bundleIdentifier) : std::nullopt;
    }

    GnomeTestBus bus_;
    int activations_ = 0;
};

TEST_F(GnomeShellFrontmostTest, EachFocusChangeIsAnnouncedAndResolvedLikeOtherObservers) {
    const auto extension = startExtension();
    ASSERT_FALSE(extension.empty());
    auto source = openSource();
    ASSERT_TRUE(source);
    EXPECT_TRUE(source->observing());
    EXPECT_EQ(source->frontmostApplication(), std::nullopt);

    struct Case {
        const char* what;
        FocusReport report;
        recording::FrontmostApplication expected;
    };
    const Case cases[] = {
        {"a desktop entry named by the app id",
         {true, "org.gnome.Nautilus", "org.gnome.Nautilus", "org.gnome.Nautilus", "", 10},
         {"Files", "org.gnome.Nautilus"}},
        {"a browser known by its WM class alone",
         {true, "", "firefox-esr", "Navigator", "", 11},
         {"Firefox", "org.mozilla.firefox"}},
        {"a Flatpak application known by its sandboxed app id",
         {true, "", "notes", "notes", "org.example.Notes", 12},
         {"Ünïcode Notes", "org.example.Notes"}},
        {"a window with no app id, matched by StartupWMClass",
         {true, "", "StudyAlpha", "studyalpha", "", 13},
         {"Alpha Study", "study-alpha"}},
        {"a window nothing on this computer describes",
         {true, "", "LumenoteBeta", "lumenotebeta", "", 14},
         {"LumenoteBeta", "LumenoteBeta"}},
    };
    for (const auto& each : cases) {
        const int before = activations_;
        setFocus(extension, each.report);
        ASSERT_TRUE(waitUntil([&] { return activations_ > before; })) << each.what;
        EXPECT_EQ(activations_, before + 1) << each.what;
        EXPECT_EQ(source->frontmostApplication(), std::optional(each.expected)) << each.what;
    }

    const int before = activations_;
    setFocus(extension, FocusReport{});
    ASSERT_TRUE(waitUntil([&] { return activations_ > before; }));
    EXPECT_EQ(source->frontmostApplication(), std::nullopt);
    EXPECT_TRUE(source->observing());
}

TEST_F(GnomeShellFrontmostTest, AnUnchangedReportIsNotAnnouncedAgain) {
    const FocusReport notes{true, "org.example.Notes", "notes", "notes", "", 5};
    const FocusReport files{true, "org.gnome.Nautilus", "nautilus", "nautilus", "", 6};
    const auto extension = startExtension(notes);
    auto source = openSource();
    ASSERT_TRUE(source);
    EXPECT_EQ(identity(*source), "org.example.Notes");

    setFocus(extension, notes);
    setFocus(extension, files);
    ASSERT_TRUE(waitUntil([&] { return identity(*source) == "org.gnome.Nautilus"; }));
    EXPECT_EQ(activations_, 1);
}

TEST_F(GnomeShellFrontmostTest, TheExtensionVanishingAndComingBackIsFollowedAndAskedAgain) {
    const FocusReport notes{true, "org.example.Notes", "notes", "notes", "", 5};
    const FocusReport files{true, "org.gnome.Nautilus", "nautilus", "nautilus", "", 6};
    auto extension = startExtension(notes);
    auto source = openSource();
    ASSERT_TRUE(source);
    ASSERT_EQ(identity(*source), "org.example.Notes");

    bus_.stopService(extension);
    ASSERT_TRUE(waitUntil([&] { return !source->observing(); }));
    EXPECT_EQ(source->frontmostApplication(), std::nullopt);
    EXPECT_EQ(activations_, 1);

    // The shell restarted with another window focused: no signal comes, the
    // answer to the question asked on its return tells.
    extension = startExtension(files);
    ASSERT_FALSE(extension.empty());
    ASSERT_TRUE(waitUntil([&] { return source->observing(); }));
    EXPECT_EQ(identity(*source), "org.gnome.Nautilus");
    EXPECT_EQ(activations_, 2);

    // And its signals are heard again.
    setFocus(extension, notes);
    ASSERT_TRUE(waitUntil([&] { return identity(*source) == "org.example.Notes"; }));
}

TEST_F(GnomeShellFrontmostTest, SignalsFromAnyoneButTheNamesOwnerAndMalformedOnesAreIgnored) {
    const FocusReport notes{true, "org.example.Notes", "notes", "notes", "", 5};
    const FocusReport files{true, "org.gnome.Nautilus", "nautilus", "nautilus", "", 6};
    const auto extension = startExtension(notes);
    const auto impostor = bus_.startService({"--impostor"});
    ASSERT_FALSE(impostor.empty());
    auto source = openSource();
    ASSERT_TRUE(source);

    setFocus(impostor, files);
    QDBusMessage malformed = QDBusMessage::createMethodCall(
        QString::fromStdString(extension), QString::fromLatin1(kExtensionObjectPath),
        QStringLiteral("test.FakeGnomeShell.Control"), QStringLiteral("EmitMalformed"));
    ASSERT_EQ(bus_.bus().call(malformed, QDBus::Block, 5000).type(), QDBusMessage::ReplyMessage);
    // The owner's next signal comes after both on the bus: once it is heard,
    // the earlier ones would have been too.
    const FocusReport marker{true, "", "Marker", "marker", "", 9};
    setFocus(extension, marker);
    ASSERT_TRUE(waitUntil([&] { return identity(*source) == "Marker"; }));
    EXPECT_EQ(activations_, 1);
    EXPECT_TRUE(source->observing());
}

TEST_F(GnomeShellFrontmostTest, OpeningFailsWithTheReasonWhenTheExtensionCannotBeAsked) {
    auto absent = GnomeShellFrontmostApplicationSource::open(bus_.bus(), {}, processNameOf);
    ASSERT_FALSE(absent);
    EXPECT_EQ(absent.error(), GnomeShellError::extensionNotRunning);

    const auto wrong = startExtension({}, "wrong-reply");
    ASSERT_FALSE(wrong.empty());
    auto malformed = GnomeShellFrontmostApplicationSource::open(bus_.bus(), {}, processNameOf);
    ASSERT_FALSE(malformed);
    EXPECT_EQ(malformed.error(), GnomeShellError::extensionNotAnswering);
    bus_.stopService(wrong);

    ASSERT_FALSE(startExtension({}, "slow").empty());
    const auto started = std::chrono::steady_clock::now();
    auto slow = GnomeShellFrontmostApplicationSource::open(bus_.bus(), {}, processNameOf, 100ms);
    const auto waited = std::chrono::steady_clock::now() - started;
    ASSERT_FALSE(slow);
    EXPECT_EQ(slow.error(), GnomeShellError::extensionNotAnswering);
    EXPECT_LT(waited, 1500ms);

    auto disconnected = GnomeShellFrontmostApplicationSource::open(
        QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"),
                                      QStringLiteral("gnome-test-nowhere")),
        {}, processNameOf);
    QDBusConnection::disconnectFromBus(QStringLiteral("gnome-test-nowhere"));
    ASSERT_FALSE(disconnected);
    EXPECT_EQ(disconnected.error(), GnomeShellError::noSessionBus);
}

}  // namespace
}  // namespace lumenote::platform::gnome
