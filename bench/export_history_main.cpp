// lumenote-export-history: exports a whole store in a process that does
// nothing else, through the same service and atomic file as `lumenote-cli
// export`, and prints the CPU time (user plus system, so that writing the
// file counts) and the process's peak resident memory. Peak memory is
// process-wide, so one export a process is the clean measure.
//
// Targets on the standard history (20,000 sessions, 2,000,000 segments):
// the segment table under 3 s of CPU, the JSON document under 4 s, and every
// export under 300 MB of peak resident memory.
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "bench_history.hpp"
#include "portability/data_export_service.hpp"
#include "portability/export_file.hpp"
#include "process_memory.hpp"
#include "store/sqlite_recording_store.hpp"

namespace {

using namespace lumenote;

double cpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace

int main(int argc, char** argv) {
    std::filesystem::path cache = LUMENOTE_BENCH_CACHE_DIR;
    std::filesystem::path file;
    std::filesystem::path folder;
    std::string what = "segments";
    int runs = 1;
    double peakLimit = 0;

    CLI::App app{
        "Exports every session of a store as lumenote-cli export does and prints the CPU time "
        "and the peak resident memory of the process."};
    app.add_option("--store", file,
                   "Store file to export; by default the standard synthetic history, generated "
                   "into the history cache when absent");
    app.add_option("--history-cache", cache, "Folder of the cached synthetic histories")
        ->capture_default_str();
    app.add_option("--export", what, "What to export")
        ->check(CLI::IsMember({"segments", "sessions", "json", "ics"}))
        ->capture_default_str();
    app.add_option("--out", folder, "Folder the export is written into; by default the cache");
    app.add_option("--runs", runs, "Exports in a row; the median is printed too")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--peak-limit-mib", peakLimit,
                   "Fail (exit status 2) when the peak resident memory exceeds this many MiB");
    CLI11_PARSE(app, argc, argv);

    if (file.empty()) {
        bench::setHistoryCacheFolder(cache);
        file = bench::standardHistoryStore();
    }
    if (folder.empty()) {
        folder = cache;
    }
    auto store = store::SqliteRecordingStore::open(file, {.readOnly = true});
    if (!store) {
        fmt::print(stderr, "lumenote-export-history: {}\n", store.error().description);
        return 1;
    }
    const std::map<std::string, portability::ExportRequest> requests{
        {"segments",
         {.format = portability::ExportFormat::csv, .table = portability::ExportTable::segments}},
        {"sessions", {.format = portability::ExportFormat::csv}},
        {"json", {.format = portability::ExportFormat::json}},
        {"ics", {.format = portability::ExportFormat::ics}},
    };
    const portability::ExportRequest& request = requests.at(what);
    const std::filesystem::path destination = folder / portability::defaultExportFileName(request);
    const double residentAtStart = bench::residentBytes().value_or(0);

    portability::DataExportService service(**store, **store);
    std::vector<double> cpuTimes;
    std::vector<double> wallTimes;
    portability::ExportSummary summary;
    for (int run = 0; run < runs; ++run) {
        const double cpuAtStart = cpuSeconds();
        const auto started = std::chrono::steady_clock::now();
        auto output = portability::AtomicExportFile::create(destination);
        if (!output) {
            fmt::print(stderr, "lumenote-export-history: {}\n", output.error().message());
            return 1;
        }
        auto written = service.write(
            request, Date::fromSystemClock(std::chrono::system_clock::now()), **output);
        if (!written) {
            fmt::print(stderr, "lumenote-export-history: {}\n", written.error().message());
            return 1;
        }
        if (auto committed = (*output)->commit(); !committed) {
            fmt::print(stderr, "lumenote-export-history: {}\n", committed.error().message());
            return 1;
        }
        summary = *written;
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - started;
        cpuTimes.push_back(cpuSeconds() - cpuAtStart);
        wallTimes.push_back(wall.count());
        fmt::print("run {}: {} sessions, {} segments in {:.3f} s of CPU ({:.3f} s wall)\n", run + 1,
                   summary.sessions, summary.segments, cpuTimes.back(), wall.count());
    }
    std::sort(cpuTimes.begin(), cpuTimes.end());
    std::sort(wallTimes.begin(), wallTimes.end());
    const double peak = bench::mebibytes(bench::peakResidentBytes().value_or(0));
    std::error_code error;
    const auto bytes = std::filesystem::file_size(destination, error);
    fmt::print(
        "{} export of {}: {:.1f} MB written; median {:.3f} s of CPU ({:.3f} s wall) over {} "
        "run(s); resident after opening {:.1f} MiB, peak resident of the process {:.1f} MiB\n",
        what, file.string(), error ? 0.0 : static_cast<double>(bytes) / 1e6,
        cpuTimes[cpuTimes.size() / 2], wallTimes[wallTimes.size() / 2], cpuTimes.size(),
        bench::mebibytes(residentAtStart), peak);
    std::filesystem::remove(destination, error);
    if (peakLimit > 0 && peak > peakLimit) {
        fmt::print(stderr,
                   "lumenote-export-history: peak resident memory {:.1f} MiB exceeds {} MiB\n",
                   peak, peakLimit);
        return 2;
    }
    return 0;
}
