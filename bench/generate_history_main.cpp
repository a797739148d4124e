// lumenote-generate-history: writes a synthetic history into a new store, for
// timing commands and benchmarks at the scale of years of use.
#include <chrono>
#include <cstdio>
#include <filesystem>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "foundation/user_paths.hpp"
#include "store/store_files.hpp"
#include "synthetic_history.hpp"

int main(int argc, char** argv) {
    using namespace lumenote;
    using namespace lumenote::bench;
    SyntheticHistoryOptions options;
    std::filesystem::path out;
    bool keepIndexes = false;

    CLI::App app{"Writes a synthetic study history into DIR/Lumenote/lumenote.sqlite."};
    app.add_option("--sessions", options.sessions, "Number of sessions")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--segments", options.segments, "Number of activity segments")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--years", options.years, "Years the history reaches back")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--seed", options.seed, "Seed of the generator")->capture_default_str();
    app.add_option("--out", out, "Data folder (stands for $XDG_DATA_HOME); must hold no store")
        ->required();
    app.add_flag("--keep-indexes-while-loading", keepIndexes,
                 "Maintain every index while loading instead of building them afterwards");
    CLI11_PARSE(app, argc, argv);
    options.deferIndexes = !keepIndexes;

    const std::filesystem::path file = store::storePath(UserPaths{out, {}});
    const auto started = std::chrono::steady_clock::now();
    auto written = writeSyntheticHistory(file, options);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
    if (!written) {
        fmt::print(stderr, "lumenote-generate-history: {}\n", written.error().description);
        return 1;
    }
    std::error_code ignored;
    const auto bytes = std::filesystem::file_size(file, ignored);
    fmt::print(
        "{}: {} sessions, {} segments, {} confirmed intervals, {} PDF identities, "
        "{} application rules, {} website rules; {:.1f} MB in {:.1f} s\n",
        file.string(), written->sessions, written->segments, written->confirmedIntervals,
        written->pdfIdentities, written->appClassifications, written->websiteClassifications,
        static_cast<double>(bytes) / 1e6, elapsed.count());
    return 0;
}
