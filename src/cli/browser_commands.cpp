// `browser events`: what the running recorder made of the browser events it
// received lately, to tell why a website is or is not recorded.
#include "bridge/browser_event_log.hpp"
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

}  // namespace

void installBrowserCommands(CLI::App& app, CliContext& context) {
    auto* browser =
        app.add_subcommand("browser", "The browser connection: what the recorder receives");
    browser->require_subcommand(1);
    browser
        ->add_subcommand("events",
                         "Show the last browser events the running recorder accepted or "
                         "refused, with the reason for each refusal")
        ->callback([&context] { showBrowserEvents(context); });
}

}  // namespace lumenote::cli
