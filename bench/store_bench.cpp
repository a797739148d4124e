// Benchmarks of the object store over the standard synthetic history: what
// start-up and the history list cost at the size of ten years of use.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include "bench_history.hpp"
#include "process_memory.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

std::unique_ptr<store::SqliteRecordingStore> openOrSkip(benchmark::State& state,
                                                        const std::filesystem::path& file) {
    auto store = store::SqliteRecordingStore::open(file);
    if (!store) {
        state.SkipWithError(store.error().description.c_str());
        return nullptr;
    }
    return std::move(*store);
}

// Start-up: open the file (and check its layout), then load what the recorder
// keeps in memory: the application and website rules, the PDF preferences,
// and any session left live by a crash.
void BM_OpenStoreAndLoadRuleCaches(benchmark::State& state) {
    // Outside the timed loop: the first use may generate the history.
    const std::filesystem::path& file = bench::standardHistoryStore();
    for (auto _ : state) {
        auto store = openOrSkip(state, file);
        if (!store) {
            return;
        }
        auto apps = store->appClassifications();
        auto websites = store->websiteClassifications();
        auto preferences = store->localPDFPreferences();
        auto live = store->liveSessions();
        if (!apps || !websites || !preferences || !live) {
            state.SkipWithError("loading the rule caches failed");
            return;
        }
        benchmark::DoNotOptimize(apps->size() + websites->size() + live->size());
    }
}
BENCHMARK(BM_OpenStoreAndLoadRuleCaches)->Unit(benchmark::kMillisecond);

// The history list: the newest 50 sessions, without (as the list shows them)
// and with their segments.
void BM_ListNewestSessions(benchmark::State& state) {
    auto store = openOrSkip(state, bench::standardHistoryStore());
    if (!store) {
        return;
    }
    const recording::SessionQuery query{.limit = 50, .includeChildren = state.range(0) != 0};
    std::size_t segments = 0;
    for (auto _ : state) {
        auto sessions = store->listSessions(query);
        if (!sessions || sessions->size() != 50) {
            state.SkipWithError("listing failed");
            return;
        }
        segments = 0;
        for (const recording::StudySession& session : *sessions) {
            segments += session.segments.size();
        }
        benchmark::DoNotOptimize(segments);
    }
    state.counters["segments"] = static_cast<double>(segments);
}
BENCHMARK(BM_ListNewestSessions)
    ->ArgName("withSegments")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

// One session with its segments, from the middle of the history.
void BM_LoadSessionWithSegments(benchmark::State& state) {
    auto store = openOrSkip(state, bench::standardHistoryStore());
    if (!store) {
        return;
    }
    auto middle = store->listSessions({.limit = 1, .offset = 10000});
    if (!middle || middle->empty()) {
        state.SkipWithError("no session to load");
        return;
    }
    const Uuid id = middle->front().id;
    for (auto _ : state) {
        auto session = store->loadSession(id);
        benchmark::DoNotOptimize(session);
    }
}
BENCHMARK(BM_LoadSessionWithSegments)->Unit(benchmark::kMicrosecond);

// One save as the recorder makes it while a session runs: the session's own
// columns with either the segment that is still growing or a new one (an
// activity boundary), in one change set, normal or durable (synced, as when a
// session ends). Reports the bytes written per save, WAL checkpoints
// included. Runs on a scratch store so that the cached history stays as
// generated.
void BM_SaveSession(benchmark::State& state) {
    const bool durable = state.range(0) != 0;
    const bool boundary = state.range(1) != 0;
    const std::filesystem::path folder =
        bench::historyCacheFolder() / ("scratch-" + std::to_string(::getpid()));
    std::filesystem::remove_all(folder);
    {
        auto store = openOrSkip(state, folder / "lumenote.sqlite");
        if (!store) {
            return;
        }
        recording::StudySession session(Uuid::generate(), "Linear Algebra", "", 3600,
                                        Date{800000000});
        recording::ActivitySegment segment(Uuid::generate(), session.startDate, session.startDate,
                                           0, "Okular", "org.kde.okular",
                                           classification::ActivityClassification::focused, false);
        segment.session = session.id;
        recording::StoreChangeSet changes;
        changes.durable = durable;
        const double bytesBefore = bytesWrittenByProcess();
        for (auto _ : state) {
            if (boundary) {
                segment.id = Uuid::generate();
                segment.startDate = segment.endDate;
                segment.duration = 0;
            }
            session.timerDuration += 1;
            segment.duration += 1;
            segment.endDate = segment.endDate.addingSeconds(1);
            changes.sessions = {session};
            changes.segments = {segment};
            if (auto saved = store->apply(changes); !saved) {
                state.SkipWithError(saved.error().description.c_str());
                break;
            }
        }
        state.counters["bytesPerSave"] =
            (bytesWrittenByProcess() - bytesBefore) / static_cast<double>(state.iterations());
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_SaveSession)
    ->ArgNames({"durable", "boundary"})
    ->Args({0, 0})
    ->Args({0, 1})
    ->Args({1, 1})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace lumenote::bench
