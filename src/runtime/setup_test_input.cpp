#include "runtime/setup_test_input.hpp"

#include <sys/utsname.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <chrono>
#include <cstdlib>
#include <fstream>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_extension_status.hpp"
#include "bridge/browser_installation.hpp"
#include "bridge/extension_identity.hpp"
#include "platform/linux/notifications.hpp"
#include "platform/linux/x11_frontmost_application.hpp"
#include "recording/sampling_self_test.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::runtime {

namespace {

const char* environmentValue(const char* name) {
    return std::getenv(name);
}

Date systemNow() {
    return Date::fromSystemClock(std::chrono::system_clock::now());
}

// PRETTY_NAME of /etc/os-release and the kernel's release.
std::string systemName(const utsname& system) {
    std::ifstream release("/etc/os-release");
    std::string line;
    std::string name = "Linux";
    while (std::getline(release, line)) {
        if (line.rfind("PRETTY_NAME=", 0) == 0) {
            name = line.substr(12);
            if (name.size() >= 2 && name.front() == '"' && name.back() == '"') {
                name = name.substr(1, name.size() - 2);
            }
        }
    }
    return name + " (Linux " + system.release + ")";
}

bridge::NotificationAuthorizationState notificationState() {
    int argc = 1;
    char name[] = "lumenote-cli";
    char* argv[] = {name, nullptr};
    const bool ownApplication = QCoreApplication::instance() == nullptr;
    std::unique_ptr<QCoreApplication> application;
    if (ownApplication) {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    platform::linux_desktop::FreedesktopNotificationService notifications(
        QDBusConnection::sessionBus());
    switch (notifications.authorization()) {
        case recording::NotificationAuthorization::authorized:
            return bridge::NotificationAuthorizationState::authorized;
        case recording::NotificationAuthorization::denied:
            return bridge::NotificationAuthorizationState::denied;
        case recording::NotificationAuthorization::unavailable:
            return bridge::NotificationAuthorizationState::unavailable;
    }
    return bridge::NotificationAuthorizationState::unavailable;
}

}  // namespace

bridge::SetupTestInput gatherSetupTestInput(const SetupTestSurroundings& surroundings) {
    using bridge::SupportedBrowser;
    bridge::SetupTestInput input;
    const Date now = systemNow();

    input.applicationObservationAvailable =
        platform::linux_desktop::X11FrontmostApplicationSource::open(environmentValue).ok();
    input.samplingPipelinePassed = recording::samplingPipelineSelfTest();
    input.persistenceReadable = store::storeIsReadable(store::storePath(surroundings.paths));

    input.chromeInstalled =
        bridge::browserInstalled(SupportedBrowser::googleChrome,
                                 bridge::BrowserSearchLocations::fromEnvironment(environmentValue));
    settings::JsonFileDefaultsDomain defaults(
        settings::JsonFileDefaultsDomain::pathFor(surroundings.paths), systemNow);
    const settings::PreferencesStore preferences(defaults);
    input.browserTrackingEnabled = preferences.browserTrackingEnabled();
    input.notificationPreferenceEnabled = preferences.notificationsEnabled();

    const bridge::NativeHostRegistrationChecker checker(
        bridge::nativeHostConfiguration(surroundings.paths, environmentValue));
    input.nativeHost = checker.check(SupportedBrowser::googleChrome);

    const bridge::BrowserBridgeStore store(
        bridge::BrowserBridgeStore::defaultRoot(surroundings.paths, environmentValue));
    const auto extensions = bridge::BrowserExtensionStatusService::readNow(store, now);
    const bridge::BrowserExtensionStatus& chrome =
        extensions.status(SupportedBrowser::googleChrome);
    input.extensionState = chrome.state;
    input.extensionVersion = chrome.extensionVersion;
    input.nativeHostVersion = chrome.nativeHostVersion;
    input.protocolVersion = chrome.protocolVersion;
    input.lastReadinessAt = chrome.lastResponseReceived;

    input.notificationState = notificationState();
    input.appVersion = surroundings.appVersion;
    input.appBuild = surroundings.appBuild;
    utsname system{};
    ::uname(&system);
    input.macOSVersion = systemName(system);
    input.architecture = system.machine;
    input.configuredExtensionIdentifier = std::string(bridge::chromiumExtensionIdentifier());
    return input;
}

}  // namespace lumenote::runtime
