// `rules`: the stored classification rules and the starter suggestions.
// Rules are saved and cleared through the rules service the recorder uses, so
// that keys are normalised and failures reported as in the application. A recorder already
// running in another process keeps the rules it loaded until it starts again.
#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "classification/rule_keys.hpp"
#include "classification/starter_suggestions.hpp"
#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/session_text.hpp"
#include "foundation/text.hpp"

namespace lumenote::cli {

namespace {

std::vector<std::string> classificationNames() {
    std::vector<std::string> names;
    for (const classification::ActivityClassification classification :
         allCases<classification::ActivityClassification>()) {
        names.emplace_back(rawValue(classification));
    }
    return names;
}

// Rejects keys that are empty once trimmed: a rule needs something to match.
const CLI::Validator& nonEmptyKey() {
    static const CLI::Validator validator(
        [](std::string& value) -> std::string {
            return text::trimmed(value).empty() ? std::string("must not be empty") : std::string();
        },
        "NOT EMPTY");
    return validator;
}

void addClassificationArgument(CLI::App& command, std::string& target) {
    command.add_option("CLASS", target, "focused, distracting, neutral, unclassified or ignored")
        ->required()
        ->check(CLI::IsMember(classificationNames()));
}

classification::ActivityClassification parsedClassification(const std::string& name) {
    // The argument parser admitted only the raw values.
    return fromRawValue<classification::ActivityClassification>(name).value_or(
        classification::ActivityClassification::unclassified);
}

std::string padded(std::string_view cell, std::size_t width) {
    const std::size_t count = text::characterCount(cell);
    return std::string(cell) + std::string(count >= width ? 0 : width - count, ' ');
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
    });
}

void installList(CLI::App& rules, CliContext& context) {
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

struct SetAppOptions {
    std::string bundleIdentifier;
    std::string classification;
    std::string name;
};

void installSetApp(CLI::App& rules, CliContext& context) {
    auto* command =
        rules.add_subcommand("set-app", "Classify an application by its bundle identifier");
    auto options = std::make_shared<SetAppOptions>();
    command->add_option("BUNDLE", options->bundleIdentifier, "The application's identifier")
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
    command->add_option("HOST", options->hostname, "The website's hostname, e.g. youtube.com")
        ->required()
        ->check(nonEmptyKey());
    addClassificationArgument(*command, options->classification);
    command->callback([&context, options] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto saved = environment->rules(context.err)
                         .saveWebsiteClassification(options->hostname,
                                                    parsedClassification(options->classification));
        if (!saved.ok()) {
            context.refuse(saved.error().message());
            return;
        }
        context.out << fmt::format("{} is now {}.\n",
                                   classification::normalizedHostname(options->hostname),
                                   options->classification);
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
    installList(*rules, context);
    installStarter(*rules, context);
    installSetApp(*rules, context);
    installSetWebsite(*rules, context);
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
