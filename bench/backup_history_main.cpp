// lumenote-backup-history: times a history backup at the scale of ten heavy
// years (the standard synthetic history, 20,000 sessions and 2,000,000
// segments) in a process that does nothing else, so that its peak resident
// memory is the operation's own:
//   --operation create   writes and verifies a backup of the history;
//   --operation replace  replace-restores such a backup into a copy of the
//                        history (a store of the same size), automatic
//                        backup of the current data included.
// Prints wall-clock and CPU seconds (the median over the runs), the peak
// resident memory and the backup's size, and fails (exit status 2) past the
// given limits.
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "bench_history.hpp"
#include "portability/tallywise_backup_service.hpp"
#include "process_memory.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "store/sqlite_recording_store.hpp"

namespace {

using namespace lumenote;

class SystemClock final : public recording::WallClock {
  public:
    Date now() override { return Date::fromSystemClock(std::chrono::system_clock::now()); }
};

double cpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Timing {
    double wall = 0;
    double cpu = 0;
};

// Runs one operation through a service over the store at `storeFile`.
struct Bench {
    std::filesystem::path storeFile;
    std::filesystem::path scratch;
    SystemClock clock;

    // Times `operation` from opening the store to closing it, which folds
    // the write-ahead log of a restore back into the store file.
    template <typename Operation>
    Result<Timing, std::string> run(Operation operation) {
        const double cpuStart = cpuSeconds();
        const auto started = std::chrono::steady_clock::now();
        auto store = store::SqliteRecordingStore::open(storeFile);
        if (!store) {
            return fail(store.error().description);
        }
        settings::InMemoryDefaultsDomain defaults;
        settings::PreferencesStore preferences(defaults);
        portability::TallywiseBackupService service({
            .store = **store,
            .history = **store,
            .importer = **store,
            .preferences = preferences,
            .wallClock = clock,
            .calendar = LocalCalendar::utc(),
            .automaticBackupFolder = scratch / "automatic",
            .appVersion = "bench",
        });
        if (auto done = operation(service); !done) {
            return fail(done.error().message());
        }
        store->reset();
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
        return Timing{elapsed.count(), cpuSeconds() - cpuStart};
    }
};

// Copies the store (and its write-ahead log, if any) into `folder`.
std::filesystem::path copyStore(const std::filesystem::path& from,
                                const std::filesystem::path& folder) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const std::filesystem::path to = folder / from.filename();
    std::filesystem::copy_file(from, to);
    return to;
}

}  // namespace

int main(int argc, char** argv) {
    std::filesystem::path cache = LUMENOTE_BENCH_CACHE_DIR;
    std::string operation = "create";
    int runs = 1;
    double peakLimit = 0;
    double timeLimit = 0;

    CLI::App app{
        "Times a verified history backup, or a replacing restore, of the standard "
        "synthetic history and prints its time, CPU and peak resident memory."};
    app.add_option("--operation", operation, "What to time")
        ->check(CLI::IsMember({"create", "replace"}))
        ->capture_default_str();
    app.add_option("--history-cache", cache, "Folder of the cached synthetic histories")
        ->capture_default_str();
    app.add_option("--runs", runs, "Runs in a row; the median is printed")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--peak-limit-mib", peakLimit,
                   "Fail (exit status 2) when the peak resident memory exceeds this many MiB");
    app.add_option("--time-limit-seconds", timeLimit,
                   "Fail (exit status 2) when the median wall-clock time exceeds this");
    CLI11_PARSE(app, argc, argv);

    bench::setHistoryCacheFolder(cache);
    const std::filesystem::path history = bench::standardHistoryStore();
    const std::filesystem::path scratch = cache / ("backup-" + operation);
    const std::filesystem::path backupFile = scratch / "history.tallywisebackup";
    std::filesystem::create_directories(scratch);

    std::vector<Timing> timings;
    std::size_t backupBytes = 0;
    for (int run = 0; run < runs; ++run) {
        Bench bench{history, scratch, {}};
        if (operation == "replace") {
            // The backup to restore is made first, outside the timing, and
            // the store replaced is a fresh copy of the history each run.
            if (run == 0) {
                auto made = bench.run([&](portability::TallywiseBackupService& service) {
                    return service.createBackup(backupFile);
                });
                if (!made) {
                    fmt::print(stderr, "lumenote-backup-history: {}\n", made.error());
                    return 1;
                }
            }
            bench.storeFile = copyStore(history, scratch / "store");
        }
        if (run == 0) {
            bench::resetPeakResident();
        }
        auto timing = bench.run([&](portability::TallywiseBackupService& service)
                                    -> Result<void, portability::TallywiseBackupError> {
            if (operation == "create") {
                auto created = service.createBackup(backupFile);
                if (!created) {
                    return fail(created.error());
                }
                backupBytes = created->bytes;
                return {};
            }
            auto validated = service.validateBackup(backupFile);
            if (!validated) {
                return fail(validated.error());
            }
            backupBytes = validated->file.size();
            auto replaced = service.replace(*validated, portability::kReplaceConfirmation);
            if (!replaced) {
                return fail(replaced.error());
            }
            return {};
        });
        if (!timing) {
            fmt::print(stderr, "lumenote-backup-history: {}\n", timing.error());
            return 1;
        }
        fmt::print("run {}: {} in {:.2f} s wall, {:.2f} s CPU\n", run + 1, operation, timing->wall,
                   timing->cpu);
        timings.push_back(*timing);
    }
    std::sort(timings.begin(), timings.end(),
              [](const Timing& a, const Timing& b) { return a.wall < b.wall; });
    const Timing median = timings[timings.size() / 2];
    const double peak = bench::mebibytes(bench::peakResidentBytes().value_or(0));
    fmt::print(
        "{} of the standard history: median {:.2f} s wall, {:.2f} s CPU over {} run(s); peak "
        "resident memory {:.1f} MiB; backup file {:.1f} MB\n",
        operation, median.wall, median.cpu, timings.size(), peak,
        static_cast<double>(backupBytes) / 1e6);
    std::filesystem::remove_all(scratch / "store");
    std::filesystem::remove_all(scratch / "automatic");
    if ((peakLimit > 0 && peak > peakLimit) || (timeLimit > 0 && median.wall > timeLimit)) {
        fmt::print(stderr, "lumenote-backup-history: over the limits ({} MiB, {} s)\n", peakLimit,
                   timeLimit);
        return 2;
    }
    return 0;
}
