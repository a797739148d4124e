// One week's figures and insights from the standard synthetic history: the
// week's and the previous week's sessions read through the store's streamed
// walk (the week with its segments, the previous week, which is compared by
// its totals alone, without), then the figures and the six insights computed.
// The target is under 10 ms.
#include <benchmark/benchmark.h>

#include "bench_history.hpp"
#include "insights/local_insights.hpp"
#include "insights/weekly_figures.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

void BM_WeekFiguresAndInsights(benchmark::State& state) {
    auto opened = store::SqliteRecordingStore::open(bench::standardHistoryStore());
    if (!opened) {
        state.SkipWithError(opened.error().description.c_str());
        return;
    }
    auto& store = **opened;
    const LocalCalendar calendar = LocalCalendar::utc();
    // A week near the end of the history, read long after it.
    const Date inWeek = Date::fromUnixSeconds(1792800000.0);  // 2026-10-24
    const Date now = Date::fromUnixSeconds(1793491200.0);
    std::size_t sessions = 0;
    std::size_t facts = 0;
    for (auto _ : state) {
        const auto week = insights::weekContaining(inWeek, calendar, 1);
        const auto before = insights::previousWeek(week, calendar, 1);
        auto selected = insights::readAnalyticsSnapshots(store, week.range(), now, {});
        auto previous = insights::readAnalyticsSnapshots(store, before.range(), now, {},
                                                         insights::SnapshotDetail::totals);
        if (!selected || !previous) {
            state.SkipWithError("the history could not be read");
            return;
        }
        const auto figures = insights::computeWeeklyFigures(*selected, week, calendar, 60);
        const auto built =
            insights::buildLocalInsights(*selected, *previous, week, before, calendar, {});
        benchmark::DoNotOptimize(figures.studyTime);
        sessions = selected->size() + previous->size();
        facts = built.size();
    }
    state.counters["sessions"] = static_cast<double>(sessions);
    state.counters["insights"] = static_cast<double>(facts);
}
BENCHMARK(BM_WeekFiguresAndInsights)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote::bench
