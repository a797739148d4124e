#include "manual/command_tree.hpp"

namespace lumenote::manual {

namespace {

OptionDescription describeOption(const CLI::Option& option, const CLI::App& owner) {
    OptionDescription described;
    described.help = &option == owner.get_help_ptr();
    for (const std::string& name : option.get_snames()) {
        described.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        described.names.push_back("--" + name);
    }
    if (!option.nonpositional()) {
        described.positionalName = option.get_name(true);
    }
    if (option.get_type_size_max() > 0) {
        described.valueName = option.get_type_name();
    }
    described.text = option.get_description();
    described.defaultValue = option.get_default_str();
    described.required = option.get_required();
    described.repeatable = option.get_items_expected_max() > 1 || option.get_expected_max() > 1;
    return described;
}

bool shownOption(const CLI::Option* option) {
    return !option->get_group().empty();
}

bool shownCommand(const CLI::App* app) {
    return !app->get_group().empty();
}

// The options of `app` itself, and of its option groups, which CLI11 keeps as
// nameless subcommands.
void describeOptionsInto(const CLI::App& app, CommandDescription& described) {
    for (const CLI::Option* option : app.get_options(shownOption)) {
        OptionDescription read = describeOption(*option, app);
        (read.positional() ? described.positionals : described.options).push_back(read);
    }
    for (const CLI::App* group : app.get_subcommands(shownCommand)) {
        if (group->get_name().empty()) {
            describeOptionsInto(*group, described);
        }
    }
}

void describeInto(const CLI::App& app, const std::vector<std::string>& words,
                  CommandDescription& described) {
    described.name = app.get_name();
    described.words = words;
    described.description = app.get_description();
    described.footer = app.get_footer();
    described.requiresSubcommand = app.get_require_subcommand_min() > 0;
    describeOptionsInto(app, described);
    for (const CLI::App* subcommand : app.get_subcommands(shownCommand)) {
        if (subcommand->get_name().empty()) {
            continue;
        }
        std::vector<std::string> subcommandWords = words;
        subcommandWords.push_back(subcommand->get_name());
        describeInto(*subcommand, subcommandWords, described.subcommands.emplace_back());
    }
}

void collect(const CommandDescription& command, std::vector<const CommandDescription*>& into) {
    for (const CommandDescription& subcommand : command.subcommands) {
        into.push_back(&subcommand);
        collect(subcommand, into);
    }
}

}  // namespace

CommandDescription describeCommandLine(const CLI::App& app) {
    CommandDescription described;
    describeInto(app, {}, described);
    return described;
}

std::vector<const CommandDescription*> allSubcommands(const CommandDescription& root) {
    std::vector<const CommandDescription*> commands;
    collect(root, commands);
    return commands;
}

}  // namespace lumenote::manual
