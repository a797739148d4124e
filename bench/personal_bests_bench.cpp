// The personal-bests check at the end of a session over the standard
// synthetic history (20,000 sessions): one walk over the session rows, plus
// the few sessions whose Focused total could hold the longest run. The
// argument is the new session's one Focused run in seconds: the longer it
// is, the fewer earlier sessions could hold the record, and the more of
// them the check loads before it knows the run is a best.
#include <benchmark/benchmark.h>

#include "bench_history.hpp"
#include "insights/history_personal_bests.hpp"
#include "recording/tracking_calculation.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

namespace Tracking = recording::TrackingCalculationService;

// A completed session of one Focused stretch of `seconds`, a day after the
// history's last session.
recording::StudySession finishedSession(double seconds) {
    const Date start = Date::fromUnixSeconds(1793562340.0);
    recording::StudySession session(Uuid::generate(), "Biology", "", seconds, start);
    session.setCalculationVersion(recording::kCurrentTrackingCalculationVersion);
    session.timerDuration = seconds;
    session.endDate = start.addingSeconds(seconds);
    session.setStatus(recording::StudySessionStatus::completed);
    session.segments.emplace_back(Uuid::generate(), start, start.addingSeconds(seconds), seconds,
                                  "Editor", "org.example.Editor",
                                  classification::ActivityClassification::focused, false);
    Tracking::applyTotals(
        Tracking::calculateSessionTotals(session, *session.endDate,
                                         Tracking::effectiveCalculationVersion(session)),
        session);
    return session;
}

void BM_PersonalBestsAtSessionEnd(benchmark::State& state) {
    auto opened = store::SqliteRecordingStore::open(bench::standardHistoryStore());
    if (!opened) {
        state.SkipWithError(opened.error().description.c_str());
        return;
    }
    auto& store = **opened;
    settings::InMemoryDefaultsDomain domain;
    settings::PreferencesStore preferences(domain);
    preferences.setDailyStudyGoalMinutes(60);
    settings::PreferencesForRecording recordingPreferences(preferences);
    insights::HistoryPersonalBests check(
        {store, store, recordingPreferences, LocalCalendar::utc(), {}});
    const auto finished = finishedSession(static_cast<double>(state.range(0)));
    const Date now = finished.endDate->addingSeconds(60);
    std::size_t bests = 0;
    for (auto _ : state) {
        auto found = check.personalBestsOf(finished, now);
        if (!found) {
            state.SkipWithError(found.error().description.c_str());
            return;
        }
        bests = found->size();
    }
    state.counters["bests"] = static_cast<double>(bests);
}
BENCHMARK(BM_PersonalBestsAtSessionEnd)
    ->Arg(1800)
    ->Arg(3600)
    ->Arg(7200)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote::bench
