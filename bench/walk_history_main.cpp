// lumenote-walk-history: walks a whole store through its history reader in a
// process that does nothing else, and prints the time and the process's peak
// resident memory. Peak memory is process-wide, so this is the clean measure
// of a walk's memory; the in-process benchmarks share their process.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "bench_history.hpp"
#include "process_memory.hpp"
#include "store/sqlite_recording_store.hpp"

namespace {

using namespace lumenote;

struct Walked {
    std::size_t sessions = 0;
    std::size_t segments = 0;
};

Result<Walked, StoreError> walk(recording::SessionHistoryReader& reader, const std::string& what) {
    Walked walked;
    if (what == "segments") {
        Uuid lastSession;
        double seconds = 0;
        auto done = reader.forEachSegment({}, [&](const recording::StudySession& session,
                                                  const recording::ActivitySegment& segment) {
            if (walked.segments == 0 || session.id != lastSession) {
                ++walked.sessions;
                lastSession = session.id;
            }
            ++walked.segments;
            seconds += segment.duration;
            return true;
        });
        if (!done) {
            return fail(done.error());
        }
        return walked;
    }
    auto done = reader.forEachSession({.includeChildren = true},
                                      [&](const recording::StudySession& session) {
                                          ++walked.sessions;
                                          walked.segments += session.segments.size();
                                          return true;
                                      });
    if (!done) {
        return fail(done.error());
    }
    return walked;
}

}  // namespace

int main(int argc, char** argv) {
    std::filesystem::path cache = LUMENOTE_BENCH_CACHE_DIR;
    std::filesystem::path file;
    std::string what = "segments";
    int runs = 1;
    double peakLimit = 0;

    CLI::App app{
        "Walks every segment (or every session with its children) of a store one at a time "
        "and prints the time and the peak resident memory of the process."};
    app.add_option("--store", file,
                   "Store file to walk; by default the standard synthetic history, generated "
                   "into the history cache when absent");
    app.add_option("--history-cache", cache, "Folder of the cached synthetic histories")
        ->capture_default_str();
    app.add_option("--walk", what, "What to visit one at a time")
        ->check(CLI::IsMember({"segments", "sessions"}))
        ->capture_default_str();
    app.add_option("--runs", runs, "Walks in a row; the median time is printed too")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--peak-limit-mib", peakLimit,
                   "Fail (exit status 2) when the peak resident memory exceeds this many MiB");
    CLI11_PARSE(app, argc, argv);

    if (file.empty()) {
        bench::setHistoryCacheFolder(cache);
        file = bench::standardHistoryStore();
    }
    auto store = store::SqliteRecordingStore::open(file);
    if (!store) {
        fmt::print(stderr, "lumenote-walk-history: {}\n", store.error().description);
        return 1;
    }
    const double residentAtStart = bench::residentBytes().value_or(0);
    const double peakAtStart = bench::peakResidentBytes().value_or(0);

    std::vector<double> times;
    Walked walked;
    for (int run = 0; run < runs; ++run) {
        const auto started = std::chrono::steady_clock::now();
        auto result = walk(**store, what);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
        if (!result) {
            fmt::print(stderr, "lumenote-walk-history: {} ({})\n", result.error().description,
                       rawValue(result.error().kind));
            return 1;
        }
        walked = *result;
        times.push_back(elapsed.count());
        fmt::print("run {}: {} segments of {} sessions in {:.3f} s\n", run + 1, walked.segments,
                   walked.sessions, elapsed.count());
    }
    std::sort(times.begin(), times.end());
    const double peak = bench::mebibytes(bench::peakResidentBytes().value_or(0));
    fmt::print(
        "{}, {} walk: {} segments of {} sessions; median {:.3f} s over {} run(s); resident "
        "after opening {:.1f} MiB (peak {:.1f} MiB), peak resident of the process {:.1f} MiB\n",
        file.string(), what, walked.segments, walked.sessions, times[times.size() / 2],
        times.size(), bench::mebibytes(residentAtStart), bench::mebibytes(peakAtStart), peak);
    if (peakLimit > 0 && peak > peakLimit) {
        fmt::print(stderr,
                   "lumenote-walk-history: peak resident memory {:.1f} MiB exceeds {} MiB\n", peak,
                   peakLimit);
        return 2;
    }
    return 0;
}
