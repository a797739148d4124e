// The review of unclassified activity over the whole standard synthetic
// history (two million segments): the store's grouped scan and the grouping
// against the rule caches, as the review screen and `lumenote-cli review`
// build the list. The target is under one second.
#include <benchmark/benchmark.h>

#include "bench_history.hpp"
#include "classification/classification_rules.hpp"
#include "recording/unclassified_review_service.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

void BM_ReviewWholeHistory(benchmark::State& state) {
    auto opened = store::SqliteRecordingStore::open(bench::standardHistoryStore());
    if (!opened) {
        state.SkipWithError(opened.error().description.c_str());
        return;
    }
    store::SqliteRecordingStore& store = **opened;
    classification::ClassificationRules rules(
        store, [] { return Date(); }, "com.tallywise.Lumenote");
    rules.load();
    recording::UnclassifiedReviewService review(store, rules);
    std::size_t groups = 0;
    for (auto _ : state) {
        review.invalidate();
        auto listed = review.groups();
        if (!listed) {
            state.SkipWithError(listed.error().description.c_str());
            return;
        }
        groups = (*listed)->size();
    }
    state.counters["groups"] = static_cast<double>(groups);
}
BENCHMARK(BM_ReviewWholeHistory)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote::bench
