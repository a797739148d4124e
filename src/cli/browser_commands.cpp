// `browser register|unregister|status|events`: the native-host registration
// per browser, what the bridge shows of each browser's extension, and what
// the running recorder made of the browser events it received lately.
#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_diagnostics.hpp"
#include "bridge/browser_event_log.hpp"
#include "bridge/browser_installation.hpp"
#include "bridge/browser_status_report.hpp"
#include "cli/browser_setup.hpp"
#include "cli/commands.hpp"
#include "runtime/recorder_control.hpp"

namespace lumenote::cli {

namespace {

void showBrowserEvents(CliContext& context) {
    auto events = runtime::recorderBrowserEvents();
    if (!events.ok()) {
        context.refuse(events.error());
        return;
    }
    if (events->empty()) {
        context.out << "The recorder has handled no browser events since it started.\n";
        return;
    }
    const LocalCalendar calendar = LocalCalendar::current();
    context.out << "Browser events the recorder handled lately, oldest first:\n";
    for (const bridge::BrowserEventLogEntry& entry : *events) {
        context.out << bridge::browserEventLogLine(entry, calendar) << '\n';
    }
}

// The browsers named, or `fallback` when none was.
std::optional<std::vector<bridge::SupportedBrowser>> chosenBrowsers(
    CliContext& context, const std::vector<std::string>& names,
    std::vector<bridge::SupportedBrowser> fallback) {
    if (names.empty()) {
        return fallback;
    }
    std::vector<bridge::SupportedBrowser> browsers;
    for (const std::string& name : names) {
        auto browser = parseBrowserName(name);
        if (!browser) {
            context.refuse(browser.error());
            return std::nullopt;
        }
        browsers.push_back(*browser);
    }
    return browsers;
}

// Runs `change` on each browser and prints "<browser>: <sentence>" for each:
// `done` when it succeeded, the error's message (a refusal) when not.
void changeEach(CliContext& context, const std::vector<bridge::SupportedBrowser>& browsers,
                std::string_view done,
                const std::function<Result<void, bridge::NativeHostRegistrationError>(
                    bridge::SupportedBrowser)>& change) {
    for (const auto browser : browsers) {
        const auto changed = change(browser);
        if (changed) {
            context.out << fmt::format("{}: {}\n", bridge::displayName(browser), done);
        } else {
            context.refuse(fmt::format("{}: {}", bridge::displayName(browser),
                                       bridge::message(changed.error())));
        }
    }
}

void registerBrowsers(CliContext& context, const std::vector<std::string>& names) {
    const auto locations = bridge::BrowserSearchLocations::fromEnvironment(processEnvironmentValue);
    std::vector<bridge::SupportedBrowser> installed;
    for (const auto browser : registrableBrowsers()) {
        if (bridge::browserInstalled(browser, locations)) {
            installed.push_back(browser);
        }
    }
    const auto browsers = chosenBrowsers(context, names, installed);
    if (!browsers) {
        return;
    }
    if (browsers->empty()) {
        context.refuse(
            "No supported browser is installed. Name one to register it anyway, for example "
            "`lumenote-cli browser register chromium`.");
        return;
    }
    const auto checker = registrationChecker(context);
    changeEach(context, *browsers, bridge::kRegistrationRepairedMessage,
               [&checker](bridge::SupportedBrowser browser) { return checker.repair(browser); });
}

void unregisterBrowsers(CliContext& context, const std::vector<std::string>& names) {
    const auto checker = registrationChecker(context);
    std::vector<bridge::SupportedBrowser> registered;
    for (const auto browser : registrableBrowsers()) {
        if (checker.check(browser).manifestPresent) {
            registered.push_back(browser);
        }
    }
    const auto browsers = chosenBrowsers(context, names, registered);
    if (!browsers) {
        return;
    }
    if (browsers->empty()) {
        context.out << "No browser has a Lumenote native host registration.\n";
        return;
    }
    changeEach(context, *browsers, bridge::kRegistrationRemovedMessage,
               [&checker](bridge::SupportedBrowser browser) { return checker.remove(browser); });
}

// Each chosen browser's lines: from the running recorder when there is one
// (it knows the last events and what is in front), else from the bridge
// files alone.
void showBrowserStatus(CliContext& context, const std::vector<std::string>& names) {
    const auto browsers = chosenBrowsers(context, names, registrableBrowsers());
    if (!browsers) {
        return;
    }
    std::map<std::string, std::string> texts;
    if (auto live = runtime::recorderBrowserStatus()) {
        texts = std::move(live).value();
    } else {
        const Date now = systemNow();
        const auto checker = registrationChecker(context);
        const bridge::BrowserBridgeStore store(
            bridge::BrowserBridgeStore::defaultRoot(context.paths, processEnvironmentValue));
        const auto extensions = bridge::BrowserExtensionStatusService::readNow(store, now);
        const auto state = store.readState();
        const bridge::BrowserStatusSources sources{
            checker,
            extensions,
            bridge::BrowserSearchLocations::fromEnvironment(processEnvironmentValue),
            state,
            std::nullopt,
            state && state->sessionRunning,
            state && state->browserTrackingPaused,
            state ? state->frontmostBrowserBundleIdentifier : std::nullopt,
            false,
            {},
            now};
        const LocalCalendar calendar = LocalCalendar::current();
        for (const bridge::BrowserStatusRow& row : bridge::browserStatusRows(sources)) {
            texts[std::string(rawValue(row.diagnosis.browser))] =
                bridge::browserStatusText(row, calendar);
        }
    }
    for (const auto browser : *browsers) {
        const auto text = texts.find(std::string(rawValue(browser)));
        context.out << (text != texts.end()
                            ? text->second
                            : std::string(bridge::displayName(browser)) +
                                  ": no native messaging on Linux, so never recorded by website\n");
    }
}

}  // namespace

void installBrowserCommands(CLI::App& app, CliContext& context) {
    auto* browser =
        app.add_subcommand("browser", "The browser connection: what the recorder receives");
    browser->require_subcommand(1);

    auto registerNames = std::make_shared<std::vector<std::string>>();
    auto* registerCommand = browser->add_subcommand(
        "register",
        "Let browsers start Lumenote's native host: writes its manifest for each browser named "
        "(chrome, chromium, edge, brave, vivaldi, opera, firefox), or for every installed one");
    registerCommand->add_option("BROWSER", *registerNames, "The browsers to register");
    registerCommand->callback(
        [&context, registerNames] { registerBrowsers(context, *registerNames); });

    auto unregisterNames = std::make_shared<std::vector<std::string>>();
    auto* unregisterCommand = browser->add_subcommand(
        "unregister",
        "Remove Lumenote's native-host manifest from each browser named, or from every browser");
    unregisterCommand->add_option("BROWSER", *unregisterNames, "The browsers to unregister");
    unregisterCommand->callback(
        [&context, unregisterNames] { unregisterBrowsers(context, *unregisterNames); });

    auto statusNames = std::make_shared<std::vector<std::string>>();
    auto* statusCommand = browser->add_subcommand(
        "status",
        "Show, per browser, whether it is installed, the native-host registration, the "
        "extension's connection and the one issue that keeps its activity from being recorded");
    statusCommand->add_option("BROWSER", *statusNames, "The browsers to show (all by default)");
    statusCommand->callback([&context, statusNames] { showBrowserStatus(context, *statusNames); });
    browser
        ->add_subcommand("events",
                         "Show the last browser events the running recorder accepted or "
                         "refused, with the reason for each refusal")
        ->callback([&context] { showBrowserEvents(context); });
}

}  // namespace lumenote::cli
