#include "bench_history.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include <fmt/core.h>

#include "foundation/user_paths.hpp"
#include "store/store_files.hpp"
#include "synthetic_history.hpp"

namespace lumenote::bench {

namespace {

std::filesystem::path& cacheFolder() {
    static std::filesystem::path folder;
    return folder;
}

[[noreturn]] void stop(const std::string& message) {
    fmt::print(stderr, "lumenote-bench: {}\n", message);
    std::exit(1);
}

std::filesystem::path ensureHistory(const SyntheticHistoryOptions& options) {
    const std::string name = fmt::format("history-r{}-{}x{}", kSyntheticHistoryRevision,
                                         options.sessions, options.segments);
    const std::filesystem::path folder = cacheFolder() / name;
    const std::filesystem::path store = store::storePath(UserPaths{folder, {}});
    if (std::filesystem::exists(store)) {
        return store;
    }
    const std::filesystem::path partial = cacheFolder() / (name + ".partial");
    std::error_code error;
    std::filesystem::remove_all(partial, error);
    fmt::print(stderr, "lumenote-bench: writing the synthetic history to {} (once)...\n",
               folder.string());
    const auto started = std::chrono::steady_clock::now();
    auto written = writeSyntheticHistory(store::storePath(UserPaths{partial, {}}), options);
    if (!written) {
        stop("the synthetic history could not be written: " + written.error().description);
    }
    std::filesystem::rename(partial, folder, error);
    if (error) {
        stop("the synthetic history could not be moved into place: " + error.message());
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
    fmt::print(stderr, "lumenote-bench: history written in {:.1f} s\n", elapsed.count());
    return store;
}

}  // namespace

void setHistoryCacheFolder(std::filesystem::path folder) {
    cacheFolder() = std::move(folder);
}

const std::filesystem::path& historyCacheFolder() {
    return cacheFolder();
}

const std::filesystem::path& standardHistoryStore() {
    static const std::filesystem::path store = ensureHistory(SyntheticHistoryOptions{});
    return store;
}

}  // namespace lumenote::bench
