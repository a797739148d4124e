#include "manual/man_page.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <cctype>

#include "manual/roff.hpp"

namespace lumenote::manual {

namespace {

// Running text whose line breaks are kept as breaks in the rendered page.
std::string paragraph(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    std::string rendered;
    for (const char character : escapeText(text)) {
        rendered += character == '\n' ? std::string("\n.br\n") : std::string(1, character);
    }
    return rendered + "\n";
}

std::string bold(std::string_view literal) {
    return "\\fB" + escapeLiteral(literal) + "\\fR";
}

std::string italic(std::string_view literal) {
    return "\\fI" + escapeLiteral(literal) + "\\fR";
}

std::string spaced(const std::vector<std::string>& words) {
    std::string joined;
    for (const std::string& word : words) {
        joined += joined.empty() ? word : " " + word;
    }
    return joined;
}

// "[\fIOPTIONS\fR] \fIID\fR [\fIPATH\fR...] \fICOMMAND\fR" after the command's name.
std::string usageTail(const CommandDescription& command) {
    std::string tail;
    const bool hasOptions =
        std::any_of(command.options.begin(), command.options.end(),
                    [](const OptionDescription& option) { return !option.help; });
    if (hasOptions) {
        tail += " [" + italic("OPTIONS") + "]";
    }
    for (const OptionDescription& positional : command.positionals) {
        const std::string name =
            italic(positional.positionalName) + (positional.repeatable ? "..." : "");
        tail += positional.required ? " " + name : " [" + name + "]";
    }
    if (!command.subcommands.empty()) {
        const std::string name = italic("COMMAND");
        tail += command.requiresSubcommand ? " " + name : " [" + name + "]";
    }
    return tail;
}

std::string optionTerm(const OptionDescription& option) {
    std::string term;
    if (option.positional()) {
        return italic(option.positionalName);
    }
    for (const std::string& name : option.names) {
        term += term.empty() ? bold(name) : ", " + bold(name);
    }
    if (option.takesValue()) {
        term += " " + italic(option.valueName);
    }
    return term;
}

std::string optionMeaning(const OptionDescription& option) {
    std::string meaning = option.text;
    if (!option.defaultValue.empty()) {
        meaning += fmt::format(" (default: {})", option.defaultValue);
    }
    if (option.required && !option.positional()) {
        meaning += " (required)";
    }
    return meaning;
}

void renderOptions(const std::vector<OptionDescription>& options, bool withHelp,
                   std::string& page) {
    for (const OptionDescription& option : options) {
        if (option.help && !withHelp) {
            continue;
        }
        page += ".TP\n" + optionTerm(option) + "\n" + paragraph(optionMeaning(option));
    }
}

void renderCommand(const CommandDescription& program, const CommandDescription& command,
                   std::string& page) {
    const std::string name = spaced(command.words);
    page += ".SS " + macroArgument(escapeLiteral(name)) + "\n";
    page += bold(program.name + " " + name) + usageTail(command) + "\n";
    page += ".PP\n" + paragraph(command.description);
    if (!command.footer.empty()) {
        page += ".PP\n" + paragraph(command.footer);
    }
    renderOptions(command.positionals, false, page);
    renderOptions(command.options, false, page);
    if (!command.subcommands.empty()) {
        std::string names;
        for (const CommandDescription& subcommand : command.subcommands) {
            names += names.empty() ? bold(subcommand.name) : ", " + bold(subcommand.name);
        }
        page += ".PP\nSubcommands: " + names + ".\n";
    }
}

void renderEntries(std::string_view heading, const std::vector<ManualEntry>& entries,
                   std::string_view termFont, std::string& page) {
    if (entries.empty()) {
        return;
    }
    page += fmt::format(".SH {}\n", heading);
    for (const ManualEntry& entry : entries) {
        page += fmt::format(".TP\n\\f{}{}\\fR\n", termFont, escapeLiteral(entry.term)) +
                paragraph(entry.meaning);
    }
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::toupper(character));
    });
    return text;
}

}  // namespace

std::string renderManPage(const CommandDescription& program, const ManPageContent& content) {
    std::string page = fmt::format(
        ".\\\" Written at build time from the command line of {}; do not edit.\n", program.name);
    page += fmt::format(
        ".TH {} 1 {} {} \"User Commands\"\n", macroArgument(escapeLiteral(upper(program.name))),
        macroArgument(escapeText(content.date)), macroArgument(escapeText(content.source)));
    page +=
        ".SH NAME\n" + escapeLiteral(program.name) + " \\- " + escapeText(content.summary) + "\n";

    page += ".SH SYNOPSIS\n" + bold(program.name) + usageTail(program) + "\n";

    page += ".SH DESCRIPTION\n" + paragraph(program.description);
    for (const std::string& text : content.description) {
        page += ".PP\n" + paragraph(text);
    }
    if (!program.footer.empty()) {
        page += ".PP\n" + paragraph(program.footer);
    }

    const auto commands = allSubcommands(program);
    if (!commands.empty()) {
        page += ".SH COMMANDS\n";
        for (const CommandDescription* command : commands) {
            renderCommand(program, *command, page);
        }
    }

    page += ".SH OPTIONS\n";
    renderOptions(program.options, true, page);
    if (!commands.empty()) {
        page += ".PP\nEvery command also takes " + bold("-h") + ", " + bold("--help") +
                ", which shows its help.\n";
    }

    renderEntries("FILES", content.files, "I", page);
    renderEntries("ENVIRONMENT", content.environment, "B", page);
    renderEntries("EXIT STATUS", content.exitStatus, "B", page);
    if (!content.seeAlso.empty()) {
        page += ".SH SEE ALSO\n";
        for (std::size_t index = 0; index < content.seeAlso.size(); ++index) {
            const std::string& reference = content.seeAlso[index];
            const std::string separator = index + 1 < content.seeAlso.size() ? "," : "";
            const auto open = reference.find('(');
            assert(open != std::string::npos);
            page += ".BR " + escapeLiteral(reference.substr(0, open)) + " " +
                    escapeText(reference.substr(open)) + separator + "\n";
        }
    }
    return page;
}

}  // namespace lumenote::manual
