// Exports of the whole standard synthetic history (20,000 sessions,
// 2,000,000 segments) into a sink that counts the bytes and drops them: the
// cost of reading, calculating and formatting without the file system's.
// lumenote-export-history measures the same exports into a real file, each in
// a process of its own, with the process's peak memory.
#include <memory>

#include <benchmark/benchmark.h>

#include "bench_history.hpp"
#include "portability/data_export_service.hpp"
#include "process_memory.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

class CountingSink final : public portability::ByteSink {
  public:
    Result<void, portability::ExportError> write(std::string_view bytes) override {
        this->bytes += bytes.size();
        return {};
    }
    std::size_t bytes = 0;
};

void runExport(benchmark::State& state, const portability::ExportRequest& request) {
    // Outside the timed loop: the first use may generate the history.
    auto store =
        store::SqliteRecordingStore::open(bench::standardHistoryStore(), {.readOnly = true});
    if (!store) {
        state.SkipWithError(store.error().description.c_str());
        return;
    }
    const bool reset = bench::resetPeakResident();
    portability::DataExportService service(**store, **store);
    CountingSink sink;
    portability::ExportSummary summary;
    for (auto _ : state) {
        sink.bytes = 0;
        auto written = service.write(request, Date::fromUnixSeconds(1793491200.0), sink);
        if (!written) {
            state.SkipWithError(written.error().message().c_str());
            return;
        }
        summary = *written;
    }
    state.counters["sessions"] = static_cast<double>(summary.sessions);
    state.counters["segments"] = static_cast<double>(summary.segments);
    state.counters["outputMB"] = static_cast<double>(sink.bytes) / 1e6;
    state.counters["peakRssMiB"] = bench::mebibytes(bench::peakResidentBytes().value_or(0));
    state.SetLabel(reset ? "peak since the export began" : "peak of the whole process");
}

void BM_ExportSegmentTable(benchmark::State& state) {
    runExport(state, {.format = portability::ExportFormat::csv,
                      .table = portability::ExportTable::segments});
}
BENCHMARK(BM_ExportSegmentTable)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void BM_ExportSessionTable(benchmark::State& state) {
    runExport(state, {.format = portability::ExportFormat::csv});
}
BENCHMARK(BM_ExportSessionTable)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void BM_ExportJsonDocument(benchmark::State& state) {
    runExport(state, {.format = portability::ExportFormat::json});
}
BENCHMARK(BM_ExportJsonDocument)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

}  // namespace
}  // namespace lumenote::bench
