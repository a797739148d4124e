// The recorder's own cost: one tick of the session manager (fake platform, real
// SQLite store) and the bytes written during an hour of recording.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/fake/fake_platform.hpp"
#include "process_memory.hpp"
#include "recording/session_manager.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::bench {
namespace {

// A recorder over a fresh store in a temporary folder.
class BenchRecorder {
  public:
    BenchRecorder() {
        char pattern[] = "/tmp/lumenote-bench-recorder.XXXXXX";
        folder_ = mkdtemp(pattern);
        store_ = std::move(store::SqliteRecordingStore::open(folder_ / "lumenote.sqlite")).value();
        checkpoints_ =
            std::make_unique<recording::FileSessionCheckpointStore>(folder_, machine_.clock.wall());
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<recording::SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        manager_ = std::make_unique<recording::SessionManager>(machine_.dependencies(
            *store_, recordingPreferences_, *checkpoints_, *rules_, *history_));
        manager_->startUp();
        (void)rules_->saveApplicationClassification(
            "org.example.Editor", "Editor", classification::ActivityClassification::focused);
        machine_.frontmost.current =
            recording::FrontmostApplication{"Editor", "org.example.Editor"};
        recording::SessionStartRequest request;
        request.subject = "Benchmark";
        request.plannedDuration = 86400.0;
        request.timingMode = recording::SessionTimingMode::openEnded;
        (void)manager_->start(request);
    }
    ~BenchRecorder() {
        manager_.reset();
        history_.reset();
        rules_.reset();
        store_.reset();
        std::filesystem::remove_all(folder_);
    }

    void tick() {
        machine_.clock.advance(1.0);
        manager_->tick();
    }
    void switchTo(const std::string& bundle) {
        machine_.frontmost.current = recording::FrontmostApplication{bundle, bundle};
        manager_->applicationActivated();
    }

  private:
    std::filesystem::path folder_;
    platform::fake::FakeMachine machine_{Date{800000000.0}};
    settings::InMemoryDefaultsDomain domain_;
    settings::PreferencesStore preferences_{domain_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<recording::FileSessionCheckpointStore> checkpoints_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::SessionHistory> history_;
    std::unique_ptr<recording::SessionManager> manager_;
};

// One steady tick (same application, input present), the save cadence's
// writes included in the average. Target: under 20 microseconds of CPU.
void BM_SessionManagerTick(benchmark::State& state) {
    BenchRecorder recorder;
    for (auto _ : state) {
        recorder.tick();
    }
}
// A day of ticks, so that every iteration is a tick of a live session.
BENCHMARK(BM_SessionManagerTick)
    ->Iterations(86400)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMicrosecond);

// An hour of recording with an application switch every two minutes: the
// bytes written (store and checkpoint). Target: under 1 MB per hour.
void BM_BytesWrittenPerHourOfRecording(benchmark::State& state) {
    double bytes = 0.0;
    for (auto _ : state) {
        BenchRecorder recorder;
        const double before = bytesWrittenByProcess();
        for (int second = 1; second <= 3600; ++second) {
            if (second % 120 == 0) {
                recorder.switchTo(second % 240 == 0 ? "org.example.Editor" : "org.example.Browser");
            }
            recorder.tick();
        }
        bytes = bytesWrittenByProcess() - before;
    }
    state.counters["bytes_per_hour"] = bytes;
}
BENCHMARK(BM_BytesWrittenPerHourOfRecording)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote::bench
