#include "runtime/setup_test_input.hpp"

#include <sys/utsname.h>

#include <chrono>
#include <cstdlib>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_extension_status.hpp"
#include "bridge/browser_installation.hpp"
#include "bridge/extension_identity.hpp"
#include "recording/sampling_self_test.hpp"
#include "runtime/desktop_observation.hpp"
#include "runtime/system_facts.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::runtime {

bridge::SetupTestInput gatherSetupTestInput(const SetupTestSurroundings& surroundings) {
    using bridge::SupportedBrowser;
    bridge::SetupTestInput input;
    const Date now = systemNow();

    input.applicationObservationAvailable = platform::observation::frontmostObservable(
        surroundings.observing ? *surroundings.observing : observeDesktopNow());
    input.samplingPipelinePassed = recording::samplingPipelineSelfTest();
    input.persistenceReadable = store::storeIsReadable(store::storePath(surroundings.paths));

    input.chromeInstalled = bridge::browserInstalled(
        SupportedBrowser::googleChrome,
        bridge::BrowserSearchLocations::fromEnvironment(processEnvironmentValue));
    settings::JsonFileDefaultsDomain defaults(
        settings::JsonFileDefaultsDomain::pathFor(surroundings.paths), systemNow);
    const settings::PreferencesStore preferences(defaults);
    input.browserTrackingEnabled = preferences.browserTrackingEnabled();
    input.notificationPreferenceEnabled = preferences.notificationsEnabled();

    const bridge::NativeHostRegistrationChecker checker(
        bridge::nativeHostConfiguration(surroundings.paths, processEnvironmentValue));
    input.nativeHost = checker.check(SupportedBrowser::googleChrome);

    const bridge::BrowserBridgeStore store(
        bridge::BrowserBridgeStore::defaultRoot(surroundings.paths, processEnvironmentValue));
    const auto extensions = bridge::BrowserExtensionStatusService::readNow(store, now);
    const bridge::BrowserExtensionStatus& chrome =
        extensions.status(SupportedBrowser::googleChrome);
    input.extensionState = chrome.state;
    input.extensionVersion = chrome.extensionVersion;
    input.nativeHostVersion = chrome.nativeHostVersion;
    input.protocolVersion = chrome.protocolVersion;
    input.lastReadinessAt = chrome.lastResponseReceived;

    input.notificationState = desktopNotificationState();
    input.appVersion = surroundings.appVersion;
    input.appBuild = surroundings.appBuild;
    utsname system{};
    ::uname(&system);
    input.macOSVersion = operatingSystemName();
    input.architecture = system.machine;
    input.configuredExtensionIdentifier = std::string(bridge::chromiumExtensionIdentifier());
    return input;
}

}  // namespace lumenote::runtime
