// The KWin script observer against a stand-in KWin on a private bus: the
// order of the scripting calls on Plasma 5 and 6, a stale script, the
// identities of reported windows, calls from anyone but KWin, KWin going
// away and coming back, the unload on destruction and refusals.
#include "platform/kde/kwin_script_frontmost_application.hpp"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include "platform/kde/private_session_bus.hpp"

namespace lumenote::platform::kde {
namespace {

using recording::FrontmostApplication;
using testing::PrivateSessionBus;
using testing::waitUntil;

const QString kScriptPath = QStringLiteral("/run/user/1000/lumenote/kwin/lumenote-activation.js");

linux_desktop::DesktopEntryIndex entries() {
    return linux_desktop::DesktopEntryIndex::fromEntries({
        {"org.kde.kate", "Kate", "", false},
        {"study-notes", "Écrire Ünïcode", "StudyNotes", false},
    });
}

// Process 4242 is "studytool"; any other process has no readable name.
std::string processName(long processID) {
    return processID == 4242 ? "studytool" : "";
}

class KWinScriptObserver : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(bus_.ok()); }

    QProcess* startKWin(const QStringList& options = {}) {
        auto* kwin = bus_.startStandIn(options);
        EXPECT_NE(kwin, nullptr);
        return kwin;
    }

    Result<std::unique_ptr<KWinScriptFrontmostApplicationSource>, KWinScriptError> open() {
        return KWinScriptFrontmostApplicationSource::open(bus_.connection(), entries(), kScriptPath,
                                                          processName);
    }

    std::unique_ptr<KWinScriptFrontmostApplicationSource> openObserving() {
        auto source = open();
        EXPECT_TRUE(source.ok()) << (source.ok() ? "" : describe(source.error()));
        if (!source.ok()) {
            return nullptr;
        }
        EXPECT_TRUE(waitUntil([&] { return source.value()->observing(); }));
        return std::move(source).value();
    }

    void activate(const QString& resourceClass, const QString& resourceName,
                  const QString& desktopFileName, int pid) {
        bus_.control(QStringLiteral("Activate"),
                     {resourceClass, resourceName, desktopFileName, pid});
    }

    QStringList expectedLoad(const QString& runPath) const {
        return {
            QStringLiteral("isScriptLoaded:lumenote-activation"),
            QStringLiteral("loadScript:") + kScriptPath + QStringLiteral(":lumenote-activation"),
            QStringLiteral("run:") + runPath};
    }

    PrivateSessionBus bus_;
};

TEST_F(KWinScriptObserver, LoadsAndRunsTheScriptAtThePathOfEachPlasmaRelease) {
    struct Case {
        const char* plasma;
        const char* runPath;
    };
    for (const Case& testCase : {Case{"6", "/Scripting/Script0"}, Case{"5", "/0"}}) {
        auto* kwin = startKWin({QStringLiteral("--plasma"), QLatin1String(testCase.plasma)});
        auto source = openObserving();
        ASSERT_NE(source, nullptr);
        EXPECT_EQ(bus_.calls(), expectedLoad(QLatin1String(testCase.runPath)))
            << "Plasma " << testCase.plasma;
        // The stand-in has no active window at first: the script says so.
        EXPECT_EQ(source->frontmostApplication(), std::nullopt);
        source.reset();
        bus_.stop(kwin);
    }
}

TEST_F(KWinScriptObserver, AStaleScriptOfAnEarlierRunIsUnloadedFirst) {
    startKWin({QStringLiteral("--stale")});
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(bus_.calls(), (QStringList{QStringLiteral("isScriptLoaded:lumenote-activation"),
                                         QStringLiteral("unloadScript:lumenote-activation"),
                                         QStringLiteral("loadScript:") + kScriptPath +
                                             QStringLiteral(":lumenote-activation"),
                                         QStringLiteral("run:/Scripting/Script1")}));
}

TEST_F(KWinScriptObserver, EachReportedWindowIsNamedAsOnX11) {
    startKWin();
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    int activations = 0;
    source->setActivationHandler([&] { ++activations; });

    struct Case {
        const char* why;
        QString resourceClass, resourceName, desktopFileName;
        int pid;
        std::optional<FrontmostApplication> expected;
    };
    const Case cases[] = {
        {"a desktop file name", "kate", "kate", "org.kde.kate", 10,
         FrontmostApplication{"Kate", "org.kde.kate"}},
        {"a desktop file given as a path", "kate", "kate",
         "/usr/share/applications/org.kde.kate.desktop", 10,
         FrontmostApplication{"Kate", "org.kde.kate"}},
        {"a class named by StartupWMClass", "StudyNotes", "notes", "", 11,
         FrontmostApplication{"Écrire Ünïcode", "study-notes"}},
        {"a browser's class", "firefox-esr", "Navigator", "", 12,
         FrontmostApplication{"Firefox", "org.mozilla.firefox"}},
        {"a browser's desktop file", "google-chrome", "google-chrome", "google-chrome", 13,
         FrontmostApplication{"Google Chrome", "com.google.Chrome"}},
        {"an unknown class", "lumenotebeta", "lumenotebeta", "", 14,
         FrontmostApplication{"lumenotebeta", "lumenotebeta"}},
        {"only a process", "", "", "", 4242, FrontmostApplication{"studytool", "studytool"}},
        {"nothing to go by", "", "", "", 99, std::nullopt},
    };
    for (const Case& testCase : cases) {
        // Each case starts from another window, so that a report that does
        // not arrive cannot pass for one that did.
        activate(QStringLiteral("kate"), QStringLiteral("kate"), QStringLiteral("org.kde.kate"), 1);
        ASSERT_TRUE(waitUntil([&] {
            return source->frontmostApplication() == FrontmostApplication{"Kate", "org.kde.kate"};
        }));
        const int before = activations;
        activate(testCase.resourceClass, testCase.resourceName, testCase.desktopFileName,
                 testCase.pid);
        EXPECT_TRUE(waitUntil([&] { return activations > before; })) << testCase.why;
        EXPECT_EQ(source->frontmostApplication(), testCase.expected) << testCase.why;
    }

    bus_.control(QStringLiteral("Deactivate"));
    EXPECT_TRUE(waitUntil([&] { return !source->frontmostApplication().has_value(); }));
    EXPECT_TRUE(source->observing());
}

TEST_F(KWinScriptObserver, OnlyKWinItselfInItsOwnFormatIsHeard) {
    startKWin();
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    activate(QStringLiteral("kate"), QStringLiteral("kate"), QStringLiteral("org.kde.kate"), 1);
    ASSERT_TRUE(waitUntil([&] { return source->frontmostApplication().has_value(); }));

    // Another client of the bus claims a window is active.
    auto other = bus_.secondConnection();
    auto spoof = QDBusMessage::createMethodCall(
        QLatin1String(kObserverBusName), QLatin1String(kObserverPath),
        QLatin1String(kObserverInterface), QStringLiteral("WindowActivated"));
    spoof << QStringLiteral("firefox") << QStringLiteral("Navigator") << QStringLiteral("firefox")
          << 7;
    // Blocking from another connection would stall this thread's event loop,
    // so the reply is awaited asynchronously.
    auto pending = other.asyncCall(spoof, 5000);
    ASSERT_TRUE(waitUntil([&] { return pending.isFinished(); }));
    EXPECT_TRUE(pending.isError());

    // KWin itself calls with arguments of another shape.
    bus_.control(QStringLiteral("CallObserver"),
                 {QStringLiteral("WindowActivated"), QStringLiteral("s"),
                  QVariant::fromValue(QDBusVariant(QStringLiteral("a title")))});
    bus_.control(QStringLiteral("CallObserver"),
                 {QStringLiteral("NoWindowActive"), QStringLiteral("s"),
                  QVariant::fromValue(QDBusVariant(QStringLiteral("x")))});
    // A well-formed report after them is the first change seen.
    int activations = 0;
    source->setActivationHandler([&] { ++activations; });
    activate(QStringLiteral("lumenotebeta"), QString(), QString(), 2);
    ASSERT_TRUE(waitUntil([&] { return activations > 0; }));
    EXPECT_EQ(activations, 1);
    EXPECT_EQ(source->frontmostApplication(),
              (FrontmostApplication{"lumenotebeta", "lumenotebeta"}));
}

TEST_F(KWinScriptObserver, FollowsKWinAwayAndBackAndRunsTheScriptAgain) {
    auto* kwin = startKWin();
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    activate(QStringLiteral("kate"), QStringLiteral("kate"), QStringLiteral("org.kde.kate"), 1);
    ASSERT_TRUE(waitUntil([&] { return source->frontmostApplication().has_value(); }));
    int activations = 0;
    source->setActivationHandler([&] { ++activations; });

    bus_.stop(kwin);
    ASSERT_TRUE(waitUntil([&] { return !source->observing(); }));
    EXPECT_EQ(source->frontmostApplication(), std::nullopt);
    EXPECT_EQ(activations, 1);

    // A new KWin knows nothing of the script: it is loaded and run anew.
    startKWin({QStringLiteral("--plasma"), QStringLiteral("5")});
    ASSERT_TRUE(waitUntil([&] { return source->observing(); }));
    EXPECT_EQ(bus_.calls(), expectedLoad(QStringLiteral("/0")));
    EXPECT_EQ(source->reloadFailure(), std::nullopt);
    activate(QStringLiteral("firefox"), QStringLiteral("Navigator"), QString(), 3);
    EXPECT_TRUE(waitUntil([&] {
        return source->frontmostApplication() ==
               FrontmostApplication{"Firefox", "org.mozilla.firefox"};
    }));
}

TEST_F(KWinScriptObserver, AKWinThatExportsItsScriptingLateIsTriedAgain) {
    auto* kwin = startKWin();
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    bus_.stop(kwin);
    ASSERT_TRUE(waitUntil([&] { return !source->observing(); }));
    startKWin({QStringLiteral("--scripting-after-ms"), QStringLiteral("400")});
    ASSERT_TRUE(waitUntil([&] { return source->observing(); }));
    EXPECT_EQ(source->reloadFailure(), std::nullopt);
    EXPECT_EQ(bus_.calls(), expectedLoad(QStringLiteral("/Scripting/Script0")));
}

TEST_F(KWinScriptObserver, AKWinThatComesBackRefusingTheScriptIsReported) {
    auto* kwin = startKWin();
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    bus_.stop(kwin);
    startKWin({QStringLiteral("--refuse-load")});
    ASSERT_TRUE(waitUntil([&] { return source->reloadFailure().has_value(); }));
    EXPECT_EQ(source->reloadFailure(), KWinScriptError::loadRefused);
    EXPECT_FALSE(source->observing());
}

TEST_F(KWinScriptObserver, DestructionUnloadsTheScriptAndGivesUpTheName) {
    startKWin();
    auto source = openObserving();
    ASSERT_NE(source, nullptr);
    source.reset();
    EXPECT_EQ(bus_.calls().back(), QStringLiteral("unloadScript:lumenote-activation"));
    EXPECT_FALSE(bus_.hasOwner(QLatin1String(kObserverBusName)));
    // A later observer starts cleanly.
    EXPECT_NE(openObserving(), nullptr);
}

TEST_F(KWinScriptObserver, FailuresToStartAreExplainedAndLeaveNothingBehind) {
    struct Case {
        const char* why;
        QStringList options;
        KWinScriptError expected;
        QString lastCall;
    };
    const Case cases[] = {
        {"KWin refuses the script",
         {QStringLiteral("--refuse-load")},
         KWinScriptError::loadRefused,
         QString()},
        {"the script does not run",
         {QStringLiteral("--fail-run")},
         KWinScriptError::runFailed,
         QStringLiteral("unloadScript:lumenote-activation")},
        {"no KWin on the bus",
         {QStringLiteral("--no-kwin"), QStringLiteral("--idle-ms"), QStringLiteral("1")},
         KWinScriptError::kwinNotOnBus,
         QString()},
    };
    for (const Case& testCase : cases) {
        auto* process = bus_.startStandIn(testCase.options,
                                          testCase.options.contains(QStringLiteral("--no-kwin"))
                                              ? QStringLiteral("org.freedesktop.ScreenSaver")
                                              : QStringLiteral("org.kde.KWin"));
        ASSERT_NE(process, nullptr) << testCase.why;
        auto source = open();
        ASSERT_FALSE(source.ok()) << testCase.why;
        EXPECT_EQ(source.error(), testCase.expected) << testCase.why;
        EXPECT_FALSE(describe(source.error()).empty());
        if (!testCase.lastCall.isEmpty()) {
            EXPECT_EQ(bus_.calls().back(), testCase.lastCall) << testCase.why;
        }
        EXPECT_FALSE(bus_.hasOwner(QLatin1String(kObserverBusName))) << testCase.why;
        bus_.stop(process);
    }
}

TEST_F(KWinScriptObserver, AnotherObserverOnTheBusKeepsItsName) {
    startKWin();
    auto other = bus_.secondConnection();
    ASSERT_EQ(other.interface()->registerService(QLatin1String(kObserverBusName)).value(),
              QDBusConnectionInterface::ServiceRegistered);
    auto source = open();
    ASSERT_FALSE(source.ok());
    EXPECT_EQ(source.error(), KWinScriptError::observerNameTaken);
    EXPECT_EQ(bus_.calls(), QStringList());
}

}  // namespace
}  // namespace lumenote::platform::kde
