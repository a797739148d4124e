#include "scenario/scenario_command.hpp"

#include <stdlib.h>
#include <CLI/CLI.hpp>

#include <fstream>
#include <optional>
#include <sstream>

#include "scenario/scenario_runner.hpp"

namespace lumenote::scenario {

namespace {

// A fresh private folder under `root`, removed with everything in it when
// this goes out of scope. Its path is empty when it could not be made.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& root) {
        std::string pattern = (root / "lumenote-scenario-XXXXXX").string();
        if (::mkdtemp(pattern.data()) != nullptr) {
            path_ = pattern;
        }
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        if (!path_.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(path_, ignored);
        }
    }

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace

int runScenarioCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err, const ScenarioFolders& folders, Date wallStart) {
    CLI::App app{
        "Runs a scenario script (JSON lines of timed actions) against the real session manager "
        "and SQLite store with a simulated clock, then prints the stored sessions as JSON.",
        "lumenote-scenario"};
    std::string script;
    std::string dataDir;
    bool check = false;
    app.add_option("SCRIPT", script, "The scenario script")->required()->check(CLI::ExistingFile);
    app.add_option("--data-dir", dataDir,
                   "Stands for $XDG_DATA_HOME: the folder that holds Lumenote/ with the store, "
                   "kept after the run (the preferences stay in $XDG_CONFIG_HOME). Without it the "
                   "script runs in a fresh temporary folder, store and preferences both, that is "
                   "removed afterwards: the user's own folders are never touched.");
    app.add_flag("--check", check,
                 "Exit with status 1 when an expect step of the script does not hold");
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? 0 : 2;
    }

    std::ifstream file(script);
    std::stringstream text;
    text << file.rdbuf();
    auto steps = parseScript(text.str());
    if (!steps.ok()) {
        err << script << ": " << steps.error() << '\n';
        return 2;
    }
    UserPaths paths = folders.user;
    std::optional<TemporaryFolder> temporary;
    if (!dataDir.empty()) {
        paths.dataHome = std::filesystem::absolute(dataDir);
    } else {
        temporary.emplace(folders.temporaryRoot);
        if (temporary->path().empty()) {
            err << "lumenote-scenario: no temporary folder could be made in "
                << folders.temporaryRoot.string() << "; give --data-dir.\n";
            return 2;
        }
        paths.dataHome = temporary->path() / "data";
        paths.configHome = temporary->path() / "config";
    }
    auto outcome = runScenario(*steps, paths, wallStart);
    if (!outcome.ok()) {
        err << script << ": " << outcome.error() << '\n';
        return 2;
    }
    out << outcome->sessions.dump(2) << '\n';
    for (const auto& failure : outcome->failedExpectations) {
        err << script << ": " << failure << '\n';
    }
    return (check && !outcome->failedExpectations.empty()) ? 1 : 0;
}

}  // namespace lumenote::scenario
