// The manual pages as the build wrote them, read by the real groff and man,
// and compared with what the real lumenote-cli --help lists.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "support/run_program.hpp"

namespace lumenote::manual {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::runProgram;

const fs::path kPages = fs::path(LUMENOTE_BINARY_DIR) / "share/man/man1";
const fs::path kCli = fs::path(LUMENOTE_BINARY_DIR) / "bin/lumenote-cli";

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

// Renders `page` with the real man for an 80-column terminal, without the
// user's formatting preferences.
lumenote::testing::ProgramRun renderWithMan(const fs::path& page) {
    return runProgram({"env", "-u", "MAN_KEEP_FORMATTING", "-u", "MANOPT", "MANWIDTH=80", "man",
                       "--warnings", "-l", page.string()},
                      60);
}

class GeneratedPageTest : public ::testing::TestWithParam<const char*> {};

TEST_P(GeneratedPageTest, GroffFormatsItWithoutAWarning) {
    const fs::path page = kPages / GetParam();
    ASSERT_TRUE(fs::is_regular_file(page)) << page;
    const auto run = runProgram({"groff", "-ww", "-man", "-Tutf8", "-z", page.string()}, 60);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "");
}

TEST_P(GeneratedPageTest, ManRendersEverySectionWithinEightyColumns) {
    const auto run = renderWithMan(kPages / GetParam());
    ASSERT_EQ(run.exitStatus, 0) << run.output;
    for (const char* heading : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "FILES",
                                "ENVIRONMENT", "EXIT STATUS", "SEE ALSO"}) {
        EXPECT_NE(run.output.find("\n" + std::string(heading) + "\n"), std::string::npos)
            << heading;
    }
    EXPECT_NE(run.output.find("$XDG_DATA_HOME/Lumenote"), std::string::npos);
    EXPECT_NE(run.output.find("--version"), std::string::npos)
        << "option names must render as the ASCII hyphen-minus that the programs expect";
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        // Columns, not bytes: count the UTF-8 lead bytes.
        std::size_t columns = 0;
        for (const unsigned char byte : line) {
            columns += (byte & 0xC0) != 0x80 ? 1 : 0;
        }
        EXPECT_LE(columns, 80u) << line;
    }
}

TEST_P(GeneratedPageTest, TwoBuildsWriteTheSamePage) {
    // The build ran the generator once; running it again elsewhere with the
    // same date gives the same bytes, so nothing in it depends on the clock.
    const fs::path folder =
        fs::temp_directory_path() / ("lumenote-manual-" + std::to_string(::getpid()) + GetParam());
    const auto run = runProgram({"env", "-u", "SOURCE_DATE_EPOCH",
                                 (fs::path(LUMENOTE_BINARY_DIR) / "bin/lumenote-manual").string(),
                                 folder.string(), "2001-02-03"},
                                60);
    ASSERT_EQ(run.exitStatus, 0) << run.output;
    const std::string page = readFile(folder / "share/man/man1" / GetParam());
    fs::remove_all(folder);
    EXPECT_NE(page.find(" 1 \"2001-02-03\" \"Lumenote "), std::string::npos);
    std::string built = readFile(kPages / GetParam());
    const auto dateAt = built.find(" 1 \"") + 4;
    built.replace(dateAt, 10, "2001-02-03");
    EXPECT_EQ(page, built);
}

INSTANTIATE_TEST_SUITE_P(Programs, GeneratedPageTest,
                         ::testing::Values("lumenote.1", "lumenote-cli.1"));

// The subcommand names a CLI11 help text lists under "Subcommands:".
std::vector<std::string> listedSubcommands(const std::string& help) {
    std::vector<std::string> names;
    std::istringstream lines(help);
    bool inList = false;
    for (std::string line; std::getline(lines, line);) {
        if (line == "Subcommands:") {
            inList = true;
        } else if (inList && line.rfind("  ", 0) == 0 && line.size() > 2 && line[2] != ' ') {
            names.push_back(line.substr(2, line.find(' ', 2) - 2));
        } else if (inList && line.rfind("  ", 0) != 0) {
            inList = false;
        }
    }
    return names;
}

// Every command path ("rules set-app") that --help lists, walking into each.
void collectFromHelp(const std::vector<std::string>& above, std::set<std::string>& into) {
    std::vector<std::string> command{kCli.string()};
    command.insert(command.end(), above.begin(), above.end());
    command.push_back("--help");
    const auto run = runProgram(command, 60);
    ASSERT_EQ(run.exitStatus, 0) << run.output;
    for (const std::string& name : listedSubcommands(run.output)) {
        std::vector<std::string> words = above;
        words.push_back(name);
        std::string path;
        for (const std::string& word : words) {
            path += path.empty() ? word : " " + word;
        }
        into.insert(path);
        collectFromHelp(words, into);
    }
}

// The command paths of the page's COMMANDS section, from its .SS lines.
std::set<std::string> commandsOnThePage(const std::string& page) {
    std::set<std::string> commands;
    const auto start = page.find("\n.SH COMMANDS\n");
    const auto end = page.find("\n.SH ", start + 1);
    std::istringstream lines(page.substr(start, end - start));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(".SS \"", 0) == 0) {
            std::string name = line.substr(5, line.size() - 6);
            for (auto at = name.find("\\-"); at != std::string::npos; at = name.find("\\-")) {
                name.erase(at, 1);
            }
            commands.insert(name);
        }
    }
    return commands;
}

TEST(GeneratedPageCommandsTest, ThePageAndTheHelpListTheSameCommands) {
    std::set<std::string> fromHelp;
    collectFromHelp({}, fromHelp);
    const std::set<std::string> fromPage = commandsOnThePage(readFile(kPages / "lumenote-cli.1"));
    ASSERT_TRUE(fromHelp.count("rules set-app")) << "nested commands must be found";
    for (const std::string& command : fromHelp) {
        EXPECT_TRUE(fromPage.count(command)) << "missing from the page: " << command;
    }
    for (const std::string& command : fromPage) {
        EXPECT_TRUE(fromHelp.count(command)) << "not in --help: " << command;
    }
}

}  // namespace
}  // namespace lumenote::manual
