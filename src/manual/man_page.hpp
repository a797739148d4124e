// A section 1 manual page in roff (the man macros) for a program, its
// commands and options taken from the program's own command line.
#pragma once

#include <string>
#include <vector>

#include "manual/command_tree.hpp"

namespace lumenote::manual {

// One item of a list section: a term the reader types or sees (a path, a
// variable, an exit status) and what it means.
struct ManualEntry {
    std::string term;
    std::string meaning;
};

// What the command line does not say about the program.
struct ManPageContent {
    std::string summary;                   // the NAME line after the dash
    std::string source;                    // the footer's centre: "Lumenote 0.1.0"
    std::string date;                      // "YYYY-MM-DD"
    std::vector<std::string> description;  // paragraphs after the program's own description
    std::vector<ManualEntry> files;
    std::vector<ManualEntry> environment;
    std::vector<ManualEntry> exitStatus;
    std::vector<std::string> seeAlso;  // other pages, as "name(section)"
};

// The page of `program`: NAME, SYNOPSIS, DESCRIPTION, COMMANDS (every
// subcommand under it, nested ones too, with their arguments and options;
// left out when there are none), OPTIONS, then FILES, ENVIRONMENT, EXIT
// STATUS and SEE ALSO when `content` has entries for them. Every text is
// escaped, so nothing in a help text can act as a roff request.
std::string renderManPage(const CommandDescription& program, const ManPageContent& content);

}  // namespace lumenote::manual
