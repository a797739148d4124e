#include "manual/bash_completion.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace lumenote::manual {

namespace {

bool shellWord(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](unsigned char character) {
        return std::isalnum(character) ||
               std::string_view("-_.+:,@%/=").find(static_cast<char>(character)) !=
                   std::string_view::npos;
    });
}

// The words as one compgen word list. A word that is not a plain shell word
// (a choice with a blank or a quote) is left out rather than offered broken.
std::string join(const std::vector<std::string>& words) {
    std::string joined;
    for (const std::string& word : words) {
        if (shellWord(word)) {
            joined += joined.empty() ? word : " " + word;
        }
    }
    return joined;
}

// The key of a command in the script: its words joined by '/', "" for the
// program itself, so that "rules set-app" is "/rules/set-app".
std::string commandKey(const CommandDescription& command) {
    std::string key;
    for (const std::string& word : command.words) {
        key += "/" + word;
    }
    return key;
}

std::vector<std::string> optionNames(const CommandDescription& command) {
    std::vector<std::string> names;
    for (const OptionDescription& option : command.options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

std::vector<std::string> subcommandNames(const CommandDescription& command) {
    std::vector<std::string> names;
    for (const CommandDescription& subcommand : command.subcommands) {
        names.push_back(subcommand.name);
    }
    return names;
}

std::vector<const CommandDescription*> everyCommand(const CommandDescription& program) {
    std::vector<const CommandDescription*> commands{&program};
    const auto below = allSubcommands(program);
    commands.insert(commands.end(), below.begin(), below.end());
    return commands;
}

}  // namespace

std::vector<std::string> valueChoices(std::string_view valueName) {
    const auto open = valueName.rfind(":{");
    if (open == std::string_view::npos || valueName.back() != '}') {
        return {};
    }
    std::vector<std::string> choices;
    std::string_view list = valueName.substr(open + 2, valueName.size() - open - 3);
    while (!list.empty()) {
        const auto comma = list.find(',');
        const std::string_view choice = list.substr(0, comma);
        if (!choice.empty()) {
            choices.emplace_back(choice);
        }
        list = comma == std::string_view::npos ? std::string_view{} : list.substr(comma + 1);
    }
    return choices;
}

std::string completionFunctionName(std::string_view program) {
    std::string name = "_";
    for (const char character : program) {
        name += std::isalnum(static_cast<unsigned char>(character)) ? character : '_';
    }
    return name;
}

std::string renderBashCompletion(const CommandDescription& program) {
    const auto commands = everyCommand(program);
    std::string nested;
    std::string values;
    std::string words;
    for (const CommandDescription* command : commands) {
        const std::string key = commandKey(*command);
        if (command != &program) {
            nested += fmt::format("            '{}') command='{}' ;;\n", key, key);
        }
        words += fmt::format(
            "        '{}')\n            commands='{}'\n            options='{}'\n"
            "            ;;\n",
            key, join(subcommandNames(*command)), join(optionNames(*command)));
        for (const OptionDescription& option : command->options) {
            if (!option.takesValue()) {
                continue;
            }
            const std::string choices = join(valueChoices(option.valueName));
            for (const std::string& name : option.names) {
                values += fmt::format("        '{}:{}') values='{}' ;;\n", key, name, choices);
            }
        }
    }

    const std::string function = completionFunctionName(program.name);
    std::string script = fmt::format(
        "# bash completion for {0}, written at build time from its command line.\n"
        "{1}() {{\n"
        "    local current=${{COMP_WORDS[COMP_CWORD]}}\n"
        "    local command='' index\n"
        "    # The subcommand the words before the cursor chose, as /word/word.\n"
        "    for ((index = 1; index < COMP_CWORD; index++)); do\n"
        "        case \"$command/${{COMP_WORDS[index]}}\" in\n"
        "{2}"
        "        esac\n"
        "    done\n"
        "    COMPREPLY=()\n"
        "    # After an option that takes a value: its choices, or nothing (then\n"
        "    # file names, from complete -o default).\n"
        "    if ((COMP_CWORD > 1)); then\n"
        "        local values=-\n"
        "        case \"$command:${{COMP_WORDS[COMP_CWORD - 1]}}\" in\n"
        "{3}"
        "        esac\n"
        "        if [[ $values != - ]]; then\n"
        "            COMPREPLY=($(compgen -W \"$values\" -- \"$current\"))\n"
        "            return 0\n"
        "        fi\n"
        "    fi\n"
        "    local commands='' options=''\n"
        "    case \"$command\" in\n"
        "{4}"
        "    esac\n"
        "    if [[ $current == -* ]]; then\n"
        "        COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
        "    else\n"
        "        COMPREPLY=($(compgen -W \"$commands\" -- \"$current\"))\n"
        "    fi\n"
        "    return 0\n"
        "}}\n"
        "complete -o default -F {1} {0}\n",
        program.name, function, nested, values, words);
    return script;
}

}  // namespace lumenote::manual
