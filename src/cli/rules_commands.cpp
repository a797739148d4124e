// `rules`: the stored classification rules, the starter suggestions and what
// was recorded lately. Rules are saved, removed and cleared through the rules
// service the recorder uses, so that keys are normalised and failures
// reported as in the application. A recorder already running in another
// process keeps the rules it loaded until it starts again.
//
// Rules match the recorded key exactly, so the commands help to name it: a
// hostname that is not one is refused, an application id that was never
// recorded and that no starter row names is saved with a warning naming the
// recorded applications it resembles, and `recent` lists the ids and
// hostnames recorded lately.
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_lookup.hpp"
#include "classification/hostname_validation.hpp"
#include "classification/rule_keys.hpp"
#include "classification/starter_suggestions.hpp"
#include "cli/classification_argument.hpp"
#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/recorded_activity.hpp"
#include "cli/session_text.hpp"
#include "foundation/text.hpp"

namespace lumenote::cli {

namespace {

// Rejects keys that are empty once trimmed: a rule needs something to match.
const CLI::Validator& nonEmptyKey() {
    static const CLI::Validator validator(
        [](std::string& value) -> std::string {
            return text::trimmed(value).empty() ? std::string("must not be empty") : std::string();
        },
        "NOT EMPTY");
    return validator;
}

// "3", or "50 most recent of 73" when the list was cut.
std::string shownOf(std::size_t shown, std::size_t total) {
    return shown == total ? std::to_string(total)
                          : fmt::format("{} most recent of {}", shown, total);
}

void printStarterTable(CliContext& context, std::string_view title,
                       const std::vector<classification::StarterClassificationRow>& rows) {
    std::size_t nameWidth = 0;
    std::size_t detailWidth = 0;
    for (const auto& row : rows) {
        nameWidth = std::max(nameWidth, text::characterCount(row.name));
        detailWidth = std::max(detailWidth, row.detail.size());
    }
    context.out << fmt::format("{} · {}\n", title,
                               classification::recognisedByDefaultText(rows.size()));
    for (const auto& row : rows) {
        context.out << fmt::format("  {}  {}  {}\n", padded(row.name, nameWidth),
                                   padded(row.detail, detailWidth), rawValue(row.classification));
    }
}

void installStarter(CLI::App& rules, CliContext& context) {
    auto* command = rules.add_subcommand(
        "starter",
        "List the starter suggestions that apply until a rule of your own replaces them");
    command->callback([&context] {
        context.out << classification::kStarterSuggestionsHeading << '\n';
        printStarterTable(context, "Websites", classification::starterWebsiteRows());
        printStarterTable(context, "Applications", classification::starterApplicationRows());
        printStarterTable(context, "Linux applications",
                          classification::linuxStarterApplicationRows());
    });
}

void installRulesList(CLI::App& rules, CliContext& context) {
    auto* command = rules.add_subcommand("list", "List your application and website rules");
    command->callback([&context] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto applications = environment->store().appClassifications();
        auto websites = environment->store().websiteClassifications();
        if (!applications.ok() || !websites.ok()) {
            context.refuse(historyCommandFailureMessage(
                HistoryCommandFailure::historyUnreadable,
                (applications.ok() ? websites.error() : applications.error()).description));
            return;
        }
        if (applications->empty()) {
            context.out << "No application rules.\n";
        } else {
            std::size_t keyWidth = 0;
            std::size_t nameWidth = 0;
            for (const auto& rule : *applications) {
                keyWidth = std::max(keyWidth, text::characterCount(rule.bundleIdentifier));
                nameWidth = std::max(nameWidth, text::characterCount(rule.applicationName));
            }
            context.out << fmt::format("Application rules ({})\n", applications->size());
            for (const auto& rule : *applications) {
                context.out << fmt::format(
                    "  {}  {}  {}\n", padded(rule.bundleIdentifier, keyWidth),
                    padded(rule.applicationName, nameWidth), rule.classificationRawValue);
            }
        }
        if (websites->empty()) {
            context.out << "No website rules.\n";
        } else {
            std::size_t keyWidth = 0;
            for (const auto& rule : *websites) {
                keyWidth = std::max(keyWidth, text::characterCount(rule.hostname));
            }
            context.out << fmt::format("Website rules ({})\n", websites->size());
            for (const auto& rule : *websites) {
                context.out << fmt::format("  {}  {}\n", padded(rule.hostname, keyWidth),
                                           rule.classificationRawValue);
            }
        }
    });
}

// The warning for a rule whose id was never recorded and is in no starter
// table, naming the recorded applications that resemble it.
std::string unrecordedApplicationWarning(std::string_view bundleIdentifier,
                                         const std::vector<RecordedApplication>& similar) {
    std::string warning = fmt::format(
        "Warning: nothing has been recorded as {}, and no starter suggestion names it. A rule "
        "applies only to an application recorded under exactly that id.\n",
        bundleIdentifier);
    for (const RecordedApplication& application : similar) {
        warning += fmt::format("Recorded with a similar id or name: {} ({}).\n",
                               application.applicationName, application.bundleIdentifier);
    }
    warning += "The applications recorded lately: lumenote-cli rules recent\n";
    return warning;
}

// Saving goes ahead either way: the application may simply not have been
// used yet. A history that cannot be read is said, as it leaves the question open.
void warnWhenNeverRecorded(CliContext& context, HistoryEnvironment& environment,
                           const std::string& bundleIdentifier) {
    if (classification::isStarterApplicationKey(bundleIdentifier)) {
        return;
    }
    auto check = checkRecordedApplication(environment.historyReader(), bundleIdentifier);
    if (!check.ok()) {
        context.err << historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    check.error().description)
                    << '\n';
        return;
    }
    if (!check->recorded) {
        context.err << unrecordedApplicationWarning(bundleIdentifier, check->similar);
    }
}

struct SetAppOptions {
    std::string bundleIdentifier;
    std::string classification;
    std::string name;
};

void installSetApp(CLI::App& rules, CliContext& context) {
    auto* command = rules.add_subcommand(
        "set-app", "Classify an application by the id it is recorded under (see `rules recent`)");
    auto options = std::make_shared<SetAppOptions>();
    command
        ->add_option("BUNDLE", options->bundleIdentifier,
                     "The application's id, exactly as recorded, e.g. org.gnome.Evince")
        ->required()
        ->check(nonEmptyKey());
    addClassificationArgument(*command, options->classification);
    command->add_option("--name", options->name,
                        "The name to show for the application (default: the identifier)");
    command->callback([&context, options] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        // Identifiers are matched exactly, letter case included: kept as given.
        const std::string& bundle = options->bundleIdentifier;
        const std::string name =
            text::trimmed(options->name).empty() ? bundle : text::trimmed(options->name);
        auto saved = environment->rules(context.err)
                         .saveApplicationClassification(
                             bundle, name, parsedClassification(options->classification));
        if (!saved.ok()) {
            context.refuse(saved.error().message());
            return;
        }
        context.out << fmt::format("{} ({}) is now {}.\n", name, bundle, options->classification);
        warnWhenNeverRecorded(context, *environment, bundle);
    });
}

struct SetWebsiteOptions {
    std::string hostname;
    std::string classification;
};

void installSetWebsite(CLI::App& rules, CliContext& context) {
    auto* command = rules.add_subcommand(
        "set-website", "Classify a website by its hostname (its subdomains follow it)");
    auto options = std::make_shared<SetWebsiteOptions>();
    command
        ->add_option("HOST", options->hostname,
                     "The website's hostname, e.g. youtube.com: no scheme, port or path")
        ->required()
        ->check(nonEmptyKey());
    addClassificationArgument(*command, options->classification);
    command->callback([&context, options] {
        const auto hostname = classification::validatedHostname(options->hostname);
        if (!hostname.ok()) {
            context.refuse(
                classification::hostnameProblemMessage(hostname.error(), options->hostname));
            return;
        }
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto saved = environment->rules(context.err)
                         .saveWebsiteClassification(*hostname,
                                                    parsedClassification(options->classification));
        if (!saved.ok()) {
            context.refuse(saved.error().message());
            return;
        }
        context.out << fmt::format("{} is now {}.\n", *hostname, options->classification);
    });
}

// An application rule is looked up by the id exactly as given, a website
// rule by the normalised hostname. The hostname is not validated, so that a
// rule saved before hostnames were checked can still be removed. Should both
// kinds have a rule under the key, both go.
void installRemove(CLI::App& rules, CliContext& context) {
    auto* command = rules.add_subcommand(
        "remove",
        "Remove your rule for an application id or a website hostname (a starter suggestion for "
        "it applies again)");
    auto key = std::make_shared<std::string>();
    command->add_option("KEY", *key, "The application id or the hostname, as `rules list` shows it")
        ->required()
        ->check(nonEmptyKey());
    command->callback([&context, key] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        classification::ClassificationRules& service = environment->rules(context.err);
        auto application = service.removeApplicationClassification(*key);
        if (!application.ok()) {
            context.refuse(application.error().message());
            return;
        }
        if (*application) {
            context.out << fmt::format("Removed the application rule for {}.\n", *key);
        }
        auto website = service.removeWebsiteClassification(*key);
        if (!website.ok()) {
            context.refuse(website.error().message());
            return;
        }
        if (*website) {
            context.out << fmt::format("Removed the website rule for {}.\n",
                                       classification::normalizedHostname(*key));
        }
        if (!*application && !*website) {
            context.refuse(
                historyCommandFailureMessage(HistoryCommandFailure::ruleKeyUnknown, *key));
        }
    });
}

void printRecentApplications(CliContext& context, const RecordedActivity& activity,
                             const classification::ClassificationLookup& lookup) {
    if (activity.applications.empty()) {
        context.out << fmt::format("No applications recorded in the last {} days.\n",
                                   kRecentActivityDays);
        return;
    }
    std::size_t keyWidth = 0;
    std::size_t nameWidth = 0;
    for (const auto& application : activity.applications) {
        keyWidth = std::max(keyWidth, text::characterCount(application.bundleIdentifier));
        nameWidth = std::max(nameWidth, text::characterCount(application.applicationName));
    }
    context.out << fmt::format("Applications recorded in the last {} days ({})\n",
                               kRecentActivityDays,
                               shownOf(activity.applications.size(), activity.applicationCount));
    for (const auto& application : activity.applications) {
        context.out << fmt::format("  {}  {}  {}\n", padded(application.bundleIdentifier, keyWidth),
                                   padded(application.applicationName, nameWidth),
                                   rawValue(lookup.applicationClassification(
                                       application.bundleIdentifier, application.applicationName)));
    }
}

void printRecentWebsites(CliContext& context, const RecordedActivity& activity,
                         const classification::ClassificationLookup& lookup) {
    if (activity.websites.empty()) {
        context.out << fmt::format("No websites recorded in the last {} days.\n",
                                   kRecentActivityDays);
        return;
    }
    std::size_t keyWidth = 0;
    for (const auto& website : activity.websites) {
        keyWidth = std::max(keyWidth, text::characterCount(website.hostname));
    }
    context.out << fmt::format("Websites recorded in the last {} days ({})\n", kRecentActivityDays,
                               shownOf(activity.websites.size(), activity.websiteCount));
    for (const auto& website : activity.websites) {
        context.out << fmt::format(
            "  {}  {}\n", padded(website.hostname, keyWidth),
            rawValue(lookup.websiteClassification(website.hostname, std::nullopt)));
    }
}

void installRecent(CLI::App& rules, CliContext& context) {
    auto* command = rules.add_subcommand(
        "recent",
        fmt::format("List the applications and websites recorded in the last {} days, most "
                    "recent first, with the ids rules match and the class each has now",
                    kRecentActivityDays));
    command->callback([&context] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto activity = readRecentActivity(environment->historyReader(), environment->now());
        if (!activity.ok()) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        activity.error().description));
            return;
        }
        const auto& lookup = environment->rules(context.err).lookup();
        printRecentApplications(context, *activity, lookup);
        printRecentWebsites(context, *activity, lookup);
    });
}

// `clear-apps` and `clear-websites`: count, clear through the rules, report.
template <typename CountRules, typename Clear>
void installClear(CLI::App& rules, CliContext& context, const char* name, const char* help,
                  const char* singular, const char* plural, CountRules countRules, Clear clear) {
    auto* command = rules.add_subcommand(name, help);
    command->callback([&context, singular, plural, countRules, clear] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto count = countRules(environment->store());
        if (!count.ok()) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        count.error().description));
            return;
        }
        if (auto cleared = clear(environment->rules(context.err)); !cleared.ok()) {
            context.refuse(cleared.error().message());
            return;
        }
        context.out << "Removed " << countText(count->size(), singular, plural) << ".\n";
    });
}

}  // namespace

void installRulesCommands(CLI::App& app, CliContext& context) {
    auto* rules = app.add_subcommand("rules", "Classification rules and starter suggestions");
    rules->require_subcommand(1);
    installRulesList(*rules, context);
    installStarter(*rules, context);
    installSetApp(*rules, context);
    installSetWebsite(*rules, context);
    installRemove(*rules, context);
    installRecent(*rules, context);
    installClear(
        *rules, context, "clear-apps", "Remove every application rule", "application rule",
        "application rules",
        [](recording::RecordingStore& store) { return store.appClassifications(); },
        [](classification::ClassificationRules& service) {
            return service.clearApplicationClassifications();
        });
    installClear(
        *rules, context, "clear-websites", "Remove every website rule", "website rule",
        "website rules",
        [](recording::RecordingStore& store) { return store.websiteClassifications(); },
        [](classification::ClassificationRules& service) {
            return service.clearWebsiteClassifications();
        });
}

}  // namespace lumenote::cli
