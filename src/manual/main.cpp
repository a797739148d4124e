// lumenote-manual: writes the manual pages and the bash completion scripts of
// lumenote and lumenote-cli from their own command lines. Run by the build:
//   lumenote-manual OUTPUT-FOLDER FALLBACK-DATE
// writes OUTPUT-FOLDER/share/man/man1/{lumenote,lumenote-cli}.1 and
// OUTPUT-FOLDER/share/bash-completion/completions/{lumenote,lumenote-cli},
// dated by SOURCE_DATE_EPOCH, else FALLBACK-DATE (YYYY-MM-DD).
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "app/desktop_command_line.hpp"
#include "cli/run_cli.hpp"
#include "manual/bash_completion.hpp"
#include "manual/command_tree.hpp"
#include "manual/man_page.hpp"
#include "manual/page_date.hpp"
#include "manual/program_pages.hpp"

namespace {

namespace fs = std::filesystem;

bool writeFile(const fs::path& path, const std::string& contents) {
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << contents;
    file.close();
    if (error || !file) {
        std::cerr << "lumenote-manual: could not write " << path.string() << '\n';
        return false;
    }
    return true;
}

bool writeProgram(const fs::path& output, const lumenote::manual::CommandDescription& program,
                  const lumenote::manual::ManPageContent& content) {
    const fs::path page = output / "share/man/man1" / (program.name + ".1");
    const fs::path completion = output / "share/bash-completion/completions" / program.name;
    return writeFile(page, lumenote::manual::renderManPage(program, content)) &&
           writeFile(completion, lumenote::manual::renderBashCompletion(program));
}

}  // namespace

int main(int argc, char** argv) {
    using namespace lumenote;
    if (argc != 3) {
        std::cerr << "usage: lumenote-manual OUTPUT-FOLDER FALLBACK-DATE\n";
        return 2;
    }
    const auto date = manual::pageDate(std::getenv("SOURCE_DATE_EPOCH"), argv[2]);
    if (!date) {
        std::cerr << "lumenote-manual: SOURCE_DATE_EPOCH is not a count of seconds since 1970\n";
        return 1;
    }

    // The commands are only described, never run: the context's streams and
    // folders are never used.
    std::ostringstream unused;
    cli::CliContext context{unused, unused, UserPaths{}};
    CLI::App terminal;
    cli::buildCommandLine(terminal, context);

    app::DesktopCommandLine chosen;
    CLI::App desktop;
    app::buildDesktopCommandLine(desktop, chosen);

    const fs::path output = argv[1];
    const bool written = writeProgram(output, manual::describeCommandLine(terminal),
                                      manual::terminalPageContent(*date)) &&
                         writeProgram(output, manual::describeCommandLine(desktop),
                                      manual::desktopPageContent(*date));
    return written ? 0 : 1;
}
