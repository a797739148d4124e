// Walks over the whole standard synthetic history through the store's reader:
// its two million segments, and its 20,000 sessions with their children,
// each visited one at a time. Reports the time and the process's peak
// resident memory during the walk; the target for the segments is a peak
// under 50 MB. Peak memory is process-wide, so lumenote-walk-history measures
// the same walk in a process of its own as well.
#include <string>

#include <benchmark/benchmark.h>

#include "bench_history.hpp"
#include "process_memory.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

std::unique_ptr<store::SqliteRecordingStore> openHistoryOrSkip(benchmark::State& state) {
    // Outside the timed loop: the first use may generate the history.
    auto store = store::SqliteRecordingStore::open(bench::standardHistoryStore());
    if (!store) {
        state.SkipWithError(store.error().description.c_str());
        return nullptr;
    }
    return std::move(*store);
}

// The peak since `reset` (or of the whole process when the kernel refused to
// reset it) and the resident size at the start, in MiB.
void reportMemory(benchmark::State& state, bool reset, double residentAtStart) {
    state.counters["rssAtStartMiB"] = bench::mebibytes(residentAtStart);
    state.counters["peakRssMiB"] = bench::mebibytes(bench::peakResidentBytes().value_or(0));
    state.SetLabel(reset ? "peak since the walk began" : "peak of the whole process");
}

// Every segment, as an export walks them, summing a field so that each row
// is decoded and used.
void BM_WalkAllSegments(benchmark::State& state) {
    auto store = openHistoryOrSkip(state);
    if (!store) {
        return;
    }
    const bool reset = bench::resetPeakResident();
    const double residentAtStart = bench::residentBytes().value_or(0);
    std::size_t segments = 0;
    for (auto _ : state) {
        segments = 0;
        double seconds = 0;
        auto walked = store->forEachSegment(
            {}, [&](const recording::StudySession&, const recording::ActivitySegment& segment) {
                ++segments;
                seconds += segment.duration;
                return true;
            });
        if (!walked) {
            state.SkipWithError(walked.error().description.c_str());
            return;
        }
        benchmark::DoNotOptimize(seconds);
    }
    state.counters["segments"] = static_cast<double>(segments);
    state.counters["segmentsPerSecond"] = benchmark::Counter(
        static_cast<double>(segments), benchmark::Counter::kIsIterationInvariantRate);
    reportMemory(state, reset, residentAtStart);
}
BENCHMARK(BM_WalkAllSegments)->Unit(benchmark::kMillisecond);

// Every session with its segments, confirmations and PDF identities, one
// session in memory at a time, as weekly figures over the history read them.
void BM_WalkAllSessionsWithChildren(benchmark::State& state) {
    auto store = openHistoryOrSkip(state);
    if (!store) {
        return;
    }
    const bool reset = bench::resetPeakResident();
    const double residentAtStart = bench::residentBytes().value_or(0);
    std::size_t sessions = 0;
    std::size_t segments = 0;
    for (auto _ : state) {
        sessions = 0;
        segments = 0;
        auto walked = store->forEachSession({.includeChildren = true},
                                            [&](const recording::StudySession& session) {
                                                ++sessions;
                                                segments += session.segments.size();
                                                return true;
                                            });
        if (!walked) {
            state.SkipWithError(walked.error().description.c_str());
            return;
        }
    }
    state.counters["sessions"] = static_cast<double>(sessions);
    state.counters["segments"] = static_cast<double>(segments);
    reportMemory(state, reset, residentAtStart);
}
BENCHMARK(BM_WalkAllSessionsWithChildren)->Unit(benchmark::kMillisecond);

// The baseline of the segment walk: the same rows in the same way (sessions
// in start order, then each one's segments by the (session, startDate)
// index) straight from SQLite, with two columns read and no records built.
// The walk's time over this one is what decoding whole records, putting
// equal starts in id order and calling the visitor cost.
void BM_ScanSegmentRowsBaseline(benchmark::State& state) {
    auto connection = store::SqliteConnection::open(bench::standardHistoryStore().string());
    if (!connection) {
        state.SkipWithError(connection.error().description.c_str());
        return;
    }
    const bool reset = bench::resetPeakResident();
    const double residentAtStart = bench::residentBytes().value_or(0);
    std::size_t rows = 0;
    const auto stepOrSkip = [&](store::SqliteStatement& statement) {
        auto row = statement.step();
        if (!row) {
            state.SkipWithError(row.error().description.c_str());
            return false;
        }
        return *row;
    };
    for (auto _ : state) {
        auto sessions = (*connection)->prepare("SELECT id FROM sessions ORDER BY startDate, id");
        auto segments = (*connection)
                            ->prepare(
                                "SELECT duration, startDate FROM segments WHERE session = ?1 "
                                "ORDER BY startDate");
        if (!sessions || !segments) {
            state.SkipWithError("the baseline's statements could not be prepared");
            return;
        }
        rows = 0;
        double seconds = 0;
        while (stepOrSkip(**sessions)) {
            (*segments)->bind(1, (*sessions)->uuidAt(0));
            while (stepOrSkip(**segments)) {
                ++rows;
                seconds += (*segments)->doubleAt(0);
            }
            (*segments)->reset();
        }
        benchmark::DoNotOptimize(seconds);
    }
    state.counters["segments"] = static_cast<double>(rows);
    reportMemory(state, reset, residentAtStart);
}
BENCHMARK(BM_ScanSegmentRowsBaseline)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote::bench
