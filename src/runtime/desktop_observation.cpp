#include "runtime/desktop_observation.hpp"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <string>
#include <utility>

#include "bridge/native_host_registration.hpp"
#include "platform/gnome/gnome_shell_frontmost_application.hpp"
#include "platform/gnome/mutter_idle_time.hpp"
#include "platform/kde/kde_screensaver_idle_time.hpp"
#include "platform/kde/kwin_script_file.hpp"
#include "platform/kde/kwin_script_frontmost_application.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "platform/linux/x11_frontmost_application.hpp"
#include "platform/linux/x11_idle_time.hpp"
#include "platform/system/headless_platform.hpp"
#include "platform/system/system_clocks.hpp"
#include "platform/wayland/wayland_connection.hpp"
#include "platform/wayland/wayland_idle_time.hpp"
#include "platform/wayland/wlr_frontmost_application.hpp"
#include "runtime/scoped_application.hpp"

namespace lumenote::runtime {

namespace observation = platform::observation;
namespace linux_desktop = platform::linux_desktop;
namespace wayland = platform::wayland;
namespace kde = platform::kde;
namespace gnome = platform::gnome;

struct DesktopObservation::Parts {
    explicit Parts(const Dependencies& dependencies)
        : environment(dependencies.environment),
          sessionBus(dependencies.sessionBus),
          monotonicClock(dependencies.monotonicClock),
          wallClock(dependencies.wallClock) {}

    // Kept for the backends that open after start-up.
    EnvironmentLookup environment;
    QDBusConnection sessionBus;
    recording::MonotonicTimeProvider& monotonicClock;
    recording::WallClock& wallClock;

    observation::SessionFacts facts;
    observation::ObservationChoice choice;
    // Why the display connection, the frontmost backend and the idle backend
    // could not be opened.
    std::optional<std::string> connectionFailure;
    std::optional<std::string> frontmostFailure;
    std::optional<std::string> idleFailure;
    platform::system::NoFrontmostApplication noFrontmost;
    platform::system::NoIdleTime noIdle;
    std::unique_ptr<linux_desktop::X11FrontmostApplicationSource> x11;
    std::unique_ptr<linux_desktop::XScreenSaverIdleTimeProvider> x11Idle;
    std::shared_ptr<wayland::WaylandConnection> waylandConnection;
    std::unique_ptr<wayland::WlrFrontmostApplicationSource> wlroots;
    std::unique_ptr<wayland::WaylandIdleTimeProvider> waylandIdle;
    std::unique_ptr<kde::KWinScriptFrontmostApplicationSource> kwin;
    std::unique_ptr<kde::KdeScreenSaverIdleTimeProvider> kdeScreenSaver;
    std::unique_ptr<gnome::GnomeShellFrontmostApplicationSource> gnomeShell;
    std::unique_ptr<gnome::MutterIdleTimeProvider> mutterIdle;
    observation::FrontmostBackend frontmostBackend = observation::FrontmostBackend::none;
    observation::IdleBackend idleBackend = observation::IdleBackend::none;
    recording::FrontmostApplicationSource* frontmost = &noFrontmost;
    recording::IdleTimeProvider* idle = &noIdle;
    // What the recorder holds: they read whichever backend observes now, so
    // that one opened later takes over without the recorder knowing.
    struct CurrentFrontmost final : recording::FrontmostApplicationSource {
        explicit CurrentFrontmost(Parts& owner) : parts(owner) {}
        std::optional<recording::FrontmostApplication> frontmostApplication() override {
            return parts.frontmost->frontmostApplication();
        }
        Parts& parts;
    } currentFrontmost{*this};
    struct CurrentIdle final : recording::IdleTimeProvider {
        explicit CurrentIdle(Parts& owner) : parts(owner) {}
        double idleSeconds() override { return parts.idle->idleSeconds(); }
        Parts& parts;
    } currentIdle{*this};
    std::function<void()> activationHandler;
    bool activationPending = false;
    std::optional<Date> lastActivation;
    // Late opening: the watcher and the retry timer live in `context`.
    QObject context;
    QTimer* retryTimer = nullptr;
    int retryAttempts = 0;

    void choose();
    void openFrontmost();
    void openIdle();
    // Watches the bus names the choice reads and tries a failed bus backend
    // again, while something that could be observed is not.
    void followLateBackends();
    // Makes the choice again with the bus's names now and opens what it
    // offers in place of a backend that is none.
    void reconsider();
    void scheduleRetry();
    bool processBackendEvents();
    // What a backend that reports over D-Bus calls on each change.
    void announceActivation();
    Result<std::unique_ptr<kde::KWinScriptFrontmostApplicationSource>, kde::KWinScriptError>
    openKWinScript();
    linux_desktop::DesktopEntryIndex desktopEntries() const;
};

namespace {

std::vector<std::string> sessionBusNames(const QDBusConnection& bus) {
    std::vector<std::string> names;
    if (!bus.isConnected() || bus.interface() == nullptr) {
        return names;
    }
    const auto reply = bus.interface()->registeredServiceNames();
    if (!reply.isValid()) {
        return names;
    }
    for (const QString& name : reply.value()) {
        names.push_back(name.toStdString());
    }
    return names;
}

std::string openFailure(std::string_view reason) {
    return std::string(reason) + " Recording goes on, with the application in front unknown.";
}

}  // namespace

void DesktopObservation::Parts::openFrontmost() {
    frontmostFailure.reset();
    switch (choice.frontmost) {
        case observation::FrontmostBackend::x11: {
            auto opened = linux_desktop::X11FrontmostApplicationSource::open(environment);
            if (!opened) {
                frontmostFailure = openFailure(describe(opened.error()));
                return;
            }
            x11 = std::move(opened).value();
            frontmost = x11.get();
            break;
        }
        case observation::FrontmostBackend::wlrootsForeignToplevel: {
            auto opened =
                wayland::WlrFrontmostApplicationSource::open(waylandConnection, desktopEntries());
            if (!opened) {
                frontmostFailure = openFailure(describe(opened.error()));
                return;
            }
            wlroots = std::move(opened).value();
            frontmost = wlroots.get();
            break;
        }
        case observation::FrontmostBackend::kwinScript: {
            auto opened = openKWinScript();
            if (!opened) {
                frontmostFailure = openFailure(describe(opened.error()));
                return;
            }
            kwin = std::move(opened).value();
            kwin->setActivationHandler([this] { announceActivation(); });
            frontmost = kwin.get();
            break;
        }
        case observation::FrontmostBackend::gnomeShellExtension: {
            auto opened = gnome::GnomeShellFrontmostApplicationSource::open(
                sessionBus, desktopEntries(), [](std::uint32_t processID) {
                    return linux_desktop::readProcessName(static_cast<long>(processID));
                });
            if (!opened) {
                frontmostFailure = openFailure(describe(opened.error()));
                return;
            }
            gnomeShell = std::move(opened).value();
            gnomeShell->setActivationHandler([this] { announceActivation(); });
            frontmost = gnomeShell.get();
            break;
        }
        case observation::FrontmostBackend::none:
            return;
    }
    frontmostBackend = choice.frontmost;
}

void DesktopObservation::Parts::openIdle() {
    idleFailure.reset();
    switch (choice.idle) {
        case observation::IdleBackend::x11ScreenSaver:
            if (!x11) {
                return;
            }
            x11Idle =
                std::make_unique<linux_desktop::XScreenSaverIdleTimeProvider>(x11->connection());
            if (!x11Idle->extensionAvailable()) {
                idleFailure = std::string(
                    "The X server has no screen saver extension, so time without input cannot be "
                    "noticed.");
                return;
            }
            idle = x11Idle.get();
            break;
        case observation::IdleBackend::extIdleNotify:
        case observation::IdleBackend::kdeIdle: {
            auto opened = wayland::WaylandIdleTimeProvider::open(waylandConnection, monotonicClock);
            if (!opened) {
                idleFailure = std::string(describe(opened.error()));
                return;
            }
            waylandIdle = std::move(opened).value();
            idle = waylandIdle.get();
            break;
        }
        case observation::IdleBackend::kdeScreenSaver:
            kdeScreenSaver = std::make_unique<kde::KdeScreenSaverIdleTimeProvider>(sessionBus);
            if (!kdeScreenSaver->available()) {
                idleFailure = std::string(
                    "KDE's screen locker does not report the time since your last input, so "
                    "Lumenote cannot tell when you step away.");
                return;
            }
            idle = kdeScreenSaver.get();
            break;
        case observation::IdleBackend::gnomeIdleMonitor:
            mutterIdle =
                std::make_unique<gnome::MutterIdleTimeProvider>(sessionBus, monotonicClock);
            if (!mutterIdle->available()) {
                idleFailure = std::string(
                    "GNOME's idle monitor does not answer, so Lumenote cannot tell when you step "
                    "away.");
                return;
            }
            idle = mutterIdle.get();
            break;
        case observation::IdleBackend::none:
            return;
    }
    idleBackend = choice.idle;
}

Result<std::unique_ptr<kde::KWinScriptFrontmostApplicationSource>, kde::KWinScriptError>
DesktopObservation::Parts::openKWinScript() {
    // KWin reads the script from a file of its choosing: a private copy in
    // the runtime folder, so that an upgrade never swaps it mid-session.
    const auto shipped = kde::shippedKWinScript(bridge::runningExecutableFolder());
    const char* runtimeFolder = environment("XDG_RUNTIME_DIR");
    if (!shipped || runtimeFolder == nullptr || *runtimeFolder == '\0') {
        return fail(kde::KWinScriptError::scriptNotFound);
    }
    auto staged = kde::stageKWinScript(*shipped, runtimeFolder);
    if (!staged) {
        return fail(staged.error());
    }
    return kde::KWinScriptFrontmostApplicationSource::open(
        sessionBus, desktopEntries(), QString::fromStdString(staged->string()));
}

void DesktopObservation::Parts::announceActivation() {
    activationPending = true;
    if (activationHandler) {
        activationHandler();
    }
}

bool DesktopObservation::Parts::processBackendEvents() {
    if (x11) {
        return x11->processEvents();
    }
    if (wlroots) {
        return wlroots->processEvents();
    }
    if (waylandConnection) {
        // Only the idle protocol listens: its events still need handling.
        waylandConnection->dispatchPending();
    }
    return false;
}

linux_desktop::DesktopEntryIndex DesktopObservation::Parts::desktopEntries() const {
    return linux_desktop::DesktopEntryIndex::load(linux_desktop::applicationFolders(environment));
}

void DesktopObservation::Parts::choose() {
    facts.sessionBusNames = sessionBusNames(sessionBus);
    choice = observation::chooseObservationBackends(facts);
    if (facts.environment.waylandDisplay && !waylandConnection) {
        // The connection's failure is the reason; the protocols it would
        // have offered are not missing for a reason of their own.
        std::erase_if(choice.missing, [](observation::MissingPiece piece) {
            return piece == observation::MissingPiece::foreignToplevelUnavailable ||
                   piece == observation::MissingPiece::idleProtocolUnavailable;
        });
    }
}

void DesktopObservation::Parts::followLateBackends() {
    const bool waylandSession =
        facts.environment.waylandDisplay && !facts.environment.waylandDisplay->empty();
    if (!waylandSession || !sessionBus.isConnected()) {
        return;
    }
    auto* watcher = new QDBusServiceWatcher(&context);
    watcher->setConnection(sessionBus);
    watcher->setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    for (const std::string_view name : observation::kBusNamesTheChoiceReads) {
        watcher->addWatchedService(QString::fromUtf8(name.data(), qsizetype(name.size())));
    }
    QObject::connect(watcher, &QDBusServiceWatcher::serviceRegistered, &context, [this] {
        retryAttempts = 0;
        reconsider();
    });
    retryTimer = new QTimer(&context);
    retryTimer->setSingleShot(true);
    QObject::connect(retryTimer, &QTimer::timeout, &context, [this] { reconsider(); });
    scheduleRetry();
}

void DesktopObservation::Parts::reconsider() {
    if (frontmostBackend != observation::FrontmostBackend::none &&
        idleBackend != observation::IdleBackend::none) {
        return;
    }
    const auto frontmostBefore = frontmostBackend;
    const auto before = choice;
    choose();
    // Backends that observe stay as they are: the choice only fills gaps.
    if (frontmostBackend != observation::FrontmostBackend::none) {
        choice.frontmost = before.frontmost;
    } else {
        openFrontmost();
    }
    if (idleBackend != observation::IdleBackend::none) {
        choice.idle = before.idle;
    } else {
        openIdle();
    }
    if (frontmostBackend != frontmostBefore) {
        announceActivation();
    }
    scheduleRetry();
}

void DesktopObservation::Parts::scheduleRetry() {
    // A service that owns its name before it answers (KWin exports
    // /Scripting after taking org.kde.KWin) is tried again after 0.25 s,
    // then after twice the previous wait, kOpenAttempts times in all
    // (about two minutes).
    constexpr int kOpenAttempts = 10;
    const bool busBackendFailed = (frontmostBackend == observation::FrontmostBackend::none &&
                                   observation::reportsOverSessionBus(choice.frontmost)) ||
                                  (idleBackend == observation::IdleBackend::none &&
                                   observation::reportsOverSessionBus(choice.idle));
    if (retryTimer == nullptr || !busBackendFailed || retryAttempts >= kOpenAttempts) {
        return;
    }
    retryTimer->start(std::chrono::milliseconds(250) * (1 << retryAttempts++));
}

std::unique_ptr<DesktopObservation> DesktopObservation::open(const Dependencies& dependencies) {
    auto parts = std::make_unique<Parts>(dependencies);
    parts->facts.environment =
        observation::SessionEnvironment::fromEnvironment(dependencies.environment);
    const auto& waylandDisplay = parts->facts.environment.waylandDisplay;
    if (waylandDisplay && !waylandDisplay->empty()) {
        auto connection = wayland::WaylandConnection::open(dependencies.environment);
        if (connection) {
            parts->waylandConnection = std::move(connection).value();
            parts->facts.waylandGlobals = parts->waylandConnection->globalInterfaces();
        } else {
            parts->connectionFailure = openFailure(describe(connection.error()));
        }
    }
    parts->choose();
    parts->openFrontmost();
    parts->openIdle();
    parts->followLateBackends();
    return std::unique_ptr<DesktopObservation>(new DesktopObservation(std::move(parts)));
}

DesktopObservation::DesktopObservation(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

DesktopObservation::~DesktopObservation() = default;

recording::FrontmostApplicationSource& DesktopObservation::frontmost() {
    return parts_->currentFrontmost;
}

recording::IdleTimeProvider& DesktopObservation::idle() {
    return parts_->currentIdle;
}

int DesktopObservation::activationDescriptor() const {
    if (parts_->x11) {
        return parts_->x11->fileDescriptor();
    }
    if (parts_->waylandConnection) {
        return parts_->waylandConnection->fileDescriptor();
    }
    return -1;
}

void DesktopObservation::setActivationHandler(std::function<void()> handler) {
    parts_->activationHandler = std::move(handler);
}

bool DesktopObservation::takeActivation() {
    const bool changed =
        parts_->processBackendEvents() || std::exchange(parts_->activationPending, false);
    if (changed) {
        parts_->lastActivation = parts_->wallClock.now();
    }
    return changed;
}

bool DesktopObservation::displayLost() const {
    if (parts_->x11) {
        return parts_->x11->connection()->lost();
    }
    return parts_->waylandConnection && parts_->waylandConnection->lost();
}

observation::ObservationHealth observeDesktopNow() {
    const ScopedApplication application;
    platform::system::SystemMonotonicTimeProvider monotonicClock;
    platform::system::SystemWallClock wallClock;
    const auto desktop = DesktopObservation::open(
        {processEnvironmentValue, QDBusConnection::sessionBus(), monotonicClock, wallClock});
    return desktop->health();
}

observation::ObservationHealth DesktopObservation::health() const {
    observation::ObservationHealth health;
    health.choice = parts_->choice;
    health.frontmost = parts_->frontmostBackend;
    health.idle = parts_->idleBackend;
    for (const auto* failure :
         {&parts_->connectionFailure, &parts_->frontmostFailure, &parts_->idleFailure}) {
        if (*failure) {
            health.openFailures.push_back(**failure);
        }
    }
    if (parts_->kwin) {
        if (const auto failure = parts_->kwin->reloadFailure()) {
            health.openFailures.emplace_back(describe(*failure));
        }
    }
    health.frontmostReporting = parts_->frontmostBackend != observation::FrontmostBackend::none &&
                                !displayLost() && (!parts_->kwin || parts_->kwin->observing()) &&
                                (!parts_->gnomeShell || parts_->gnomeShell->observing());
    health.lastActivation = parts_->lastActivation;
    return health;
}

}  // namespace lumenote::runtime
