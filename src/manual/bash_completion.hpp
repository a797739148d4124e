// A bash completion script for a program, written from its command line:
// commands and nested subcommands by the words typed before the cursor, each
// command's options after a '-', and the choices of an option that has them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "manual/command_tree.hpp"

namespace lumenote::manual {

// The choices in a CLI11 value name such as "TEXT:{json,csv,ics}"; empty when
// it lists none.
std::vector<std::string> valueChoices(std::string_view valueName);

// The name of the completion function for `program`: "_lumenote_cli".
std::string completionFunctionName(std::string_view program);

// A script to source (or install under bash-completion/completions/) that
// defines completionFunctionName(program.name) and registers it with
// `complete -o default`, so that arguments it knows nothing of (paths,
// identifiers) fall back to file names. A name or choice that is not a plain
// shell word is not offered (CLI11 allows no blanks or quotes in names).
std::string renderBashCompletion(const CommandDescription& program);

}  // namespace lumenote::manual
